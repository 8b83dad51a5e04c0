#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <random>
#include <thread>

#include "app/cli/Program.h"
#include "capi/cmdtexture.h"

using testing::HasSubstr;

namespace {

struct Freed {
    void operator()(cmdtexture_library* p) const { cmdtexture_close(p); }
    void operator()(cmdtexture_effect* p) const { cmdtexture_effect_free(p); }
    void operator()(cmdtexture_recipe* p) const { cmdtexture_recipe_free(p); }
    void operator()(cmdtexture_error* p) const { cmdtexture_error_free(p); }
    void operator()(char* p) const { cmdtexture_free(p); }
    void operator()(char** p) const { cmdtexture_free_names(p); }
};
template <class Thing>
using Owned = std::unique_ptr<Thing, Freed>;

struct Refusal {
    int status = 0;
    std::string message, hint;
};
// Runs a call that takes an error and tells how it ended.
template <class Call>
Refusal Refused(Call&& call) {
    cmdtexture_error* error = nullptr;
    const int status = call(&error);
    const Owned<cmdtexture_error> owned(error);
    EXPECT_EQ(cmdtexture_error_status(error), status);
    return {status, cmdtexture_error_message(error), cmdtexture_error_hint(error)};
}

Owned<cmdtexture_library> Open(const char* language = "EN") {
    cmdtexture_options options{};
    options.size = sizeof options;
    options.language = language;
    cmdtexture_library* library = nullptr;
    const Refusal end =
        Refused([&](auto error) { return cmdtexture_open(&options, &library, error); });
    EXPECT_EQ(end.status, CMDTEXTURE_OK) << end.message;
    return Owned<cmdtexture_library>(library);
}

Owned<cmdtexture_effect> Make(const cmdtexture_library* library, const char* name) {
    cmdtexture_effect* effect = nullptr;
    EXPECT_EQ(cmdtexture_effect_new(library, name, &effect, nullptr), CMDTEXTURE_OK) << name;
    return Owned<cmdtexture_effect>(effect);
}

// A picture in memory of its own, every row followed by bytes that must stay; below 0 the rows lie
// upside down.
class Memory {
  public:
    Memory(const CRowIteratorBands& picture, cmdtexture_layout layout, int spare, bool upside_down)
        : red_first_(layout == CMDTEXTURE_RGB || layout == CMDTEXTURE_RGBA) {
        const CNPixelFormat format = picture.GetPixelFormat();
        const std::ptrdiff_t row = picture.GetWidth() * format.PixelBytes() + spare;
        bytes_.assign(static_cast<std::size_t>(row * picture.GetHeight()), 0xA5);
        image = {};
        image.size = sizeof image;
        image.pixels = bytes_.data() + (upside_down ? row * (picture.GetHeight() - 1) : 0);
        image.stride = upside_down ? -row : row;
        image.width = picture.GetWidth();
        image.height = picture.GetHeight();
        image.layout = layout;
        image.depth = format.Is16bit() ? 16 : 8;
        spare_ = spare;
        Each(picture, [&](int x, int y, int c, std::uint8_t* at) {
            const int value = pictures::Sample(picture, x, y, c);
            std::memcpy(at, &value, static_cast<std::size_t>(format.SampleBytes()));
        });
    }
    // The picture that lies there now.
    CRowIteratorBands Picture(CNPixelFormat format) const {
        CRowIteratorBands picture;
        picture.Create(image.width, image.height, format).ThrowIfFailed();
        Each(picture, [&](int x, int y, int c, const std::uint8_t* at) {
            std::uint16_t value = 0;
            std::memcpy(&value, at, static_cast<std::size_t>(format.SampleBytes()));
            pictures::SetSample(picture, x, y, c, value);
        });
        return picture;
    }
    bool SpareIsUntouched() const {
        const auto row = static_cast<std::size_t>(std::abs(image.stride));
        for (std::size_t end = row; end <= bytes_.size(); end += row) {
            for (int i = 1; i <= spare_; ++i) {
                if (bytes_[end - static_cast<std::size_t>(i)] != 0xA5) return false;
            }
        }
        return true;
    }
    const std::vector<std::uint8_t>& Bytes() const { return bytes_; }

    cmdtexture_image image;

