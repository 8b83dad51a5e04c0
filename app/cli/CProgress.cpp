#include "app/cli/CProgress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>

#include "app/cli/Interruption.h"
#include "app/cli/Messages.h"
#include "app/cli/Terminal.h"
#include "hostlib/language/Texts.h"

namespace {
constexpr int kBarWidth = 40;
constexpr int kLeastBarWidth = 10;
constexpr int kLineSteps = 10;
constexpr auto kRedraw = std::chrono::milliseconds(50);

// "[####....]  40% part", with the part's name first, then the bar, as short as the line needs it.
std::string Bar(double done, const std::string& part, int columns) {
    std::string percent = fmt::format("{:3.0f}%", done * 100);
    const int room = columns - 1 - static_cast<int>(percent.size());  // the last column stays free
    const int bar = std::clamp(room - 4 - ColumnsOf(part), kLeastBarWidth, kBarWidth);
    if (room < bar + 4) return percent;
    const int step = static_cast<int>(done * bar);
    return fmt::format("[{:#<{}}{:.<{}}] {} {}", "", step, "", bar - step, percent,
                       Shortened(part, room - bar - 4));
}

}  // namespace

CProgress::EStyle CProgress::StyleFor(bool quiet, bool asked_for) {
    if (quiet) return EStyle::None;
    if (isatty(STDERR_FILENO)) return EStyle::Bar;
    return asked_for ? EStyle::Lines : EStyle::None;
}

// The bar is wiped: what stays on the terminal is messages only.
CProgress::~CProgress() {
    if (style_ == EStyle::Bar && last_step_ >= 0) messages::Show("\r\x1b[K");
}

void CProgress::BeginPart(const std::string& name, double until) {
    part_ = name;
    from_ = until_;
    until_ = until;
}

bool CProgress::OnProgress(double fraction) {
    const double done = from_ + (until_ - from_) * std::clamp(fraction, 0.0, 1.0);
    if (style_ != EStyle::None) Draw(done);
    const bool stop = shared_ && shared_->OnProgress(done);
    return stop || interruption::Requested();
}

void CProgress::Draw(double done) {
    const bool bar = style_ == EStyle::Bar;
    const int step = static_cast<int>(done * (bar ? kBarWidth : kLineSteps));
    if (step == last_step_) return;
    const auto now = std::chrono::steady_clock::now();
    if (bar && now - last_drawn_ < kRedraw) return;
    last_step_ = step;
    last_drawn_ = now;
    if (bar) {
        messages::Show(fmt::format("\r{}\x1b[K", Bar(done, part_, TerminalColumns(STDERR_FILENO))));
    } else {
        messages::Show(fmt::format("{}: {:3.0f}% {}\n", Tr("progress"), done * 100, part_));
    }
}
