#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include "adapters/python/CLibrary.h"

// cmdtexture._native: the C interface for the package around it, which knows pictures of other
// kinds, the names of keywords and the classes of exceptions.

namespace py = pybind11;

namespace {

void RaiseFailure(std::exception_ptr thrown) {
    try {
        if (thrown) std::rethrow_exception(std::move(thrown));
    } catch (const SFailure& failure) {
        const py::object error =
            py::module_::import("cmdtexture._errors")
                .attr("error_of")(static_cast<int>(failure.status), failure.message, failure.hint);
        PyErr_SetObject(py::type::handle_of(error).ptr(), error.ptr());
    }
}

using Pair = std::pair<int, int>;

void Run(const CLibrary& library, const std::string& effect,
         const std::optional<std::string>& preset, const std::string& values,
         const py::array& source, const py::array& destination, const std::optional<Pair>& canvas,
         const Pair& at, const std::optional<py::array>& mask, const py::object& progress) {
    library.Run(effect, preset, values, {source, destination, canvas, at, mask, progress});
}

void RunRecipe(const CLibrary& library, const std::string& recipe, bool is_file,
               const py::array& source, const py::array& destination,
               const std::optional<Pair>& canvas, const Pair& at,
               const std::optional<py::array>& mask, const py::object& progress) {
    library.RunRecipe(recipe, is_file, {source, destination, canvas, at, mask, progress});
}

}  // namespace

PYBIND11_MODULE(_native, module) {
    py::register_exception_translator(&RaiseFailure);
    module.attr("__version__") = cmdtexture_version();
    py::class_<CLibrary>(module, "Library", "A library of the C interface.",
                         py::metaclass(reinterpret_cast<PyObject*>(&PyType_Type)))
        .def(py::init<const std::optional<std::string>&, const std::optional<std::string>&,
                      const std::vector<std::string>&>(),
             py::arg("prefix"), py::arg("language"), py::arg("resources"))
        .def_property_readonly("language", &CLibrary::Language)
        .def("list_effects", &CLibrary::List)
        .def("describe", &CLibrary::Describe, py::arg("effect"))
        .def("presets", &CLibrary::Presets, py::arg("effect"))
        .def("patterns",
             [](const CLibrary& library) { return library.Resources(CMDTEXTURE_PATTERN); })
        .def("textures",
             [](const CLibrary& library) { return library.Resources(CMDTEXTURE_TEXTURE); })
        .def("run", &Run, py::arg("effect"), py::arg("preset"), py::arg("values"),
             py::arg("source"), py::arg("destination"), py::arg("canvas"), py::arg("at"),
             py::arg("mask"), py::arg("progress"))
        .def("run_recipe", &RunRecipe, py::arg("recipe"), py::arg("is_file"), py::arg("source"),
             py::arg("destination"), py::arg("canvas"), py::arg("at"), py::arg("mask"),
             py::arg("progress"));
}
