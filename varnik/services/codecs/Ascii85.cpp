// Ascii85: four bytes are a number, five digits of base 85, most significant first, each written as '!' + digit; four
// zero bytes are the single character 'z'. Of a last group of k bytes, filled up with zeros, k + 1 digits are written.
#include "varnik/simd/Ascii85.h"
#include "varnik/services/codecs/ContentEncoder.h"
#include "varnik/services/codecs/internal/DecodeResult.h"
#include "varnik/services/codecs/internal/Room.h"
#include "varnik/services/memory/Text.h"

namespace {

u32 wordAt(const u8* p) {
  return u32{p[0]} << 24 | u32{p[1]} << 16 | u32{p[2]} << 8 | p[3];
}

// A last group of 1 to 3 bytes.
u32 putRest(const u8* data, u32 n, u8* to) {
  u8 bytes[4] = {};
  for (u32 k = 0; k < n; ++k) bytes[k] = data[k];
  vk_simd::putAscii85Digits(wordAt(bytes), to);
  return n + 1;
}

// A group that white space interrupts, a bad one or the last one.
struct Group {
  u8 digits[5] = {'u', 'u', 'u', 'u', 'u'};
  u32 count = 0;
  u32 start = 0;  // offset of the first digit

  void collect(const u8* text, u32 n, u32& i) {
    for (; i < n && count < 5; ++i) {
      if (vk_codec::isSpace(text[i])) continue;
      if (!vk_simd::isAscii85Digit(text[i])) return;
      if (count == 0) start = i;
      digits[count++] = text[i];
    }
  }
};

class Decoder {
 public:
  Decoder(const u8* text, u32 n, u8* to) : text_(text), n_(n), to_(to) {}

  DecodeResult run() {
    const bool framed = openFrame();
    for (;;) {
      wholeGroups();
      Group group;
      group.collect(text_, n_, i_);
      const bool stopped = i_ < n_ && group.count < 5;  // at a character that is no digit
      const bool closes = stopped && text_[i_] == '~';
      if (stopped && !closes && (text_[i_] != 'z' || group.count != 0)) return DecodeResult::fault(i_);
      if (group.count != 0 && !put(group)) return DecodeResult::fault(group.start);
      if (closes) return closeFrame();
      if (i_ == n_) return framed ? DecodeResult::fault(n_ - 1) : DecodeResult::good();
    }
  }
  u8* end() const { return to_; }

 private:
  bool openFrame() {
    const bool framed = n_ >= 2 && text_[0] == '<' && text_[1] == '~';
    if (framed) i_ = 2;
    return framed;
  }

  DecodeResult closeFrame() {
    if (n_ - i_ < 2 || text_[i_ + 1] != '>') return DecodeResult::fault(i_);
    i_ += 2;
    return i_ == n_ ? DecodeResult::good() : DecodeResult::fault(i_);
  }

  void wholeGroups() {
    const auto done = vk_simd::readAscii85(text_ + i_, n_ - i_, to_);
    i_ += done.chars;
    to_ += 4 * std::size_t{done.words};
  }

  // Filled up with the greatest digit, a short group gives its bytes in the upper places. It is the encoder's when
  // these bytes, filled up with zeros, have the same digits.
  bool put(const Group& group) {
    const u64 value = vk_simd::ascii85Value(group.digits);
    if (group.count == 1 || value > 0xFFFFFFFF) return false;
    u8 bytes[4] = {}, digits[5];
    for (u32 k = 0; k + 1 < group.count; ++k) bytes[k] = static_cast<u8>(value >> (24 - 8 * k));
    vk_simd::putAscii85Digits(wordAt(bytes), digits);
    for (u32 k = 0; k < group.count; ++k)
      if (digits[k] != group.digits[k]) return false;
    for (u32 k = 0; k + 1 < group.count; ++k) *to_++ = bytes[k];
    return true;
  }

  const u8* text_;
  u32 n_, i_ = 0;
  u8* to_;
};

u32 countOf(u8 c, const u8* text, u32 n) {
  u32 count = 0;
  for (u32 i = 0; i < n; ++i) count += text[i] == c ? 1U : 0U;
  return count;
}

}  // namespace

bool ContentEncoder::encodeAscii85(const u8* data, u32 n, StringBuffer& out, LogBase&) {
  if (n == 0) return true;
  u8* const to = vk_codec::roomFor(out, u64{n} / 4 * 5 + 5 + vk_simd::kAscii85Slack);
  if (!to) return false;
  u32 chars = vk_simd::putAscii85(data, n / 4, to);
  if (n % 4 != 0) chars += putRest(data + n / 4 * 4, n % 4, to + chars);
  out.addToSize(chars);
  return true;
}

DecodeResult vk_decodeAscii85(const char* text, u32 n, DataBuffer& out) {
  if (n == 0) return DecodeResult::good();
  const u32 zeros = countOf('z', vk_codec::asBytes(text), n);
  u8* const to = vk_codec::roomFor(out, u64{zeros} * 4 + u64{n - zeros} / 5 * 4 + 4 + vk_simd::kAscii85Slack);
  if (!to) return DecodeResult::noMemory();
  Decoder decoder(vk_codec::asBytes(text), n, to);
  const DecodeResult result = decoder.run();
  out.addToSize(static_cast<u32>(decoder.end() - to));
  return result;
}

bool ContentEncoder::decodeId17(const char* text, DataBuffer& out, LogBase&) {
  return vk_decodeAscii85(text, vk_strlen(text), out).ok;
}
