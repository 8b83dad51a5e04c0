#include <memory>
#include <stdexcept>

#include "FuzzInput.h"
#include "hostlib/system/CResourceModule.h"
#include "hostlib/windowing/DialogTemplate.h"

// Any bytes as a language's resource module, and every dialog template in it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::unique_ptr<CResourceModule> module;
    try {
        module = CResourceModule::Read(fuzz::FileOf(data, size));
    } catch (const std::runtime_error&) {
        return 0;
    }
    for (int id = 0; id < 64; ++id) {
        module->String(id);
        const std::string text = module->DialogTemplate(id);
        try {
            if (!text.empty()) ParseDialogTemplate(id, text);
        } catch (const CNException&) {
        }
    }
    return 0;
}
