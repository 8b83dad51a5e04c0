#include "app/imagefile/CPictureFiles.h"

#include "app/imagefile/CImageFile.h"
#include "app/imagefile/FileKinds.h"

namespace imagefile {
namespace {

template <class Operation>
auto WithHostErrors(Operation&& operation) {
    try {
        return operation();
    } catch (const CImageFileError& error) {
        throw CNException(TolmErrorCode::ReadFailed, error.what());
    }
}

class CPictureFiles final : public IPictureFiles {
  public:
    bool IsPicture(const std::filesystem::path& file) const override {
        return KindByExtension(file) != nullptr;
    }
    CRowIteratorBands Read(const std::filesystem::path& file) const override {
        return WithHostErrors([&] { return ReadImage(file).pixels; });
    }
    CSize ReadSize(const std::filesystem::path& file) const override {
        return WithHostErrors([&] { return ReadHeader(file).size; });
    }
    void Write(const std::filesystem::path& file, const CRowIteratorBands& picture) const override {
        WithHostErrors(
            [&] { WriteImage(file, picture, nullptr, {.overwrite = true, .input = {}}); });
    }
};

}  // namespace

std::shared_ptr<const IPictureFiles> MakePictureFiles() {
    return std::make_shared<const CPictureFiles>();
}

}  // namespace imagefile
