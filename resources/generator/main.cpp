// Makes the pictures of the resource library.
//
//   cmdtexture-make-resources PHOTOS OUT [NAME...]   all of them, or those named
//   cmdtexture-make-resources --list                 their files, one a line, below OUT
//   cmdtexture-make-resources --repeats PICTURE...   the strongest repeat within each picture
//
// PHOTOS is the folder of the photographs some textures are made from, OUT the folder that gets
// patterns/CATEGORY/ and textures/CATEGORY/. Every run writes the same samples, on every processor.
#include <tbb/parallel_for.h>
#include <vips/vips.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "recipes.h"
#include "resources/synthesis/Raster.h"

namespace generator {
namespace {

namespace fs = std::filesystem;
using synthesis::Raster;

constexpr int kSize = 2048;  // pixels across and down every picture

// One of the three ways says what the picture is made from.
struct Entry {
    const char *category, *name;
    Pattern pattern = nullptr;
    Texture texture = nullptr;
    int fineness = 1;  // samples across and down a pixel: 2 for threads of few pixels
    int blocks = 0;    // of a photograph, across and down
    double rise = 1;   // share of the whole range of heights: small forms are lower than large ones
};
constexpr Entry OfPattern(const char* category, const char* name, Pattern pattern) {
    return {.category = category, .name = name, .pattern = pattern};
}
constexpr Entry OfTexture(const char* category, const char* name, Texture texture, int fineness = 1,
                          double rise = 1) {
    return {
        .category = category, .name = name, .texture = texture, .fineness = fineness, .rise = rise};
}
constexpr Entry OfPhoto(const char* category, const char* name, int blocks) {
    return {.category = category, .name = name, .blocks = blocks};
}

constexpr Entry kEntries[] = {
    OfPattern("metal", "brushed-metal", BrushedMetal),
    OfPattern("metal", "brushed-steel", BrushedSteel),
    OfPattern("metal", "copper", Copper),
    OfPattern("metal", "copper-patina", Patina),
    OfPattern("metal", "gold", Gold),
    OfPattern("paper", "paper", Paper),
    OfPattern("stone", "concrete", Concrete),
    OfPattern("stone", "granite", PinkGranite),
    OfPattern("stone", "granite-black", BlackGranite),
    OfPattern("stone", "granite-grey", GreyGranite),
    OfPattern("stone", "malachite", Malachite),
    OfPattern("stone", "marble", WhiteMarble),
    OfPattern("stone", "marble-black", BlackMarble),
    OfPattern("stone", "marble-green", GreenMarble),
    OfPattern("stone", "marble-rose", RoseMarble),
    OfPattern("stone", "plaster", Plaster),
    OfPattern("stone", "sand", Sand),
    OfPattern("stone", "slate", Slate),
    OfPattern("stone", "travertine", Travertine),
    OfPattern("translucent", "frosted-glass", FrostedGlass),
    OfPattern("translucent", "ice", Ice),
    OfPattern("wood", "cork", Cork),
    OfPattern("wood", "oak", QuarteredOak),
    OfPattern("wood", "pine", Pine),
    OfPattern("wood", "walnut", Walnut),
    OfPattern("wood", "wood", Oak),
    OfTexture("fabric", "canvas", Canvas, 2, 0.45),
    OfTexture("fabric", "canvas-coarse", CoarseCanvas, 1, 0.8),
    OfTexture("fabric", "denim", Denim, 2, 0.65),
    OfTexture("fabric", "knit", Knit),
    OfTexture("fabric", "linen", Linen, 2, 0.6),
    OfTexture("fabric", "wicker", Wicker),
    OfTexture("ground", "cracked-earth", CrackedEarth),
    OfPhoto("ground", "grass", 20),
    OfPhoto("ground", "gravel", 16),
    OfTexture("ground", "ripples", SandRipples),
    OfTexture("metal", "brushed-metal", BrushMarks),
    OfTexture("metal", "hammered-metal", HammerMarks),
    OfTexture("metal", "rust", Rust),
    OfTexture("paper", "laid-paper", LaidPaper, 1, 0.4),
    OfTexture("paper", "watercolour-paper", WatercolourPaper),
    OfTexture("skin", "bark", Bark),
    OfTexture("skin", "crocodile", Crocodile),
    OfTexture("skin", "leather", Leather),
    OfTexture("skin", "snake", Snake),
    OfTexture("stone", "brick", BrickWall),
    OfTexture("stone", "cobblestone", Cobblestones),
    OfTexture("stone", "plaster", TrowelledPlaster),
    OfTexture("stone", "roof-tiles", RoofTiles),
    OfTexture("stone", "slate", CleftRock),
    OfTexture("stone", "stucco", Stucco),
    OfTexture("water", "water-drops", WaterDrops),
};

fs::path FileOf(const Entry& entry) {
    return fs::path(entry.pattern ? "patterns" : "textures") / entry.category /
           (std::string(entry.name) + ".png");
}

[[noreturn]] void Fail(const fs::path& path) {
    throw std::runtime_error(path.string() + ": " + vips_error_buffer());
}

// Complete or not at all, for a build that is stopped half way.
void Save(const void* samples, std::size_t size, int bands, const fs::path& path) {
    VipsImage* image = vips_image_new_from_memory(
        samples, size, kSize, kSize, bands, bands == 1 ? VIPS_FORMAT_USHORT : VIPS_FORMAT_UCHAR);
    if (image == nullptr) Fail(path);
    image->Type = bands == 1 ? VIPS_INTERPRETATION_GREY16 : VIPS_INTERPRETATION_sRGB;
    fs::create_directories(path.parent_path());
    const fs::path part = path.string() + ".part";
    const int failed = vips_pngsave(image, part.c_str(), "compression", 1, "filter",
                                    VIPS_FOREIGN_PNG_FILTER_SUB, "strip", TRUE, nullptr);
    g_object_unref(image);
    if (failed != 0) Fail(path);
    fs::rename(part, path);
}

// The first band of a picture.
Raster LoadGrey(const fs::path& path) {
    VipsImage* image = vips_image_new_from_file(path.c_str(), nullptr);
    if (image == nullptr) Fail(path);
    VipsImage* wide = nullptr;
    const int failed = vips_cast_float(image, &wide, nullptr);
    g_object_unref(image);
    if (failed != 0) Fail(path);
    std::size_t size = 0;
    void* samples = vips_image_write_to_memory(wide, &size);
    Raster picture(wide->Xsize, wide->Ysize, 1);
    const int bands = wide->Bands;
    g_object_unref(wide);
    if (samples == nullptr) Fail(path);
    for (std::size_t i = 0; i < picture.values.size(); ++i) {
        picture.values[i] = static_cast<const float*>(samples)[i * static_cast<std::size_t>(bands)];
    }
    g_free(samples);
    return picture;
}

// Calls work(x, y, points) for every eight pixels of the picture, rows in parallel.
template <typename Work>
void ForEachPoint(Work work) {
    tbb::parallel_for(0, kSize, [&](int y) {
        for (int x = 0; x < kSize; x += kLanes) work(x, y);
    });
}

// The point of the unit square at a place within each of eight pixels.
Point PointAt(int x, int y, double dx, double dy) {
    Real u = (x + dx) / kSize;
    for (int i = 0; i < kLanes; ++i) u.v[i] += static_cast<float>(i) / kSize;
    return {u, (y + dy) / kSize};
}

std::vector<std::uint8_t> Paint(Pattern pattern) {
    std::vector<std::uint8_t> bytes(std::size_t{3} * kSize * kSize);
    ForEachPoint([&](int x, int y) {
        const Rgb c = pattern(PointAt(x, y, 0.5, 0.5));
        std::uint8_t* to =
            bytes.data() + 3 * (static_cast<std::size_t>(y) * kSize + static_cast<std::size_t>(x));
        for (int i = 0; i < kLanes; ++i) {
            for (const Real& component : {c.r, c.g, c.b}) {
                *to++ = static_cast<std::uint8_t>(std::clamp(component.v[i] + 0.5F, 0.0F, 255.0F));
            }
        }
    });
    return bytes;
}

std::vector<float> Raise(Texture texture, int fineness) {
    std::vector<float> heights(std::size_t{kSize} * kSize);
    ForEachPoint([&](int x, int y) {
        Real sum = 0;
        for (int j = 0; j < fineness; ++j) {
            for (int i = 0; i < fineness; ++i) {
                sum = sum + texture(PointAt(x, y, (i + 0.5) / fineness, (j + 0.5) / fineness));
            }
        }
        const Real mean = sum * (1.0 / (fineness * fineness));
        float* to =
            heights.data() + static_cast<std::size_t>(y) * kSize + static_cast<std::size_t>(x);
        for (int i = 0; i < kLanes; ++i) to[i] = mean.v[i];
    });
    return heights;
}

void Make(const Entry& entry, const fs::path& photos, const fs::path& out) {
    const fs::path file = out / FileOf(entry);
    if (entry.pattern) {
        const std::vector<std::uint8_t> bytes = Paint(entry.pattern);
        Save(bytes.data(), bytes.size(), 3, file);
        return;
    }
    constexpr int kLight = 48;  // pixels; wider differences of a photograph are light
    std::vector<std::uint16_t> heights = synthesis::ToHeights(
        entry.texture
            ? Raise(entry.texture, entry.fineness)
            : synthesis::Quilt(
                  synthesis::EvenOut(LoadGrey(photos / (std::string(entry.name) + ".png")), kLight),
                  kSize, entry.blocks, 7)
                  .values);
    constexpr double kMiddle = 32767.5;
    for (std::uint16_t& height : heights) {
        height = static_cast<std::uint16_t>(kMiddle + 0.5 + (height - kMiddle) * entry.rise);
    }
    Save(heights.data(), heights.size() * sizeof(std::uint16_t), 1, file);
}

void MakeAll(const fs::path& photos, const fs::path& out, const std::vector<std::string>& names) {
    std::vector<const Entry*> wanted;
    for (const Entry& entry : kEntries) {
        const bool named = std::find(names.begin(), names.end(), entry.name) != names.end();
        if (names.empty() || named) wanted.push_back(&entry);
    }
    tbb::parallel_for(std::size_t{0}, wanted.size(),
                      [&](std::size_t i) { Make(*wanted[i], photos, out); });
}

// Looked for as the eye does, at a quarter of the size and beyond an eighth of the picture.
void PrintRepeats(const fs::path& file) {
    const Raster picture = LoadGrey(file);
    constexpr int kReduction = 4;
    Raster small(picture.width / kReduction, picture.height / kReduction, 1);
    for (int y = 0; y < small.height * kReduction; ++y) {
        for (int x = 0; x < small.width * kReduction; ++x) {
            *small.At(x / kReduction, y / kReduction) += *picture.At(x, y);
        }
    }
    const synthesis::Repeat repeat = synthesis::StrongestRepeat(small, small.width / 8);
    std::printf("%-20s %.3f at %d,%d\n", file.stem().c_str(), repeat.strength,
                repeat.x * kReduction, repeat.y * kReduction);
}

int Run(const std::vector<std::string>& arguments) {
    if (!arguments.empty() && arguments[0] == "--list") {
        for (const Entry& entry : kEntries) std::printf("%s\n", FileOf(entry).c_str());
        return 0;
    }
    if (arguments.size() > 1 && arguments[0] == "--repeats") {
        for (std::size_t i = 1; i < arguments.size(); ++i) PrintRepeats(arguments[i]);
        return 0;
    }
    if (arguments.size() < 2) {
        std::fprintf(stderr, "usage: cmdtexture-make-resources PHOTOS OUT [NAME...]\n");
        return 2;
    }
    MakeAll(arguments[0], arguments[1], {arguments.begin() + 2, arguments.end()});
    return 0;
}

}  // namespace
}  // namespace generator

int main(int argc, char** argv) {
    if (VIPS_INIT(argv[0]) != 0) return 1;
    try {
        return generator::Run({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "cmdtexture-make-resources: %s\n", error.what());
        return 1;
    }
}