  private:
    template <class Visit>
    void Each(const CRowIteratorBands& picture, Visit&& visit) const {
        const CNPixelFormat format = picture.GetPixelFormat();
        for (int y = 0; y < image.height; ++y) {
            for (int x = 0; x < image.width; ++x) {
                for (int c = 0; c < format.Channels(); ++c) {
                    const int place = red_first_ && c < 3 ? 2 - c : c;
                    visit(x, y, c,
                          static_cast<std::uint8_t*>(image.pixels) + image.stride * y +
                              (x * format.Channels() + place) * format.SampleBytes());
                }
            }
        }
    }
    std::vector<std::uint8_t> bytes_;
    int spare_ = 0;
    bool red_first_;
};

std::vector<cmdtexture_layout> LayoutsOf(CNPixelFormat format) {
    switch (format.Channels()) {
        case 1:
            return {CMDTEXTURE_GREY};
        case 2:
            return {CMDTEXTURE_GREY_ALPHA};
        case 3:
            return {CMDTEXTURE_RGB, CMDTEXTURE_BGR};
        default:
            return {CMDTEXTURE_RGBA, CMDTEXTURE_BGRA};
    }
}

// A random value of a parameter, as a text.
std::string RandomValue(const cmdtexture_parameter& parameter, std::mt19937& random) {
    if (parameter.type == CMDTEXTURE_BOOLEAN) return random() % 2 ? "true" : "false";
    if (parameter.type == CMDTEXTURE_COLOUR) {
        char text[8];
        std::snprintf(text, sizeof text, "#%06X", static_cast<unsigned>(random() & 0xFFFFFF));
        return text;
    }
    if (parameter.type == CMDTEXTURE_STRING) return parameter.default_text;
    // Larger values make the same code work longer than pictures as small as these are worth.
    const auto span =
        static_cast<std::uint32_t>(std::clamp(parameter.maximum - parameter.minimum, 0, 99));
    return std::to_string(parameter.minimum + static_cast<int>(random() % (span + 1)));
}

class Capi : public testing::Test {
  protected:
    Program program_;
};

}  // namespace

// Every effect in every format, with default and with random values, a selection and a place on a
// canvas: the bytes of the program, in any order of the colours and any layout of the rows.
TEST_F(Capi, GivesTheBytesOfTheProgram) {
    const auto library = Open();
    std::mt19937 random(11);
    int run_count = 0;
    for (std::size_t e = 0; e < cmdtexture_effect_count(library.get()); ++e) {
        const char* name = cmdtexture_effect_at(library.get(), e)->name;
        for (const ENPixelFormat format : pictures::kAllFormats) {
            SCOPED_TRACE(std::string(name) + " " + pictures::Name(format));
            const bool is_random = run_count++ % 2 == 1;
            const CRowIteratorBands photo = pictures::Noise(format, 40, 26, 7);
            const CRowIteratorBands mask = pictures::Noise(ENPixelFormat::Grey8, 40, 26, 8);
            const auto effect = Make(library.get(), name);
            ASSERT_EQ(cmdtexture_effect_set_canvas(effect.get(), 300, 200, nullptr), 0);
            std::vector<std::string> arguments = {"apply",
                                                  name,
                                                  program_.WriteImage("in.png", photo),
                                                  "-o",
                                                  program_.Path("out.png"),
                                                  "--mask",
                                                  program_.WriteImage("mask.png", mask),
                                                  "--canvas",
                                                  "300x200",
                                                  "--at",
                                                  "21,13",
                                                  "--overwrite",
                                                  "--quiet"};
            for (std::size_t p = 0; is_random && p < cmdtexture_parameter_count(effect.get());
                 ++p) {
                const cmdtexture_parameter& row = *cmdtexture_parameter_at(effect.get(), p);
                const std::string value = RandomValue(row, random);
                ASSERT_EQ(cmdtexture_effect_set(effect.get(), row.name, value.c_str(), nullptr), 0)
                    << row.name << " " << value;
                arguments.insert(arguments.end(), {"-p", row.name + ("=" + value)});
            }
            const auto result = program_.Run(arguments);
            ASSERT_EQ(result.status, 0) << result.err;
            const CRowIteratorBands expected = program_.ReadImage("out.png");

            cmdtexture_run run{};
            run.size = sizeof run;
            run.x = 21;
            run.y = 13;
            run.selection = mask.Row<std::uint8_t>(0);
            run.selection_stride = mask.Stride();
            for (const cmdtexture_layout layout : LayoutsOf(format)) {
                Memory source(photo, layout, 6, run_count % 3 == 0);
                Memory destination(pictures::Noise(format, 40, 26, 9), layout, 2,
                                   run_count % 3 == 1);
                const auto before = source.Bytes();
                ASSERT_EQ(cmdtexture_effect_apply(effect.get(), &source.image, &destination.image,
                                                  &run, nullptr),
                          CMDTEXTURE_OK);
                EXPECT_EQ(pictures::Difference(destination.Picture(format), expected), "");
                EXPECT_TRUE(destination.SpareIsUntouched());
                EXPECT_EQ(source.Bytes(), before);
                ASSERT_EQ(cmdtexture_effect_apply(effect.get(), &source.image, &source.image, &run,
                                                  nullptr),
                          CMDTEXTURE_OK);
                EXPECT_EQ(pictures::Difference(source.Picture(format), expected), "") << "in place";
            }
        }
    }
}

