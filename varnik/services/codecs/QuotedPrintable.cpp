// Quoted-printable, RFC 2045 section 6.7; the numbers below are those of its rules.
//
//   blank at a line's end        =20        rule 3
//   CR LF                        CR LF      rule 4: a line break of text; a lone CR or LF is data, =0D or =0A
//   line too long                ...= CR LF rule 5: a soft break
#include "varnik/services/codecs/ContentEncoder.h"
#include "varnik/services/codecs/internal/DecodeResult.h"
#include "varnik/services/codecs/internal/Room.h"
#include "varnik/simd/ByteSet.h"
#include "varnik/simd/Escape.h"
#include "varnik/simd/HexEscape.h"

namespace {

constexpr bool isBlank(u8 b) {
  return b == ' ' || b == '\t';
}

// Rule 2, and rule 3 away from a line's end.
constexpr bool isLiteral(u8 b) {
  return (b > ' ' && b < 0x7F && b != '=') || isBlank(b);
}

constexpr u32 writeEscape(u8 b, u8* out) {
  out[0] = '=';
  out[1] = static_cast<u8>("0123456789ABCDEF"[b >> 4]);
  out[2] = static_cast<u8>("0123456789ABCDEF"[b & 15]);
  return 3;
}

constexpr vk_simd::EscapeTable kTable =
    vk_simd::escapeTableOf(isLiteral, [](u8 b, u8* out) { return writeEscape(b, out); });

class Encoder {
 public:
  explicit Encoder(u32 lineLength) : limit_(lineLength) {}

  /// Writes the text of in[0, n) to `to` and returns the place behind it. The column is kept from call to call; `last`
  /// tells that no further call follows.
  u8* encode(const u8* in, u32 n, bool last, u8* to) {
    in_ = in;
    n_ = n;
    last_ = last;
    to_ = to;
    for (u32 i = 0; i < n;) {
      if (isLineBreak(i)) {
        hardBreak();
        i += 2;
      } else {
        i += isLiteral(in[i]) ? putLiterals(i) : putEscapes(i);
      }
    }
    if (last) guardTrailingBlank();
    return to_;
  }

 private:
  bool isLineBreak(u32 i) const { return in_[i] == '\r' && n_ - i >= 2 && in_[i + 1] == '\n'; }
  bool isLineEnd(u32 i) const { return i == n_ ? last_ : isLineBreak(i); }

  // Columns free for data that a soft break may follow.
  u32 room() const { return limit_ - 1 - column_; }

  void put(u8 b) {
    __builtin_memcpy(to_, kTable.entry[b], 4);
    const u32 length = kTable.entry[b][vk_simd::EscapeTable::kCount];
    to_ += length;
    column_ += length;
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
  void hardBreak() {
    guardTrailingBlank();
    lineEnd();
  }

  // Takes back a blank that ended a line and escapes it.
  void guardTrailingBlank() {
    if (column_ == 0 || !isBlank(to_[-1])) return;
    const u8 blank = *--to_;
    --column_;
    if (limit_ - column_ < 3) softBreak();
    writeEscapeOf(blank);
  }
  void writeEscapeOf(u8 blank) {
    *to_++ = '=';
    *to_++ = blank == ' ' ? u8{'2'} : u8{'0'};
    *to_++ = blank == ' ' ? u8{'0'} : u8{'9'};
    column_ += 3;
  }

  // Both return how many bytes they have consumed, which may be 0 after a soft break. The last column of a line is free
  // for data only where the line ends by itself.
  u32 putLiterals(u32 i) {
    if (room() != 0) {
      const u32 most = n_ - i < room() ? n_ - i : room();
      const u32 run = vk_simd::copyRun(kTable.clean, in_ + i, most, to_);
      to_ += run;
      column_ += run;
      return run;
    }
    if (!isLineEnd(i + 1)) {
      softBreak();
      return 0;
    }
    put(in_[i]);
    return 1;
  }

  // Where one byte must be escaped others are near: each step takes what surely fits, literals included.
  u32 putEscapes(u32 i) {
    u32 most = room() / 3;
    if (most == 0) {
      if (room() != 2 || !isLineEnd(i + 1)) {
        softBreak();
        return 0;
      }
      most = 1;
    }
    const u32 end = n_ - i < most ? n_ : i + most;
    u32 at = i;
    do put(in_[at++]);
    while (at < end && in_[at] != '\r');
    return at - i;
  }

  const u8* in_ = nullptr;
  u8* to_ = nullptr;
  u32 n_ = 0, column_ = 0;
  const u32 limit_;
  bool last_ = true;
};

// The most characters that `n` bytes become: three each, and a soft break for every line, which holds `limit` - 3
// columns of them at least; one for every byte where lines are that short.
u64 mostFor(u32 n, u32 limit) {
  constexpr u32 kSlack = 8;
  const u64 breaks = limit < 12 ? n : u64{n} * 3 / (limit - 3) + 1;
  return u64{n} * 3 + breaks * 3 + kSlack;
}

// The end of a piece of about `size` bytes: between two bytes that can be encoded apart, so neither inside CR LF nor
// behind a blank that may end a line.
u32 pieceEnd(const u8* data, u32 i, u32 n, u32 size) {
  if (n - i <= size) return n;
  u32 end = i + size;
  while ((data[end] == '\n' && data[end - 1] == '\r') || (data[end] == '\r' && isBlank(data[end - 1]))) --end;
  return end;
}

// ---- Decoding ----

constexpr vk_simd::ByteSet kPlain = vk_simd::byteSetOf([](u8 b) { return b != '=' && b != '\n'; });

class Decoder {
 public:
  Decoder(const u8* text, u32 n, u8* to) : text_(text), n_(n), to_(to), raw_(to) {}

