#include "job/CRunResources.h"

#include <fmt/format.h>

#include <span>

#include "hostlib/parameters/NearestName.h"
#include "job/CJobError.h"

namespace {

// The parameters that name pictures of the library, each effect having at most one.
struct SKind {
    const wchar_t* parameter;
    int type;
    const char* name;
};
constexpr SKind kKinds[] = {{L"PatternName", CFileResourceLibrary::kPatterns, "pattern"},
                            {L"TextureName", CFileResourceLibrary::kTextures, "texture"}};

// `use` gets the kind and the name that the values give.
template <class Use>
void ForPictureOf(const IParameterRepository& repository, Use&& use) {
    for (int i = 0; i < repository.Count(); ++i) {
        const IParameter* parameter = repository.At(i);
        for (const SKind& kind : kKinds) {
            if (parameter && parameter->Name() == CString(kind.parameter)) {
                use(kind, parameter->Text());
            }
        }
    }
}

void CheckName(const SKind& kind, const std::string& name, const CFileResourceLibrary& library) {
    if (library.Find(kind.type, name)) return;
    std::vector<std::string> names;
    for (const auto& file : library.Files(kind.type)) names.push_back(file.name);
    const std::string nearest = NearestName(name, names);
    throw CJobError(EJobFault::UnknownResource,
                    fmt::format("there is no {} \"{}\"", kind.name, name),
                    nearest.empty() ? "" : fmt::format("did you mean \"{}\"?", nearest));
}

}  // namespace

void CRunResources::Check(const IParameterRepository& repository,
                          const CFileResourceLibrary& library) {
    ForPictureOf(repository, [&](const SKind& kind, const CString& name) {
        CheckName(kind, ToUtf8(name), library);
    });
}

CRunResources::CRunResources(const IParameterRepository& repository, CFileResourceLibrary& library)
    : library_(&library) {
    ForPictureOf(repository, [&](const SKind& kind, const CString& name) {
        CheckName(kind, ToUtf8(name), library);
        const CErrorAutoThrow error = library.LoadImage(kind.type, name, loaded_);
        if (error.Failed()) throw CJobError(EJobFault::Unreadable, error.Text());
        type_ = kind.type;
        name_ = name;
    });
}

CErrorAutoThrow CRunResources::LoadImage(int type, const CString& name, CRowIteratorBands& image) {
    if (type != type_ || name != name_) return library_->LoadImage(type, name, image);
    image = loaded_;
    return {};
}
