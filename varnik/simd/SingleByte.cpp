#include "varnik/simd/SingleByte.h"

#include <algorithm>
#include <cstring>

#include "varnik/simd/AsciiRun.h"
#include "varnik/simd/internal/UtfForms.h"

namespace vk_simd {
namespace {

bool putEntry(UtfCursor& c, Utf8Entry entry) {
  const u32 size = entrySize(entry);
  if (c.roomLeft() < size) return false;
  for (u32 k = 0; k < size; ++k) c.out[c.written + k] = static_cast<u8>(entry >> (8 * k));
  c.read += 1;
  c.written += size;
  c.bad |= (entry & kNoCharacter) != 0;
  return true;
}

// Converts one character or bad part of UTF-8.
bool putByte(UtfCursor& c, const ByteOfUnit& map, u8 substitute) {
  if (c.roomLeft() == 0) return false;
  u32 code;
  c.read += Utf8::decode(c.in + c.read, c.left(), code);
  const u8 byte = code < 0x10000 ? map.of(code) : u8{0};
  const bool bad = byte == 0 && code != 0;
  c.out[c.written++] = bad ? substitute : byte;
  c.bad |= bad;
  return true;
}

}  // namespace

UtfProgress singleByteToUtf8Scalar(const Utf8Entry* table, bool, const u8* data, u32 n, u8* out, u32 room) {
  UtfCursor c{data, n, out, room};
  while (c.read < n && putEntry(c, table[data[c.read]])) {
  }
  return c.progress();
}

u64 singleByteUtf8LengthScalar(const Utf8Entry* table, bool, const u8* data, u32 n) {
  u64 sum = 0;
  for (u32 i = 0; i < n; ++i) sum += entrySize(table[data[i]]);
  return sum;
}

UtfProgress utf8ToSingleByteScalar(const ByteOfUnit& map, bool, u8 substitute, const u8* data, u32 n, u8* out,
                                   u32 room) {
  UtfCursor c{data, n, out, room};
  while (c.read < n && putByte(c, map, substitute)) {
  }
  return c.progress();
}

UtfProgress singleByteToUtf8(const Utf8Entry* table, bool ascii, const u8* data, u32 n, u8* out, u32 room) {
  return singleByteToUtf8Scalar(table, ascii, data, n, out, room);
}

u64 singleByteUtf8Length(const Utf8Entry* table, bool ascii, const u8* data, u32 n) {
  return singleByteUtf8LengthScalar(table, ascii, data, n);
}

UtfProgress utf8ToSingleByte(const ByteOfUnit& map, bool ascii, u8 substitute, const u8* data, u32 n, u8* out,
                             u32 room) {
  return utf8ToSingleByteScalar(map, ascii, substitute, data, n, out, room);
}

}  // namespace vk_simd
