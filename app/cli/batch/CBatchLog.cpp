#include "app/cli/batch/CBatchLog.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utf8.h>

#include <cerrno>
#include <charconv>
#include <string_view>
#include <utility>

#include "app/cli/CliError.h"
#include "hostlib/language/Texts.h"
#include "hostlib/system/CFileError.h"

namespace {

using nlohmann::ordered_json;

constexpr const char* kHexSuffix = "Hex";

[[noreturn]] void Refuse(const std::filesystem::path& file, const std::string& what,
                         const std::string& hint = {}) {
    throw CCliError(EExit::Output, fmt::format("{}: {}", DisplayText(file), what), hint);
}

std::string ReadAll(int descriptor, const std::filesystem::path& file) {
    std::string text;
    constexpr std::size_t kPiece = 1 << 20;
    for (ssize_t got = 1; got > 0;) {
        const std::size_t before = text.size();
        text.resize(before + kPiece);
        got = pread(descriptor, text.data() + before, kPiece, static_cast<off_t>(before));
        if (got < 0) Refuse(file, Tr("the log cannot be read: {}", SystemText(errno)));
        text.resize(before + static_cast<std::size_t>(got));
    }
    return text;
}

std::optional<EPictureState> StateOf(const std::string& event) {
    constexpr std::pair<const char*, EPictureState> kStates[] = {
        {"planned", EPictureState::Planned},
        {"begun", EPictureState::Begun},
        {"failed", EPictureState::Failed},
        {"done", EPictureState::Done}};
    for (const auto& [name, state] : kStates) {
        if (event == name) return state;
    }
    return std::nullopt;
}

// Takes lines into the contents, one after the other.
class CReader {
  public:
    SBatchLogContents contents{.records = {}, .shard = "1/1"};

    void Take(std::string_view text) {
        while (!text.empty()) {
            const std::size_t end = text.find('\n');
            TakeLine(text.substr(0, end));
            text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        }
    }

  private:
    void TakeLine(std::string_view text) {
        ordered_json line = ordered_json::parse(text, nullptr, false);
        try {
            if (line.is_object() && TakeEvent(std::move(line))) return;
        } catch (const ordered_json::exception&) {  // a name that is missing or of another type
        }
        ++contents.damaged;
    }

    bool TakeEvent(ordered_json line) {
        const std::string event = line.at("event");
        if (event == "run") {
            contents.shard = line.at("shard");
            work_ = line.at("work");
            return true;
        }
        const auto state = StateOf(event);
        if (!state) return false;
        SPictureRecord& record = contents.records[TakeName(line, "output")];
        record.state = *state;
        record.was_begun = record.was_begun || *state == EPictureState::Begun;
        if (*state == EPictureState::Planned) record.work = line.value("work", work_);
        record.line = std::move(line);
        return true;
    }

    ordered_json work_;
};

bool IsLog(std::string_view text) {
    const ordered_json first = ordered_json::parse(text.substr(0, text.find('\n')), nullptr, false);
    return first.is_object() && first.contains("event");
}

SBatchLogContents Contents(std::string_view text, const std::filesystem::path& file) {
    if (!text.empty() && !IsLog(text)) {
        Refuse(file, Tr("is not the log of a batch"), Tr("name another file with --log"));
    }
    CReader reader;
    reader.Take(text);
    return std::move(reader.contents);
}

CDescriptor OpenLog(const std::filesystem::path& file, int flags) {
    CDescriptor opened(open(file.c_str(), flags | O_CLOEXEC | O_NONBLOCK, 0666));
    struct stat status = {};
    if (!opened || fstat(opened.Get(), &status) != 0) {
        Refuse(file, Tr("the log cannot be opened: {}", SystemText(errno)),
               Tr("--log names another place for it"));
    }
    if (!S_ISREG(status.st_mode)) Refuse(file, Tr("the log is no regular file"));
    return opened;
}

}  // namespace

CBatchLog::CBatchLog(std::filesystem::path file)
    : file_(std::move(file)), descriptor_(OpenLog(file_, O_RDWR | O_APPEND | O_CREAT)) {
    if (flock(descriptor_.Get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        Refuse(file_, Tr("another batch is at work with this log"),
               Tr("wait for it, or give this one a --log of its own"));
    }
    std::string text = ReadAll(descriptor_.Get(), file_);
    const std::size_t whole = text.rfind('\n') == std::string::npos ? 0 : text.rfind('\n') + 1;
    const std::string_view begin = "{\"event\":";
    const bool is_torn_first = whole == 0 && begin.starts_with(text.substr(0, begin.size()));
    if (whole != text.size()) {
        if (!is_torn_first) Contents(text, file_);  // only a log is ever shortened
        if (ftruncate(descriptor_.Get(), static_cast<off_t>(whole)) != 0) {
            Refuse(file_, Tr("the log's torn end cannot be taken away: {}", SystemText(errno)));
        }
        text.resize(whole);
    }
    SBatchLogContents contents = Contents(text, file_);
    records_ = std::move(contents.records);
    damaged_ = contents.damaged;
}

const SPictureRecord* CBatchLog::Find(const std::string& output) const {
    const auto found = records_.find(output);
    return found == records_.end() ? nullptr : &found->second;
}

void CBatchLog::Append(const std::string& lines) {
    const std::lock_guard lock(mutex_);
    std::string_view rest = lines;
    while (!rest.empty()) {
        const ssize_t written = write(descriptor_.Get(), rest.data(), rest.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) Refuse(file_, Tr("the log cannot be written: {}", SystemText(errno)));
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
}

std::string CBatchLog::LineOf(const ordered_json& line) {
    return line.dump(-1, ' ', false, ordered_json::error_handler_t::replace) + '\n';
}

SBatchLogContents ReadBatchLog(const std::filesystem::path& file) {
    try {
        const CDescriptor opened = OpenLog(file, O_RDONLY);
        std::string text = ReadAll(opened.Get(), file);
        if (text.rfind('\n') != std::string::npos) text.resize(text.rfind('\n') + 1);
        return Contents(text, file);
    } catch (const CCliError& error) {  // here it is an input
        throw CCliError(EExit::Unreadable, error.what());
    }
}

void PutName(ordered_json& line, const std::string& key, const std::string& name) {
    line[key] = name;
    if (utf8::is_valid(name.begin(), name.end())) return;
    std::string hex;
    for (const char byte : name) hex += fmt::format("{:02x}", static_cast<unsigned char>(byte));
    line[key + kHexSuffix] = hex;
}

std::string TakeName(const ordered_json& line, const std::string& key) {
    if (!line.contains(key + kHexSuffix)) return line.at(key);
    const std::string hex = line[key + kHexSuffix];
    std::string name;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        int byte = 0;
        std::from_chars(hex.data() + i, hex.data() + i + 2, byte, 16);
        name += static_cast<char>(byte);
    }
    return name;
}
