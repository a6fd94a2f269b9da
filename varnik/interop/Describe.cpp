#include "varnik/interop/Describe.h"

#include <algorithm>

#include "varnik/services/memory/Text.h"

namespace {

constexpr u32 kBytesShown = 32;
// The longest: ten digits, the word, three characters a byte, the dots.
static_assert(10 + sizeof(" bytes:") + 3 * kBytesShown + sizeof(" ...") <= kVkDescribeRoom);

u32 put(char* at, const char* text) {
  const u32 n = vk_strlen(text);
  vk_memcpy(at, text, n);
  return n;
}

u32 putHex(char* at, u8 byte) {
  constexpr char kDigits[] = "0123456789abcdef";
  at[0] = ' ';
  at[1] = kDigits[byte >> 4];
  at[2] = kDigits[byte & 15];
  return 3;
}

}  // namespace

u32 vk_describe(const DataBuffer& b, char (&area)[kVkDescribeRoom]) {
  if (!b.checkValidityDb()) return put(area, "destroyed");
  u32 n = vk_uintToDecimal(b.size(), area);
  n += put(area + n, b.size() == 1 ? " byte" : " bytes");
  if (b.secure) return n + put(area + n, ", secure");
  if (b.empty()) return n;
  n += put(area + n, ":");
  for (u32 i = 0; i < std::min(b.size(), kBytesShown); ++i) n += putHex(area + n, b.byteAt(i));
  return b.size() > kBytesShown ? n + put(area + n, " ...") : n;
}
