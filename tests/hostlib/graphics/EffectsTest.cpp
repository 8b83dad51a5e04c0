#include "Effects.h"

#include <gtest/gtest.h>
#include <tbb/global_control.h>

namespace {

using pictures::CountingSink;
using pictures::Difference;
using pictures::kAllFormats;
using pictures::kAwkwardSizes;
using pictures::Name;
using pictures::Noise;
using pictures::Tight;

CRowIteratorBands Alpha(const CRowIteratorBands& image) {
    const CNPixelFormat format = image.GetPixelFormat();
    return pictures::Make(
        CNPixelFormat::Of(1, format.Is16bit()), image.GetWidth(), image.GetHeight(),
        [&](int x, int y, int) { return pictures::Sample(image, x, y, format.Channels() - 1); });
}

// In every format and awkward size: the source's size, place, format and alpha, twice the same, and
// no access outside the pictures (which the sanitizers see).
TEST(Effects, KeepGeometryAndAlpha) {
    for (const effects::SEffect& effect : effects::All()) {
        for (const ENPixelFormat format : kAllFormats) {
            for (const CSize size : kAwkwardSizes) {
                SCOPED_TRACE(effect.name + " " + Name(format) + " " + std::to_string(size.cx) +
                             " x " + std::to_string(size.cy));
                CRowIteratorBands source = Tight(Noise(format, size.cx, size.cy, 1));
                source.SetOrigin({-5, 8});
                const CRowIteratorBands made = effects::Apply(effect, source);
                ASSERT_EQ(made.GetRect(), source.GetRect());
                ASSERT_EQ(made.GetPixelFormat(), source.GetPixelFormat());
                if (made.GetPixelFormat().IsAlphaChannelPresent()) {
                    ASSERT_EQ(Difference(Alpha(made), Alpha(source)), "");
                }
                ASSERT_EQ(Difference(effects::Apply(effect, source), made), "");
            }
        }
    }
}

// The source is left alone, also when it is given as the destination.
TEST(Effects, WorkInPlaceOfTheSource) {
    for (const effects::SEffect& effect : effects::All()) {
        SCOPED_TRACE(effect.name);
        const CRowIteratorBands source = Noise(ENPixelFormat::ColourAlpha8, 37, 23, 1);
        CRowIteratorBands before;
        before.Copy(source, 0).ThrowIfFailed();
        const CRowIteratorBands made = effects::Apply(effect, source);
        EXPECT_EQ(Difference(source, before), "");
        EXPECT_NE(Difference(made, before), "");
        CRowIteratorBands both;
        both.Copy(source, 0).ThrowIfFailed();
        effect.apply(nullptr, both, both).ThrowIfFailed();
        EXPECT_EQ(Difference(both, made), "");
    }
}

TEST(Effects, OneThreadMakesTheSameAsMany) {
    for (const effects::SEffect& effect : effects::All()) {
        for (const ENPixelFormat format : kAllFormats) {
            SCOPED_TRACE(effect.name + " " + Name(format));
            const CRowIteratorBands source = Noise(format, 601, 107, 1);
            const CRowIteratorBands many = effects::Apply(effect, source);
            const tbb::global_control one(tbb::global_control::max_allowed_parallelism, 1);
            EXPECT_EQ(Difference(effects::Apply(effect, source), many), "");
        }
    }
}

TEST(Effects, ReportTheWholeAndStopWhenAsked) {
    const CRowIteratorBands source = Noise(ENPixelFormat::Colour8, 40, 150, 1);
    for (const effects::SEffect& effect : effects::All()) {
        SCOPED_TRACE(effect.name);
        CountingSink listener;
        CStatusControl status(&listener);
        CRowIteratorBands destination;
        effect.apply(&status, source, destination).ThrowIfFailed();
        EXPECT_DOUBLE_EQ(listener.Last(), 1.0);
        EXPECT_FALSE(listener.EverFell());
        for (const int at : {1, 2}) {  // a run asks at least at its start and end
            CountingSink canceller(at);
            CStatusControl cancelled(&canceller);
            EXPECT_EQ(effect.apply(&cancelled, source, destination).Code(),
                      TolmErrorCode::Cancelled);
        }
    }
}

// What the source shows under a channel access is what the effect makes: colour of a picture with
// alpha is treated as the same colour without it.
TEST(Effects, FollowTheSourcesChannelAccess) {
    for (const effects::SEffect& effect : effects::All()) {
        if (effect.name.find("sculpture") != std::string::npos ||
            effect.name.find("texture") != std::string::npos) {
            continue;  // take whole pictures; BumpMap2 is tested below
        }
        for (const ENPixelFormat format :
             {ENPixelFormat::ColourAlpha8, ENPixelFormat::GreyAlpha16}) {
            SCOPED_TRACE(effect.name + " " + Name(format));
            CRowIteratorBands source = Noise(format, 41, 33, 1), colour;
            const CNPixelFormat plain = CNPixelFormat::Of(source.GetPixelFormat().ColourChannels(),
                                                          source.GetPixelFormat().Is16bit());
            colour.Create(41, 33, plain).ThrowIfFailed();
            RowIterator_CopyColor(colour, source).ThrowIfFailed();
            source.SetChannelAccess(ENChannel::Colour, 0).ThrowIfFailed();
            EXPECT_EQ(Difference(effects::Apply(effect, source), effects::Apply(effect, colour)),
                      "");
        }
    }
    const CRowIteratorBands bump = Noise(ENPixelFormat::Grey8, 43, 35, 2);
    CRowIteratorBands source = Noise(ENPixelFormat::ColourAlpha8, 41, 33, 1);
    CRowIteratorBands whole = Noise(ENPixelFormat::ColourAlpha8, 41, 33, 5), other = whole, shown;
    shown.Copy(whole, 0).ThrowIfFailed();
    BumpMap2(nullptr, {}, source, bump, {}, whole, 1, nullptr).ThrowIfFailed();
    source.SetChannelAccess(ENChannel::Colour, 0).ThrowIfFailed();
    shown.SetChannelAccess(ENChannel::Colour, 0).ThrowIfFailed();
    const CRowIteratorBands alpha = Alpha(shown);
    BumpMap2(nullptr, {}, source, bump, {}, shown, 1, nullptr).ThrowIfFailed();
    EXPECT_EQ(Difference(Alpha(shown), alpha), "") << "alpha that is not shown is not written";
    RowIterator_CopyAlpha(whole, shown).ThrowIfFailed();
    EXPECT_EQ(Difference(shown, whole), "");
}

TEST(Effects, RefuseWhatTheyCannotUse) {
    const CRowIteratorBands source = Noise(ENPixelFormat::Colour8, 8, 8, 1);
    CRowIteratorBands destination;
    for (const effects::SEffect& effect : effects::All()) {
        if (effect.name.find("texture") != std::string::npos || effect.name == "large sculpture" ||
            effect.name == "plain sculpture") {
            continue;  // these make further pictures of the source's size first
        }
        EXPECT_EQ(effect.apply(nullptr, {}, destination).Code(), TolmErrorCode::UnusableInput)
            << effect.name;
    }
    CIoDeformation mosaic;
    EXPECT_EQ(mosaic(destination, source).Code(), TolmErrorCode::UnusableInput);
    EXPECT_FALSE(mosaic.MosaicAdvanced(0, 5, 1, 1, 1));
    EXPECT_FALSE(mosaic.Glasses(5, 5, 1.0 / 0.0, 1, 1, 1));
    EXPECT_EQ(mosaic(destination, source).Code(), TolmErrorCode::UnusableInput);

    destination.Copy(source, 0).ThrowIfFailed();
    const auto bumped = [&](const CRowIteratorBands& bump, const CRowIteratorBands& from) {
        return BumpMap2(nullptr, {}, from, bump, {}, destination, 1, nullptr).Code();
    };
    const CRowIteratorBands bump = Noise(ENPixelFormat::Grey8, 10, 10, 1);
    EXPECT_EQ(bumped(bump, source), TolmErrorCode::Success);
    EXPECT_EQ(bumped(source, source), TolmErrorCode::UnusableInput);
    EXPECT_EQ(bumped({}, source), TolmErrorCode::UnusableInput);
    EXPECT_EQ(bumped(bump, {}), TolmErrorCode::UnusableInput);
    EXPECT_EQ(bumped(bump, Noise(ENPixelFormat::Grey8, 8, 8, 1)), TolmErrorCode::UnusableInput);

    CIoSculptureEffect sculpture;
    sculpture.SetBumpDib(source, false);
    sculpture.SetMaskDib(Noise(ENPixelFormat::Grey8, 7, 8, 1), false);
    EXPECT_EQ(sculpture.ApplyEffect(nullptr, destination, {}).Code(), TolmErrorCode::UnusableInput);
}

}  // namespace
