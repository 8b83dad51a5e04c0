#include "app/cli/batch/BatchReport.h"

#include <map>
#include <set>

#include "app/cli/batch/CBatchLog.h"
#include "app/cli/batch/CBatchRun.h"
#include "app/cli/batch/Shard.h"

namespace {

using nlohmann::ordered_json;

// The line of a manifest that does the picture.
ordered_json RowOf(const SPictureRecord& record) {
    ordered_json row = SBatchItem(record.line).Line();
    const ordered_json& work = record.work;
    if (work.is_array() && work.size() == 1) {
        row.update(work[0]);
    } else if (!work.is_null()) {
        row["recipe"] = work;
    }
    return row;
}

double SecondsOf(const ordered_json& line) {
    double seconds = 0;
    for (const auto& [part, spent] : line.at("seconds").items()) seconds += spent.get<double>();
    return seconds;
}

// Shards of the largest count that any log names.
std::vector<std::string> Without(const std::set<std::string>& shards) {
    int count = 1;
    for (const std::string& shard : shards) count = std::max(count, SShard::Parse(shard).count);
    std::vector<std::string> missing;
    for (int i = 1; count > 1 && i <= count; ++i) {
        const std::string name = SShard{i, count}.Text();
        if (!shards.contains(name)) missing.push_back(name);
    }
    return missing;
}

}  // namespace

SBatchReport ReportOn(const std::vector<std::string>& logs) {
    SBatchReport report;
    std::map<std::string, SPictureRecord> all;
    std::set<std::string> shards;
    for (const std::string& file : logs) {
        SBatchLogContents contents = ReadBatchLog(file);
        report.damaged_lines += contents.damaged;
        if (!contents.records.empty() || contents.shard != "1/1") shards.insert(contents.shard);
        for (auto& [output, record] : contents.records) {
            const auto [known, is_new] = all.try_emplace(output, record);
            if (!is_new && record.state > known->second.state) known->second = std::move(record);
        }
    }
    report.shards_without_log =
        shards.contains("1/1") ? std::vector<std::string>() : Without(shards);
    for (const auto& [output, record] : all) {
        const ordered_json& line = record.line;
        if (record.state == EPictureState::Done) {
            ++report.done;
            report.seconds += SecondsOf(line);
            report.megapixels +=
                line.at("width").get<double>() * line.at("height").get<double>() / 1e6;
            continue;
        }
        report.rows.push_back(RowOf(record));
        if (record.state == EPictureState::Failed) {
            ++report.failed;
            report.status = WorseStatus(report.status, line.value("status", 1));
            report.failures.push_back(line);
        } else {
            ++report.missing;
        }
    }
    return report;
}

ordered_json SBatchReport::ToJson() const {
    return {{"done", done},
            {"failed", failed},
            {"missing", missing},
            {"megapixels", megapixels},
            {"seconds", seconds},
            {"status", status},
            {"failures", failures},
            {"shardsWithoutLog", shards_without_log},
            {"damagedLines", damaged_lines}};
}
