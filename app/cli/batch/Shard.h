#pragma once

#include <optional>
#include <string>

// A part of a set of pictures: shard `index` (from 1 on) of `count`. Which shard a picture belongs
// to depends on its name alone, so that shards are disjoint and complete whatever the order and the
// machine.
struct SShard {
    int index = 1;
    int count = 1;

    // "I/N". Throws CCliError, Usage.
    static SShard Parse(const std::string& text);
    // That of the task of a Slurm array job that this process is; nothing outside of one. Throws
    // CCliError, Usage, for an array whose indices have gaps.
    static std::optional<SShard> FromEnvironment();

    bool Has(const std::string& input) const;
    std::string Text() const;
};
