#include <gtest/gtest.h>

#include "support/Pictures.h"

namespace {

using pictures::CountingSink;

// A material's run: a stage on the control itself between stages on children.
TEST(Status, StepsShareTheWholeInOrder) {
    CountingSink sink;
    CStatusControl job(&sink);
    job.SetNumberOfSteps(4);
    for (int step = 0; step < 4; ++step) {
        CStatusControl child(&job);
        CStatusControl& stage = step == 2 ? job : child;
        if (step == 2) continue;
        stage.SetProgressRange(10);
        for (int i = 0; i < 10; ++i) EXPECT_EQ(stage.IncrementProgress(1), 0);
        EXPECT_DOUBLE_EQ(sink.Last(), (step + 1) / 4.0);
    }
    EXPECT_FALSE(sink.EverFell());
}

TEST(Status, AControlCanBeAStepOfItself) {
    CountingSink sink;
    CStatusControl job(&sink);
    job.SetNumberOfSteps(2);
    job.SetProgressRange(4);
    EXPECT_EQ(job.SetProgress(4), 0);
    EXPECT_DOUBLE_EQ(sink.Last(), 0.5);
    CStatusControl second(&job);
    CStatusControl grandchild(&second);
    grandchild.SetProgressRange(1);
    EXPECT_EQ(grandchild.SetProgress(1), 0);
    EXPECT_DOUBLE_EQ(sink.Last(), 1.0);
}

TEST(Status, CancellationReachesEveryDescendant) {
    CountingSink sink(2);
    CStatusControl job(&sink);
    CStatusControl child(&job);
    child.SetProgressRange(3);
    EXPECT_EQ(child.IncrementProgress(1), 0);
    EXPECT_NE(child.IncrementProgress(1), 0);
    EXPECT_NE(child.IncrementProgress(1), 0);
}

TEST(Status, WithoutAListenerNothingIsCancelled) {
    CStatusControl child(static_cast<CStatusControl*>(nullptr));
    child.SetProgressRange(0);
    EXPECT_EQ(child.IncrementProgress(5), 0);
}

}  // namespace
