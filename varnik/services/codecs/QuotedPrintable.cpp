// Quoted-printable, RFC 2045 section 6.7; the numbers below are those of its rules.
//
//   blank at a line's end        =20        rule 3
//   CR LF                        CR LF      rule 4: a line break of text; a lone CR or LF is data, =0D or =0A
//   line too long                ...= CR LF rule 5: a soft break
#include <cstring>

#include "varnik/services/codecs/ContentEncoder.h"
#include "varnik/services/codecs/internal/DecodeResult.h"
#include "varnik/services/codecs/internal/Room.h"
#include "varnik/simd/ByteSet.h"
#include "varnik/simd/HexEscape.h"
#include "varnik/simd/HexUnescape.h"

namespace {

constexpr bool isBlank(u8 b) {
  return b == ' ' || b == '\t';
}

// Rule 2, and rule 3 away from a line's end.
constexpr bool isLiteral(u8 b) {
  return (b > ' ' && b < 0x7F && b != '=') || isBlank(b);
}

constexpr vk_simd::HexEscape kEscape = {vk_simd::byteSetOf(isLiteral), '='};

class Encoder {
 public:
  explicit Encoder(u32 lineLength) : limit_(lineLength) {}

  /// Writes the text of in[0, n) to `to` and returns the place behind it. The column is kept from call to call; `last`
  /// tells that no further call follows.
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
      const auto done = vk_simd::escapeHex(kEscape, in_ + i, end - i, limit_ - 1 - column_, to_);
      i += done.bytes;
      advance(done.chars);
      if (i == end) return;
      if (endsLine && end - i == 1 && widthOf(in_[i]) <= limit_ - column_) {
        advance(vk_simd::escapeHex(kEscape, in_ + i, 1, limit_ - column_, to_).chars);
        return;
      }
      softBreak();
    }
  }

  static u32 widthOf(u8 b) { return isLiteral(b) ? 1 : 3; }

  void advance(u32 chars) {
    to_ += chars;
    column_ += chars;
  }
  void lineEnd() {
    *to_++ = '\r';
    *to_++ = '\n';
    column_ = 0;
  }
  void softBreak() {
    *to_++ = '=';
    lineEnd();
  }

  // Takes back a blank that ended a line, maybe the last byte of the piece before, and escapes it.
  void guardTrailingBlank() {
    if (column_ == 0 || !isBlank(to_[-1])) return;
    const u8 blank = *--to_;
    --column_;
    if (limit_ - column_ < 3) softBreak();
    to_[0] = '=';
    to_[1] = blank == ' ' ? u8{'2'} : u8{'0'};
    to_[2] = blank == ' ' ? u8{'0'} : u8{'9'};
    advance(3);
  }

  const u8* in_ = nullptr;
  u8* to_ = nullptr;
  u32 n_ = 0, column_ = 0;
  const u32 limit_;
};

// The most characters that `n` bytes become: three each, and a soft break for every line, which holds `limit` - 3
// columns of them at least; one for every byte where lines are that short.
u64 mostFor(u32 n, u32 limit) {
  const u64 breaks = limit < 12 ? n : u64{n} * 3 / (limit - 3) + 1;
  return u64{n} * 3 + breaks * 3 + 3 + vk_simd::kHexEscapeSlack;
}

// The end of a piece of about `size` bytes, not inside CR LF.
u32 pieceEnd(const u8* data, u32 i, u32 n, u32 size) {
  if (n - i <= size) return n;
  const u32 end = i + size;
  return data[end] == '\n' && data[end - 1] == '\r' ? end - 1 : end;
}

// ---- Decoding ----

constexpr vk_simd::ByteSet kPlain = vk_simd::byteSetOf([](u8 b) { return b != '=' && b != '\n'; });

// White space at a line's end was added on the way (rule 3); a `=` before it is a soft break, but not at the end of the
// text.
class Decoder {
 public:
  Decoder(const u8* text, u32 n, u8* to) : text_(text), n_(n), to_(to) {}

  u8* run() {
    while (i_ < n_) {
      const u32 plain = i_ + vk_simd::copyRun(kPlain, text_ + i_, n_ - i_, to_);  // most lines hold no escape
      if (plain == n_) {
        to_ += withoutBlanks(n_) - i_;
        break;
      }
      if (text_[plain] == '\n') {
        const u32 end = contentEnd(plain);
        to_ += end - i_;
        lineBreak(plain);
      } else {
        to_ += plain - i_;
        i_ = plain;
        rest();
      }
    }
    return to_;
  }

 private:
  u32 withoutBlanks(u32 end) const {
    while (end > i_ && isBlank(text_[end - 1])) --end;
    return end;
  }

  bool isPair(u32 feed) const { return feed > i_ && text_[feed - 1] == '\r'; }

  // Where what is left of the line that the LF at `feed` ends has its content's end.
  u32 contentEnd(u32 feed) const { return withoutBlanks(isPair(feed) ? feed - 1 : feed); }

  void lineBreak(u32 feed) {
    if (isPair(feed)) *to_++ = '\r';
    *to_++ = '\n';
    i_ = feed + 1;
  }

  // The rest of a line, which begins with a `=`.
  void rest() {
    const void* const at = std::memchr(text_ + i_, '\n', n_ - i_);
    if (!at) {
      put(withoutBlanks(n_));
      i_ = n_;
      return;
    }
    const u32 feed = static_cast<u32>(static_cast<const u8*>(at) - text_), end = contentEnd(feed);
    if (text_[end - 1] == '=') {
      put(end - 1);
      i_ = feed + 1;
    } else {
      put(end);
      lineBreak(feed);
    }
  }

  void put(u32 end) { to_ += vk_simd::unescapeHex('=', text_ + i_, end - i_, n_ - i_, to_); }

  const u8* text_;
  u32 n_, i_ = 0;
  u8* to_;
};

}  // namespace

bool ContentEncoder::encodeQuotedPrintable(const u8* data, u32 n, StringBuffer& out) const {
  constexpr u32 kPiece = 1U << 24;
  Encoder encoder(lineLength_);
  for (u32 i = 0; i < n;) {
    const u32 end = pieceEnd(data, i, n, kPiece);
    u8* const to = vk_codec::roomFor(out, mostFor(end - i, lineLength_));
    if (!to) return false;
    out.addToSize(static_cast<u32>(encoder.encode(data + i, end - i, end == n, to) - to));
    i = end;
  }
  return true;
}

DecodeResult vk_decodeQuotedPrintable(const char* text, u32 n, DataBuffer& out) {
  if (n == 0) return DecodeResult::good();
  u8* const to = vk_codec::roomFor(out, u64{n} + vk_simd::kHexUnescapeSlack);
  if (!to) return DecodeResult::noMemory();
  Decoder decoder(vk_codec::asBytes(text), n, to);
  out.addToSize(static_cast<u32>(decoder.run() - to));
  return DecodeResult::good();
}

bool ContentEncoder::decodeQuotedPrintable(const char* text, u32 n, DataBuffer& out) const {
  return vk_decodeQuotedPrintable(text, n, out).ok;
}
