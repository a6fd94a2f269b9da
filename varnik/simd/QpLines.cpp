// Quoted-printable text, RFC 2045 section 6.7; the numbers below are those of its rules.
//
//   blank at a line's end        =20        rule 3
//   CR LF                        CR LF      rule 4: a line break of text; a lone CR or LF is data, =0D or =0A
//   line too long                ...= CR LF rule 5: a soft break
#include "varnik/simd/QpLines.h"

#include <cstring>

#include "varnik/simd/HexEscape.h"

namespace vk_simd {

namespace {

constexpr HexEscape kEscape = {byteSetOf(isQpLiteral), '='};

class Encoder {
 public:
  Encoder(decltype(escapeHex)& escape, QpLine& line) : escape_(escape), line_(line) {}

  u8* encode(const u8* in, u32 n, bool last, u8* to) {
    in_ = in;
    n_ = n;
    to_ = to;
    for (u32 i = 0; i < n;) {
      const u32 end = lineBreak(i);
      put(i, end, last || end < n);
      if (end == n) break;
      guardTrailingBlank();
      lineEnd();
      i = end + 2;
    }
    if (last) guardTrailingBlank();
    return to_;
  }

 private:
  // Where the next CR LF stands at or behind `from`.
  u32 lineBreak(u32 from) const {
    while (from < n_) {
      const void* const at = std::memchr(in_ + from, '\r', n_ - from);
      if (!at) return n_;
      from = static_cast<u32>(static_cast<const u8*>(at) - in_);
      if (n_ - from >= 2 && in_[from + 1] == '\n') return from;
      ++from;
    }
    return n_;
  }

  // Puts in_[i, end), with soft breaks where they are due. Only what ends a line by itself may take the last column,
  // where else the `=` would stand.
  void put(u32 i, u32 end, bool endsLine) {
    for (;;) {
      const auto done = escape_(kEscape, in_ + i, end - i, line_.limit - 1 - line_.column, to_);
      i += done.bytes;
      advance(done.chars);
      if (i == end) return;
      if (endsLine && end - i == 1 && widthOf(in_[i]) <= line_.limit - line_.column) {
        advance(escape_(kEscape, in_ + i, 1, line_.limit - line_.column, to_).chars);
        return;
      }
      softBreak();
    }
  }

  static u32 widthOf(u8 b) { return isQpLiteral(b) ? 1 : 3; }

  void advance(u32 chars) {
    to_ += chars;
    line_.column += chars;
  }
  void lineEnd() {
    *to_++ = '\r';
    *to_++ = '\n';
    line_.column = 0;
  }
  void softBreak() {
    *to_++ = '=';
    lineEnd();
  }

  // Takes back a blank that ended a line and escapes it.
  void guardTrailingBlank() {
    if (line_.column == 0 || !isQpBlank(to_[-1])) return;
    const u8 blank = *--to_;
    --line_.column;
    if (line_.limit - line_.column < 3) softBreak();
    to_[0] = '=';
    to_[1] = blank == ' ' ? u8{'2'} : u8{'0'};
    to_[2] = blank == ' ' ? u8{'0'} : u8{'9'};
    advance(3);
  }

  const u8* in_ = nullptr;
  u8* to_ = nullptr;
  u32 n_ = 0;
  decltype(escapeHex)& escape_;
  QpLine& line_;
};

}  // namespace

u8* putQpLinesScalar(QpLine& line, const u8* from, u32 n, bool last, u8* out) {
  return Encoder(escapeHexScalar, line).encode(from, n, last, out);
}

#if VARNIK_HAVE_AVX2
u8* putQpLinesAvx2(QpLine& line, const u8* from, u32 n, bool last, u8* out) {
  return Encoder(escapeHexAvx2, line).encode(from, n, last, out);
}
#endif

u8* putQpLines(QpLine& line, const u8* from, u32 n, bool last, u8* out) {
#if VARNIK_HAVE_AVX512
  if (hasAvx512()) return putQpLinesAvx512(line, from, n, last, out);
#endif
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return putQpLinesAvx2(line, from, n, last, out);
#endif
  return putQpLinesScalar(line, from, n, last, out);
}

}  // namespace vk_simd