TEST_F(Capi, RecipesGiveTheBytesOfTheProgram) {
    const auto library = Open();
    const CRowIteratorBands photo = pictures::Noise(ENPixelFormat::ColourAlpha16, 40, 26, 7);
    const std::string text =
        R"([{"effect": "Weave", "mask": "mask.png"}, {"effect": "Fur", "blend": "overlay"}])";
    program_.WriteText("recipe.json", text);
    program_.WriteImage("mask.png", pictures::Noise(ENPixelFormat::Grey8, 40, 26, 8));
    const auto result = program_.Run({"apply", "--recipe", program_.Path("recipe.json"),
                                      program_.WriteImage("in.png", photo), "-o",
                                      program_.Path("out.png"), "--canvas", "90x80"});
    ASSERT_EQ(result.status, 0) << result.err;

    cmdtexture_recipe *parsed = nullptr, *read = nullptr, *none = nullptr;
    ASSERT_EQ(cmdtexture_recipe_new(library.get(), text.c_str(), program_.Path("").c_str(), &parsed,
                                    nullptr),
              CMDTEXTURE_OK);
    ASSERT_EQ(
        cmdtexture_recipe_read(library.get(), program_.Path("recipe.json").c_str(), &read, nullptr),
        CMDTEXTURE_OK);
    for (cmdtexture_recipe* made : {parsed, read}) {
        const Owned<cmdtexture_recipe> recipe(made);
        Memory memory(photo, CMDTEXTURE_RGBA, 0, false);
        ASSERT_EQ(cmdtexture_recipe_set_canvas(made, 90, 80, nullptr), CMDTEXTURE_OK);
        ASSERT_EQ(cmdtexture_recipe_apply(made, &memory.image, &memory.image, nullptr, nullptr),
                  CMDTEXTURE_OK);
        EXPECT_EQ(pictures::Difference(memory.Picture(photo.GetPixelFormat()),
                                       program_.ReadImage("out.png")),
                  "");
        const Owned<char> steps(cmdtexture_recipe_get_json(made, nullptr));
        EXPECT_EQ(nlohmann::json::parse(steps.get())[1]["blend"], "overlay");
    }
    const Refusal refusal = Refused([&](auto error) {
        return cmdtexture_recipe_new(library.get(), R"([{"effect": "Fir"}])", nullptr, &none,
                                     error);
    });
    EXPECT_EQ(refusal.status, CMDTEXTURE_USAGE);
    EXPECT_THAT(refusal.message, HasSubstr("step 1"));
    EXPECT_EQ(none, nullptr);
}

