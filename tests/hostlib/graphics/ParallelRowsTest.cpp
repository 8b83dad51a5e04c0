#include "hostlib/graphics/ParallelRows.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include "support/Pictures.h"

namespace {

using pictures::CountingSink;

TEST(ParallelRows, EveryRowIsInOneBlockAndBlocksStartAtMultiples) {
    for (const int rows : {0, 1, 2, 15, 16, 17, 1000}) {
        for (const int block : {-1, 1, 3, 16, 2000, 2147483647}) {
            std::vector<std::atomic<int>> seen(static_cast<std::size_t>(rows) + 1);
            std::atomic<bool> aligned{true};
            const CErrorAutoThrow result =
                ForEachRowBlock(nullptr, rows, block, [&](int first, int last) {
                    if (first % std::max(block, 1) != 0) aligned = false;
                    for (int y = first; y < last; ++y) ++seen[static_cast<std::size_t>(y)];
                });
            EXPECT_FALSE(result.Failed());
            EXPECT_TRUE(aligned);
            for (int y = 0; y < rows; ++y) ASSERT_EQ(seen[static_cast<std::size_t>(y)], 1) << y;
        }
    }
}

// Asks on the calling thread only, from the start, and ends at the whole.
TEST(ParallelRows, ProgressStaysOnTheCallingThread) {
    struct Sink : IProgressSink {
        bool OnProgress(double fraction) override {
            foreign = foreign || std::this_thread::get_id() != owner;
            rising = rising && fraction >= last;
            last = fraction;
            return false;
        }
        std::thread::id owner = std::this_thread::get_id();
        bool foreign = false, rising = true;
        double last = 0;
    } sink;
    CStatusControl job(&sink);
    job.SetNumberOfSteps(2);
    for (const double whole : {0.5, 1.0}) {
        ForEachRowBlock(&job, 500, 1, [](int, int) { std::this_thread::yield(); }).ThrowIfFailed();
        EXPECT_DOUBLE_EQ(sink.last, whole);
    }
    EXPECT_TRUE(sink.rising);
    EXPECT_FALSE(sink.foreign);
}

TEST(ParallelRows, CancellingStopsTheOthersToo) {
    constexpr int kRows = 100000;  // some seconds' work, were it not stopped
    for (const int call : {1, 3}) {
        CountingSink sink(call);
        CStatusControl status(&sink);
        std::atomic<int> blocks{0};
        const auto work = [&](int, int) {
            ++blocks;
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        };
        EXPECT_EQ(ForEachRowBlock(&status, kRows, 1, work).Code(), TolmErrorCode::Cancelled);
        EXPECT_LT(blocks, kRows);
    }
}

TEST(ParallelRows, WhatABlockThrowsIsTheResult) {
    const auto failing = [](auto error) {
        return [=](int first, int) {
            if (first == 40) throw error;
        };
    };
    EXPECT_EQ(
        ForEachRowBlock(nullptr, 100, 4, failing(CNException(TolmErrorCode::NotFound))).Code(),
        TolmErrorCode::NotFound);
    EXPECT_EQ(ForEachRowBlock(nullptr, 100, 4, failing(std::bad_alloc())).Code(),
              TolmErrorCode::NotCreated);
    EXPECT_EQ(ForEachRowBlock(nullptr, 100, 4, failing(std::logic_error("fault"))).Code(),
              TolmErrorCode::UnusableInput);
}

// Several threads at once, each with calls inside its blocks: nobody waits for anybody else's work,
// and a cancelled caller takes nobody with it.
TEST(ParallelRows, CallersDoNotMix) {
    std::vector<std::thread> callers;
    std::atomic<int> wrong{0};
    for (int caller = 0; caller < 4; ++caller) {
        callers.emplace_back([&wrong, caller] {
            for (int round = 0; round < 50; ++round) {
                std::vector<int> rows(64 * 8);
                CountingSink sink(caller == 3 ? 2 : 0);
                CStatusControl status(&sink);
                const CErrorAutoThrow result =
                    ForEachRowBlock(&status, 64, 2, [&](int first, int last) {
                        for (int y = first; y < last; ++y) {
                            ForEachRowBlock(nullptr, 8, 1, [&](int x, int) {
                                ++rows[static_cast<std::size_t>(y * 8 + x)];
                            }).ThrowIfFailed();
                        }
                    });
                if (caller == 3) {
                    wrong += result.Code() != TolmErrorCode::Cancelled;
                } else {
                    wrong += result.Failed() || rows != std::vector<int>(64 * 8, 1);
                }
            }
        });
    }
    for (std::thread& caller : callers) caller.join();
    EXPECT_EQ(wrong, 0);
}

}  // namespace
