#include <gtest/gtest.h>

#include "Transforms.h"

namespace {

using pictures::Difference;
using pictures::Noise;
using pictures::Sample;
using transforms::Fill;

TEST(ParamList, KeepsOrderAndFindsByExactName) {
    CTransformParamList list;
    list.Add(L"Angle", 0, 360, 45, 7);
    list.Add(L"Angle", 0, 1, 0, 1);
    list.Add(L"angle", -5, 5, 0, 9);
    EXPECT_EQ(list.Find(L"Angle").value, 7) << "the first of that name";
    EXPECT_EQ(list.Find(L"angle").value, 9);
    const STransformParam absent = list.Find(L"Angl");
    EXPECT_TRUE(absent.value == 0 && absent.maximum == 0 && absent.name.IsEmpty());

    list.name = L"Transfo1T2";
    const CTransformParamList copy = list;
    list[0].value = 100;
    EXPECT_EQ(copy[0].value, 7);
    EXPECT_EQ(copy.name, CString(L"Transfo1T2"));

    EXPECT_EQ(list.Extract(2, 2).Count(), 0);
    EXPECT_EQ(list.Extract(2, 1).Count(), 0);
    const CTransformParamList both = CTransformParamList::Concat({}, list.Extract(1, 3));
    ASSERT_EQ(both.Count(), 2);
    EXPECT_EQ(both[1].value, 9);
    EXPECT_TRUE(both.name.IsEmpty());
    list.ClampValues();
    EXPECT_EQ(list[2].value, 5);
}

TEST(Transform, ConstructionReseedsTheGenerator) {
    CRuntimeRandom::OfThisThread().Seed(99);
    const CContour1 transform;
    EXPECT_EQ(CRuntimeRandom::OfThisThread().Next(), 38);
}

// A luminance of 255 turns the work rectangle white and shows where it lay.
TEST(Transform, BordersMakeTheWorkRectangle) {
    struct {
        int borders[4];
        int width, height;
        CRect expected;
    } const cases[] = {
        {{0, 1000, 0, 1000}, 1, 1, {0, 0, 1, 1}},
        {{0, 0, 0, 0}, 9, 9, {}},
        {{-10, 1010, -10, 1010}, 30, 7, {0, 0, 30, 7}},
        {{700, 300, 900, 100}, 100, 10, {30, 1, 70, 9}},
        {{1, 999, 1, 999}, 1500, 20, {1, 0, 1498, 19}},
        {{250, 750, 333, 334}, 10, 3, {2, 0, 7, 1}},
        {{500, 500, 0, 1000}, 10, 10, {}},
    };
    for (const auto& c : cases) {
        const CRowIteratorBands source = pictures::Make(ENPixelFormat::Grey8, c.width, c.height,
                                                        [](int, int, int) { return 9; });
        const CRowIteratorBands result = transforms::Apply<CLuminance>(source, {255}, c.borders);
        const CRowIteratorBands expected =
            pictures::Make(ENPixelFormat::Grey8, c.width, c.height, [&](int x, int y, int) {
                return x >= c.expected.left && x < c.expected.right && y >= c.expected.top &&
                               y < c.expected.bottom
                           ? 255
                           : 9;
            });
        EXPECT_EQ(Difference(result, expected), "") << c.width << " by " << c.height;
    }
}

TEST(Transform, DestinationIsCopiedUnlessItHasTheFormat) {
    const int inner[] = {250, 750, 250, 750};
    const CRowIteratorBands source = Noise(ENPixelFormat::Colour8, 8, 8, 1);
    for (const CNPixelFormat format :
         {ENPixelFormat::Colour8, ENPixelFormat::ColourAlpha8, ENPixelFormat::Colour16}) {
        CPeriodic3 transform;
        Fill(transform, {32, 10}, inner);
        const CRowIteratorBands before = Noise(format, 8, 8, 2);
        CRowIteratorBands destination;
        destination.Copy(before, 0).ThrowIfFailed();
        const CRowIteratorBands result = transforms::Run(transform, source, destination);
        const bool kept = format == source.GetPixelFormat();
        EXPECT_EQ(result.GetPixelFormat(), source.GetPixelFormat());
        EXPECT_EQ(Sample(result, 1, 4, 0), Sample(kept ? before : source, 1, 4, 0));
        EXPECT_EQ(Sample(result, 6, 4, 2), Sample(kept ? before : source, 6, 4, 2));
    }
}

TEST(Transform, MissingOrUnusableImagesAreErrors) {
    CStatusControl status;
    CRowIteratorBands unattached, destination;
    for (const auto& kind : transforms::kAll) {
        const auto transform = kind.make();
        EXPECT_EQ(transform->Run().Code(), TolmErrorCode::UnusableInput) << kind.name;
        transform->SetStatus(&status);
        transform->SetImages(&unattached, &destination);
        EXPECT_EQ(transform->Run().Code(), TolmErrorCode::UnusableInput) << kind.name;
        EXPECT_FALSE(destination.IsAttached());
    }
}

// A destination of the source's format may be smaller, or larger, than the source: what fits is
// written, and it equals the same part of a full result.
TEST(Transform, DestinationOfAnotherSizeTakesWhatFits) {
    for (const auto& kind : transforms::kAll) {
        for (const ENPixelFormat format : pictures::kAllFormats) {
            const CRowIteratorBands source = Noise(format, 21, 17, 3);
            for (const CSize size : {CSize{9, 5}, CSize{30, 30}, CSize{1, 40}}) {
                for (const bool plain : {false, true}) {
                    const auto transform = kind.make();
                    Fill(*transform, {1, 3, 5, 7});
                    transform->use_plain_path = plain;
                    CRowIteratorBands full;
                    full.Copy(source, 0).ThrowIfFailed();
                    const auto at = [&](int x, int y, int c) {
                        return x < 21 && y < 17 ? Sample(full, x, y, c) : 1;
                    };
                    const CRowIteratorBands part = transforms::Run(
                        *transform, source,
                        pictures::Tight(pictures::Make(format, size.cx, size.cy, at)));
                    const auto again = kind.make();
                    Fill(*again, {1, 3, 5, 7});
                    full = transforms::Run(*again, source, full);
                    EXPECT_EQ(Difference(part, pictures::Make(format, size.cx, size.cy, at)), "")
                        << kind.name << " " << size.cx << " by " << size.cy;
                }
            }
        }
    }
}

TEST(Transform, CancelKeepsTheRowsDone) {
    struct {
        std::unique_ptr<CAbstractTransform> (*make)();
        int calls_before_rows;  // progress reported before the first row
    } const cases[] = {{transforms::Make<CPeriodic3>, 0},
                       {transforms::Make<CContour1>, 1},
                       {transforms::Make<CGlass>, 0}};
    const CRowIteratorBands source = Noise(ENPixelFormat::Colour8, 11, 9, 4);
    for (const auto& c : cases) {
        const auto whole = c.make();
        Fill(*whole, {20, 10});
        const CRowIteratorBands complete = transforms::Run(*whole, source);
        for (const int row : {0, 4, 7}) {
            const auto transform = c.make();
            Fill(*transform, {20, 10});
            pictures::CountingSink sink(c.calls_before_rows + row + 1);
            CStatusControl status(&sink);
            CRowIteratorBands destination;
            transform->SetStatus(&status);
            transform->SetImages(&source, &destination);
            EXPECT_EQ(transform->Run().Code(), TolmErrorCode::Cancelled);
            const CRowIteratorBands expected =
                pictures::Make(ENPixelFormat::Colour8, 11, 9, [&](int x, int y, int channel) {
                    return Sample(y < row ? complete : source, x, y, channel);
                });
            EXPECT_EQ(Difference(destination, expected), "") << "row " << row;
        }
    }
}

}  // namespace
