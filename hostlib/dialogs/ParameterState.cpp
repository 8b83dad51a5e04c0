#include "hostlib/dialogs/ParameterState.h"

#include <algorithm>
#include <cmath>

#include "hostlib/parameters/ParameterValues.h"

namespace parameters {
namespace {

// 0 up to, but not including, 1, in steps of 2^-30.
double Fraction(CRuntimeRandom& random) {
    const int high = random.Next();
    return (high * 32768.0 + random.Next()) / (32768.0 * 32768.0);
}

// 0 to count - 1.
std::int64_t Draw(std::int64_t count, CRuntimeRandom& random) {
    constexpr std::int64_t kLong = 1000;
    const double fraction = Fraction(random);
    const auto size = static_cast<double>(count);
    const double drawn =
        count > kLong ? std::exp(fraction * std::log(size + 1.0)) - 1.0 : fraction * size;
    return std::clamp<std::int64_t>(static_cast<std::int64_t>(drawn), 0, count - 1);
}

}  // namespace

Values Capture(IParameterRepository& repository) {
    Values values;
    for (const IParameter* parameter : All(repository)) {
        values.emplace_back(parameter->Number(), parameter->Text());
    }
    return values;
}

void Restore(IParameterRepository& repository, const Values& values) {
    const std::vector<IParameter*> all = All(repository);
    for (std::size_t i = 0; i < std::min(all.size(), values.size()); ++i) {
        all[i]->SetNumber(values[i].first);
        all[i]->SetText(values[i].second);
    }
}

bool HasDefault(const IParameter& parameter) {
    return parameter.Number() == parameter.DefaultNumber() &&
           parameter.Text() == parameter.DefaultText();
}

void SetDefault(IParameter& parameter) {
    parameter.SetNumber(parameter.DefaultNumber());
    parameter.SetText(parameter.DefaultText());
    BringIntoRange(parameter);
}

void BringIntoRange(IParameter& parameter) {
    const bool ranged = parameter.Type() == EParameterType::Integer ||
                        parameter.Type() == EParameterType::Enumeration;
    if (!ranged || parameter.Minimum() > parameter.Maximum()) return;
    parameter.SetNumber(
        std::clamp<std::int64_t>(parameter.Number(), parameter.Minimum(), parameter.Maximum()));
}

void SetRandom(IParameter& parameter, CRuntimeRandom& random) {
    constexpr std::int64_t kColours = 0x1000000;
    const std::int64_t range = std::int64_t{parameter.Maximum()} - parameter.Minimum() + 1;
    switch (parameter.Type()) {
        case EParameterType::Integer:
        case EParameterType::Boolean:
        case EParameterType::Enumeration:
            if (range > 0) parameter.SetNumber(parameter.Minimum() + Draw(range, random));
            break;
        case EParameterType::Colour:
            parameter.SetNumber(static_cast<std::int64_t>(Fraction(random) * kColours));
            break;
        case EParameterType::String:
            break;
    }
}

std::size_t RandomIndex(std::size_t count, CRuntimeRandom& random) {
    return static_cast<std::size_t>(Fraction(random) * static_cast<double>(count));
}

}  // namespace parameters
