// What the fuzz targets share: an input read as a row of choices, and a check that stops the program.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "varnik/Varnik.h"

#define CHECK(condition)                                                                \
  do {                                                                                  \
    if (!(condition)) {                                                                 \
      std::fprintf(stderr, "%s:%d: not so: %s\n", __FILE_NAME__, __LINE__, #condition); \
      std::abort();                                                                     \
    }                                                                                   \
  } while (false)

/// The input of a target, taken from the front; zeros when it is used up.
class Choices {
 public:
  Choices(const u8* data, std::size_t n) : left_(reinterpret_cast<const char*>(data), n) {}

  bool any() const { return !left_.empty(); }
  u8 byte() {
    const std::string_view one = bytes(1);
    return one.empty() ? u8{0} : static_cast<u8>(one[0]);
  }
  /// A number from 0 to `n` - 1, of at most 16 bits.
  u32 below(u32 n) {
    const u32 value = n > 256 ? byte() * 256u + byte() : byte();
    return value % n;
  }
  std::string_view bytes(u32 n) {
    const std::string_view taken = left_.substr(0, n);
    left_.remove_prefix(taken.size());
    return taken;
  }
  std::string_view rest() { return bytes(0xFFFFFFFF); }

 private:
  std::string_view left_;
};

inline const u8* bytesOf(std::string_view s) {
  return reinterpret_cast<const u8*>(s.data());
}
inline u32 countOf(std::string_view s) {
  return static_cast<u32>(s.size());
}
inline std::string_view viewOf(const DataBuffer& b) {
  return b.empty() ? std::string_view() : std::string_view(reinterpret_cast<const char*>(b.getData2()), b.size());
}
inline std::string_view viewOf(const StringBuffer& s) {
  return {s.getString(), s.getSize()};
}
