#include <nlohmann/json.hpp>

#include "FuzzInput.h"
#include "hostlib/parameters/ParameterValues.h"
#include "hostlib/parameters/Presets.h"

// Any bytes as a preset file of every effect. What is accepted is written and read back alike.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const nlohmann::ordered_json values = presets::Read(fuzz::FileOf(data, size));
        for (const std::string& name : fuzz::Module().Names()) {
            const TRef<CCmdEffect> command = fuzz::Module().CreateCommand(name);
            PrepareCommand(*command, nullptr);
            IParameterRepository& repository = *command->BoundRepository();
            try {
                parameters::SetFromJson(repository, values);
                const nlohmann::ordered_json set = parameters::ToJson(repository);
                parameters::SetFromJson(repository, set);
                if (parameters::ToJson(repository) != set) std::abort();
            } catch (const parameters::CRefused&) {
            }
        }
    } catch (const CNException&) {
    }
    return 0;
}
