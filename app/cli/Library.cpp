#include "app/cli/Library.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "app/cli/CliError.h"
#include "hostlib/job/Installation.h"
#include "hostlib/job/NearestName.h"
#include "hostlib/job/ParameterValues.h"

void AddLibraryOption(CLI::App& command, std::vector<std::string>& folders) {
    command
        .add_option("--resources", folders,
                    "Look for patterns and textures here, too: a folder with patterns/ and "
                    "textures/, or of pictures")
        ->type_name("DIR")
        ->allow_extra_args(false);
}

TRef<CFileResourceLibrary> OpenLibrary(const std::vector<std::string>& folders) {
    std::vector<std::filesystem::path> all;
    for (const std::string& folder : folders) {
        if (!std::filesystem::is_directory(folder)) {
            throw CCliError(EExit::Usage, fmt::format("--resources {}: no such folder", folder));
        }
        all.emplace_back(folder);
    }
    all.push_back(FindInstallation().data / "resources");
    return TRef<CFileResourceLibrary>(new CFileResourceLibrary(all));
}

void CheckResourceNames(IParameterRepository& repository, const CFileResourceLibrary& library) {
    for (const IParameter* parameter : parameters::All(repository)) {
        const bool pattern = parameter->Name() == CString(L"PatternName");
        if (!pattern && !(parameter->Name() == CString(L"TextureName"))) continue;
        const int type =
            pattern ? CFileResourceLibrary::kPatterns : CFileResourceLibrary::kTextures;
        const std::string name = ToUtf8(parameter->Text());
        if (library.Find(type, name)) continue;
        std::vector<std::string> names;
        for (const auto& file : library.Files(type)) names.push_back(file.name);
        const std::string nearest = NearestName(name, names);
        throw CCliError(EExit::Usage,
                        fmt::format("there is no {} \"{}\"", pattern ? "pattern" : "texture", name),
                        nearest.empty() ? "\"cmdtexture resources\" lists them"
                                        : fmt::format("did you mean \"{}\"? \"cmdtexture "
                                                      "resources\" lists them",
                                                      nearest));
    }
}
