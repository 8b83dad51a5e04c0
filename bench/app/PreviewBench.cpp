#include <fmt/format.h>

#include <QApplication>
#include <QTemporaryDir>
#include <QTimer>

#include "app/desktop/CDialogWindow.h"
#include "app/imagefile/CPictureFiles.h"
#include "hostlib/commands/CDocument.h"
#include "job/CEffectModule.h"
#include "job/CFileResourceLibrary.h"
#include "job/Installation.h"
#include "support/Bench.h"

// What a user waits for who drags a number five times for a second in the window of each effect,
// with a picture of 24 megapixels: how long it takes from a change until the picture for it, or for
// a later one, is shown; from the last change of a drag until the exact picture is ("final", median
// and longest); and how long the window did not answer ("blocked"; "working" is what it did itself
// in that time).
// bench-preview [EFFECT [MS]]: a change every MS milliseconds.
namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kDrag = std::chrono::seconds(1);
constexpr std::size_t kDrags = 5;
constexpr int kMoveMilliseconds = 30;

double Milliseconds(Clock::duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

// Processor time of this thread.
double WorkedMilliseconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
}

// Moves a number in an open window and watches.
class CDrag {
  public:
    CDrag(CDialogWindow& window, IDialogModel& model, int interval)
        : window_(window), model_(model), interval_(interval) {
        beat_.setTimerType(Qt::PreciseTimer);
        QObject::connect(&beat_, &QTimer::timeout, [this] { Beat(); });
        QObject::connect(&move_, &QTimer::timeout, [this] { Move(); });
        first_ = Clock::now();
        last_beat_ = first_;
        last_worked_ = WorkedMilliseconds();
        beat_.start(1);
    }

    void Report(const std::string& effect) {
        fmt::print(
            "{:14} {:6.0f} {:7.0f} {:6.0f} {:8.0f} {:6.0f} {:8.0f} {:8.0f} {:8.0f} {:7} {:6}\n",
            effect, first_wait_, Share(waits_, 0.5), Share(waits_, 0.95), Share(waits_, 1),
            Share(finals_, 0.5), Share(finals_, 1), block_, work_, counters_.reduced,
            counters_.started_stale);
        std::fflush(stdout);
    }

  private:
    void Beat() {
        const Clock::time_point now = Clock::now();
        block_ = std::max(block_, Milliseconds(now - last_beat_));
        const double worked = WorkedMilliseconds();
        work_ = std::max(work_, worked - last_worked_);
        last_worked_ = worked;
        last_beat_ = now;
        const CPreviewEngine::SShown shown = window_.Engine().Shown();
        if (!dragging_) {
            if (shown.picture && first_wait_ == 0) first_wait_ = Milliseconds(now - first_);
            if (shown.exact) Begin();
            return;
        }
        // What was published before this beat has been painted by the next.
        while (!moves_.empty() && moves_.front().request <= seen_) {
            waits_.push_back(Milliseconds(now - moves_.front().when));
            moves_.erase(moves_.begin());
        }
        const bool over = now - begun_ > kDrag;
        if (over) move_.stop();
        if (over && seen_exact_ && seen_ == last_.request) End(now);
        seen_ = shown.request;
        seen_exact_ = shown.exact;
    }

    void End(Clock::time_point now) {
        finals_.push_back(Milliseconds(now - last_.when));
        if (finals_.size() < kDrags) return Begin();
        beat_.stop();
        counters_ = window_.Engine().Counters();
        model_.Cancel();
    }

    void Begin() {
        dragging_ = true;
        begun_ = Clock::now();
        Move();
        move_.start(interval_);
    }

    void Move() {
        const Clock::time_point now = Clock::now();
        const SControlState state =
            model_.Control(model_.Template().ControlsOf(EControlKind::Number).front());
        const int value = state.value < state.maximum ? state.value + 1 : state.minimum;
        model_.Type(state.id, CString(std::to_wstring(value)));
        last_ = {window_.Engine().Counters().requested, now};
        moves_.push_back(last_);
    }

    static double Share(std::vector<double>& times, double share) {
        std::sort(times.begin(), times.end());
        const double last = static_cast<double>(times.size()) - 1;
        return times.empty() ? 0 : times[static_cast<std::size_t>(share * last)];
    }

    struct SMove {
        int request;
        Clock::time_point when;
    };
    CDialogWindow& window_;
    IDialogModel& model_;
    const int interval_;
    QTimer beat_, move_;
    Clock::time_point first_, begun_, last_beat_;
    bool dragging_ = false, seen_exact_ = false;
    int seen_ = 0;
    SMove last_{};
    std::vector<SMove> moves_;
    std::vector<double> waits_, finals_;
    double first_wait_ = 0, block_ = 0, work_ = 0, last_worked_ = 0;
    CPreviewEngine::SCounters counters_;
};

class CToolkit final : public IToolkit {
  public:
    explicit CToolkit(int interval) : interval_(interval) {}
    std::unique_ptr<IDialogView> Open(IDialogModel& model) override {
        auto window = std::make_unique<CDialogWindow>(model, options_);
        drag_ = std::make_unique<CDrag>(*window, model, interval_);
        return window;
    }
    CDrag& Drag() const { return *drag_; }

  private:
    const int interval_;
    std::unique_ptr<CDrag> drag_;
    SDesktopOptions options_{.input = "picture.png", .output = "", .language = "EN"};
};

}  // namespace

// An error ends it.
int main(int count, char** arguments) {  // NOLINT(bugprone-exception-escape)
    const QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.path().toUtf8());
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(count, arguments);
    const SInstallation installation = FindInstallation();
    const CEffectModule module(installation, "EN");
    CToolkit toolkit(count > 2 ? QByteArray(arguments[2]).toInt() : kMoveMilliseconds);
    InstallToolkit(&toolkit);
    const CRowIteratorBands photo = bench::Photo(ENPixelFormat::Colour8);
    fmt::print(
        "milliseconds    first  median   95 %  longest  final  longest  blocked  working  drafts  "
        "stale\n");
    for (const std::string& effect : module.Names()) {
        if (count > 1 && effect != arguments[1]) continue;
        const TRef<CDocument> document(new CDocument({photo.GetWidth(), photo.GetHeight()}));
        document->SetActiveImage(photo);
        const TRef<CFileResourceLibrary> library =
            OpenResources(installation, {}, imagefile::MakePictureFiles());
        const TRef<CExecutionContext> context(new CExecutionContext(document, library, nullptr));
        const TRef<CCmdEffect> command = module.CreateCommand(effect);
        PrepareCommand(*command, context.Get());
        const CErrorAutoThrow end = command->GetResourceData()->Edit(context.Get(), command.Get());
        if (end.Code() != TolmErrorCode::Cancelled) end.ThrowIfFailed();
        toolkit.Drag().Report(effect);
    }
    InstallToolkit(nullptr);
    return 0;
}
