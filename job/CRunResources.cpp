#include "job/CRunResources.h"

#include <fmt/format.h>

#include <span>

#include "hostlib/language/Texts.h"
#include "hostlib/parameters/NearestName.h"
#include "hostlib/parameters/ParameterValues.h"
#include "job/CJobError.h"

namespace {

// The parameters that name pictures of the library, each effect having at most one.
struct SKind {
    const wchar_t* parameter;
    int type;
    // what people are told: no such name, no such category; the name is one of this kind
    const char *no_name, *no_category, *is_this;
    const char* accepts;
};
constexpr wchar_t kCategory[] = L"Category";
constexpr SKind kKinds[] = {
    {L"PatternName", CFileResourceLibrary::kPatterns, TrLater("there is no pattern \"{}\""),
     TrLater("there is no category \"{}\" of patterns"),
     TrLater("\"{}\" is a pattern, which PatternName of Sculpture takes"),
     TrLater("the name of a pattern, which \"cmdtexture resources\" lists; empty: the first of its "
             "category")},
    {L"TextureName", CFileResourceLibrary::kTextures, TrLater("there is no texture \"{}\""),
     TrLater("there is no category \"{}\" of textures"),
     TrLater("\"{}\" is a texture, which TextureName of Texture takes"),
     TrLater("the name of a texture, which \"cmdtexture resources\" lists; empty: the first of its "
             "category")}};

const SKind* KindOf(const IParameter& parameter) {
    for (const SKind& kind : kKinds) {
        if (parameter.Name() == CString(kind.parameter)) return &kind;
    }
    return nullptr;
}

// `use` gets the kind, the index of its parameter, and the name and the category of the values.
template <class Use>
void ForPictureOf(const IParameterRepository& repository, Use&& use) {
    CString category;
    for (int i = 0; i < repository.Count(); ++i) {
        const IParameter* parameter = repository.At(i);
        if (parameter && parameter->Name() == CString(kCategory)) category = parameter->Text();
    }
    for (int i = 0; i < repository.Count(); ++i) {
        const IParameter* parameter = repository.At(i);
        const SKind* kind = parameter ? KindOf(*parameter) : nullptr;
        if (kind) use(*kind, i, parameter->Text(), ToUtf8(category));
    }
}

[[noreturn]] void FailUnknown(const char* what, const std::string& name, const std::string& hint) {
    throw CJobError(EJobFault::UnknownResource, texts::Format(what, fmt::make_format_args(name)),
                    hint);
}

// The name of the picture that is meant: of an empty name, the category's first.
std::string NameOf(const SKind& kind, const std::string& name, const std::string& category,
                   const CFileResourceLibrary& library) {
    if (const auto found = library.Find(kind.type, name, category)) return found->name;
    std::vector<std::string> names, categories;
    for (const auto& file : library.Files(kind.type)) {
        names.push_back(file.name);
        categories.push_back(file.category);
    }
    if (name.empty()) FailUnknown(kind.no_category, category, DidYouMean(category, categories));
    for (const SKind& other : kKinds) {
        if (other.type == kind.type || !library.Find(other.type, name)) continue;
        FailUnknown(kind.no_name, name, texts::Format(other.is_this, fmt::make_format_args(name)));
    }
    FailUnknown(kind.no_name, name, DidYouMean(name, names));
}

}  // namespace

int CRunResources::TypeOf(const IParameter& parameter) {
    const SKind* kind = KindOf(parameter);
    return kind ? kind->type : 0;
}

std::string CRunResources::Accepts(const IParameter& parameter) {
    if (const SKind* kind = KindOf(parameter)) return Tr(kind->accepts);
    if (parameter.Name() == CString(kCategory)) {
        return Tr("a category of \"cmdtexture resources\"; empty: any");
    }
    return parameters::DescribeValues(parameter);
}

void CRunResources::Check(const IParameterRepository& repository,
                          const CFileResourceLibrary& library) {
    ForPictureOf(repository,
                 [&](const SKind& kind, int, const CString& name, const std::string& category) {
                     NameOf(kind, ToUtf8(name), category, library);
                 });
}

void CRunResources::Settle(IParameterRepository& repository, const CFileResourceLibrary& library) {
    ForPictureOf(repository, [&](const SKind& kind, int index, const CString& name,
                                 const std::string& category) {
        if (!ToUtf8(name).empty() || category.empty()) return;
        const auto found = library.Find(kind.type, "", category);
        if (found) repository.At(index)->SetText(FromUtf8(found->name));
    });
}

CRunResources::CRunResources(const IParameterRepository& repository, CFileResourceLibrary& library)
    : library_(&library) {
    ForPictureOf(
        repository, [&](const SKind& kind, int, const CString& name, const std::string& category) {
            const std::string meant = NameOf(kind, ToUtf8(name), category, library);
            const CErrorAutoThrow error = library.LoadImage(kind.type, FromUtf8(meant), loaded_);
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
