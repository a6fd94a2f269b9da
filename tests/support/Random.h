// Random choices for tests, the same for the same seed; the environment's VARNIK_SEED makes others of all of them.
#pragma once

#include <cstdlib>
#include <random>
#include <string>
#include <string_view>

#include "varnik/services/memory/Types.h"

inline std::mt19937 generator(u32 seed) {
  const char* const other = std::getenv("VARNIK_SEED");
  return std::mt19937(seed + (other ? static_cast<u32>(std::atoi(other)) * 0x9E3779B9u : 0));
}

class Random {
 public:
  explicit Random(u32 seed) : next_(generator(seed)) {}

  /// A number from 0 to `n` - 1.
  u32 below(u32 n) { return static_cast<u32>(next_() % n); }
  /// `n` characters of an alphabet; one that stands in it twice comes twice as often.
  std::string text(u32 n, std::string_view alphabet) {
    std::string made(n, '\0');
    for (char& c : made) c = alphabet[below(static_cast<u32>(alphabet.size()))];
    return made;
  }

 private:
  std::mt19937 next_;
};
