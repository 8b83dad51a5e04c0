#pragma once
#include "effects/Blinds.h"
