#pragma once

// Marks what the host library gives to the module; everything else stays hidden in its library.
#define HOST_API __attribute__((visibility("default")))
