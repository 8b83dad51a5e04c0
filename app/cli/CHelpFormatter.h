#pragma once

#include <CLI/CLI.hpp>
#include <string>

// The text of --help, in the language of messages, as wide as the terminal allows. Descriptions
// stand in the code in English and are translated here.
class CHelpFormatter final : public CLI::FormatterBase {
  public:
    std::string make_help(const CLI::App* app, std::string name,
                          CLI::AppFormatMode mode) const override;
};
