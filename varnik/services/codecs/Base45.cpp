// base45 (RFC 9285): two bytes are a number below 65536, three digits of base 45, least significant first; a last
// single byte is two digits. The blank is a digit, so that only CR, LF and tab are skipped.
#include <array>

#include "varnik/services/codecs/ContentEncoder.h"
#include "varnik/services/codecs/internal/DecodeResult.h"
#include "varnik/services/codecs/internal/Room.h"

namespace {

constexpr char kDigits[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ $%*+-./:";
constexpr u32 kSquare = 45 * 45;

// The two digits of each number below 45 squared: one division then serves three digits.
struct Pair {
  u8 low, high;
};
constexpr std::array<Pair, kSquare> kPairs = [] {
  std::array<Pair, kSquare> pairs{};
  for (u32 i = 0; i < kSquare; ++i) pairs[i] = {static_cast<u8>(kDigits[i % 45]), static_cast<u8>(kDigits[i / 45])};
  return pairs;
}();

u8* putTriple(u32 value, u8* to) {
  const Pair pair = kPairs[value % kSquare];
  to[0] = pair.low;
  to[1] = pair.high;
  to[2] = static_cast<u8>(kDigits[value / kSquare]);
  return to + 3;
}

u8* putDigits(const u8* data, u32 n, u8* to) {
  u32 i = 0;
  for (; n - i >= 2; i += 2) to = putTriple(static_cast<u32>(data[i] << 8 | data[i + 1]), to);
  if (i < n) {
    const Pair pair = kPairs[data[i]];
    *to++ = pair.low;
    *to++ = pair.high;
  }
  return to;
}

// What a character is worth at each of the three places. One outside the alphabet is worth more than any group may be,
// so that one comparison tells both kinds of bad group.
constexpr u32 kNoDigit = 1U << 20;
struct Worth {
  u32 at[3][256];
};
constexpr Worth kWorth = [] {
  Worth worth{};
  for (auto& place : worth.at)
    for (u32& each : place) each = kNoDigit;
  for (u32 i = 0; i < 45; ++i) {
    const u8 c = static_cast<u8>(kDigits[i]);
    worth.at[0][c] = i;
    worth.at[1][c] = i * 45;
    worth.at[2][c] = i * kSquare;
  }
  return worth;
}();

u32 valueOf(const u8* group) {
  return kWorth.at[0][group[0]] + kWorth.at[1][group[1]] + kWorth.at[2][group[2]];
}

// A group that line breaks interrupt, a bad one or the last one.
struct Group {
  u8 digits[3] = {};
  u32 count = 0;
  u32 start = 0;  // offset of the first digit

  void collect(const u8* text, u32 n, u32& i) {
    for (; i < n && count < 3; ++i) {
      if (text[i] == '\r' || text[i] == '\n' || text[i] == '\t') continue;
      if (count == 0) start = i;
      digits[count++] = text[i];
      if (kWorth.at[0][text[i]] == kNoDigit) return;
    }
  }
  bool endsInNoDigit() const { return count != 0 && kWorth.at[0][digits[count - 1]] == kNoDigit; }
  u32 value() const {
    return kWorth.at[0][digits[0]] + kWorth.at[1][digits[1]] + (count == 3 ? kWorth.at[2][digits[2]] : 0);
  }
};

class Decoder {
 public:
  Decoder(const u8* text, u32 n, u8* to) : text_(text), n_(n), to_(to) {}

  DecodeResult run() {
    for (;;) {
      wholeGroups();
      Group group;
      group.collect(text_, n_, i_);
      if (group.count == 0) return DecodeResult::good();
      if (group.endsInNoDigit()) return DecodeResult::fault(i_);
      const u32 most = group.count == 3 ? 0xFFFF : 0xFF;
      if (group.count == 1 || group.value() > most) return DecodeResult::fault(group.start);
      if (group.count == 3) *to_++ = static_cast<u8>(group.value() >> 8);
      *to_++ = static_cast<u8>(group.value());
    }
  }
  u8* end() const { return to_; }

 private:
  void wholeGroups() {
    for (; n_ - i_ >= 3; i_ += 3, to_ += 2) {
      const u32 value = valueOf(text_ + i_);
      if (value > 0xFFFF) return;
      to_[0] = static_cast<u8>(value >> 8);
      to_[1] = static_cast<u8>(value);
    }
  }

  const u8* text_;
  u32 n_, i_ = 0;
  u8* to_;
};

}  // namespace

bool ContentEncoder::encodeBase45(const u8* data, u32 n, StringBuffer& out, LogBase&) {
  if (n == 0) return true;
  u8* const to = vk_codec::roomFor(out, u64{n} / 2 * 3 + 2);
  if (!to) return false;
  out.addToSize(static_cast<u32>(putDigits(data, n, to) - to));
  return true;
}

DecodeResult vk_decodeBase45(const char* text, u32 n, DataBuffer& out) {
  if (n == 0) return DecodeResult::good();
  u8* const to = vk_codec::roomFor(out, u64{n} / 3 * 2 + 1);
  if (!to) return DecodeResult::noMemory();
  Decoder decoder(vk_codec::asBytes(text), n, to);
  const DecodeResult result = decoder.run();
  out.addToSize(static_cast<u32>(decoder.end() - to));
  return result;
}

bool ContentEncoder::decodeId21(const char* text, u32 n, DataBuffer& out) {
  return vk_decodeBase45(text, n, out).ok;
}
