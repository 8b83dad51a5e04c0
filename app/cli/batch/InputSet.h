#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

// A picture file as the user meant it.
struct SFoundInput {
    std::string file;
    std::string folder;  // of the file below the folder or pattern that was named; of a file that
                         // was named, as it was named, without what leads upwards
};

// A folder's name below another one: without what leads to the root or upwards.
std::string FolderBelow(const std::filesystem::path& folder);

// The files that are named, those of folders (pictures by their extension, hidden ones left out;
// `recursive`: with all folders below), and those that patterns match (*, ?, [...] as in a shell,
// ** for any folders), each argument's in the order of their names. `skips` tells what is left out
// of folders and patterns: a folder with all that is in it, or a file. Throws CCliError:
// Unreadable, when a folder cannot be read or a pattern matches nothing.
std::vector<SFoundInput> FindInputs(const std::vector<std::string>& arguments, bool recursive,
                                    const std::function<bool(const std::filesystem::path&)>& skips);
