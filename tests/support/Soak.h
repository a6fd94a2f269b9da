// Tests that have a short form for every day and a long one for the night.
#pragma once

#include <cstdlib>

/// True when the environment asks for the long forms: VARNIK_SOAK is set and not empty.
inline bool soaks() {
  const char* const value = std::getenv("VARNIK_SOAK");
  return value && *value;
}
