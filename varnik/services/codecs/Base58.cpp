// base58 (Bitcoin alphabet): the bytes are one number, most significant first; each leading zero byte is a '1'. Numbers
// of up to 64 bytes are converted here, without allocation; longer ones by the conversions of large numbers, as the
// plain way takes quadratic time. The time taken depends on the content.
#include <array>

#include "varnik/services/codecs/ContentEncoder.h"
#include "varnik/services/codecs/internal/DecodeResult.h"
#include "varnik/services/codecs/internal/Room.h"
#include "varnik/services/memory/Text.h"
#include "varnik/services/numbers/internal/BigDigits.h"

namespace {

constexpr char kDigits[] = "123456789ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz";
constexpr u32 kBase = 58;
constexpr u8 kNoDigit = 0xFF, kSkipped = 0xFE;

constexpr std::array<u8, 256> kValues = [] {
  std::array<u8, 256> values{};
  values.fill(kNoDigit);
  for (u32 c = 0; c < 256; ++c)
    if (vk_codec::isSpace(static_cast<u8>(c))) values[c] = kSkipped;
  for (u32 i = 0; i < kBase; ++i) values[static_cast<u8>(kDigits[i])] = static_cast<u8>(i);
  return values;
}();

constexpr u32 kSmallBytes = 64;
constexpr u32 kSmallDigits = 88;      // 58^88 is above 2^512
constexpr u32 kPower5 = 656'356'768;  // 58^5, the most that fits a 32-bit limb

// More digits than the limbs of `n` bytes have: a byte has 8 / log2(58) = 1.3658 of them.
constexpr u64 mostDigits(u32 n) {
  return u64{vk_num::limbsOfBytes(n)} * 8 * 1366 / 1000 + 3;
}

// ---- Encoding ----

// Writes the raw digits of data[0, n), n up to 64, backwards from `end`; returns the first one, no leading zero.
u8* smallDigits(const u8* data, u32 n, u8* end) {
  u32 limbs[kSmallBytes / 4] = {};  // most significant first
  const u32 count = (n + 3) / 4;
  for (u32 i = 0; i < n; ++i) {
    u32& limb = limbs[count - 1 - (n - 1 - i) / 4];
    limb = limb << 8 | data[i];
  }
  u8* p = end;
  for (u32 first = 0; first < count;) {
    u64 rest = 0;
    for (u32 i = first; i < count; ++i) {
      rest = rest << 32 | limbs[i];
      limbs[i] = static_cast<u32>(rest / kPower5);
      rest %= kPower5;
    }
    for (u32 k = 0; k < 5; ++k, rest /= kBase) *--p = static_cast<u8>(rest % kBase);
    while (first < count && limbs[first] == 0) ++first;
  }
  while (p < end && *p == 0) ++p;
  return p;
}

u32 putSmall(const u8* data, u32 n, u8* to) {
  u8 digits[kSmallDigits + 5];
  const u8* const end = digits + sizeof digits;
  const u8* const first = smallDigits(data, n, digits + sizeof digits);
  for (const u8* p = first; p < end; ++p) *to++ = static_cast<u8>(kDigits[*p]);
  return static_cast<u32>(end - first);
}

u32 putLarge(const u8* data, u32 n, u8* to) {
  const auto limbs = vk_num::allocLimbs(vk_num::limbsOfBytes(n));
  if (!limbs) return 0;
  const u32 count = vk_num::limbsToDigits(limbs.get(), vk_num::bytesToLimbs(data, n, limbs.get()), kBase, to);
  for (u32 i = 0; i < count; ++i) to[i] = static_cast<u8>(kDigits[to[i]]);
  return count;
}

// ---- Decoding ----

// Multiplies the number by `factor` and adds `more`. REQUIRES: room for the limb that may come to it.
void multiplyAdd(u64* limbs, u32& count, u64 factor, u64 more) {
  __extension__ using Product = unsigned __int128;
  for (u32 i = 0; i < count; ++i) {
    const Product product = Product{limbs[i]} * factor + more;
    limbs[i] = static_cast<u64>(product);
    more = static_cast<u64>(product >> 64);
  }
  if (more != 0) limbs[count++] = more;
}

// Appends the number that the raw digits stand for; `zeros` zero bytes go before it.
class Number {
 public:
  Number(const u8* digits, u32 n, u32 zeros, DataBuffer& out) : digits_(digits), n_(n), zeros_(zeros), out_(out) {}

