#pragma once

#include <filesystem>
#include <string>
#include <vector>

// What a template can say of a picture.
struct SOutputFields {
    std::string dir;        // the input's folder below what was named; empty: that itself
    std::string name, ext;  // of the input file, without the dot
    std::string effect;     // its name, or the recipe's
    std::size_t index = 1;  // in the whole set, from 1 on
    int page = 1;
};

// Names of outputs: a text with {dir}, {name}, {ext}, {effect}, {index} and {page}; {index:4} has
// four digits at least, {{ and }} are braces.
class COutputTemplate {
  public:
    // Throws CCliError, Usage, for what it does not know.
    explicit COutputTemplate(const std::string& text);

    std::string Expand(const SOutputFields& fields) const;
    // The folder that all outputs lie in; empty when the template begins with a field.
    std::filesystem::path Folder() const;

  private:
    struct SPiece {
        std::string text;  // as it stands, or a field's name
        bool is_field = false;
        int digits = 0;
    };
    SPiece Field(const std::string& inside) const;
    std::string text_;
    std::vector<SPiece> pieces_;
};
