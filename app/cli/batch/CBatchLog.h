#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>

#include "host/core/CDescriptor.h"

// How far the log of a batch has a picture. Each outdoes those before it.
enum class EPictureState { Planned, Begun, Failed, Done };

// What a log says of one output: the last of its lines that tells.
struct SPictureRecord {
    EPictureState state = EPictureState::Planned;
    bool was_begun = false;       // the file under the output's name is the batch's own
    nlohmann::ordered_json work;  // the recipe, as the line of the run or of the plan has it
    nlohmann::ordered_json line;
};

// A record of a batch: a file of JSON lines, each an object with an "event":
//   run      a run begins: version, shard, recipe
//   planned  a picture is to be done: input, output, and its recipe where it has one of its own
//   begun    work on a picture has begun: from here on its output is the batch's to replace
//   done     digests, sizes and times of input and output, digest of the recipe, seconds, warnings
//   failed   status, error and hint
// A line is appended by one write, so that a process that is killed leaves at most one that is
// torn, at the end. May be used by several threads at once.
class CBatchLog {
  public:
    // Opens or makes the log, takes away a torn end, and reads what is there. Throws CCliError:
    // Output, when it cannot be written, is no log, or another process is at work with it.
    explicit CBatchLog(std::filesystem::path file);
    CBatchLog(const CBatchLog&) = delete;
    CBatchLog& operator=(const CBatchLog&) = delete;

    const std::filesystem::path& File() const { return file_; }
    // What was there when the log was opened, by the output's name.
    const std::map<std::string, SPictureRecord>& Records() const { return records_; }
    const SPictureRecord* Find(const std::string& output) const;
    // The number of lines that could not be read; their pictures are done anew.
    std::size_t DamagedLines() const { return damaged_; }

    // Appends lines. Throws CCliError, Output.
    void Append(const nlohmann::ordered_json& line) { Append(LineOf(line)); }
    void Append(const std::string& lines);
    static std::string LineOf(const nlohmann::ordered_json& line);

  private:
    std::filesystem::path file_;
    CDescriptor descriptor_;
    std::map<std::string, SPictureRecord> records_;
    std::size_t damaged_ = 0;
    std::mutex mutex_;
};

// The same without writing, and without another process's minding it. Throws CCliError,
// Unreadable.
struct SBatchLogContents {
    std::map<std::string, SPictureRecord> records;
    std::string shard;  // "I/N" of the last run; "1/1" is all
    std::size_t damaged = 0;
};
SBatchLogContents ReadBatchLog(const std::filesystem::path& file);

// A file's name in a line: names are bytes, those that are no UTF-8 are kept in hexadecimal beside
// a text that shows them.
void PutName(nlohmann::ordered_json& line, const std::string& key, const std::string& name);
std::string TakeName(const nlohmann::ordered_json& line, const std::string& key);
