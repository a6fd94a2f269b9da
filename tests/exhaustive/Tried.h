// How much of all inputs is tried: 2^24 and a little in an ordinary build, 2^20 under a sanitizer, and all of them
// where VARNIK_SOAK asks for it.
#pragma once

#include <string>

#include "tests/support/Soak.h"
#include "varnik/services/memory/Types.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsSlow = true;
#else
constexpr bool kIsSlow = false;
#endif

/// The bytes that are tried at each place: `first` of them (those that matter most), or all 256.
inline std::string bytesTried(const std::string& first, u32 count) {
  std::string bytes = first;
  for (u32 c = 0; c < 256; ++c)
    if (first.find(static_cast<char>(c)) == first.npos) bytes += static_cast<char>(c);
  return bytes.substr(0, soaks() ? 256 : kIsSlow ? count / 2 : count);
}
