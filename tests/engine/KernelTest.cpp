#include <gtest/gtest.h>

#include <span>

#include "Transforms.h"

namespace {

using pictures::Difference;
using pictures::kAllFormats;
using pictures::Noise;

// A value of the parameter: an end of its range or something between.
int Draw(CRuntimeRandom& random, const STransformParam& param) {
    const int pick = random.Next() % 4;
    if (pick == 0) return param.minimum;
    if (pick == 1) return param.maximum;
    return param.minimum + random.Next() % (param.maximum - param.minimum + 1);
}

// Noise, or slopes as a blurred photograph has them: the kernels' differences stay small there.
CRowIteratorBands TestPicture(CNPixelFormat format, int width, int height, unsigned seed) {
    if (seed % 2 == 0) return Noise(format, width, height, seed);
    const int unit = format.Is16bit() ? 257 : 1;
    const int slope = static_cast<int>(seed % 7);
    return pictures::Make(format, width, height, [=](int x, int y, int c) {
        return (slope * x + (7 - slope) * y / 2 + 40 * c) % 256 * unit + (unit > 1 ? x % 256 : 0) -
               (unit > 1 && (slope * x + (7 - slope) * y / 2 + 40 * c) % 256 == 255 ? x % 256 : 0);
    });
}

// The row kernels give what the per-pixel operations give, in memory that ends with the picture.
TEST(Kernels, EqualThePlainPathAtEveryWidth) {
    CRuntimeRandom values(11);
    for (const auto& kind : std::span(transforms::kAll).first<transforms::kKernels>()) {
        for (const ENPixelFormat format : kAllFormats) {
            for (int width = 1; width <= 70; ++width) {
                const unsigned seed = static_cast<unsigned>(values.Next());
                const CRowIteratorBands source =
                    pictures::Tight(TestPicture(format, width, 1 + width % 5, seed));
                const CRowIteratorBands held =
                    Noise(format, source.GetWidth(), source.GetHeight(), seed + 1);
                transforms::Values own;
                const auto model = kind.make();
                for (int i = 4; i < model->params.Count(); ++i) {
                    own.push_back(Draw(values, model->params[i]));
                }
                const int cut = values.Next() % 300;
                const int borders[] = {cut, 1000 - cut / 2, cut / 3, 1000};
                CRowIteratorBands results[2];
                for (const bool plain : {false, true}) {
                    const auto transform = kind.make();
                    transforms::Fill(*transform, own, borders);
                    transform->use_plain_path = plain;
                    results[plain] = transforms::Run(*transform, source, pictures::Tight(held));
                }
                ASSERT_EQ(Difference(results[0], results[1]), "")
                    << kind.name << " width " << width << " first value " << own[0];
            }
        }
    }
}

// Rows longer than the blocks the kernels work in.
TEST(Kernels, EqualThePlainPathAcrossBlocks) {
    for (const auto& kind : std::span(transforms::kAll).first<transforms::kKernels>()) {
        for (const ENPixelFormat format : kAllFormats) {
            for (const int width : {255, 256, 257, 513, 1001}) {
                const CRowIteratorBands source =
                    pictures::Tight(TestPicture(format, width, 3, static_cast<unsigned>(width)));
                CRowIteratorBands results[2];
                for (const bool plain : {false, true}) {
                    const auto transform = kind.make();
                    transforms::Fill(*transform, {14, 20, 100, 200});
                    transform->use_plain_path = plain;
                    results[plain] = transforms::Run(*transform, source);
                }
                ASSERT_EQ(Difference(results[0], results[1]), "") << kind.name << " " << width;
            }
        }
    }
}

}  // namespace
