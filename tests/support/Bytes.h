// Buffers and texts for tests.
#pragma once

#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>

#include "tests/support/Random.h"
#include "varnik/Varnik.h"

/// A buffer that holds the given bytes.
inline DataBuffer bufferOf(std::string_view bytes) {
  DataBuffer b;
  b.append(bytes.data(), static_cast<u32>(bytes.size()));
  return b;
}

/// Bytes from hex digits; blanks are skipped.
inline std::string fromHex(std::string_view hex) {
  std::string bytes;
  int high = -1;
  for (const char c : hex) {
    if (c == ' ') continue;
    const int digit = c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10;
    if (high < 0) {
      high = digit;
    } else {
      bytes.push_back(static_cast<char>(high * 16 + digit));
      high = -1;
    }
  }
  return bytes;
}

/// The content of a buffer, of a string.
inline std::string textOf(const DataBuffer& b) {
  return b.empty() ? std::string() : std::string(reinterpret_cast<const char*>(b.getData2()), b.size());
}
inline std::string textOf(const StringBuffer& s) {
  return {s.getString(), s.getSize()};
}

/// A buffer as "CONTENT of CAPACITY", and what else there is to say of it.
inline std::string stateOf(const DataBuffer& b) {
  return textOf(b) + " of " + std::to_string(b.getBufSize()) + (b.getData2() ? "" : ", no block") +
         (b.heapUsage() == b.getBufSize() ? ""
          : b.heapUsage() == 0            ? ", lent"
                                          : ", miscounted") +
         (b.secure ? ", secure" : "");
}

inline const u8* bytesOf(std::string_view s) {
  return reinterpret_cast<const u8*>(s.data());
}
inline u32 countOf(std::string_view s) {
  return static_cast<u32>(s.size());
}

/// `n` random bytes, the same for the same seed.
inline std::string randomBytes(std::size_t n, u32 seed = 1) {
  std::mt19937 next = generator(seed);
  std::string bytes(n, '\0');
  for (char& c : bytes) c = static_cast<char>(next());
  return bytes;
}
