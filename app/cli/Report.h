#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

// What the program answers on standard output as JSON: one value.
namespace report {
// A result as it is. What is not UTF-8 in it, such as file names, is replaced.
void Print(const nlohmann::ordered_json& result);
// What a subcommand did: an object, which gets the "warnings" that were said.
void PrintDone(nlohmann::ordered_json result);
// In place of a result: {"error": ..., "warnings": [...]}. Nothing after LeaveOutput.
void PrintError(int status, const std::string& what, const std::string& hint);
// Sends what is printed on its way. Throws CCliError, Output, with `trouble` when that fails,
// unless a reader went away, such as that of "list | head", who has what it wanted.
void Flush(const std::string& trouble);
// Standard output is a picture's.
void LeaveOutput();
}  // namespace report
