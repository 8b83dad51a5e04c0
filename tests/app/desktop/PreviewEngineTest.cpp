#include "app/desktop/CPreviewEngine.h"

#include <QTest>
#include <filesystem>
#include <fstream>

#include "DesktopSupport.h"
#include "hostlib/commands/CDocument.h"
#include "support/Pictures.h"

namespace {

using namespace std::chrono_literals;

// What an effect under the test's control has seen, and whether it may finish. Narrow pictures
// pass.
struct SGate {
    std::atomic<bool> open = false;
    int narrow = 0;
    std::atomic<int> inside = 0;
    std::atomic<int> calls = 0;
};

// Copies its source once the gate is open.
class CGateEffect final : public CCmdEffect {
  public:
    explicit CGateEffect(SGate& gate) : CCmdEffect(std::array<bool, 13>{}), gate_(gate) {}
    CErrorAutoThrow Clone(ICoreCommand** out) override {
        *out = TRef<CCmdEffect>(new CGateEffect(*this)).Detach();
        return {};
    }
    CErrorAutoThrow ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                CRowIteratorBands& destination, const CRowIterator* /*mask*/,
                                const SHostArguments& /*arguments*/,
                                ICommandExecutionContext* /*context*/) override {
        ++gate_.calls;
        ++gate_.inside;
        CErrorAutoThrow result = destination.Copy(source, 0);
        status->SetProgressRange(100);
        while (!gate_.open && source.GetWidth() > gate_.narrow && !result.Failed()) {
            if (status->SetProgress(50) != 0) result = TolmErrorCode::Cancelled;
            std::this_thread::sleep_for(1ms);
        }
        --gate_.inside;
        return result;
    }

  private:
    SGate& gate_;
};

SPreviewSnapshot SnapshotOf(SGate& gate, int side) {
    const auto picture =
        pictures::Make(ENPixelFormat::Colour8, side, side,
                       [](int x, int y, int c) { return (x + 3 * y + 50 * c) % 256; });
    const TRef<CDocument> document(new CDocument({side, side}));
    document->SetActiveImage(picture);
    SPreviewSnapshot snapshot;
    snapshot.command = new CGateEffect(gate);
    snapshot.context = new CExecutionContext(document, {}, nullptr);
    snapshot.source = picture;
    return snapshot;
}

TEST(PreviewEngine, RunsTheNewestRequestOnly) {
    SGate gate;
    std::atomic<int> told = 0;
    CPreviewEngine engine([&] { ++told; });
    const SPreviewSnapshot snapshot = SnapshotOf(gate, 100);
    engine.Request(snapshot);
    ASSERT_TRUE(QTest::qWaitFor([&] { return gate.inside == 1; }));
    EXPECT_DOUBLE_EQ(engine.Progress(), 0.5);
    // The running one is stopped, the next ones are overwritten before anything is done for them.
    for (int i = 0; i < 50; ++i) engine.Request(snapshot);
    ASSERT_TRUE(QTest::qWaitFor([&] { return gate.calls >= 2 && gate.inside == 1; }));
    gate.open = true;
    ASSERT_TRUE(QTest::qWaitFor([&] { return !engine.IsBusy(); }));
    const CPreviewEngine::SCounters counters = engine.Counters();
    EXPECT_EQ(counters.requested, 51);
    EXPECT_LT(counters.started, 10);
    EXPECT_EQ(counters.started_stale, 0);
    EXPECT_EQ(counters.started, counters.overtaken + counters.finished);
    EXPECT_EQ(counters.finished, 1);
    EXPECT_EQ(engine.Shown().request, 51);
    EXPECT_TRUE(engine.Shown().exact);
    EXPECT_GE(told, 2);
}

TEST(PreviewEngine, ShowsAReducedPictureFirstAndKeepsItWhenCancelled) {
    SGate gate;
    gate.narrow = 800;
    CPreviewEngine engine([] {});
    engine.Request(SnapshotOf(gate, 1500));
    ASSERT_TRUE(QTest::qWaitFor([&] { return gate.inside == 1 && engine.Counters().reduced; }));
    engine.Cancel();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !engine.IsBusy(); }));
    const CPreviewEngine::SShown shown = engine.Shown();
    ASSERT_TRUE(shown.picture);
    EXPECT_FALSE(shown.exact);
    EXPECT_EQ(shown.picture->FullSize(), (CSize{1500, 1500}));
    EXPECT_GE(shown.picture->First(), 1);
    EXPECT_EQ(engine.Counters().finished, 0);
}

TEST(DraftLevel, FollowsTheTimesOfTheLastDrafts) {
    struct SCase {
        std::array<double, 5> milliseconds;
        int then;
    };
    CDraftLevel level(3);
    for (const SCase& five :
         {SCase{{10, 10, 10, 10, 10}, 3}, SCase{{300, 3.1, 300, 3.1, 3.1}, 3},
          SCase{{3, 19, 19, 19, 3}, 4}, SCase{{5, 5, 5, 5, 5}, 4}, SCase{{2, 9, 2, 2, 9}, 3},
          SCase{{1, 1, 1, 1, 1}, 2}, SCase{{0, 0, 0, 0, 0}, 2}, SCase{{40, 40, 40, 40, 40}, 3},
          SCase{{40, 40, 40, 40, 40}, 4}, SCase{{40, 40, 40, 40, 40}, 4}}) {
        for (const double time : five.milliseconds) level.Took(time * 1ms, 2, 4);
        EXPECT_EQ(level.Level(), five.then);
    }
}

TEST(PreviewEngine, EndsInTheMiddleOfAnEffect) {
    SGate gate;
    {
        CPreviewEngine engine([] {});
        engine.Request(SnapshotOf(gate, 100));
        ASSERT_TRUE(QTest::qWaitFor([&] { return gate.inside == 1; }));
    }
    EXPECT_EQ(gate.inside, 0);
}

TEST(PreviewEngine, SaysWhyAnEffectFailed) {
    struct CFailing final : CCmdEffect {
        CFailing() : CCmdEffect(std::array<bool, 13>{}) {}
        CErrorAutoThrow Clone(ICoreCommand** out) override {
            *out = TRef<CCmdEffect>(new CFailing).Detach();
            return {};
        }
        CErrorAutoThrow ApplyEffect(CStatusControl*, CRowIteratorBands&, CRowIteratorBands&,
                                    const CRowIterator*, const SHostArguments&,
                                    ICommandExecutionContext*) override {
            return {TolmErrorCode::NotFound, "the pattern is gone"};
        }
    };
    SGate gate;
    SPreviewSnapshot snapshot = SnapshotOf(gate, 100);
    snapshot.command = new CFailing;
    CPreviewEngine engine([] {});
    engine.Request(snapshot);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !engine.Shown().error.empty(); }));
    EXPECT_EQ(engine.Shown().error, "the pattern is gone");
    EXPECT_FALSE(engine.Shown().picture);
}

}  // namespace
