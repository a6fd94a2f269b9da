#include "varnik/services/memory/Text.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>

u32 vk_strlen(const char* text) {
  constexpr std::size_t kMost = std::numeric_limits<u32>::max();
  return text ? static_cast<u32>(std::min(std::strlen(text), kMost)) : 0;
}

s32 vk_strncmp(const char* a, const char* b, s32 n) {
  return n > 0 ? std::strncmp(a, b, static_cast<u32>(n)) : 0;
}

char* vk_strstr(const char* text, const char* needle) {
  return text && needle ? const_cast<char*>(std::strstr(text, needle)) : nullptr;
}

char* vk_strchr(const char* text, s32 c) {
  return text ? const_cast<char*>(std::strchr(text, c)) : nullptr;
}

u32 vk_uintToDecimal(u32 value, char* area) {
  return static_cast<u32>(std::to_chars(area, area + 10, value).ptr - area);
}

u32 vk_parseDecimal(const char* text, u32& consumed) {
  constexpr u64 kMost = std::numeric_limits<u32>::max();
  u64 value = 0;
  consumed = 0;
  if (!text) return 0;
  for (; text[consumed] >= '0' && text[consumed] <= '9'; ++consumed)
    value = std::min(value * 10 + static_cast<u64>(text[consumed] - '0'), kMost);
  return static_cast<u32>(value);
}
