#include "job/UserResources.h"

#include <algorithm>

#include "host/core/CErrorAutoThrow.h"
#include "hostlib/language/Texts.h"
#include "hostlib/system/CFileError.h"
#include "hostlib/system/ConfigFolders.h"
#include "job/CFileResourceLibrary.h"
#include "job/CJobError.h"
#include "resources/synthesis/Photo.h"

namespace user_resources {
namespace {

void CheckName(const std::string& name, const std::string& refusal) {
    constexpr std::size_t kLongest = 100;
    if (!name.empty() && name[0] != '.' && name.find('/') == std::string::npos &&
        name.size() <= kLongest) {
        return;
    }
    throw CJobError(
        EJobFault::Refused, refusal,
        Tr("a name has 1 to 100 characters, no slash, and no full stop at its beginning"));
}

CRowIteratorBands Made(const CRowIteratorBands& photo, const SNewResource& wanted) {
    try {
        return wanted.type == CFileResourceLibrary::kPatterns
                   ? synthesis::PatternOf(photo, wanted.seamless)
                   : synthesis::TextureOf(photo, wanted.seamless);
    } catch (const CNException& error) {
        if (error.Code() != TolmErrorCode::UnusableInput) throw;
        throw CJobError(EJobFault::Refused, texts::OfModule(error.what()));
    }
}

}  // namespace

std::filesystem::path Folder() { return folders::UserData() / "resources"; }

std::filesystem::path Add(const CRowIteratorBands& photo, const SNewResource& wanted,
                          const IPictureFiles& pictures) {
    CheckName(wanted.name, Tr("\"{}\" is no name for a picture", wanted.name));
    CheckName(wanted.category, Tr("\"{}\" is no name for a category", wanted.category));
    const bool pattern = wanted.type == CFileResourceLibrary::kPatterns;
    std::filesystem::path file =
        Folder() / (pattern ? "patterns" : "textures") / wanted.category / (wanted.name + ".png");
    std::error_code error;
    if (!wanted.overwrite && std::filesystem::exists(file, error)) {
        throw CJobError(EJobFault::Resource, Tr("{}: there is one already", file.string()),
                        Tr("--overwrite replaces it"));
    }
    const CRowIteratorBands picture = Made(photo, wanted);
    std::filesystem::create_directories(file.parent_path(), error);
    try {
        pictures.Write(file, picture);
    } catch (const CNException& failed) {
        throw CJobError(EJobFault::Resource, failed.what());
    }
    return file;
}

bool Holds(const std::filesystem::path& file) {
    const std::filesystem::path own = Folder();
    return std::mismatch(own.begin(), own.end(), file.begin(), file.end()).first == own.end();
}

void Remove(const std::filesystem::path& file) {
    std::error_code error;
    if (!Holds(file)) {
        throw CJobError(EJobFault::Resource,
                        Tr("{}: not a picture of your own library", file.string()),
                        Tr("only those below {} are removed", Folder().string()));
    }
    if (!std::filesystem::remove(file, error)) {
        throw CJobError(EJobFault::Resource,
                        Tr("{}: cannot be removed: {}", file.string(), SystemText(error.value())));
    }
    std::filesystem::remove(file.parent_path(), error);  // fails while there is something in it
}

}  // namespace user_resources
