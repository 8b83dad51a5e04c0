#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "app/cli/Document.h"
#include "app/cli/Jobs.h"
#include "app/cli/batch/Shard.h"

class CBatchLog;

// What the user said about a batch.
struct SBatchOptions {
    SSessionOptions session;
    SWorkOptions work;
    SDocumentOptions reading;  // its mask, canvas and place hold where the manifest says nothing
    imagefile::SWriteOptions coding;
    std::vector<std::string> inputs;
    std::string output;    // a template
    std::string manifest;  // a file
    std::string log;       // a file; empty: in the working folder
    std::string shard;     // "I/N"; empty: the environment's, or all
    std::vector<std::string> report;
    int jobs = 0;  // 0: as many as there are processors
    bool recursive = false, verify = false, stop_on_error = false, retry_failed = false;
    bool overwrite = false, dry_run = false, quiet = false, progress = false, json = false;
};

// One of the recipes that a batch runs.
struct SBatchRecipe {
    CRecipe recipe;
    nlohmann::ordered_json work;  // as a manifest says it: a file, or a list of steps
    std::string title;            // for {effect}
    std::string digest;           // of all that its results depend on besides the picture
};

struct SBatchItem {
    std::string input, output;
    int page = 0;            // from 1 on; 0 takes the only one
    std::size_t recipe = 0;  // in the plan's list
    std::string mask, canvas, at;

    // The names by which a line of a manifest or of the log tells all but the recipe.
    static const std::vector<std::string> kNames;
    SBatchItem() = default;
    explicit SBatchItem(const nlohmann::ordered_json& line);
    bool operator==(const SBatchItem&) const = default;
    // How it is read, with what the user said for all.
    SDocumentOptions Document(const SDocumentOptions& all) const;
    // The beginning of such a line.
    nlohmann::ordered_json Line(const char* event = nullptr) const;
};

// All that is to be done, before anything is.
struct SBatchPlan {
    std::vector<SBatchRecipe> recipes;
    std::vector<SBatchItem> items;  // of the shard
    SShard shard;
    std::size_t of = 0;  // pictures in all shards
    // What is done where the manifest does not say; null without one.
    nlohmann::ordered_json common_work;
};

// Finds the inputs, reads the manifest and the recipes, names the outputs, and refuses what cannot
// be meant: two inputs with one output, also when the names differ by letter case only, or an
// output that is an input. `log` tells which files are results. Throws CCliError.
SBatchPlan MakePlan(const CJobLibrary& library, const SBatchOptions& options, const CBatchLog* log);
