// eda: hex for the eye and the voice.
//
//   0a1b 2c3d ... 16 groups of four digits, a blank between them, LF between lines
#include "varnik/services/codecs/ContentEncoder.h"
#include "varnik/services/codecs/internal/Room.h"

namespace {

constexpr u32 kLineBytes = 32;
constexpr u32 kLineLength = 80;  // 64 digits, 15 blanks, LF

// Writes the digits of data[0, n) with a separator behind every two bytes; returns the place behind the last digit.
u8* putGroups(const u8* data, u32 n, u8* to) {
  for (u32 i = 0; i < n; ++i) {
    if (i != 0 && i % 2 == 0) *to++ = i % kLineBytes == 0 ? u8{'\n'} : u8{' '};
    *to++ = static_cast<u8>("0123456789abcdef"[data[i] >> 4]);
    *to++ = static_cast<u8>("0123456789abcdef"[data[i] & 15]);
  }
  return to;
}

}  // namespace

bool ContentEncoder::encodeEda(const u8* data, u32 n, StringBuffer& out) {
  if (n == 0) return true;
  u8* const to = vk_codec::roomFor(out, (u64{n} / kLineBytes + 1) * kLineLength);
  if (!to) return false;
  out.addToSize(static_cast<u32>(putGroups(data, n, to) - to));
  return true;
}