// Rows of every length, of which nothing is selected: from red first to blue first each sample is
// found where it belongs.
TEST_F(Capi, ExchangesTheOrderOfTheColours) {
    const auto library = Open();
    const auto effect = Make(library.get(), "Sandstone");
    const std::vector<std::uint8_t> nothing(2 * 70, 0);
    cmdtexture_run run{};
    run.size = sizeof run;
    run.selection = nothing.data();
    run.selection_stride = 70;
    for (const ENPixelFormat format : {ENPixelFormat::Colour8, ENPixelFormat::ColourAlpha8,
                                       ENPixelFormat::Colour16, ENPixelFormat::ColourAlpha16}) {
        for (int width = 1; width <= 70; ++width) {
            const CRowIteratorBands photo = pictures::Noise(format, width, 2, 5);
            const CRowIteratorBands other = pictures::Noise(format, width, 2, 6);
            const auto layouts = LayoutsOf(format);
            for (const int from : {0, 1}) {
                const auto to = static_cast<std::size_t>(1 - from);
                const Memory source(photo, layouts[static_cast<std::size_t>(from)], 0, false);
                Memory destination(other, layouts[to], 4, false);
                ASSERT_EQ(cmdtexture_effect_apply(effect.get(), &source.image, &destination.image,
                                                  &run, nullptr),
                          CMDTEXTURE_OK);
                ASSERT_EQ(pictures::Difference(destination.Picture(format), photo), "")
                    << pictures::Name(format) << ' ' << width;
                ASSERT_TRUE(destination.SpareIsUntouched());
            }
        }
    }
}

TEST_F(Capi, ListsWhatTheProgramLists) {
    const auto library = Open("DE");
    const auto run = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"--json", "--language", "DE"});
        return nlohmann::ordered_json::parse(program_.Run(arguments).out);
    };
    const Owned<char> list(cmdtexture_list_json(library.get(), nullptr));
    EXPECT_EQ(nlohmann::ordered_json::parse(list.get()), run({"list"}));
    const Owned<char> tiles(cmdtexture_describe_json(library.get(), "tiles", nullptr));
    const auto described = run({"describe", "Tiles"});
    EXPECT_EQ(nlohmann::ordered_json::parse(tiles.get()), described);

    const auto effect = Make(library.get(), "TILES");
    ASSERT_EQ(cmdtexture_parameter_count(effect.get()), described["parameters"].size());
    for (std::size_t i = 0; i < described["parameters"].size(); ++i) {
        const auto& json = described["parameters"][i];
        const cmdtexture_parameter& row = *cmdtexture_parameter_at(effect.get(), i);
        EXPECT_EQ(row.name, json["name"]);
        EXPECT_EQ(row.label, json["label"]);
        EXPECT_EQ(row.description, json["description"]);
        EXPECT_EQ(row.maximum, json["maximum"].is_null() ? 0 : json["maximum"].get<int>());
        const auto members = json.value("members", std::vector<std::string>());
        EXPECT_EQ(std::vector<std::string>(row.members, row.members + row.member_count), members);
        if (members.size() == 3) {
            EXPECT_STREQ(row.member_labels[2], "Sechsecke");
        }
    }
    const auto named = Make(library.get(), "Texture");
    const cmdtexture_resource expected[] = {CMDTEXTURE_TEXTURE, CMDTEXTURE_NO_RESOURCE};
    int found = 0;
    for (std::size_t i = 0; i < cmdtexture_parameter_count(named.get()); ++i) {
        const cmdtexture_parameter& row = *cmdtexture_parameter_at(named.get(), i);
        EXPECT_EQ(row.resource, expected[std::string(row.name) == "TextureName" ? 0 : 1]);
        found += row.resource == CMDTEXTURE_TEXTURE;
    }
    EXPECT_EQ(found, 1);
    const Owned<char*> textures(
        cmdtexture_resource_names(library.get(), CMDTEXTURE_TEXTURE, nullptr));
    EXPECT_STREQ(textures.get()[0], "canvas") << "what an empty name means";
}

