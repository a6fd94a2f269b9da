// JSON string escapes (RFC 8259 section 7).
#include <cstring>
#include <utility>

#include "varnik/services/codecs/internal/DecodeResult.h"
#include "varnik/services/codecs/internal/EncodeInner.h"
#include "varnik/services/codecs/internal/Room.h"
#include "varnik/services/strings/StringBuffer.h"
#include "varnik/simd/Escape.h"
#include "varnik/simd/HexUnescape.h"

namespace {

constexpr char kShortNames[] = "bfnrt\"\\";
constexpr u8 kShortBytes[] = {'\b', '\f', '\n', '\r', '\t', '"', '\\'};
constexpr u32 kLongest = 6;  // backslash, u, four digits

constexpr u32 writeEscape(u8 b, u8* out) {
  out[0] = '\\';
  for (u32 i = 0; i < sizeof kShortBytes; ++i)
    if (b == kShortBytes[i]) {
      out[1] = static_cast<u8>(kShortNames[i]);
      return 2;
    }
  const char digits[] = {'u', '0', '0', "0123456789abcdef"[b >> 4], "0123456789abcdef"[b & 15]};
  for (u32 i = 0; i < 5; ++i) out[1 + i] = static_cast<u8>(digits[i]);
  return kLongest;
}

constexpr vk_simd::EscapeTable kTable =
    vk_simd::escapeTableOf([](u8 b) { return b >= 0x20 && b != '"' && b != '\\'; },  //
                           [](u8 b, u8* out) { return writeEscape(b, out); });

constexpr vk_simd::ByteSet kPlain = vk_simd::byteSetOf([](u8 b) { return b != '\\'; });

u8* putUtf8(u32 c, u8* to) {
  const auto put = [&](u32 b) { *to++ = static_cast<u8>(b); };
  if (c < 0x80) {
    put(c);
  } else if (c < 0x800) {
    put(0xC0 | c >> 6);
    put(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    put(0xE0 | c >> 12);
    put(0x80 | (c >> 6 & 0x3F));
    put(0x80 | (c & 0x3F));
  } else {
    put(0xF0 | c >> 18);
    put(0x80 | (c >> 12 & 0x3F));
    put(0x80 | (c >> 6 & 0x3F));
    put(0x80 | (c & 0x3F));
  }
  return to;
}

class Decoder {
 public:
  Decoder(const u8* text, u32 n, u8* to) : text_(text), n_(n), to_(to) {}

  DecodeResult run() {
    while (i_ < n_) {
      const u32 run = vk_simd::copyRun(kPlain, text_ + i_, n_ - i_, to_);
      to_ += run;
      i_ += run;
      while (i_ < n_ && text_[i_] == '\\')
        if (!escape()) keepBackslash();
    }
    return firstBad_ == kNoFault ? DecodeResult::good() : DecodeResult::fault(firstBad_);
  }
  u8* end() const { return to_; }

 private:
  static constexpr u32 kNoUnit = 0x10000;

  void keepBackslash() {
    if (firstBad_ == kNoFault) firstBad_ = i_;
    *to_++ = text_[i_++];
  }

  bool escape() {
    if (n_ - i_ < 2) return false;
    const u8 name = text_[i_ + 1];
    if (name == 'u') return unicode();
    if (name == '/') return put('/');
    for (u32 k = 0; k < sizeof kShortBytes; ++k)
      if (name == static_cast<u8>(kShortNames[k])) return put(kShortBytes[k]);
    return false;
  }

  bool put(u8 b) {
    *to_++ = b;
    i_ += 2;
    return true;
  }

  // The code unit of the escape \uXXXX at `at`. REQUIRES: `at` <= `n_`.
  u32 unitAt(u32 at) const {
    if (n_ - at < 6 || text_[at] != '\\' || text_[at + 1] != 'u') return kNoUnit;
    u32 unit = 0;
    for (u32 k = 2; k < 6; ++k) {
      const u32 digit = vk_simd::hexValue(text_[at + k]);
      if (digit > 15) return kNoUnit;
      unit = unit << 4 | digit;
    }
    return unit;
  }

  bool unicode() {
    u32 c = unitAt(i_);
    if (c == kNoUnit) return false;
    i_ += 6;
    if (c >= 0xD800 && c <= 0xDFFF) c = joined(c);
    to_ = putUtf8(c, to_);
    return true;
  }

  // The character of a high surrogate and the low one behind it; a lone one has none.
  u32 joined(u32 unit) {
    const u32 next = unit < 0xDC00 ? unitAt(i_) : kNoUnit;
    if (next < 0xDC00 || next > 0xDFFF) return 0xFFFD;
    i_ += 6;
    return 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00);
  }

  const u8* text_;
  u32 n_, i_ = 0;
  u8* to_;
  u32 firstBad_ = kNoFault;
};

}  // namespace

bool vk_encodeJson(const u8* data, u32 n, StringBuffer& out) {
  return vk_codec::encodeInPieces(data, n, kLongest, out, [](const u8* from, u32 count, u8* to) {
    return vk_simd::escapeBytes(kTable, from, count, to);
  });
}

bool StringBuffer::jsonEscape() {
  StringBuffer escaped;
  escaped.setSecure(secure_);
  if (!vk_encodeJson(vk_codec::asBytes(data_), size_, escaped)) return false;
  if (escaped.size_ != size_) *this = std::move(escaped);  // else nothing had to be escaped
  return true;
}

DecodeResult vk_decodeJson(const char* text, u32 n, StringBuffer& out) {
  if (n == 0) return DecodeResult::good();
  const char* const held = out.getString();
  const bool own = text >= held && text < held + out.getSize();
  const std::ptrdiff_t offset = own ? text - held : 0;  // where the text is once the block has moved
  u8* const to = vk_codec::roomFor(out, n);
  if (!to) return DecodeResult::noMemory();
  Decoder decoder(vk_codec::asBytes(own ? out.getString() + offset : text), n, to);
  const DecodeResult result = decoder.run();
  out.addToSize(static_cast<u32>(decoder.end() - to));
  return result;
}

DecodeResult vk_decodeJsonText(const char* text, u32 n, DataBuffer& out) {
  if (n == 0) return DecodeResult::good();
  u8* const to = vk_codec::roomFor(out, n);
  if (!to) return DecodeResult::noMemory();
  Decoder decoder(vk_codec::asBytes(text), n, to);
  const DecodeResult result = decoder.run();
  const std::size_t length = static_cast<std::size_t>(decoder.end() - to);
  const void* const zero = std::memchr(to, 0, length);
  out.addToSize(static_cast<u32>(zero ? static_cast<const u8*>(zero) - to : decoder.end() - to));
  return result;
}

bool StringBuffer::jsonDecode(const char* text, u32 n, StringBuffer& out) {
  return vk_decodeJson(text, n, out).ok;
}