  u8* run() {
    while (i_ < n_) {
      const u32 run = vk_simd::copyRun(kPlain, text_ + i_, n_ - i_, to_);
      to_ += run;
      i_ += run;
      if (i_ == n_) break;
      if (text_[i_] == '\n') {
        lineEnd();
      } else {
        escapes();
      }
    }
    dropBlanks();
    return to_;
  }

 private:
  // White space at a line's end was added on the way (rule 3). What an escape stood for stays.
  void dropBlanks() {
    while (to_ > raw_ && isBlank(to_[-1])) --to_;
  }

  void lineEnd() {
    const bool pair = to_ > raw_ && to_[-1] == '\r';
    if (pair) --to_;
    dropBlanks();
    if (pair) *to_++ = '\r';
    *to_++ = '\n';
    ++i_;
    raw_ = to_;
  }

  void escapes() {
    while (i_ < n_ && text_[i_] == '=' && (putByte() || softBreak())) {
    }
    raw_ = to_;
    if (i_ < n_ && text_[i_] == '=') *to_++ = text_[i_++];  // begins no escape
  }

  bool putByte() {
    if (n_ - i_ < 3) return false;
    const u8 high = vk_simd::hexValue(text_[i_ + 1]), low = vk_simd::hexValue(text_[i_ + 2]);
    if ((high | low) >= 16) return false;
    *to_++ = static_cast<u8>(high << 4 | low);
    i_ += 3;
    return true;
  }

  // A `=` at the end of a line, blanks behind it included. At the end of the text it is no soft break.
  bool softBreak() {
    u32 at = i_ + 1;
    while (at < n_ && (isBlank(text_[at]))) ++at;
    if (n_ - at >= 2 && text_[at] == '\r' && text_[at + 1] == '\n') ++at;
    if (at == n_ || text_[at] != '\n') return false;
    i_ = at + 1;
    return true;
  }

  const u8* text_;
  u32 n_, i_ = 0;
  u8* to_;
  u8* raw_;  // what lies before is not to be changed any more
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
  u8* const to = vk_codec::roomFor(out, n);
  if (!to) return DecodeResult::noMemory();
  Decoder decoder(vk_codec::asBytes(text), n, to);
  out.addToSize(static_cast<u32>(decoder.run() - to));
  return DecodeResult::good();
}

bool ContentEncoder::decodeQuotedPrintable(const char* text, u32 n, DataBuffer& out) const {
  return vk_decodeQuotedPrintable(text, n, out).ok;
}
