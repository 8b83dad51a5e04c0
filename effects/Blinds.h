#pragma once
#include "engine/MaterialEffects.h"
S(ApplyBlinds) S(ApplyWeave)
