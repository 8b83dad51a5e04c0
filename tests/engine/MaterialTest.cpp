#include <gtest/gtest.h>

#include <cstdlib>

#include "Transforms.h"
#include "engine/Materials.h"
#include "engine/Pipelines.h"
#include "hostlib/graphics/ParallelRows.h"

namespace {

using pictures::Difference;
using pictures::Noise;
using transforms::Values;

struct SMaterial {
    const char* name;
    CErrorAutoThrow (*apply)(CStatusControl&, CRowIteratorBands&, CRowIteratorBands&,
                             const Values&);
    CTransformParamList (*define)();
    PipelineRunner* run;
    Values values;  // of the routine, blur 0
    Values list;    // what they make of the pipeline's list
    Values most;    // the list's own entries, colours left out, at the values' upper bounds
    int blur_at;    // where the blur stands among the values
    int colour_at;  // from where on the values are colours
    bool refuses;
    Values low, high;  // the values' ranges, for those that refuse
};

COLORREF Colour(int value) { return static_cast<COLORREF>(value); }

// clang-format off
#define ROUTINE(call) [](auto& status, auto& from, auto& to, const Values& v) -> CErrorAutoThrow { return call; }
const SMaterial kMaterials[] = {
    {"Sandstone", ROUTINE(ApplySandstone(status, from, to, v[0], v[1], v[2], v[3], Colour(v[4]))),
     DefineTransfo1T2, RunTransfo1T2, {360, 0, 80, 13, 0x336699},
     {0, 1000, 0, 1000, 0, 80, 13, 359, 0x99, 0x66, 0x33}, {100, 256, 20, 359}, 1, 4, false, {}, {}},
    {"PolishedStone", ROUTINE(ApplyPolishedStone(status, from, to, v[0], v[1], v[2], v[3], Colour(v[4]))),
     DefineTransfo1T5, RunTransfo1T5, {-3, 999, 15, 45, 0xFFFFFF},
     {0, 1000, 0, 1000, 0, 256, 15, 45, 255, 255, 255}, {100, 256, 20, 359}, 0, 4, false, {}, {}},
    {"SoftPlastic", ROUTINE(ApplySoftPlastic(status, from, to, v[0], v[1], v[2], v[3], Colour(v[4]))),
     DefineTransfo1T4, RunTransfo1T4, {0, 14, 32, 45, 0xFF},
     {0, 1000, 0, 1000, 0, 14, 32, 45, 255, 0, 0}, {100, 100, 128, 359}, 0, 4, true, {0, 1, 1, 0}, {100, 100, 128, 359}},
    {"RoughLeather", ROUTINE(ApplyRoughLeather(status, from, to, v[0], v[1], v[2], v[3], v[4], Colour(v[5]), Colour(v[6]))),
     DefineTransfo1T7, RunTransfo1T7, {45, 0, 14, 5, 135, 0xFFFFFF, 0x010203},
     {0, 1000, 0, 1000, 135, 5, 3, 2, 1, 0, 14, 45, 255, 255, 255}, {255, 100, 3, 2, 1, 100, 100, 359}, 1, 5, false, {}, {}},
    {"FineLeather", ROUTINE(ApplyFineLeather(status, from, to, v[0], v[1], v[2], v[3], v[4], Colour(v[5]))),
     DefineTransfo1T9, RunTransfo1T9, {30, 0, 7, 99, 250, 0x808080},
     {-10, 1010, -10, 1010, 0, 7, 20, 250, 30, 128, 128, 128}, {100, 2000, 20, 255, 359}, 1, 5, false, {}, {}},
    {"Fur", ROUTINE(ApplyFur(status, from, to, v[0], v[1], v[2], v[3])),
     DefineTransfo2T5, RunTransfo2T5, {0, 2, 4, 250}, {1, 999, 1, 999, 0, 2, 4, 250}, {100, 200, 100, 255}, 0, 4, false, {}, {}},
    {"StrawWall", ROUTINE(ApplyStrawWall(status, from, to, v[0], v[1], v[2], v[3], v[4], v[5], Colour(v[6]))),
     DefineTransfo2T8, RunTransfo2T8, {0, 14, 1, 3, 100, 0, 0x555555},
     {1, 999, 1, 999, 0, 3, 14, 1, 0, 100, 0x55, 0x55, 0x55}, {100, 100, 20, 40, 255, 359}, 0, 6, true,
     {0, 1, 1, 1, 0, 0}, {100, 20, 40, 100, 359, 255}},
};
#undef ROUTINE
// clang-format on

TEST(Pipelines, ListsAreAsTheMaterialsExpect) {
    struct {
        CTransformParamList (*define)();
        const wchar_t* name;
        std::vector<const wchar_t*> own;
    } const cases[] = {
        {DefineTransfo1T2,
         L"Transfo1T2",
         {L"Blur Strength", L"Number of periods", L"Luminance", L"Angle", L"Red Light",
          L"Green Light", L"Blue Light"}},
        {DefineTransfo1T4,
         L"Transfo1T4",
         {L"Blur Strength", L"Number of periods", L"Slope", L"Angle", L"Red Light", L"Green Light",
          L"Blue Light"}},
        {DefineTransfo1T5,
         L"Transfo1T5",
         {L"Blur Strength", L"Number of periods", L"Luminance", L"Angle", L"Red Light",
          L"Green Light", L"Blue Light"}},
        {DefineTransfo1T7,
         L"Transfo1T7",
         {L"Luminance", L"Intensity", L"Red", L"Green", L"Blue", L"Blur Strength", L"Intensity",
          L"Angle", L"Red Light", L"Green Light", L"Blue Light"}},
        {DefineTransfo1T9,
         L"Transfo1T9",
         {L"Blur Strength", L"Number of lines", L"Length of lines", L"Transparency", L"Angle",
          L"Red Light", L"Green Light", L"Blue Light"}},
        {DefineTransfo2T5,
         L"Transfo2T5",
         {L"Blur Strength", L"Number of lines", L"Length of lines", L"Transparency"}},
        {DefineTransfo2T8,
         L"Transfo2T8",
         {L"Blur Strength", L"Number of pipes", L"Length factor", L"Width factor", L"Transparency",
          L"Angle", L"Red Light", L"Green Light", L"Blue Light"}},
    };
    for (const auto& c : cases) {
        const CTransformParamList list = c.define();
        EXPECT_EQ(list.name, CString(c.name));
        ASSERT_EQ(list.Count(), 4 + static_cast<int>(c.own.size()));
        EXPECT_EQ(list[3].name, CString(L"Bottom border"));
        EXPECT_EQ(list[3].defaultValue, 1000);
        for (int i = 0; i < list.Count(); ++i) {
            EXPECT_EQ(list[i].value, 0);
        }
        for (int i = 4; i < list.Count(); ++i) {
            EXPECT_EQ(list[i].name, CString(c.own[static_cast<std::size_t>(i - 4)]));
        }
    }
    EXPECT_EQ(DefineTransfo1T7()[5].defaultValue, 10) << "the contour's intensity";
    EXPECT_EQ(DefineTransfo1T7()[10].defaultValue, 0) << "the glass's";
}

TEST(Materials, FillTheirPipelinesList) {
    for (const SMaterial& material : kMaterials) {
        for (const bool at_most : {false, true}) {
            Values values = material.values, entries = material.list;
            for (int i = 0; at_most && i < material.colour_at; ++i) {
                const auto v = static_cast<std::size_t>(i);
                values[v] = material.refuses ? material.high[v] : 2147483647;
            }
            if (at_most) std::copy(material.most.begin(), material.most.end(), &entries[4]);
            CRowIteratorBands source = Noise(ENPixelFormat::Colour8, 25, 18, 1);
            CRowIteratorBands result, expected;
            CStatusControl status;
            ASSERT_FALSE(material.apply(status, source, result, values).Failed());
            CTransformParamList list = material.define();
            ASSERT_EQ(list.Count(), static_cast<int>(entries.size())) << material.name;
            for (int i = 0; i < list.Count(); ++i) {
                list[i].value = entries[static_cast<std::size_t>(i)];
            }
            ASSERT_FALSE(material.run(source, expected, list, status).Failed());
            EXPECT_EQ(Difference(result, expected), "") << material.name << " " << at_most;
            EXPECT_NE(Difference(result, source), "") << material.name;
        }
    }
}

TEST(Materials, RefuseWhatTheyCheck) {
    for (const SMaterial& material : kMaterials) {
        for (std::size_t i = 0; i < material.low.size(); ++i) {
            for (const int value : {material.low[i] - 1, material.high[i] + 1}) {
                Values values = material.values;
                values[i] = value;
                CRowIteratorBands source = Noise(ENPixelFormat::Grey8, 4, 4, 1), result;
                CStatusControl status;
                EXPECT_EQ(material.apply(status, source, result, values).Code(),
                          TolmErrorCode::UnusableInput)
                    << material.name << " value " << i << " = " << value;
                EXPECT_FALSE(result.IsAttached());
            }
        }
        CRowIteratorBands unattached;
        CRowIteratorBands result = Noise(ENPixelFormat::Grey8, 4, 4, 2);
        CStatusControl status;
        EXPECT_EQ(material.apply(status, unattached, result, material.values).Code(),
                  TolmErrorCode::UnusableInput);
    }
}

// A source that claims more pixels than memory could hold: the copy fails before any is read.
TEST(Materials, FailWhenTheCopyFails) {
    for (const SMaterial& material : kMaterials) {
        std::uint64_t pixels = 0;
        CRowIteratorBands source, result;
        source.Attach(&pixels, 0, 2147483647, 2147483647, ENPixelFormat::ColourAlpha16)
            .ThrowIfFailed();
        CStatusControl status;
        EXPECT_EQ(material.apply(status, source, result, material.values).Code(),
                  TolmErrorCode::NotCreated)
            << material.name;
    }
}

TEST(Pipelines, EmptyRectanglesLeaveTheBlurredSource) {
    for (const SMaterial& material : kMaterials) {
        for (const ENPixelFormat format : pictures::kAllFormats) {
            CRowIteratorBands source = pictures::Tight(Noise(format, 6, 5, 1));
            CRowIteratorBands result;
            CStatusControl status;
            CTransformParamList list = material.define();
            EXPECT_FALSE(material.run(source, result, list, status).Failed());
            EXPECT_EQ(Difference(result, source), "") << material.name;
        }
    }
}

TEST(Pipelines, ChannelAccessComesBack) {
    for (const SMaterial& material : kMaterials) {
        CRowIteratorBands source = Noise(ENPixelFormat::ColourAlpha8, 12, 9, 1);
        const CRowIteratorBands plain = Noise(ENPixelFormat::ColourAlpha8, 12, 9, 1);
        source.SetChannelAccess(ENChannel::Colour, 3).ThrowIfFailed();
        CRowIteratorBands whole = plain, result, expected;
        CStatusControl status;
        ASSERT_FALSE(material.apply(status, source, result, material.values).Failed());
        ASSERT_FALSE(material.apply(status, whole, expected, material.values).Failed());
        EXPECT_EQ(source.GetChannelAccess(), ENChannel::Colour) << material.name;
        EXPECT_EQ(source.GetImageModifyMode(), 3);
        EXPECT_EQ(Difference(result, expected), "") << "all channels take part";
    }
}

TEST(Materials, CancelAnywhere) {
    for (const SMaterial& material : kMaterials) {
        for (const int blur : {0, 30}) {
            Values values = material.values;
            values[static_cast<std::size_t>(material.blur_at)] = blur;
            CRowIteratorBands source = Noise(ENPixelFormat::Colour8, 10, 12, 1);
            const auto run = [&](pictures::CountingSink& sink, CRowIteratorBands& result) {
                CStatusControl status(&sink);
                return material.apply(status, source, result, values).Code();
            };
            pictures::CountingSink counter;
            CRowIteratorBands whole;
            ASSERT_EQ(run(counter, whole), TolmErrorCode::Success);
            // A blur of 0 is a copy, which takes no part in the progress.
            EXPECT_GT(counter.Last(), blur == 0 ? 0.45 : 0.9) << material.name;
            // Every call near the ends, where stages begin and end, and some between.
            for (int call = 1; call <= counter.Calls();
                 call += call < 70 || call > counter.Calls() - 20 ? 1 : 97) {
                pictures::CountingSink sink(call);
                CRowIteratorBands result;
                const auto code = run(sink, result);
                // A blur asks once a block that the calling thread takes, so a run may ask less
                // often than the one before.
                const bool asked = sink.Calls() >= call;
                EXPECT_TRUE(asked || blur != 0);
                EXPECT_EQ(code, asked ? TolmErrorCode::Cancelled : TolmErrorCode::Success)
                    << material.name << " call " << call << " of " << counter.Calls();
                const bool destroys = material.define == DefineTransfo1T7;
                EXPECT_TRUE(!asked || !destroys || !result.IsAttached());
            }
        }
    }
}

// Lends one thread as if it were several: takes blocks from the last to the first, each in another
// slot.
struct SBackwardWorkers : IRowWorkers {
    explicit SBackwardWorkers(int count) : threads(count) {}
    int Threads() const override { return threads; }
    void ForEachBlock(int rows, int block, const Work& work) override {
        for (int i = (rows - 1) / block; i >= 0; --i) {
            work(i * block, std::min((i + 1) * block, rows), i % threads);
        }
    }
    int threads;
};

struct SRecordingSink : pictures::CountingSink {
    using CountingSink::CountingSink;
    bool OnProgress(double fraction) override {
        reported.push_back(fraction);
        return CountingSink::OnProgress(fraction);
    }
    std::vector<double> reported;
};

// With threads: the same pixels, the same reports of progress in the same order, and whenever it is
// cancelled the same destination, be the stages made one by one or band by band.
TEST(Materials, ThreadsChangeNothing) {
    SBackwardWorkers one(1), three(3);
    const Values borders[] = {{0, 1000, 0, 1000}, {100, 870, 30, 905}, {0, 1000, 990, 1000}};
    const CSize sizes[] = {{3, 700}, {41, 70}, {600, 2}, {1, 1}};
    for (int i = 0; i < 7 * 8 * 4; ++i) {
        const SMaterial& material = kMaterials[i % 7];
        const CSize size = sizes[i / 7 % 4];
        const CNPixelFormat format = pictures::kAllFormats[i / 28];
        CRowIteratorBands source = Noise(format, size.cx, size.cy, static_cast<unsigned>(i));
        CTransformParamList list = material.define();
        const bool of_command = i / 14 % 2 == 0;
        for (int k = 0; k < list.Count(); ++k) {
            list[k].value = k < 4 ? borders[i / 2 % 3][static_cast<std::size_t>(k)]
                                  : material.list[static_cast<std::size_t>(k)];
        }
        const auto run = [&](IRowWorkers* workers, SRecordingSink& sink) {
            CRowIteratorBands result;
            if (i % 5 == 0) result = Noise(format, size.cx, size.cy, 77);
            CStatusControl status(&sink);
            status.LendWorkers(workers);
            const CErrorAutoThrow error =
                of_command ? material.apply(status, source, result, material.values)
                           : material.run(source, result, list, status);
            return std::pair(error.Code(), result);
        };
        SRecordingSink plain;
        const CRowIteratorBands expected = run(nullptr, plain).second;
        for (IRowWorkers* workers : {static_cast<IRowWorkers*>(&one),
                                     static_cast<IRowWorkers*>(&three), &HostRowWorkers()}) {
            SRecordingSink sink;
            ASSERT_EQ(Difference(run(workers, sink).second, expected), "")
                << material.name << " " << i;
            ASSERT_EQ(sink.reported, plain.reported) << material.name;
            if (workers == &HostRowWorkers()) continue;
            for (int call = 1; call <= plain.Calls(); call += 1 + plain.Calls() / 6) {
                SRecordingSink stopped(call), plainly(call);
                const auto [code, state] = run(workers, stopped);
                const auto [plain_code, plain_state] = run(nullptr, plainly);
                ASSERT_EQ(code, plain_code) << material.name;
                ASSERT_EQ(state.IsAttached(), plain_state.IsAttached()) << material.name;
                ASSERT_EQ(Difference(state, plain_state), "")
                    << material.name << " stopped at " << call << " of " << plain.Calls();
                ASSERT_EQ(stopped.reported, plainly.reported);
            }
        }
    }
}

// Stopped in the second stage, the destination holds what the first one made.
TEST(Materials, CancelLeavesTheStagesBefore) {
    CRowIteratorBands source = Noise(ENPixelFormat::Colour8, 10, 9, 1), result;
    pictures::CountingSink sink(5);
    CStatusControl status(&sink);
    EXPECT_EQ(ApplySandstone(status, source, result, 45, 0, 80, 13, 0xFFFFFF).Code(),
              TolmErrorCode::Cancelled);
    EXPECT_EQ(Difference(result, source), "");
}

// Whatever the values, sizes and layouts: a result of the source's shape or error 101, the same
// again on a second run, and the source as it was. Long form: CMDTEXTURE_LONG_TESTS set.
TEST(Materials, RandomRuns) {
    CRuntimeRandom random(2024);
    const auto upto = [&](int most) { return random.Next() % (most + 1); };
    const int runs = std::getenv("CMDTEXTURE_LONG_TESTS") ? 10000 : 400;
    for (int i = 0; i < runs; ++i) {
        const SMaterial& material = kMaterials[upto(6)];
        const CNPixelFormat format = pictures::kAllFormats[upto(7)];
        const int width = 1 + upto(63), height = 1 + upto(upto(1) == 0 ? 63 : 5);
        Values values = material.values;
        bool usable = true;
        for (std::size_t v = 0; v < values.size(); ++v) {
            if (static_cast<int>(v) >= material.colour_at) {
                values[v] = upto(32767) << 9;
            } else {
                const int pick = upto(5);
                values[v] = pick == 0   ? upto(700) - 300
                            : pick == 1 ? 2147483647 * (upto(2) - 1)
                                        : 1 + upto(19);
                if (!material.refuses) continue;
                usable = usable && values[v] >= material.low[v] && values[v] <= material.high[v];
            }
        }
        if (material.define == DefineTransfo1T9) values[2] %= 30;
        const CRowIteratorBands original = Noise(format, width, height, static_cast<unsigned>(i));
        CRowIteratorBands source = pictures::Tight(original);
        CRowIteratorBands results[2];
        const int attached = upto(3);
        for (CRowIteratorBands& result : results) {
            if (attached == 0) result = pictures::Tight(Noise(format, width, height, 1));
            if (attached == 1) result = Noise(pictures::kAllFormats[i % 8], width, height, 1);
            CStatusControl status;
            ASSERT_EQ(material.apply(status, source, result, values).Code(),
                      usable ? TolmErrorCode::Success : TolmErrorCode::UnusableInput)
                << material.name << " run " << i;
            if (!usable) continue;
            ASSERT_EQ(result.GetPixelFormat(), format);
            ASSERT_EQ(result.GetRect(), source.GetRect());
        }
        if (usable) {
            ASSERT_EQ(Difference(results[0], results[1]), "") << material.name << " run " << i;
        }
        ASSERT_EQ(Difference(source, original), "") << material.name << " run " << i;
    }
}

}  // namespace
