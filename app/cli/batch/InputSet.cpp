#include "app/cli/batch/InputSet.h"

#include <fmt/format.h>
#include <fnmatch.h>

#include <algorithm>
#include <climits>

#include "app/cli/CliError.h"
#include "app/imagefile/FileKinds.h"
#include "hostlib/language/Texts.h"
#include "hostlib/system/CFileError.h"

namespace {

namespace fs = std::filesystem;

using Skips = std::function<bool(const fs::path&)>;
using Parts = std::vector<std::string>;

constexpr const char* kAnyFolders = "**";

bool IsPattern(const std::string& text) { return text.find_first_of("*?[") != std::string::npos; }

// All picture files below a folder, `depth` folders down at most.
void Walk(const fs::path& folder, int depth, const Skips& skips, std::vector<fs::path>& files) {
    std::error_code error;
    for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
        const fs::path& path = at->path();
        if (path.filename().native().starts_with('.') || skips(path)) continue;
        std::error_code none;
        if (at->is_directory(none)) {
            // A link to a folder may lead back to where it lies.
            if (depth > 0 && !at->is_symlink(none)) Walk(path, depth - 1, skips, files);
        } else if (imagefile::KindByExtension(path)) {
            files.push_back(path);
        }
    }
    if (error) {
        throw CCliError(EExit::Unreadable, Tr("{}: the folder cannot be read: {}", folder.string(),
                                              SystemText(error.value())));
    }
}

bool Matches(Parts::const_iterator pattern, Parts::const_iterator pattern_end,
             Parts::const_iterator part, Parts::const_iterator end) {
    if (pattern == pattern_end) return part == end;
    if (*pattern == kAnyFolders) {
        return Matches(pattern + 1, pattern_end, part, end) ||
               (part != end && Matches(pattern, pattern_end, part + 1, end));
    }
    return part != end && fnmatch(pattern->c_str(), part->c_str(), 0) == 0 &&
           Matches(pattern + 1, pattern_end, part + 1, end);
}

// The folder before the first part with a wildcard, and the parts from there on.
struct SPattern {
    fs::path folder;
    Parts parts;

    explicit SPattern(const std::string& text) {
        for (const fs::path& part : fs::path(text)) {
            if (parts.empty() && !IsPattern(part)) {
                folder /= part;
            } else {
                parts.push_back(part);
            }
        }
        if (folder.empty()) folder = ".";
    }
    int Depth() const {
        const bool is_any = std::find(parts.begin(), parts.end(), kAnyFolders) != parts.end();
        return is_any ? INT_MAX : static_cast<int>(parts.size()) - 1;
    }
    bool Has(const fs::path& file) const {
        Parts names;
        for (const fs::path& part : file.lexically_relative(folder)) names.push_back(part);
        return Matches(parts.begin(), parts.end(), names.begin(), names.end());
    }
};

void Add(const fs::path& root, std::vector<fs::path> files, std::vector<SFoundInput>& found) {
    std::sort(files.begin(), files.end());
    for (const fs::path& file : files) {
        found.push_back(
            {file.lexically_normal(), FolderBelow(file.parent_path().lexically_relative(root))});
    }
}

}  // namespace

std::string FolderBelow(const fs::path& folder) {
    fs::path below;
    for (const fs::path& part : folder.lexically_normal().relative_path()) {
        if (part != ".." && part != "." && !part.empty()) below /= part;
    }
    return below;
}

std::vector<SFoundInput> FindInputs(const std::vector<std::string>& arguments, bool recursive,
                                    const Skips& skips) {
    std::vector<SFoundInput> found;
    for (const std::string& argument : arguments) {
        std::error_code none;
        std::vector<fs::path> files;
        if (fs::is_directory(argument, none)) {
            fs::path root = fs::path(argument).lexically_normal();
            if (!root.has_filename()) root = root.parent_path();
            Walk(root, recursive ? INT_MAX : 0, skips, files);
            Add(root, std::move(files), found);
        } else if (!fs::exists(fs::symlink_status(argument, none)) && IsPattern(argument)) {
            const SPattern pattern(argument);
            if (fs::is_directory(pattern.folder, none)) {
                Walk(pattern.folder, pattern.Depth(), skips, files);
            }
            std::erase_if(files, [&](const fs::path& file) { return !pattern.Has(file); });
            if (files.empty()) {
                throw CCliError(EExit::Unreadable, Tr("{}: no picture has such a name", argument),
                                Tr("pictures are told by their extension"));
            }
            Add(pattern.folder, std::move(files), found);
        } else {
            const fs::path file = fs::path(argument).lexically_normal();
            found.push_back({file, FolderBelow(file.parent_path())});
        }
    }
    return found;
}
