#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

#include "app/cli/CliError.h"

// What the program says to the user, on stderr. Nothing here throws or fails: a message that cannot
// be said is dropped, and the work goes on. Control characters are shown as \xNN, so that a message
// is one line whatever it quotes. On any thread.
namespace messages {

// Makes sure that descriptors 0 to 2 are open, so that no file of ours becomes one of them. Those
// that were closed fail when they are used.
void Open() noexcept;
// From now on a message is a line with a JSON object: "severity" ("error", "warning" or "note"),
// "message", "hint" (null without one), of an error also "status" and "kind".
void UseJson() noexcept;
bool UsesJson() noexcept;

// "cmdtexture: TEXT" and the end of the line.
void Say(std::string_view text) noexcept;
void Warn(std::string_view text) noexcept;
// The second line, "hint: HINT", is left out for an empty hint.
void Error(int status, std::string_view text, std::string_view hint = {}) noexcept;
// The text as it stands: progress, which redraws its line.
void Show(std::string_view text) noexcept;

// The warnings that were said so far, and an error, as objects like those above.
nlohmann::ordered_json Warnings();
nlohmann::ordered_json ErrorToJson(int status, std::string_view text, std::string_view hint);

}  // namespace messages
