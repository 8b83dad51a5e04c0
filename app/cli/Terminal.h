#pragma once

#include <string>
#include <string_view>

// How much fits a line. Texts are UTF-8, and every character counts as one column.

// The columns of the terminal behind a descriptor; without one, what COLUMNS says, or 80.
int TerminalColumns(int descriptor);
int ColumnsOf(std::string_view text);
// The text, or its beginning with an ellipsis, in at most so many columns.
std::string Shortened(const std::string& text, int columns);
// The text in lines of at most so many columns, broken at spaces; all but the first are indented by
// `indent` columns, and the first begins at column `at`. Without an end of line after the last.
std::string Wrapped(const std::string& text, int columns, int indent, int at);
