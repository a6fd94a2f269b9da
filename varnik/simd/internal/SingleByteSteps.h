// Single-byte charsets, character by character: what the scalar and the vector form share.
#pragma once

#include "varnik/simd/SingleByte.h"
#include "varnik/simd/internal/UtfForms.h"

namespace vk_simd {

/// Converts bytes to UTF-8 until `end` bytes are read; false when one does not fit.
inline bool bytesToUtf8(UtfCursor& c, const SingleByteCharset& from, u32 end) {
  u32 flags = 0;
  // Four bytes are stored whatever the length, while there is room for them.
  for (; c.read < end && c.roomLeft() >= 4; ++c.read) {
    const Utf8Entry entry = from.utf8[c.in[c.read]];
    const u8 text[4] = {static_cast<u8>(entry), static_cast<u8>(entry >> 8), static_cast<u8>(entry >> 16),
                        static_cast<u8>(entry >> 24)};
    __builtin_memcpy(c.out + c.written, text, 4);
    c.written += entrySize(entry);
    flags |= entry;
  }
  for (; c.read < end; ++c.read) {
    const Utf8Entry entry = from.utf8[c.in[c.read]];
    if (c.roomLeft() < entrySize(entry)) break;
    for (u32 k = 0; k < entrySize(entry); ++k) c.out[c.written++] = static_cast<u8>(entry >> (8 * k));
    flags |= entry;
  }
  c.bad |= (flags & kNoCharacter) != 0;
  return c.read >= end;
}

/// Converts characters of UTF-8 to bytes until at least `end` bytes are read; false when one does not fit.
inline bool utf8ToBytes(UtfCursor& c, const SingleByteCharset& to, u32 end) {
  while (c.read < end) {
    if (c.roomLeft() == 0) return false;
    if (to.ascii && c.in[c.read] < 0x80) {
      c.out[c.written++] = c.in[c.read++];
      continue;
    }
    u32 code;
    c.read += Utf8::decode(c.in + c.read, c.left(), code);
    const u8 byte = code < 0x10000 ? to.byteOf(code) : u8{0};
    const bool bad = byte == 0 && code != 0;
    c.out[c.written++] = bad ? to.substitute : byte;
    c.bad |= bad;
  }
  return true;
}

}  // namespace vk_simd
