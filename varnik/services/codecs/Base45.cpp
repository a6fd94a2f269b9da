// base45 (RFC 9285): two bytes are a number below 65536, three digits of base 45, least significant first; a last
// single byte is two digits. The blank is a digit, so that only CR, LF and tab are skipped.
#include <array>

#include "varnik/services/codecs/ContentEncoder.h"
#include "varnik/services/codecs/internal/DecodeResult.h"
#include "varnik/services/codecs/internal/Room.h"
#include "varnik/simd/Base45.h"

namespace {

using vk_simd::kBase45Digits;

constexpr u8 kNoDigit = 0xFF;
constexpr std::array<u8, 256> kValues = [] {
  std::array<u8, 256> values{};
  values.fill(kNoDigit);
  for (u32 i = 0; i < 45; ++i) values[static_cast<u8>(kBase45Digits[i])] = static_cast<u8>(i);
  return values;
}();

// A group that line breaks interrupt, a bad one or the last one.
struct Group {
  u8 digits[3] = {};
  u32 count = 0;
  u32 start = 0;  // offset of the first digit

  void collect(const u8* text, u32 n, u32& i) {
    for (; i < n && count < 3; ++i) {
      if (text[i] == '\r' || text[i] == '\n' || text[i] == '\t') continue;
      if (kValues[text[i]] == kNoDigit) return;
      if (count == 0) start = i;
      digits[count++] = kValues[text[i]];
    }
  }
  u32 value() const { return digits[0] + 45U * digits[1] + 2025U * digits[2]; }
};

class Decoder {
 public:
  Decoder(const u8* text, u32 n, u8* to) : text_(text), n_(n), to_(to) {}

  DecodeResult run() {
    for (;;) {
      wholeGroups();
      Group group;
      group.collect(text_, n_, i_);
      if (i_ < n_ && group.count < 3) return DecodeResult::fault(i_);
      if (group.count == 0) return DecodeResult::good();
      const u32 most = group.count == 3 ? 0xFFFF : 0xFF;
      if (group.count == 1 || group.value() > most) return DecodeResult::fault(group.start);
      if (group.count == 3) *to_++ = static_cast<u8>(group.value() >> 8);
      *to_++ = static_cast<u8>(group.value());
    }
  }
  u8* end() const { return to_; }

 private:
  void wholeGroups() {
    const u32 groups = vk_simd::readBase45(text_ + i_, n_ - i_, to_);
    i_ += 3 * groups;
    to_ += 2 * std::size_t{groups};
  }

  const u8* text_;
  u32 n_, i_ = 0;
  u8* to_;
};

}  // namespace

bool ContentEncoder::encodeBase45(const u8* data, u32 n, StringBuffer& out, LogBase&) {
  if (n == 0) return true;
  const u32 pairs = n / 2, chars = n % 2 * 2;
  u8* to = vk_codec::roomFor(out, u64{pairs} * 3 + 2 + vk_simd::kBase45Slack);
  if (!to) return false;
  vk_simd::putBase45(data, pairs, to);
  to += 3 * std::size_t{pairs};
  if (chars != 0) {
    to[0] = static_cast<u8>(kBase45Digits[data[n - 1] % 45]);
    to[1] = static_cast<u8>(kBase45Digits[data[n - 1] / 45]);
  }
  out.addToSize(pairs * 3 + chars);
  return true;
}

DecodeResult vk_decodeBase45(const char* text, u32 n, DataBuffer& out) {
  if (n == 0) return DecodeResult::good();
  u8* const to = vk_codec::roomFor(out, u64{n} / 3 * 2 + 1 + vk_simd::kBase45Slack);
  if (!to) return DecodeResult::noMemory();
  Decoder decoder(vk_codec::asBytes(text), n, to);
  const DecodeResult result = decoder.run();
  out.addToSize(static_cast<u32>(decoder.end() - to));
  return result;
}

bool ContentEncoder::decodeId21(const char* text, u32 n, DataBuffer& out) {
  return vk_decodeBase45(text, n, out).ok;
}
