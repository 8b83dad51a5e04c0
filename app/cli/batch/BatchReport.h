#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

// What the logs of a batch, one a shard, come to.
struct SBatchReport {
    std::size_t done = 0, failed = 0, missing = 0;  // missing: planned or begun, not finished
    double megapixels = 0;
    double seconds = 0;                            // of work, summed over all pictures
    int status = 0;                                // the worst of the failures'
    std::vector<nlohmann::ordered_json> rows;      // of a manifest: what failed or is missing
    std::vector<nlohmann::ordered_json> failures;  // lines of the logs
    std::vector<std::string> shards_without_log;   // "3/4"
    std::size_t damaged_lines = 0;

    nlohmann::ordered_json ToJson() const;
};

// A picture that is in several logs is done when it is in one. Throws CCliError.
SBatchReport ReportOn(const std::vector<std::string>& logs);
