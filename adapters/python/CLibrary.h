#pragma once

#include <pybind11/numpy.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "capi/cmdtexture.h"

// A call of the C interface that failed.
struct SFailure {
    cmdtexture_status status;
    std::string message, hint;
};

// Which picture is worked on, and how; sides and places are in pixels. The destination is an array
// of the source's shape and type, or the source itself.
struct SRun {
    pybind11::array source, destination;
    std::optional<std::pair<int, int>> canvas;     // width and height
    std::pair<int, int> at;                        // the picture's place on the canvas
    std::optional<pybind11::array> selection;      // uint8, of the picture's size
    pybind11::object progress = pybind11::none();  // a function of the fraction
};

// A library of the C interface for the Python side of the module. What fails is thrown as SFailure.
// Several threads may use it at once.
class CLibrary {
  public:
    // Empty options are those of the C interface.
    CLibrary(const std::optional<std::string>& prefix, const std::optional<std::string>& language,
             const std::vector<std::string>& resource_folders);

    std::string Language() const;
    // JSON as the C interface gives it.
    std::string List() const;
    std::string Describe(const std::string& effect) const;
    std::vector<std::string> Presets(const std::string& effect) const;
    std::vector<std::string> Resources(cmdtexture_resource kind) const;
    // Runs an effect with a preset, a name or a file, and with a JSON object of values; or a recipe
    // that is a JSON text or lies in a file. Other threads of the interpreter run meanwhile. On
    // failure the destination is untouched.
    void Run(const std::string& effect, const std::optional<std::string>& preset,
             const std::string& values, const SRun& run) const;
    void RunRecipe(const std::string& recipe, bool is_file, const SRun& run) const;

  private:
    struct SClose {
        void operator()(cmdtexture_library* library) const { cmdtexture_close(library); }
    };
    std::unique_ptr<cmdtexture_library, SClose> library_;
};
