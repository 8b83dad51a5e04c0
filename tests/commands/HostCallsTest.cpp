#include <gmock/gmock.h>

#include "RecordingHost.h"
#include "host/commands/GeneralSettings.h"
#include "hostlib/parameters/ParameterValues.h"
#include "support/LoadedModule.h"
#include "support/Pictures.h"

// What the commands that leave the pixels to the host ask of it: which operations, in which order,
// with which values, and what becomes of an operation's failure.
namespace {

using testing::ElementsAreArray;

// A library of one picture, which says what it was asked for.
class COneResource : public TUnknownImpl<COneResource, IResourceLibrary> {
  public:
    explicit COneResource(const CRowIteratorBands& image) : image_(image) {}
    CErrorAutoThrow LoadImage(int type, const CString& name, CRowIteratorBands& image) override {
        recording::calls.push_back("Load " + std::to_string(type) + " " + ToUtf8(name));
        image = image_;
        return {};
    }

  private:
    CRowIteratorBands image_;
};

struct SCase {
    std::string effect;
    ENPixelFormat format;
    std::vector<std::string> values;  // "NAME=VALUE"; none at all: the command has no repository
    std::vector<std::string> calls;
    ENPixelFormat resource = ENPixelFormat::Grey8;
};

struct SOutcome {
    TolmErrorCode code;
    CRowIteratorBands source, destination;
    double progress;
};

constexpr int kModifyMode = 5;

SOutcome RunCase(const SCase& test, bool with_mask = false) {
    static const LoadedModule module;
    const TRef<CDocument> document(new CDocument({20, 10}));
    document->SetColorSpec({.red = 0.5, .green = 0.25, .blue = 0.25});
    const TRef<COneResource> library(new COneResource(pictures::Noise(test.resource, 9, 7, 2)));
    const TRef<CExecutionContext> context(new CExecutionContext(document, library, nullptr));
    const TRef<CCmdEffect> command = module->CreateCommand(test.effect);
    if (!test.values.empty()) {
        PrepareCommand(*command, context.Get());
        for (const std::string& value : test.values) {
            const std::size_t equals = value.find('=');
            IParameter& parameter =
                parameters::Find(*command->BoundRepository(), value.substr(0, equals));
            parameters::Set(parameter, parameters::Parse(parameter, value.substr(equals + 1)));
        }
    }
    command->Setup(context.Get()).ThrowIfFailed();
    recording::calls.clear();
    SOutcome outcome{TolmErrorCode::Success, pictures::Noise(test.format, 8, 6, 1), {}, 0};
    outcome.source.SetChannelAccess(ENChannel::All, kModifyMode).ThrowIfFailed();
    pictures::CountingSink sink;
    CStatusControl status(&sink);
    const CRowIterator mask = pictures::Noise(ENPixelFormat::Grey8, 8, 6, 3);
    // The base tells the effect whether its source is transparent, and is all that lies between.
    outcome.code = command
                       ->Preview(&status, outcome.source, outcome.destination,
                                 with_mask ? &mask : nullptr, context.Get())
                       .Code();
    outcome.progress = sink.Last();
    return outcome;
}

const std::string kTilesValues = "Tiles heard 8x6:7 | 315 30 FFFFFF 50 0 1 50 25 | 2 31 7 13";
const std::string kReliefValues = "315 30 FFFFFF 50 0 1 0 0";

const SCase kCases[] = {
    {"Tiles", ENPixelFormat::Colour8, {}, {kTilesValues}},
    {"Tiles",
     ENPixelFormat::ColourAlpha8,
     {"Angle=10", "Elevation=11", "Color=#030201", "Intensity=12", "Ambience=-13", "Depth=14",
      "Shininess=15", "Smoothness=16", "TileShape=1", "TileAngularity=17", "TileSize=18",
      "BorderSize=9"},
     {"Tiles heard 8x6:8[-3] | 10 11 010203 12 -13 14 15 16 | 1 17 18 9",
      "AddAlpha unheard 8x6:7 8 8x6:8[3] false true false"}},
    {"Tiles",
     ENPixelFormat::GreyAlpha8,
     {"TileShape=0"},
     {"Tiles heard 8x6:6[4] | 315 30 FFFFFF 50 0 1 50 25 | 0 75 15 1",
      "AddAlpha unheard 8x6:5 6 8x6:6[3] false true false"}},
    {"MosaicAntique",
     ENPixelFormat::Colour8,
     {},
     {"SetResampleMode 2", "SetEdgeMode 1", "MosaicAdvanced 50 50 2 50 70",
      "Deform heard 8x6:7 draws 41"}},
    {"MosaicAntique",
     ENPixelFormat::ColourAlpha8,
     {"NumColumns=30", "NumRows=40", "GroutWidth=9", "GroutDiffusion=0", "TileDiffusion=8",
      "FillColor=#112233"},
     {"GetMask64KLUT", "Flatten 8x6:8 332211 true", "SetResampleMode 2", "SetEdgeMode 1",
      "MosaicAdvanced 30 40 0 0 8", "Deform heard 8x6:7 draws 41", "CopyAlpha 8x6:8 into 8x6:8",
      "CopyColor 8x6:7 into 8x6:8"}},
    {"MosaicGlass",
     ENPixelFormat::Grey16,
     {},
     {"SetResampleMode 2", "SetEdgeMode 1", "Glasses 50 50 2 50 0 0",
      "Deform heard 8x6:10 draws 41"}},
    {"MosaicGlass",
     ENPixelFormat::GreyAlpha16,
     {"NumColumns=30", "NumRows=40", "GroutWidth=9", "GroutDiffusion=0", "GlassCurvature=7",
      "EdgeCurvature=6", "FillColor=#112233"},
     {"GetMask64KLUT", "Flatten 8x6:11 332211 true", "SetResampleMode 2", "SetEdgeMode 1",
      "Glasses 30 40 9 0 6 7", "Deform heard 8x6:10 draws 41", "CopyAlpha 8x6:11 into 8x6:11",
      "CopyColor 8x6:10 into 8x6:11"}},
    {"Sculpture",
     ENPixelFormat::ColourAlpha8,
     {},
     {"Load 10 ", "SetSourceDib 9x7:5 false", "SetBumpDib 8x6:8 false", "SetMaskDib none false",
      "UpdateSettings 315 30 FFFFFF 50 0 20 0 0 | 100", "Sculpture heard 0.5"}},
    {"Sculpture",
     ENPixelFormat::Grey8,
     {"Angle=10", "Elevation=11", "Color=#030201", "Intensity=12", "Ambience=-13", "Depth=14",
      "Shininess=15", "Smoothness=16", "Size=80", "PatternName=Oak"},
     {"Load 10 Oak", "GetMask64KLUT", "DeleteAlpha 9x7:8 FFFFFF true", "SetSourceDib 9x7:7 false",
      "SetBumpDib 8x6:5 false", "SetMaskDib none false",
      "UpdateSettings 10 11 010203 12 -13 14 15 16 | 80", "Sculpture heard 0.5"},
     ENPixelFormat::ColourAlpha8},
    {"Texture",
     ENPixelFormat::Colour16,
     {},
     {"Load 44 ", "GreyScale unheard 9x7:5 0.5", "Resample unheard 9x7:10 to 9x7 true false",
      "Tile 9x7:10 into 10x8:10 false",
      "BumpMap2 heard | " + kReliefValues + " | 8x6:12 10x8:10 none 8x6:12 1 false"}},
    {"Texture",
     ENPixelFormat::ColourAlpha8,
     {"Angle=10", "Elevation=11", "Color=#030201", "Intensity=12", "Ambience=-13", "Depth=14",
      "Shininess=15", "Smoothness=50", "Size=25", "TextureName=Brick"},
     {"Load 44 Brick", "GetMask64KLUT", "DeleteAlpha 9x7:11 FFFFFF true",
      "GreyScale unheard 9x7:10 0.5", "Resample unheard 9x7:10 to 2x1 true false",
      "Tile 2x1:10 into 10x8:10 false", "GaussianBlur 4 3", "Blur heard 10x8:10 to 10x8:10",
      "BumpMap2 heard | 10 11 010203 12 -13 14 15 50 | 8x6:8[-3] 10x8:10 none 8x6:8[-3] 1 false",
      "AddAlpha unheard 8x6:8[-3] 8 8x6:8[3] false true false"},
     ENPixelFormat::GreyAlpha16},
    {"Texture",
     ENPixelFormat::GreyAlpha8,
     {"Smoothness=0"},
     {"Load 44 ", "GreyScale unheard 9x7:5 0.5", "Resample unheard 9x7:10 to 9x7 true false",
      "Tile 9x7:10 into 10x8:10 false",
      "BumpMap2 heard | " + kReliefValues + " | 8x6:6[4] 10x8:10 none 8x6:6[4] 1 false",
      "AddAlpha unheard 8x6:6[4] 6 8x6:6[3] false true false"}},
};

TEST(HostCalls, OrderAndArguments) {
    for (const SCase& test : kCases) {
        SCOPED_TRACE(test.effect + " with " + std::to_string(test.values.size()) + " values");
        recording::Restart();
        const SOutcome outcome = RunCase(test);
        EXPECT_EQ(outcome.code, TolmErrorCode::Success);
        EXPECT_THAT(recording::calls, ElementsAreArray(test.calls));
        EXPECT_EQ(outcome.destination.GetPixelFormat(), CNPixelFormat(test.format));
        for (const CRowIteratorBands* image : {&outcome.source, &outcome.destination}) {
            EXPECT_EQ(image->GetChannelAccess(), ENChannel::All);
        }
        EXPECT_EQ(outcome.source.GetImageModifyMode(), kModifyMode);
        if (test.calls.back().starts_with("AddAlpha")) {
            EXPECT_EQ(outcome.destination.GetImageModifyMode(), kModifyMode);
        }
    }
}

TEST(HostCalls, TheMaskIsTheSculpturesOwn) {
    recording::Restart();
    RunCase({"Sculpture", ENPixelFormat::Grey8, {}, {}}, true);
    EXPECT_THAT(recording::calls, testing::Contains("SetMaskDib 8x6:5 false"));
}

// The relief is the second of two steps when the texture is blurred first.
TEST(HostCalls, BlurringIsHalfOfTheProgress) {
    recording::Restart();
    EXPECT_EQ(RunCase({"Texture", ENPixelFormat::Grey8, {"Smoothness=1"}, {}}).progress, 0.5);
}

// Whichever operation fails, its error is the command's, nothing is called after it, and the source
// shows all its channels again. What fails without consequence is told with the calls that follow.
TEST(HostCalls, FailuresEndTheEffect) {
    const std::string kIgnored[] = {"Load",          "GetMask64KLUT",  "GaussianBlur",
                                    "DeleteAlpha",   "GreyScale",      "SetResampleMode",
                                    "SetEdgeMode",   "MosaicAdvanced", "Glasses",
                                    "SetSourceDib",  "SetBumpDib",     "SetMaskDib",
                                    "UpdateSettings"};
    for (const SCase& test : kCases) {
        for (std::size_t i = 0; i < test.calls.size(); ++i) {
            recording::Restart();
            const std::string name = test.calls[i].substr(0, test.calls[i].find(' '));
            if (testing::Value(name, testing::AnyOfArray(kIgnored))) continue;
            SCOPED_TRACE(test.effect + ": " + name);
            recording::failing = name;
            const SOutcome outcome = RunCase(test);
            EXPECT_EQ(outcome.code, TolmErrorCode{109});
            EXPECT_FALSE(outcome.destination.IsAttached());
            EXPECT_EQ(recording::calls.size(), i + 1);
            EXPECT_EQ(outcome.source.GetChannelAccess(), ENChannel::All);
            EXPECT_EQ(outcome.source.GetImageModifyMode(), kModifyMode);
        }
    }
}

// The editor's reduced mode opens dialogs without a preview and proofs on its own.
TEST(HostCalls, TheReducedModeIsTheHosts) {
    const LoadedModule module;
    for (const bool reduced : {false, true}) {
        recording::reduced = reduced;
        const TRef<CCmdEffect> command = module->CreateCommand("Fur");
        PrepareCommand(*command, nullptr);
        const IGeneralSettings* general = GeneralSettingsOf(command->BoundRepository());
        EXPECT_EQ(general->Value(L"PreviewVisible"), reduced ? 0 : 1);
        EXPECT_EQ(general->Value(L"AutoProof"), reduced ? 1 : 0);
    }
    recording::Restart();
}

}  // namespace
