#include "app/cli/batch/Shard.h"

#include <fmt/format.h>

#include <charconv>
#include <cstdlib>

#include "app/cli/CliError.h"
#include "app/cli/batch/Digest.h"
#include "hostlib/language/Texts.h"

namespace {

std::optional<int> Number(std::string_view text) {
    int number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool is_whole = read.ec == std::errc() && read.ptr == text.data() + text.size();
    return is_whole ? std::optional<int>(number) : std::nullopt;
}

int Variable(const char* name, int otherwise) {
    const char* text = std::getenv(name);
    return text ? Number(text).value_or(otherwise) : otherwise;
}

}  // namespace

SShard SShard::Parse(const std::string& text) {
    const std::size_t slash = text.find('/');
    if (slash != std::string::npos) {
        const auto index = Number(std::string_view(text).substr(0, slash));
        const auto count = Number(std::string_view(text).substr(slash + 1));
        if (index && count && *index >= 1 && *index <= *count) return {*index, *count};
    }
    throw CCliError(EExit::Usage, Tr("--shard {}: not a shard", text),
                    Tr("a shard is written I/N, I from 1 to N: 3/8"));
}

std::optional<SShard> SShard::FromEnvironment() {
    const int id = Variable("SLURM_ARRAY_TASK_ID", -1);
    if (id < 0) return std::nullopt;
    const int count = Variable("SLURM_ARRAY_TASK_COUNT", 1);
    const int first = Variable("SLURM_ARRAY_TASK_MIN", id);
    const int last = Variable("SLURM_ARRAY_TASK_MAX", id);
    const int step = std::max(Variable("SLURM_ARRAY_TASK_STEP", 1), 1);
    if ((last - first) / step + 1 != count || (id - first) % step != 0) {
        throw CCliError(EExit::Usage,
                        Tr("the {} tasks of the Slurm array have no even indices from {} "
                           "to {}",
                           count, first, last),
                        Tr("give each task its --shard I/N, or submit an array such as 1-8"));
    }
    return SShard{(id - first) / step + 1, count};
}

bool SShard::Has(const std::string& input) const {
    return digest::Of(input) % static_cast<std::uint64_t>(count) ==
           static_cast<std::uint64_t>(index - 1);
}

std::string SShard::Text() const { return fmt::format("{}/{}", index, count); }
