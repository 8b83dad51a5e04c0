// Makes the pictures of the resource library: cmdtexture-make-resources PHOTOS OUT
//
// PHOTOS is the folder of the photographs some textures are made from, OUT the folder that gets
// patterns/CATEGORY/ and textures/CATEGORY/. Every run writes the same bytes.
#include <vips/vips.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include "recipes.h"

namespace generator {
namespace {

namespace fs = std::filesystem;

struct PatternEntry {
    const char *category, *name;
    Pattern paint;
};
constexpr PatternEntry kPatterns[] = {
    {"metal", "brushed-metal", BrushedMetal},
    {"stone", "concrete", Concrete},
    {"metal", "copper", Copper},
    {"wood", "cork", Cork},
    {"stone", "granite", Granite},
    {"stone", "malachite", Malachite},
    {"stone", "marble", Marble},
    {"paper", "paper", Paper},
    {"stone", "plaster", Plaster},
    {"stone", "sand", Sand},
    {"stone", "slate", Slate},
    {"wood", "wood", Wood},
};

struct TextureEntry {
    const char *category, *name;
    Texture height;
};
constexpr TextureEntry kTextures[] = {
    {"skin", "bark", Bark},
    {"fabric", "canvas", Canvas},
    {"stone", "cobblestone", Cobblestone},
    {"ground", "cracked-earth", CrackedEarth},
    {"metal", "hammered-metal", HammeredMetal},
    {"skin", "leather", Leather},
    {"fabric", "linen", Linen},
    {"ground", "ripples", RippledSand},
    {"fabric", "wicker", Wicker},
};

struct PhotoEntry {
    const char *category, *name;
    HeightMap (*process)(const HeightMap&);
};
constexpr PhotoEntry kPhotos[] = {
    {"stone", "brick", BrickWall},
    {"ground", "grass", SeamlessPhoto},
    {"ground", "gravel", SeamlessPhoto},
};

// Mean of `sample` over a 2 x 2 grid within the pixel.
template <typename Sample>
auto Smoothed(int x, int y, Sample sample) {
    const auto at = [&](double dx, double dy) {
        return sample(Point{(x + dx) / kSize, (y + dy) / kSize});
    };
    return Mix(Mix(at(0.25, 0.25), at(0.75, 0.25), 0.5), Mix(at(0.25, 0.75), at(0.75, 0.75), 0.5),
               0.5);
}

unsigned char ToByte(double value) {
    return static_cast<unsigned char>(std::clamp(value + 0.5, 0.0, 255.0));
}

[[noreturn]] void Fail(const fs::path& path) {
    throw std::runtime_error(path.string() + ": " + vips_error_buffer());
}

void Save(const std::vector<unsigned char>& bytes, int bands, const fs::path& path) {
    VipsImage* image = vips_image_new_from_memory(bytes.data(), bytes.size(), kSize, kSize, bands,
                                                  VIPS_FORMAT_UCHAR);
    if (image == nullptr) Fail(path);
    image->Type = bands == 1 ? VIPS_INTERPRETATION_B_W : VIPS_INTERPRETATION_sRGB;
    const int failed = vips_pngsave(image, path.c_str(), "compression", 9, "filter",
                                    VIPS_FOREIGN_PNG_FILTER_ALL, "strip", TRUE, nullptr);
    g_object_unref(image);
    if (failed != 0) Fail(path);
}

HeightMap LoadGrey(const fs::path& path) {
    VipsImage* image = vips_image_new_from_file(path.c_str(), nullptr);
    if (image == nullptr) Fail(path);
    std::size_t size = 0;
    void* bytes = vips_image_write_to_memory(image, &size);
    g_object_unref(image);
    if (bytes == nullptr) Fail(path);
    HeightMap map;
    if (size != map.values.size()) throw std::runtime_error(path.string() + ": wrong size");
    std::copy_n(static_cast<const unsigned char*>(bytes), size, map.values.begin());
    g_free(bytes);
    return map;
}

// The grey levels of a height map: all but the most extreme heights are stretched over the full
// range and bent so that their mean is mid-grey.
std::vector<unsigned char> ToGrey(HeightMap map) {
    std::vector<double> sorted = map.values;
    std::sort(sorted.begin(), sorted.end());
    const std::size_t cut = sorted.size() / 100;
    const double low = sorted[cut];
    const double high = sorted[sorted.size() - 1 - cut];
    const auto bend = [](double x, double b) { return x / ((1 / b - 2) * (1 - x) + 1); };
    for (double& h : map.values) h = Clamp01((h - low) / (high - low));
    double bias = 0.5;
    double step = 0.2;
    for (int i = 0; i < 8; ++i, step /= 2) {
        double sum = 0;
        for (double h : map.values) sum += bend(h, bias);
        bias += sum < 0.5 * static_cast<double>(map.values.size()) ? step : -step;
    }
    std::vector<unsigned char> grey;
    for (double h : map.values) grey.push_back(ToByte(255 * bend(h, bias)));
    return grey;
}

std::vector<unsigned char> Paint(Pattern pattern) {
    std::vector<unsigned char> bytes;
    for (int y = 0; y < kSize; ++y) {
        for (int x = 0; x < kSize; ++x) {
            const Rgb c = Smoothed(x, y, pattern);
            bytes.insert(bytes.end(), {ToByte(c.r), ToByte(c.g), ToByte(c.b)});
        }
    }
    return bytes;
}

HeightMap Raise(Texture texture) {
    HeightMap map;
    for (int y = 0; y < kSize; ++y) {
        for (int x = 0; x < kSize; ++x) map.At(x, y) = Smoothed(x, y, texture);
    }
    return map;
}

void MakeAll(const fs::path& photos, const fs::path& out) {
    const auto file = [&](const char* kind, const char* category, const char* name) {
        const fs::path folder = out / kind / category;
        fs::create_directories(folder);
        return folder / (std::string(name) + ".png");
    };
    for (const auto& [category, name, paint] : kPatterns) {
        Save(Paint(paint), 3, file("patterns", category, name));
    }
    for (const auto& [category, name, height] : kTextures) {
        Save(ToGrey(Raise(height)), 1, file("textures", category, name));
    }
    for (const auto& [category, name, process] : kPhotos) {
        const fs::path photo = photos / (std::string(name) + ".png");
        Save(ToGrey(process(LoadGrey(photo))), 1, file("textures", category, name));
    }
}

}  // namespace
}  // namespace generator

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: cmdtexture-make-resources PHOTOS OUT\n");
        return 2;
    }
    if (VIPS_INIT(argv[0]) != 0) return 1;
    try {
        generator::MakeAll(argv[1], argv[2]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "cmdtexture-make-resources: %s\n", error.what());
        return 1;
    }
}
