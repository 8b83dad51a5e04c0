#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <thread>

#include "app/imagefile/CPictureFiles.h"
#include "hostlib/commands/CDocument.h"
#include "job/CEffectModule.h"
#include "job/CJobLibrary.h"
#include "support/Pictures.h"

using testing::HasSubstr;

namespace {

constexpr auto kFormat = ENPixelFormat::Colour8;

CJobLibrary Open(const std::string& language = "EN", std::optional<int> range_scale = {},
                 std::vector<std::filesystem::path> folders = {}) {
    return CJobLibrary({.language = language,
                        .resources = std::move(folders),
                        .range_scale = range_scale,
                        .pictures = imagefile::MakePictureFiles()});
}

CRowIteratorBands Photo() { return pictures::Noise(kFormat, 48, 32, 5); }

SJobResult RunOnPhoto(CEffectJob& job, IProgressSink* sink = nullptr) {
    job.SetPicture(Photo());
    return job.Run(sink);
}

// The fault and texts that an action ends with.
template <class Action>
CJobError ErrorOf(Action&& action) {
    try {
        action();
    } catch (const CJobError& error) {
        return error;
    }
    return {EJobFault::Fault, "no error"};
}

// A folder that goes with the test.
class Folder {
  public:
    Folder() {
        std::string name = (std::filesystem::temp_directory_path() / "job-XXXXXX").string();
        if (mkdtemp(name.data())) path_ = name;
    }
    ~Folder() {
        std::error_code none;
        std::filesystem::remove_all(path_, none);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    const std::filesystem::path& Path() const { return path_; }

  private:
    std::filesystem::path path_;
};

// What a library says of Tiles, and the picture that it makes with the first pattern.
struct SView {
    std::string label;
    int largest = 0;
    CRowIteratorBands picture;
};
SView ViewOf(const std::string& language, std::optional<int> range_scale) {
    const CJobLibrary library = Open(language, range_scale);
    CEffectJob job = library.MakeJob("sculpture");
    const SParameterInfo size = library.Describe("Tiles").parameters.at(11);
    return {size.label, size.maximum, RunOnPhoto(job).image};
}

// Four at least for every effect, each with a name and a description in two languages, by all of
// which it is found, and with values that the effect takes.
TEST(Presets, ShipForEveryEffect) {
    const CJobLibrary english({.language = "EN"});
    const CJobLibrary german({.language = "DE"});
    for (const std::string& effect : english.Names()) {
        std::map<std::string, nlohmann::ordered_json> values;
        for (const CJobLibrary* library : {&english, &german}) {
            int ships = 0;
            for (const presets::SPreset& preset : library->Presets(effect)) {
                ships += preset.ships;
                EXPECT_NE(preset.name, preset.id) << effect;
                EXPECT_NE(preset.description, "") << effect << ' ' << preset.id;
                for (const std::string& called : {preset.id, preset.name}) {
                    CEffectJob job = english.MakeJob(effect);
                    job.TakePreset(called);
                    const auto& first = values.try_emplace(preset.id, job.Values()).first->second;
                    EXPECT_EQ(job.Values(), first) << effect << ' ' << called;
                    EXPECT_NO_THROW(job.SetCanvas({6000, 4000})) << effect << ' ' << called;
                }
            }
            EXPECT_GE(ships, 4) << effect;
        }
    }
}

}  // namespace

// Languages and scales belong to a library, though the host's services for them are the process's.
TEST(Job, LibrariesDoNotDisturbEachOther) {
    const struct {
        const char* language;
        std::optional<int> scale;
        const char* label;
        int largest;
    } libraries[] = {{"EN", {}, "Tile size", 32},
                     {"DE", 50, "Kachelgröße", 48},
                     {"EN", 200, "Tile size", 96},
                     {"DE", {}, "Kachelgröße", 32}};
    const CRowIteratorBands expected = ViewOf("EN", {}).picture;
    ASSERT_TRUE(expected.IsAttached());
    std::vector<std::thread> threads;
    for (const auto& library : libraries) {
        threads.emplace_back([&] {
            for (int i = 0; i < 12; ++i) {
                const SView view = ViewOf(library.language, library.scale);
                EXPECT_EQ(view.label, library.label);
                EXPECT_EQ(view.largest, library.largest);
                EXPECT_EQ(pictures::Difference(view.picture, expected), "");
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
}

// Every name that people see in any language, and those that scripts and graphs use, whatever the
// language of the library.
TEST(Job, EffectsGoByEveryName) {
    const CJobLibrary library = Open("FR");
    for (const std::string language : {"EN", "DE", "FR"}) {
        for (const SEffectInfo& effect : Open(language).Effects()) {
            std::string dashes = effect.display_name;
            std::replace(dashes.begin(), dashes.end(), ' ', '-');
            for (const std::string& name : {effect.name, effect.display_name, dashes}) {
                EXPECT_EQ(library.Find(name), effect.name) << language;
            }
        }
    }
    EXPECT_EQ(library.Find("MOSAÏQUE ANTIQUE"), "MosaicAntique");
    EXPECT_EQ(library.Find("cmdtexture:fine-leather"), "FineLeather");
    EXPECT_EQ(library.Find("cmdtexture.fine_leather"), "FineLeather");
    EXPECT_THAT(ErrorOf([&] { library.Find("Sandstien"); }).Hint(), HasSubstr("Sandstein"));
}

TEST(Job, RefusalsSayWhatWouldBeRight) {
    const CJobLibrary library = Open();
    const auto set = [&](const char* effect, const char* name, const char* value) {
        return [&library, effect, name, value] { library.MakeJob(effect).Set(name, value); };
    };
    const struct {
        std::function<void()> action;
        EJobFault fault;
        const char* what;
        const char* hint;
    } cases[] = {
        {set("Sandston", "Angle", "1"), EJobFault::UnknownEffect, "\"Sandston\"", "\"Sandstone\""},
        {set("Tiles", "Angel", "1"), EJobFault::Refused, "\"Angel\"", "\"Angle\""},
        {set("Tiles", "angle", "360"), EJobFault::Refused, "from 0 to 359", ""},
        {set("Tiles", "Color", "redd"), EJobFault::Refused, "#RRGGBB", "\"red\""},
        {[&] {
             library.MakeJob("Tiles").Set({{"Angle", 1}, {"Depth", true}});
         },
         EJobFault::Refused, "from 1 to 100", ""},
        {[&] { library.MakeJob("Tiles").TakePreset("no-such"); }, EJobFault::Preset, "no-such", ""},
        {[] { Open("XX"); }, EJobFault::UnknownLanguage, "\"XX\"", "EN, DE"},
    };
    for (const auto& test : cases) {
        const CJobError error = ErrorOf(test.action);
        EXPECT_EQ(error.Fault(), test.fault) << error.what();
        EXPECT_THAT(error.what(), HasSubstr(test.what));
        EXPECT_THAT(error.Hint(), HasSubstr(test.hint));
    }
}

// Values are read once; what the canvas does not allow is refused when it becomes known.
TEST(Job, ValuesOutliveTheCanvas) {
    CEffectJob job = Open().MakeJob("Blinds");
    job.Set("Width", "300");
    const nlohmann::ordered_json before = job.Values();
    job.SetCanvas({400, 200});
    EXPECT_EQ(job.Values(), before);
    const CJobError error = ErrorOf([&] { job.SetCanvas({250, 200}); });
    EXPECT_EQ(error.Fault(), EJobFault::Refused);
    EXPECT_THAT(error.what(), HasSubstr("300 is not possible"));
}

TEST(Job, RunsEndWithAPictureOrTheReason) {
    const Folder folder;
    std::filesystem::create_directories(folder.Path() / "patterns");
    std::ofstream(folder.Path() / "patterns/torn.png") << "\x89PNG\r\n\x1a\n torn";
    const CJobLibrary library = Open("EN", {}, {folder.Path()});

    CEffectJob job = library.MakeJob("Sculpture");
    EXPECT_EQ(job.Run().error.value().Fault(), EJobFault::Refused);  // no picture yet
    const SJobResult plain = RunOnPhoto(job);
    EXPECT_EQ(pictures::Difference(plain.image, job.Run().image), "");

    job.Set("PatternName", "granit");
    const CJobError unknown = RunOnPhoto(job).error.value();
    EXPECT_EQ(unknown.Fault(), EJobFault::UnknownResource);
    EXPECT_EQ(unknown.Hint(), "did you mean \"granite\"?");
    EXPECT_STREQ(ErrorOf([&] { job.CheckResources(); }).what(), unknown.what());

    job.Set("PatternName", "torn");
    const CJobError torn = RunOnPhoto(job).error.value();
    EXPECT_EQ(torn.Fault(), EJobFault::Unreadable);
    EXPECT_THAT(torn.what(), HasSubstr("torn.png"));

    job.Set("PatternName", "granite");
    EXPECT_NE(pictures::Difference(RunOnPhoto(job).image, plain.image), "");
    pictures::CountingSink stop(1);
    EXPECT_EQ(RunOnPhoto(job, &stop).error.value().Fault(), EJobFault::Cancelled);
}

TEST(Job, AnEmptyNameMeansTheFirstOfItsCategory) {
    const Folder folder;
    const auto own = folder.Path() / "patterns" / "zinc";
    std::filesystem::create_directories(own);
    const CJobLibrary library = Open("EN", {}, {folder.Path()});
    const auto shipped = library.Installation().data / "resources" / "patterns";
    for (const auto& entry : std::filesystem::recursive_directory_iterator(shipped)) {
        if (entry.path().stem() == "granite") {
            std::filesystem::copy_file(entry.path(),
                                       (own / "a").replace_extension(entry.path().extension()));
        }
    }
    CEffectJob job = library.MakeJob("Sculpture");
    const CRowIteratorBands first = RunOnPhoto(job).image;
    job.Set("Category", "Zinc");
    const CRowIteratorBands of_category = RunOnPhoto(job).image;
    EXPECT_NE(pictures::Difference(of_category, first), "");
    job.Set("PatternName", "granite");
    EXPECT_EQ(pictures::Difference(RunOnPhoto(job).image, of_category), "");
    job.Set("PatternName", "");
    job.Set("Category", "zink");
    const CJobError unknown = RunOnPhoto(job).error.value();
    EXPECT_EQ(unknown.Fault(), EJobFault::UnknownResource);
    EXPECT_EQ(unknown.Hint(), "did you mean \"zinc\"?");
}

// A preview that nobody set up first, as a window makes of a reduced picture, has the pattern, too.
TEST(Job, PreviewsSetTheCommandUp) {
    const CJobLibrary library = Open();
    CEffectJob job = library.MakeJob("Sculpture");
    const CRowIteratorBands expected = RunOnPhoto(job).image;

    const CSelectedLanguage language = library.SelectForWindows();
    const CEffectModule module(library.Installation(), "EN");
    const TRef<CDocument> document(new CDocument({48, 32}));
    const TRef<CExecutionContext> context(
        new CExecutionContext(document, &library.Resources(), nullptr));
    const TRef<CCmdEffect> command = module.CreateCommand("Sculpture");
    PrepareCommand(*command, context.Get());
    CRowIteratorBands previewed;
    CRowIteratorBands applied;
    CRowIteratorBands source = Photo();
    CStatusControl nobody;
    command->ApplyEffect(&nobody, source, applied, nullptr, {}, context.Get()).ThrowIfFailed();
    command->Preview(nullptr, source, previewed, nullptr, context.Get()).ThrowIfFailed();
    EXPECT_EQ(pictures::Difference(applied, expected), "");
    EXPECT_EQ(pictures::Difference(previewed, expected), "");
}

// The installation lies around the host's library, wherever the program is; one that is named wins.
TEST(Job, FindsItsInstallationFromAnyProgram) {
    const Folder folder;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe");
    const std::filesystem::path elsewhere = folder.Path() / "another-program";
    std::filesystem::copy_file(self, elsewhere);
    const std::string run = "LD_LIBRARY_PATH='" + FindInstallation().plugins.string() + "' '" +
                            elsewhere.string() +
                            "' --gtest_filter=Job.ValuesOutliveTheCanvas >/dev/null 2>&1";
    EXPECT_EQ(std::system(run.c_str()), 0);

    setenv("CMDTEXTURE_HOME", folder.Path().c_str(), 1);
    const CJobError error = ErrorOf([] { Open(); });
    unsetenv("CMDTEXTURE_HOME");
    EXPECT_EQ(error.Fault(), EJobFault::NotLoaded);
    EXPECT_THAT(error.what(), HasSubstr(folder.Path().string()));
}