TEST_F(Capi, ValuesAreSetReadAndRefused) {
    const auto library = Open();
    const auto effect = Make(library.get(), "Tiles");
    const auto value = [&](const char* name) {
        const Owned<char> text(cmdtexture_effect_get(effect.get(), name, nullptr));
        return std::string(text ? text.get() : "refused");
    };
    EXPECT_EQ(cmdtexture_effect_set(effect.get(), "angle", "30", nullptr), 0);
    EXPECT_EQ(
        cmdtexture_effect_set_json(effect.get(), R"({"Depth": 7, "Color": "#102030"})", nullptr),
        0);
    EXPECT_EQ(value("Angle") + value("Depth") + value("color"), "307#102030");
    program_.WriteText("hard.json", R"({"Depth": 9})");
    EXPECT_EQ(
        cmdtexture_effect_set_preset(effect.get(), program_.Path("hard.json").c_str(), nullptr), 0);

    cmdtexture_effect* copy = nullptr;
    ASSERT_EQ(cmdtexture_effect_copy(effect.get(), &copy, nullptr), 0);
    const Owned<cmdtexture_effect> owned(copy);
    EXPECT_EQ(cmdtexture_effect_reset(effect.get(), nullptr), 0);
    EXPECT_EQ(value("Angle"), "315");
    const Owned<char> copied(cmdtexture_effect_get(copy, "Depth", nullptr));
    EXPECT_STREQ(copied.get(), "9") << "a copy keeps its values";

    const auto blinds = Make(library.get(), "Blinds");
    ASSERT_EQ(cmdtexture_effect_set_canvas(blinds.get(), 4000, 3000, nullptr), 0);
    ASSERT_EQ(cmdtexture_effect_set(blinds.get(), "Width", "2000", nullptr), 0);
    const struct {
        std::function<cmdtexture_status(cmdtexture_error**)> call;
        const char *message, *hint;
    } cases[] = {
        {[&](auto e) { return cmdtexture_effect_set(effect.get(), "Angel", "1", e); }, "Angel",
         "Angle"},
        {[&](auto e) { return cmdtexture_effect_set(effect.get(), "Angle", "360", e); }, "0 to 359",
         ""},
        {[&](auto e) { return cmdtexture_effect_set(effect.get(), nullptr, "1", e); }, "NULL", ""},
        {[&](auto e) { return cmdtexture_effect_set_json(effect.get(), "{\"Angle\": 1", e); },
         "JSON", ""},
        {[&](auto e) {
             return cmdtexture_effect_set_json(effect.get(), R"({"Angle": 1, "Angle": 2})", e);
         },
         "\"Angle\" comes twice", "names to values"},
        {[&](auto e) { return cmdtexture_effect_set_preset(effect.get(), "no-such", e); },
         "no-such", ""},
        {[&](auto e) { return cmdtexture_effect_set_canvas(effect.get(), 5, 0, e); }, "canvas", ""},
        {[&](auto e) { return cmdtexture_effect_set_canvas(effect.get(), 5, INT32_MAX, e); },
         "2147483647", "65535"},
        {[&](auto e) { return cmdtexture_effect_set_canvas(blinds.get(), 50, 50, e); }, "2000", ""},
        {[&](auto e) {
             cmdtexture_effect* none = nullptr;
             return cmdtexture_effect_new(library.get(), "Sandston", &none, e);
         },
         "Sandston", "Sandstone"},
        {[&](auto e) {
             cmdtexture_options options{};
             options.size = sizeof options;
             options.language = "XX";
             cmdtexture_library* none = nullptr;
             return cmdtexture_open(&options, &none, e);
         },
         "XX", "EN"},
    };
    for (const auto& test : cases) {
        const Refusal end = Refused(test.call);
        EXPECT_EQ(end.status, CMDTEXTURE_USAGE) << test.message;
        EXPECT_THAT(end.message, HasSubstr(test.message));
        EXPECT_THAT(end.hint, HasSubstr(test.hint));
    }
    EXPECT_EQ(value("Angle"), "315");
    const Owned<char> width(cmdtexture_effect_get(blinds.get(), "Width", nullptr));
    EXPECT_STREQ(width.get(), "2000") << "a canvas that is refused changes nothing";
}

// Whatever is wrong with a run, the destination keeps its bytes.
TEST_F(Capi, AFailedRunLeavesThePicture) {
    const auto library = Open();
    const auto format = ENPixelFormat::Colour8;
    const auto sandstone = Make(library.get(), "Sandstone");
    const auto sculpture = Make(library.get(), "Sculpture");
    ASSERT_EQ(cmdtexture_effect_set(sculpture.get(), "PatternName", "granit", nullptr), 0);
    const CRowIteratorBands photo = pictures::Noise(format, 64, 48, 3);
    using Spoil = std::function<void(cmdtexture_image&, cmdtexture_run&)>;
    const struct {
        cmdtexture_effect* effect;
        Spoil spoil;
        int status;
        const char* message;
    } cases[] = {
        {sandstone.get(), [](auto& image, auto&) { image.size = 8; }, 2, "size"},
        {sandstone.get(), [](auto& image, auto&) { image.width = 0; }, 2, "0 x 48"},
        {sandstone.get(), [](auto& image, auto&) { image.width = 65; }, 2, "overlap"},
        {sandstone.get(), [](auto& image, auto&) { image.height = 47; }, 2, "64 x 47"},
        {sandstone.get(), [](auto& image, auto&) { image.depth = 12; }, 2, "12 bits"},
        {sandstone.get(), [](auto& image, auto&) { image.layout = CMDTEXTURE_GREY; }, 2,
         "channels"},
        {sandstone.get(), [](auto& image, auto&) { image.pixels = nullptr; }, 2, "no pixels"},
        {sandstone.get(), [](auto&, auto& run) { run.size = 1; }, 2, "size"},
        {sandstone.get(), [](auto&, auto& run) { run.y = INT32_MIN; }, 2, "-2147483648"},
        {sandstone.get(),
         [](auto&, auto& run) { run.progress = [](double f, void*) { return f > 0.5 ? 1 : 0; }; },
         CMDTEXTURE_CANCELLED, "cancelled"},
        {sculpture.get(), [](auto&, auto&) {}, 2, "granit"},
    };
    for (const auto& test : cases) {
        const Memory source(photo, CMDTEXTURE_RGB, 0, false);
        Memory destination(photo, CMDTEXTURE_RGB, 0, false);
        const auto before = destination.Bytes();
        cmdtexture_run run{};
        run.size = sizeof run;
        test.spoil(destination.image, run);
        const Refusal end = Refused([&](auto error) {
            return cmdtexture_effect_apply(test.effect, &source.image, &destination.image, &run,
                                           error);
        });
        EXPECT_EQ(end.status, test.status) << test.message;
        EXPECT_THAT(end.message + end.hint, HasSubstr(test.message));
        EXPECT_EQ(destination.Bytes(), before) << test.message;
    }
}

// Eight threads, effects and languages of their own, each giving what it gives alone; and nothing
// of the process is another than before.
TEST_F(Capi, ThreadsAndTheProcessAreLeftInPeace) {
    const auto format = ENPixelFormat::ColourAlpha16;
    const CRowIteratorBands photo = pictures::Noise(format, 61, 43, 2);
    const auto once = [&](int i) {
        const auto library = Open(i % 2 ? "DE" : "EN");
        const auto effect = Make(library.get(), i % 3 ? "Fur" : "Sculpture");
        EXPECT_EQ(cmdtexture_effect_set(effect.get(), i % 3 ? "Length" : "Angle",
                                        std::to_string(20 + i).c_str(), nullptr),
                  0);
        Memory memory(photo, CMDTEXTURE_RGBA, 0, false);
        EXPECT_EQ(
            cmdtexture_effect_apply(effect.get(), &memory.image, &memory.image, nullptr, nullptr),
            0);
        return std::string(cmdtexture_effect_at(library.get(), 0)->display_name) +
               std::string(memory.Bytes().begin(), memory.Bytes().end());
    };
    const std::string locale = std::setlocale(LC_ALL, nullptr);
    const auto folder = std::filesystem::current_path();
    std::vector<struct sigaction> handlers(32);
    const auto handler = [](int signal, struct sigaction& found) {
        sigaction(signal, nullptr, &found);
        return reinterpret_cast<void*>(found.sa_handler);
    };
    for (int s = 1; s < 32; ++s) handler(s, handlers[static_cast<std::size_t>(s)]);

    std::vector<std::string> alone;
    for (int i = 0; i < 8; ++i) alone.push_back(once(i));
    std::vector<std::string> together(8);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < 8; ++i) {
        threads.emplace_back([&, i] { together[i] = once(static_cast<int>(i)); });
    }
    for (std::thread& thread : threads) thread.join();
    for (std::size_t i = 0; i < 8; ++i) EXPECT_TRUE(alone[i] == together[i]) << i;

    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), locale);
    EXPECT_EQ(std::filesystem::current_path(), folder);
    for (int s = 1; s < 32; ++s) {
        struct sigaction now {};
        EXPECT_EQ(handler(s, now),
                  reinterpret_cast<void*>(handlers[static_cast<std::size_t>(s)].sa_handler))
            << s;
    }
}