  bool append() { return n_ <= kSmallDigits ? appendSmall() : appendLarge(); }

 private:
  bool appendSmall() {
    u64 limbs[(kSmallDigits + 9) / 10] = {};
    u32 count = 0;
    for (u32 i = 0; i < n_;) {
      u64 group = 0, power = 1;
      for (const u32 end = n_ - i < 10 ? n_ : i + 10; i < end; ++i, power *= kBase) group = group * kBase + digits_[i];
      multiplyAdd(limbs, count, power, group);
    }
    return appendLimbs(limbs, count);
  }

  bool appendLarge() {
    const auto limbs = vk_num::allocLimbs(vk_num::limbsOfDigits(n_, kBase));
    u32 count = 0;
    return limbs && vk_num::digitsToLimbs(digits_, n_, kBase, limbs.get(), count) && appendLimbs(limbs.get(), count);
  }

  bool appendLimbs(const u64* limbs, u32 count) {
    const u32 n = vk_num::byteLength(limbs, count);
    if (zeros_ + u64{n} == 0) return true;
    u8* const to = vk_codec::roomFor(out_, zeros_ + u64{n});
    if (!to) return false;
    for (u32 i = 0; i < zeros_; ++i) to[i] = 0;
    vk_num::limbsToBytes(limbs, n, to + zeros_);
    out_.addToSize(zeros_ + n);
    return true;
  }

  const u8* digits_;
  u32 n_, zeros_;
  DataBuffer& out_;
};

}  // namespace

bool ContentEncoder::encodeBase58(const u8* data, u32 n, StringBuffer& out, LogBase&) {
  u32 zeros = 0;
  while (zeros < n && data[zeros] == 0) ++zeros;
  const u32 rest = n - zeros;
  if (n == 0) return true;
  u8* const to = vk_codec::roomFor(out, zeros + mostDigits(rest));
  if (!to) return false;
  for (u32 i = 0; i < zeros; ++i) to[i] = '1';
  u32 digits = 0;
  if (rest != 0) {
    digits = rest <= kSmallBytes ? putSmall(data + zeros, rest, to + zeros) : putLarge(data + zeros, rest, to + zeros);
    if (digits == 0) return false;
  }
  out.addToSize(zeros + digits);
  return true;
}

DecodeResult vk_decodeBase58(const char* text, u32 n, DataBuffer& out) {
  u8 small[kSmallDigits];
  std::unique_ptr<u8[]> large;
  if (n > sizeof small && !(large = std::unique_ptr<u8[]>(allocByteArray(n)))) return DecodeResult::noMemory();
  u8* const digits = large ? large.get() : small;
  u32 zeros = 0, count = 0;
  for (u32 i = 0; i < n; ++i) {
    const u8 value = kValues[static_cast<u8>(text[i])];
    if (value == kNoDigit) return DecodeResult::fault(i);  // no byte is known before the last digit
    if (value == kSkipped) continue;
    if (value == 0 && count == 0) {
      ++zeros;
    } else {
      digits[count++] = value;
    }
  }
  return Number(digits, count, zeros, out).append() ? DecodeResult::good() : DecodeResult::noMemory();
}

bool ContentEncoder::decodeId7(const char* text, DataBuffer& out, LogBase&) {
  return vk_decodeBase58(text, vk_strlen(text), out).ok;
}
