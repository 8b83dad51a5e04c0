#include "app/desktop/CPreviewEngine.h"

#include <pthread.h>

#include <algorithm>

#include "app/desktop/ReducedPreview.h"
#include "hostlib/graphics/SelectionBlend.h"

namespace {

using namespace std::chrono_literals;

// A reduced stage that takes much longer than expected gives way to a newer request after this.
constexpr auto kReducedPatience = 100ms;
// Fewer pixels than these show too little, however slow the effect.
constexpr double kFewestPixels = 20000;
// As many are a draft's until it is measured.
constexpr double kFirstPixels = 500000;
// The exact stage waits this long for the user's next change.
constexpr auto kQuiet = 30ms;

// Why there is no picture. An effect that is done lacked the memory for the picture to show.
std::string ReasonOf(const CErrorAutoThrow& error) {
    if (!error.Failed()) return "not enough memory";
    return *error.Text() ? error.Text() : "error " + std::to_string(static_cast<int>(error.Code()));
}

// The effect's picture laid over the source, as a step of a recipe is.
CErrorAutoThrow MakePicture(const SPreviewSnapshot& snapshot, const SLayerMix& mix,
                            CStatusControl& status, CRowIteratorBands& result) {
    const bool limits_mixed = mix.blend != ENBlendMode::Normal && snapshot.selection.IsAttached();
    const CRowIterator selection = limits_mixed ? CRowIterator() : snapshot.selection;
    CErrorAutoThrow error = snapshot.command->Preview(&status, snapshot.source, result, &selection,
                                                      snapshot.context.Get());
    if (error.Failed() || mix.IsPlain()) return error;
    if (result.SharesPixelsWith(snapshot.source)) {
        const CRowIteratorBands shared = result;
        result.Destroy();
        error = result.Copy(shared, 0);
    }
    if (!error.Failed()) {
        error = BlendLayer(snapshot.source, mix.blend, mix.opacity / 100.0, result);
    }
    if (error.Failed() || !limits_mixed) return error;
    return BlendBySelection(snapshot.source, snapshot.selection, result);
}

double Pixels(const CRowIteratorBands& picture) {
    return static_cast<double>(picture.GetWidth()) * picture.GetHeight();
}

}  // namespace

// The progress of one stage, and what stops it. One that `yields` stops at once for a newer
// request; the others only when they take long.
class CPreviewEngine::CStage final : public IProgressSink {
  public:
    CStage(CPreviewEngine& engine, int request, bool yields)
        : engine_(engine), request_(request), yields_(yields) {
        engine.progress_ = 0;
    }

    bool Stop() const {
        if (engine_.IsGivenUp(request_)) return true;
        if (!engine_.IsOvertaken(request_)) return false;
        return yields_ || Clock::now() - start_ > kReducedPatience;
    }
    bool OnProgress(double fraction) override {
        engine_.progress_ = fraction;
        return Stop();
    }
    CDraftLevel::Duration Time() const { return Clock::now() - start_; }

  private:
    CPreviewEngine& engine_;
    const int request_;
    const bool yields_;
    const Clock::time_point start_ = Clock::now();
};

CPreviewEngine::CPreviewEngine(std::function<void()> notify)
    : notify_(std::move(notify)), thread_([this] { Run(); }) {}

CPreviewEngine::~CPreviewEngine() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    wake_.notify_one();
    thread_.join();
}

int CPreviewEngine::Request(SPreviewSnapshot snapshot, const SLayerMix& mix, int shown_level) {
    int request = 0;
    {
        const std::lock_guard lock(mutex_);
        request = ++newest_;
        ++counters_.requested;
        waiting_ = SJob{std::move(snapshot), mix, shown_level, request};
    }
    wake_.notify_one();
    return request;
}

void CPreviewEngine::Cancel() {
    const std::lock_guard lock(mutex_);
    cancelled_ = newest_.load();
    waiting_.reset();
}

bool CPreviewEngine::IsBusy() const {
    const std::lock_guard lock(mutex_);
    return working_ || waiting_;
}

std::shared_ptr<const CPyramid> CPreviewEngine::Original() const {
    const std::lock_guard lock(mutex_);
    return original_;
}

CPreviewEngine::SShown CPreviewEngine::Shown() const {
    const std::lock_guard lock(mutex_);
    return shown_;
}

CPreviewEngine::SCounters CPreviewEngine::Counters() const {
    const std::lock_guard lock(mutex_);
    return counters_;
}

bool CPreviewEngine::IsOvertaken(int request) const { return request != newest_; }
bool CPreviewEngine::IsGivenUp(int request) const { return ending_ || request <= cancelled_; }

void CPreviewEngine::Run() {
    pthread_setname_np(pthread_self(), "preview");
    while (const std::optional<SJob> job = Next()) Perform(*job);
}

std::optional<CPreviewEngine::SJob> CPreviewEngine::Next() {
    std::unique_lock lock(mutex_);
    if (working_) {
        working_ = false;
        lock.unlock();
        notify_();
        lock.lock();
    }
    wake_.wait(lock, [&] { return ending_ || waiting_; });
    if (ending_) return std::nullopt;
    std::optional<SJob> job = std::move(waiting_);
    waiting_.reset();
    working_ = true;
    ++counters_.started;
    if (IsOvertaken(job->request)) ++counters_.started_stale;
    return job;
}

