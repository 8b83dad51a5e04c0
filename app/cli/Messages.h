#pragma once

#include <string>
#include <string_view>

// What the program says to the user, on stderr. Nothing here throws or fails: a message that cannot
// be said is dropped, and the work goes on. Control characters are shown as \xNN, so that a message
// is one line whatever it quotes.
namespace messages {

// Makes sure that descriptors 0 to 2 are open, so that no file of ours becomes one of them. Those
// that were closed fail when they are used.
void Open() noexcept;

// "cmdtexture: TEXT" and the end of the line.
void Say(std::string_view text) noexcept;
void Warn(std::string_view text) noexcept;
// The second line, "hint: HINT", is left out for an empty hint.
void Error(std::string_view text, std::string_view hint = {}) noexcept;
// The text as it stands: progress, which redraws its line.
void Show(std::string_view text) noexcept;

}  // namespace messages
