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

/// Whether a text is UTF-8 (RFC 3629), told character by character.
inline bool isUtf8(std::string_view s) {
  for (std::size_t i = 0; i < s.size();) {
    const u32 lead = static_cast<u8>(s[i]), tail = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : 0;
    if ((lead >= 0x80 && lead < 0xC2) || lead > 0xF4 || s.size() - i <= tail) return false;
    u32 c = tail == 0 ? lead : lead & (0x3Fu >> tail);
    for (u32 k = 1; k <= tail; ++k) {
      if ((s[i + k] & 0xC0) != 0x80) return false;
      c = c << 6 | (static_cast<u8>(s[i + k]) & 0x3F);
    }
    if (tail > 1 && (c < (tail == 2 ? 0x800u : 0x10000u) || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000))) return false;
    i += tail + 1;
  }
  return true;
}
/// A text without the characters of a set.
inline std::string without(std::string_view set, std::string_view s) {
  std::string left;
  for (const char c : s)
    if (set.find(c) == set.npos) left += c;
  return left;
}

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