void CPreviewEngine::Perform(const SJob& job) {
    PrepareSource(job.snapshot);
    if (!job.snapshot.command || !Original()) return;
    const int level = ReducedLevel(job);
    if (level > 0 && !RunReduced(job, level)) return;
    if (level > 0 && WaitForQuiet(job)) return;
    RunExact(job, level > 0);
}

// The picture's and the selection's halvings are made once, before the first preview.
void CPreviewEngine::PrepareSource(const SPreviewSnapshot& snapshot) {
    if (original_ || !snapshot.source.IsAttached()) return;
    const auto stop = [&] { return ending_.load(); };
    const CSize size{snapshot.source.GetWidth(), snapshot.source.GetHeight()};
    const auto made = CPyramid::Make(snapshot.source, 0, size, stop);
    const auto selection = snapshot.selection.IsAttached()
                               ? CPyramid::Make(snapshot.selection, 0, size, stop)
                               : nullptr;
    {
        const std::lock_guard lock(mutex_);
        original_ = made;
        selection_ = selection;
    }
    notify_();
}

// The smallest level that still shows something.
int CPreviewEngine::CoarsestLevel() const {
    int level = 0;
    while (level < original_->Last() && Pixels(original_->Level(level + 1)) >= kFewestPixels) {
        ++level;
    }
    return level;
}

// The level to draft at; 0 when that is the picture itself.
int CPreviewEngine::ReducedLevel(const SJob& job) {
    const int coarsest = CoarsestLevel();
    if (!draft_) {
        int level = 0;
        while (level < coarsest && Pixels(original_->Level(level)) > kFirstPixels) ++level;
        draft_.emplace(level);
    }
    draft_->MoveTo(std::max(draft_->Level(), std::min(job.shown_level, coarsest)));
    return draft_->Level();
}

// False when the rest of the job is not wanted any more.
bool CPreviewEngine::RunReduced(const SJob& job, int level) {
    SPreviewSnapshot snapshot = job.snapshot;
    TRef<ICoreCommand> clone;
    if (snapshot.command->Clone(clone.Receive()).Failed()) return true;
    snapshot.command = dynamic_cast<CCmdEffect*>(clone.Get());
    ReduceSnapshot(snapshot, level, original_->Level(level),
                   selection_ ? selection_->Level(level) : CRowIterator());
    CStage stage(*this, job.request, false);
    CStatusControl status(&stage);
    CRowIteratorBands result;
    const CErrorAutoThrow error = MakePicture(snapshot, job.mix, status, result);
    if (error.Failed()) {
        if (!stage.Stop()) return true;
        draft_->MoveTo(std::min(level + 1, CoarsestLevel()));
        CountOvertaken(job.request);
        return false;
    }
    auto picture = CPyramid::Make(result, level, original_->FullSize());
    draft_->Took(stage.Time(), job.shown_level, CoarsestLevel());
    {
        const std::lock_guard lock(mutex_);
        ++counters_.reduced;
    }
    Publish({std::move(picture), job.request, false, {}});
    return !IsGivenUp(job.request);
}

// Whether the user has changed something in the meantime.
bool CPreviewEngine::WaitForQuiet(const SJob& job) {
    std::unique_lock lock(mutex_);
    wake_.wait_for(lock, kQuiet, [&] { return ending_ || IsOvertaken(job.request); });
    lock.unlock();
    CountOvertaken(job.request);
    return IsOvertaken(job.request) || IsGivenUp(job.request);
}

void CPreviewEngine::CountOvertaken(int request) {
    const std::lock_guard lock(mutex_);
    if (IsOvertaken(request)) ++counters_.overtaken;
}

// `yields`: something of this request is shown already.
void CPreviewEngine::RunExact(const SJob& job, bool yields) {
    const SPreviewSnapshot& snapshot = job.snapshot;
    CStage stage(*this, job.request, yields);
    CStatusControl status(&stage);
    CRowIteratorBands result;
    const CErrorAutoThrow error = MakePicture(snapshot, job.mix, status, result);
    const auto stop = [&] { return stage.Stop(); };
    auto picture =
        error.Failed() ? nullptr : CPyramid::Make(result, 0, original_->FullSize(), stop);
    if (IsGivenUp(job.request)) return;
    if (!picture && stage.Stop()) {
        if (!yields) draft_->MoveTo(std::min(1, CoarsestLevel()));
        return CountOvertaken(job.request);
    }
    if (picture) {
        if (!yields) draft_->Took(stage.Time(), 0, CoarsestLevel());
        const std::lock_guard lock(mutex_);
        ++counters_.finished;
    }
    const std::string reason = picture ? "" : ReasonOf(error);
    Publish({std::move(picture), job.request, true, reason});
}

void CPreviewEngine::Publish(SShown shown) {
    {
        const std::lock_guard lock(mutex_);
        if (!shown.picture) shown.picture = shown_.picture;
        shown_ = std::move(shown);
    }
    notify_();
}
