// Quoted-printable, RFC 2045 section 6.7: the encoder's memory, and the decoder. The numbers are those of its rules.
#include <cstring>

#include "varnik/services/codecs/ContentEncoder.h"
#include "varnik/services/codecs/internal/DecodeResult.h"
#include "varnik/services/codecs/internal/Room.h"
#include "varnik/simd/ByteSet.h"
#include "varnik/simd/HexUnescape.h"
#include "varnik/simd/QpLines.h"

namespace {

// The end of a piece of about `size` bytes: where a CR LF stands there, behind it.
u32 pieceEnd(const u8* data, u32 i, u32 n, u32 size) {
  if (n - i <= size) return n;
  const u32 end = i + size;
  if (data[end] == '\n' && data[end - 1] == '\r') return end + 1;
  return data[end] == '\r' && n - end >= 2 && data[end + 1] == '\n' ? end + 2 : end;
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
    while (end > i_ && vk_simd::isQpBlank(text_[end - 1])) --end;
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
  vk_simd::QpLine line{lineLength_};
  for (u32 i = 0; i < n;) {
    const u32 end = pieceEnd(data, i, n, kPiece);
    u8* const to = vk_codec::roomFor(out, vk_simd::qpRoom(end - i, lineLength_));
    if (!to) return false;
    out.addToSize(static_cast<u32>(vk_simd::putQpLines(line, data + i, end - i, end == n, to) - to));
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
