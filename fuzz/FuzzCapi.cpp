#include <array>
#include <cstring>
#include <vector>

#include "FuzzInput.h"
#include "capi/cmdtexture.h"

// Whatever a program in C asks for: an effect, a picture of any shape, a place, a selection, a
// moment to cancel, values as text and as JSON. Nothing beside the destination is written, and
// nothing of it when the call fails; values that are accepted are told and accepted again.

namespace {

void Require(bool holds) {
    if (!holds) std::abort();
}

cmdtexture_library* Library() {
    static cmdtexture_library* const library = [] {
        cmdtexture_options options{};
        options.size = sizeof options;
        options.language = "EN";
        cmdtexture_library* opened = nullptr;
        Require(cmdtexture_open(&options, &opened, nullptr) == CMDTEXTURE_OK);
        return opened;
    }();
    return library;
}

// A status with its error, which says something exactly when the call failed.
template <class Call>
bool Succeeds(Call&& call) {
    cmdtexture_error* error = nullptr;
    const cmdtexture_status status = call(&error);
    Require((status == CMDTEXTURE_OK) == (error == nullptr));
    Require(cmdtexture_error_status(error) == status);
    Require((*cmdtexture_error_message(error) == 0) == (status == CMDTEXTURE_OK));
    cmdtexture_error_free(error);
    return status == CMDTEXTURE_OK;
}

// A picture with memory around and between its rows, sometimes upside down.
struct SMemory {
    SMemory(fuzz::CNumbers& numbers, cmdtexture_image shape) : image(shape) {
        const int channels = shape.layout <= 4 ? shape.layout : shape.layout - 2;
        const int sample = shape.depth == 16 ? 2 : 1;
        const int flags = numbers.Byte();
        const std::ptrdiff_t row = (shape.width * channels + flags % 8) * sample;
        bytes.resize(static_cast<std::size_t>(row * (shape.height + 2)));
        std::uint32_t state = numbers.Byte();
        for (std::uint8_t& byte : bytes) {
            state = state * 1664525 + 1013904223;
            byte = static_cast<std::uint8_t>(state >> 24);
        }
        const bool is_upside_down = (flags & 8) != 0;
        image.stride = is_upside_down ? -row : row;
        image.pixels = bytes.data() + row * (is_upside_down ? shape.height : 1);
        row_bytes = static_cast<std::size_t>(shape.width * channels * sample);
    }
    // Whether what lies beside the pixels is as in `before`.
    bool IsUntouchedAround(const std::vector<std::uint8_t>& before) const {
        std::vector<std::uint8_t> now = bytes;
        for (int y = 0; y < image.height; ++y) {
            const auto at = static_cast<const std::uint8_t*>(image.pixels) + image.stride * y;
            const auto offset = static_cast<std::size_t>(at - bytes.data());
            std::memcpy(now.data() + offset, before.data() + offset, row_bytes);
        }
        return now == before;
    }

    cmdtexture_image image;
    std::size_t row_bytes = 0;
    std::vector<std::uint8_t> bytes;
};

void SetValues(cmdtexture_effect* effect, std::string_view text) {
    const std::string all(text);
    const std::size_t split = all.find('=');
    if (split != std::string::npos && split < 40 && all[0] != '{') {
        const std::string name = all.substr(0, split), value = all.substr(split + 1);
        Succeeds([&](auto error) {
            return cmdtexture_effect_set(effect, name.c_str(), value.c_str(), error);
        });
    } else {
        Succeeds(
            [&](auto error) { return cmdtexture_effect_set_json(effect, all.c_str(), error); });
    }
    char* values = cmdtexture_effect_get_json(effect, nullptr);
    Require(values != nullptr);
    Require(
        Succeeds([&](auto error) { return cmdtexture_effect_set_json(effect, values, error); }));
    char* again = cmdtexture_effect_get_json(effect, nullptr);
    Require(again && std::strcmp(values, again) == 0);
    cmdtexture_free(values);
    cmdtexture_free(again);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::CNumbers numbers(data, size);
    const std::size_t index = numbers.Byte() % cmdtexture_effect_count(Library());
    cmdtexture_effect* effect = nullptr;
    Require(Succeeds([&](auto error) {
        return cmdtexture_effect_new(Library(), cmdtexture_effect_at(Library(), index)->name,
                                     &effect, error);
    }));
    cmdtexture_image shape{};
    shape.size = sizeof shape;
    const int kind = numbers.Byte();
    shape.layout = static_cast<cmdtexture_layout>(kind % 7);
    shape.depth = kind & 8 ? 16 : 8;
    shape.width = 1 + numbers.Byte() % 64;
    shape.height = 1 + numbers.Byte() % 64;
    if (shape.layout == 0) shape.layout = CMDTEXTURE_RGB;
    SMemory source(numbers, shape);
    // The other order of the colours is another layout of the same kind.
    if (numbers.Byte() % 2 && shape.layout >= CMDTEXTURE_RGB) {
        constexpr int kStep = CMDTEXTURE_BGR - CMDTEXTURE_RGB;
        shape.layout = static_cast<cmdtexture_layout>(
            shape.layout >= CMDTEXTURE_BGR ? shape.layout - kStep : shape.layout + kStep);
    }
    SMemory other(numbers, shape);
    SMemory& destination = numbers.Byte() % 4 == 0 ? source : other;
    // Sometimes a picture that cannot be.
    const int spoilt = numbers.Byte();
    if (spoilt == 1) destination.image.width = 0;
    if (spoilt == 2) destination.image.depth = 12;
    if (spoilt == 3) destination.image.stride = 1;
    if (spoilt == 4) std::memset(&destination.image.layout, numbers.Byte(), 1);

    const int canvas_kind = numbers.Byte() % 4;
    auto canvas_width = static_cast<std::int32_t>(numbers.Between(INT32_MIN, INT32_MAX));
    auto canvas_height = static_cast<std::int32_t>(numbers.Between(INT32_MIN, INT32_MAX));
    if (canvas_kind != 3) canvas_width %= 3000, canvas_height %= 3000;
    if (canvas_kind > 0) {
        Succeeds([&](auto error) {
            return cmdtexture_effect_set_canvas(effect, canvas_width, canvas_height, error);
        });
    }
    cmdtexture_run run{};
    run.size = sizeof run;
    run.x = static_cast<std::int32_t>(numbers.Between(INT32_MIN, INT32_MAX));
    run.y = static_cast<std::int32_t>(numbers.Between(INT32_MIN, INT32_MAX));
    if (canvas_kind != 1) run.x %= 500, run.y %= 500;
    std::array<std::uint8_t, 64 * 64> selection{};
    selection.fill(static_cast<std::uint8_t>(numbers.Byte()));
    if (numbers.Byte() % 2) {
        run.selection = selection.data();
        run.selection_stride = 64;
    }
    int calls_left = numbers.Byte();
    if (calls_left > 0) {
        run.user = &calls_left;
        run.progress = [](double, void* left) { return --*static_cast<int*>(left) == 0 ? 1 : 0; };
    }
    SetValues(effect, numbers.Rest());

    const auto before = destination.bytes;
    const bool is_done = Succeeds([&](auto error) {
        return cmdtexture_effect_apply(effect, &source.image, &destination.image, &run, error);
    });
    Require(is_done ? destination.IsUntouchedAround(before) : destination.bytes == before);
    cmdtexture_effect_free(effect);
    return 0;
}
