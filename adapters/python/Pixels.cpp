#include "adapters/python/Pixels.h"

#include <cstdlib>
#include <optional>

namespace py = pybind11;

namespace {

template <class Sample>
bool IsOf(const py::array& array) {
    return py::isinstance<py::array_t<Sample>>(array);
}

void CheckKind(const py::array& array) {
    if (!IsOf<std::uint8_t>(array) && !IsOf<std::uint16_t>(array)) {
        throw py::type_error("a picture has samples of uint8 or uint16");
    }
    const bool is_picture =
        array.ndim() == 2 || (array.ndim() == 3 && array.shape(2) >= 1 && array.shape(2) <= 4);
    if (!is_picture) throw py::type_error("a picture is rows by columns by at most 4 samples");
    for (py::ssize_t i = 0; i < 2; ++i) {
        const bool is_side = array.shape(i) > 0 && array.shape(i) <= INT32_MAX;
        if (!is_side) throw py::value_error("a picture has no such sides");
    }
}

// The picture in the array's own memory, if it can be described.
std::optional<cmdtexture_image> InPlace(const py::array& array) {
    const py::ssize_t sample = array.itemsize();
    const py::ssize_t channels = array.ndim() == 3 ? array.shape(2) : 1;
    const py::ssize_t height = array.shape(0), width = array.shape(1);
    const bool is_reversed = channels == 3 && array.strides(2) == -sample;
    // Nobody steps along a side of 1, whose stride can be anything.
    if (channels > 1 && !is_reversed && array.strides(2) != sample) return {};
    if (width > 1 && array.strides(1) != channels * sample) return {};
    if (height > 1 && std::abs(array.strides(0)) < width * channels * sample) return {};
    const py::ssize_t stride = height > 1 ? array.strides(0) : width * channels * sample;

    auto* first = static_cast<std::uint8_t*>(const_cast<void*>(array.data()));
    if (is_reversed) first -= 2 * sample;
    if ((reinterpret_cast<std::uintptr_t>(first) | static_cast<std::uintptr_t>(stride)) %
        static_cast<std::uintptr_t>(sample)) {
        return {};
    }
    cmdtexture_image image{};
    image.size = sizeof image;
    image.pixels = first;
    image.stride = stride;
    image.width = static_cast<std::int32_t>(width);
    image.height = static_cast<std::int32_t>(height);
    image.layout = is_reversed ? CMDTEXTURE_BGR : static_cast<cmdtexture_layout>(channels);
    image.depth = static_cast<int>(8 * sample);
    return image;
}

// Another array with the same pixels, packed.
py::array Packed(const py::array& array) { return array.attr("copy")("C"); }

}  // namespace

CArrayPicture::CArrayPicture(const py::array& array) : array_(array), held_(array), image_{} {
    CheckKind(array_);
    std::optional<cmdtexture_image> image = InPlace(held_);
    if (!image) {
        held_ = Packed(array_);
        image = InPlace(held_);
    }
    image_ = image.value();
}

void CArrayPicture::WriteBack() const {
    if (!held_.is(array_)) py::module_::import("numpy").attr("copyto")(array_, held_);
}

CArraySelection::CArraySelection(const py::array& array, const cmdtexture_image& picture)
    : array_(array) {
    if (!IsOf<std::uint8_t>(array) || array.ndim() != 2 || array.shape(0) != picture.height ||
        array.shape(1) != picture.width) {
        throw py::value_error("a mask is rows by columns of uint8, as many as the picture has");
    }
    const bool is_packed = (array.shape(1) <= 1 || array.strides(1) == 1) &&
                           (array.shape(0) <= 1 || std::abs(array.strides(0)) >= array.shape(1));
    if (!is_packed || array.shape(0) == 1) array_ = Packed(array);
}

const std::uint8_t* CArraySelection::Pixels() const {
    return static_cast<const std::uint8_t*>(array_.data());
}
