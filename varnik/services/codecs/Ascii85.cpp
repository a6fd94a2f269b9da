// Ascii85: four bytes are a number, five digits of base 85, most significant first, each written as '!' + digit; four
// zero bytes are the single character 'z'. Of a last group of k bytes, filled up with zeros, k + 1 digits are written.
#include <array>

#include "varnik/services/codecs/ContentEncoder.h"
#include "varnik/services/codecs/internal/DecodeResult.h"
#include "varnik/services/codecs/internal/Room.h"
#include "varnik/services/memory/Text.h"

namespace {

constexpr u32 kBase = 85, kSquare = kBase * kBase;
constexpr u8 kNoDigit = 0xFF;

constexpr std::array<u8, 256> kValues = [] {
  std::array<u8, 256> values{};
  values.fill(kNoDigit);
  for (u32 digit = 0; digit < kBase; ++digit) values['!' + digit] = static_cast<u8>(digit);
  return values;
}();

u32 wordAt(const u8* p) {
  return u32{p[0]} << 24 | u32{p[1]} << 16 | u32{p[2]} << 8 | p[3];
}

void putWord(u32 word, u8* to) {
  to[0] = static_cast<u8>(word >> 24);
  to[1] = static_cast<u8>(word >> 16);
  to[2] = static_cast<u8>(word >> 8);
  to[3] = static_cast<u8>(word);
}

void putDigits(u32 word, u8* to) {
  const u32 upper = word / kSquare, lower = word % kSquare;  // two divisions that do not wait for each other follow
  const u32 first = upper / kSquare, middle = upper % kSquare;
  to[0] = static_cast<u8>('!' + first);
  to[1] = static_cast<u8>('!' + middle / kBase);
  to[2] = static_cast<u8>('!' + middle % kBase);
  to[3] = static_cast<u8>('!' + lower / kBase);
  to[4] = static_cast<u8>('!' + lower % kBase);
}

u8* encode(const u8* data, u32 n, u8* to) {
  u32 i = 0;
  for (; n - i >= 4; i += 4) {
    const u32 word = wordAt(data + i);
    if (word == 0) {
      *to++ = 'z';
    } else {
      putDigits(word, to);
      to += 5;
    }
  }
  if (i == n) return to;
  u32 word = 0;
  for (u32 k = 0; k < 4; ++k) word = word << 8 | (i + k < n ? data[i + k] : 0U);
  putDigits(word, to);
  return to + (n - i) + 1;
}

// The value of five digits; past 32 bits when one of them is none.
u64 groupValue(const u8* digits) {
  const u64 a = kValues[digits[0]], b = kValues[digits[1]], c = kValues[digits[2]], d = kValues[digits[3]],
            e = kValues[digits[4]];
  const u64 value = (a * kBase + b) * u64{kSquare} * kBase + (c * kBase + d) * kBase + e;
  return value | ((a | b | c | d | e) & 0x80) << 32;
}

// A group that white space interrupts, a bad one or the last one.
struct Group {
  u8 digits[5] = {'u', 'u', 'u', 'u', 'u'};
  u32 count = 0;
  u32 start = 0;  // offset of the first digit

  void collect(const u8* text, u32 n, u32& i) {
    for (; i < n && count < 5; ++i) {
      if (vk_codec::isSpace(text[i])) continue;
      if (kValues[text[i]] == kNoDigit) return;
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
    skipSpace();
    const bool framed = n_ - i_ >= 2 && text_[i_] == '<' && text_[i_ + 1] == '~';
    if (framed) i_ += 2;
    return framed;
  }

  DecodeResult closeFrame() {
    if (n_ - i_ < 2 || text_[i_ + 1] != '>') return DecodeResult::fault(i_);
    i_ += 2;
    skipSpace();
    return i_ == n_ ? DecodeResult::good() : DecodeResult::fault(i_);
  }

  void skipSpace() {
    while (i_ < n_ && vk_codec::isSpace(text_[i_])) ++i_;
  }

  void wholeGroups() {
    while (i_ < n_) {
      u64 value = 0;
      if (text_[i_] == 'z') {
        ++i_;
      } else {
        if (n_ - i_ < 5 || (value = groupValue(text_ + i_)) > 0xFFFFFFFF) return;
        i_ += 5;
      }
      putWord(static_cast<u32>(value), to_);
      to_ += 4;
    }
  }

  // Filled up with the greatest digit, a short group gives its bytes in the upper places. It is the encoder's when
  // these bytes, filled up with zeros, have the same digits.
  bool put(const Group& group) {
    const u64 value = groupValue(group.digits);
    if (group.count == 1 || value > 0xFFFFFFFF) return false;
    u8 bytes[4], digits[5];
    putWord(static_cast<u32>(value), bytes);
    for (u32 k = group.count - 1; k < 4; ++k) bytes[k] = 0;
    putDigits(wordAt(bytes), digits);
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
  u8* const to = vk_codec::roomFor(out, u64{n} / 4 * 5 + 5);
  if (!to) return false;
  out.addToSize(static_cast<u32>(encode(data, n, to) - to));
  return true;
}

DecodeResult vk_decodeAscii85(const char* text, u32 n, DataBuffer& out) {
  if (n == 0) return DecodeResult::good();
  const u32 zeros = countOf('z', vk_codec::asBytes(text), n);
  u8* const to = vk_codec::roomFor(out, u64{zeros} * 4 + u64{n - zeros} / 5 * 4 + 4);
  if (!to) return DecodeResult::noMemory();
  Decoder decoder(vk_codec::asBytes(text), n, to);
  const DecodeResult result = decoder.run();
  out.addToSize(static_cast<u32>(decoder.end() - to));
  return result;
}

bool ContentEncoder::decodeId17(const char* text, DataBuffer& out, LogBase&) {
  return vk_decodeAscii85(text, vk_strlen(text), out).ok;
}
