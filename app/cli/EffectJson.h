#pragma once

#include <nlohmann/json_fwd.hpp>

#include "host/commands/CCmdEffect.h"

// What identifies an effect, as JSON: name, displayName, guid, commandId.
nlohmann::ordered_json EffectToJson(const CCmdEffect& command);
