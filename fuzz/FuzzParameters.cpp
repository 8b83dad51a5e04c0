#include "FuzzInput.h"
#include "hostlib/parameters/ParameterValues.h"

// The first byte tells the effect; the rest are lines of NAME=VALUE. What is accepted reads back as
// the same text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::CNumbers numbers(data, size);
    const TRef<CCmdEffect> command = fuzz::Command(numbers, nullptr);
    std::string_view text = numbers.Rest();
    while (!text.empty()) {
        const std::string line(text.substr(0, text.find('\n')));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        const std::size_t equals = std::min(line.find('='), line.size());
        try {
            IParameter& parameter =
                parameters::Find(*command->BoundRepository(), line.substr(0, equals));
            const std::string text_of_value = line.substr(std::min(equals + 1, line.size()));
            parameters::Set(parameter, parameters::Parse(parameter, text_of_value));
            const std::string set = parameters::ToText(parameter);
            parameters::Set(parameter, parameters::Parse(parameter, set));
            if (parameters::ToText(parameter) != set) std::abort();
        } catch (const parameters::CRefused&) {
        }
    }
    return 0;
}
