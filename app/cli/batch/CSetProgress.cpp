#include "app/cli/batch/CSetProgress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>

#include "app/cli/Messages.h"
#include "app/cli/Terminal.h"
#include "hostlib/language/Texts.h"

namespace {

constexpr int kBarWidth = 20;
constexpr std::size_t kTenths = 10;

double Rate(double amount, const SBatchTotals& totals) {
    return totals.seconds > 0 ? amount / totals.seconds : 0;
}

// The time that what is left takes at the rate so far.
std::string TimeLeft(const SBatchTotals& totals) {
    const std::size_t worked = totals.done + totals.failed;
    if (worked == 0) return "";
    const auto seconds = static_cast<long>(totals.seconds / static_cast<double>(worked) *
                                           static_cast<double>(totals.Left()));
    return Tr(", {}:{:02}:{:02} left", seconds / 3600, seconds / 60 % 60, seconds % 60);
}

}  // namespace

std::string Counts(const SBatchTotals& totals) {
    const std::string left = totals.Left() > 0 ? Tr(", {} left", totals.Left()) : "";
    return Tr("{} done, {} failed, {} skipped{}", totals.done, totals.failed, totals.skipped, left);
}

std::string Rates(const SBatchTotals& totals) {
    return Tr("{:.1f} pictures/s, {:.1f} megapixels/s",
              Rate(static_cast<double>(totals.done), totals), Rate(totals.megapixels, totals));
}

CSetProgress::~CSetProgress() {
    if (is_drawn_) messages::Show("\r\x1b[K");
}

void CSetProgress::Show(const SBatchTotals& totals) {
    if (style_ == CProgress::EStyle::None || totals.pictures == 0) return;
    const std::size_t ready = totals.pictures - totals.Left();
    if (style_ == CProgress::EStyle::Bar) {
        const int columns = TerminalColumns(STDERR_FILENO) - 1;
        const std::string text = Tr("{}/{} {} failed, {}{}", ready, totals.pictures, totals.failed,
                                    Rates(totals), TimeLeft(totals));
        const int width = std::clamp(columns - 3 - ColumnsOf(text), 0, kBarWidth);
        const int bar = static_cast<int>(ready * static_cast<std::size_t>(width) / totals.pictures);
        const std::string shown =
            width < 5 ? text : fmt::format("[{:#<{}}{:.<{}}] {}", "", bar, "", width - bar, text);
        messages::Show(fmt::format("\r{}\x1b[K", Shortened(shown, columns)));
        is_drawn_ = true;
        return;
    }
    const std::size_t tenth = ready * kTenths / totals.pictures;
    if (tenth == last_tenth_) return;
    last_tenth_ = tenth;
    messages::Show(fmt::format("{}: {:3}% {}, {}\n", Tr("progress"), tenth * kTenths,
                               Counts(totals), Rates(totals)));
}
