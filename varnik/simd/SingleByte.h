// Charsets in which a byte is a character, to and from UTF-8, by tables that the caller supplies.
#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"
#include "varnik/simd/Utf.h"

namespace vk_simd {

/// What a byte stands for: bits 0 to 23 hold its UTF-8 bytes, the first one lowest, bits 24 and 25 their count (1 to
/// 3), and kNoCharacter is set where it stands for nothing (the bytes are those of U+FFFD then).
using Utf8Entry = u32;
constexpr Utf8Entry kNoCharacter = 0x80000000;
constexpr u32 entrySize(Utf8Entry entry) {
  return entry >> 24 & 3;
}

/// The bytes of UTF-16 units: bytes[blockOf[unit >> 6]][unit & 63], 0 for a unit that has none (and for unit 0).
struct ByteOfUnit {
  const u8* blockOf;      // 1,024 block numbers
  const u8 (*bytes)[64];  // the blocks; block 0 is all zero
  u8 of(u32 unit) const { return bytes[blockOf[unit >> 6]][unit & 63]; }
};

/// Converts data[0, n) to UTF-8 by a table of 256 entries, as `convertUtf` does. `ascii` promises that the bytes below
/// 0x80 are ASCII in the table.
UtfProgress singleByteToUtf8(const Utf8Entry* table, bool ascii, const u8* data, u32 n, u8* out, u32 room);
/// Returns how many bytes of UTF-8 that makes.
u64 singleByteUtf8Length(const Utf8Entry* table, bool ascii, const u8* data, u32 n);

/// Converts UTF-8 to bytes. What is no UTF-8 and what has no byte becomes `substitute` and counts as bad. `ascii`
/// promises that ASCII stands for itself.
UtfProgress utf8ToSingleByte(const ByteOfUnit& map, bool ascii, u8 substitute, const u8* data, u32 n, u8* out,
                             u32 room);

UtfProgress singleByteToUtf8Scalar(const Utf8Entry* table, bool ascii, const u8* data, u32 n, u8* out, u32 room);
u64 singleByteUtf8LengthScalar(const Utf8Entry* table, bool ascii, const u8* data, u32 n);
UtfProgress utf8ToSingleByteScalar(const ByteOfUnit& map, bool ascii, u8 substitute, const u8* data, u32 n, u8* out,
                                   u32 room);

}  // namespace vk_simd
