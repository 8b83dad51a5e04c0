#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "host/system/ResourceModule.h"

// A language resource module: a data file in JSON that the build writes from the texts of a
// language. It holds strings by id, pictures (PNG, base64) by id, and dialog templates, and says of
// which format it is and in which language, whose folder it lies in.
class CResourceModule {
  public:
    // Throws std::runtime_error, which names the file, when it cannot be read, is damaged, or is of
    // another format or language.
    static std::unique_ptr<CResourceModule> Read(const std::filesystem::path& file);

    const std::filesystem::path& File() const { return file_; }
    CString String(int id) const;
    bool HasPicture(int id) const { return pictures_.contains(id); }
    // The dialog template `id` as JSON text; empty when there is none.
    std::string DialogTemplate(int id) const;

  private:
    std::filesystem::path file_;
    std::map<int, CString> strings_;
    std::map<int, std::string> pictures_;
    std::map<int, std::string> dialogs_;
};
