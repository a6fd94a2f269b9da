#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// A line of quoted-printable text that is being written.
struct QpLine {
  u32 limit;       // the most characters, 4 or more
  u32 column = 0;  // those that it has
};

/// Writes the text of from[0, n) to `out` and returns the place behind it; `line` is kept from call to call, and `last`
/// tells that none follows. CR LF pairs stay as line breaks, blanks before them and at the end are escaped, soft breaks
/// keep the limit. REQUIRES: `qpRoom` characters may be written; unless it is the last, a piece does not end inside a
/// CR LF, nor before one but behind another.
u8* putQpLines(QpLine& line, const u8* from, u32 n, bool last, u8* out);

/// What `n` bytes become at most, and what may be written beyond: three characters each, and a soft break for every
/// line, which holds `limit` - 3 columns of them at least; one for every byte where lines are that short.
constexpr u64 qpRoom(u32 n, u32 limit) {
  constexpr u32 kSlack = 64;
  const u64 breaks = limit < 12 ? n : u64{n} * 3 / (limit - 3) + 1;
  return u64{n} * 3 + breaks * 3 + 3 + kSlack;
}

/// Rules 2 and 3 of RFC 2045 section 6.7, away from a line's end.
constexpr bool isQpBlank(u8 b) {
  return b == ' ' || b == '\t';
}
constexpr bool isQpLiteral(u8 b) {
  return (b > ' ' && b < 0x7F && b != '=') || isQpBlank(b);
}

u8* putQpLinesScalar(QpLine& line, const u8* from, u32 n, bool last, u8* out);
#if VARNIK_HAVE_AVX2
u8* putQpLinesAvx2(QpLine& line, const u8* from, u32 n, bool last, u8* out);
#endif
#if VARNIK_HAVE_AVX512
u8* putQpLinesAvx512(QpLine& line, const u8* from, u32 n, bool last, u8* out);
#endif

}  // namespace vk_simd
