// base58 (Bitcoin alphabet): the bytes are one number, most significant first; each leading zero byte is a '1'. Numbers
// of up to 64 bytes are converted here, without allocation; longer ones by the conversions of large numbers, as the
// plain way takes quadratic time. The time taken depends on the content.
#include <array>
#include <bit>

#include "varnik/services/codecs/ContentEncoder.h"
#include "varnik/services/codecs/internal/DecodeResult.h"
#include "varnik/services/codecs/internal/Room.h"
#include "varnik/services/memory/Text.h"
#include "varnik/services/numbers/internal/BigDigits.h"

namespace {

constexpr char kDigits[] = "123456789ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz";
constexpr u32 kBase = 58, kSquare = kBase * kBase;
__extension__ using Wide = unsigned __int128;
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
constexpr u64 kPower10 = u64{kPower5} * kPower5;

// More digits than the limbs of `n` bytes have: a byte has 8 / log2(58) = 1.3658 of them.
constexpr u64 mostDigits(u32 n) {
  return u64{vk_num::limbsOfBytes(n)} * 8 * 1366 / 1000 + 3;
}

// ---- Encoding ----

// The two characters of each number below 58 squared.
struct Pair {
  u8 high, low;
};
constexpr std::array<Pair, kSquare> kPairs = [] {
  std::array<Pair, kSquare> pairs{};
  for (u32 i = 0; i < kSquare; ++i)
    pairs[i] = {static_cast<u8>(kDigits[i / kBase]), static_cast<u8>(kDigits[i % kBase])};
  return pairs;
}();

// Division of (rest, next), 128 bits, by 58^10 with its reciprocal ("Improved division by invariant integers", 2011,
// algorithm 4). The divisor is shifted until its highest bit is set, the rest likewise; rest < divisor.
constexpr u32 kShift = static_cast<u32>(std::countl_zero(kPower10));
constexpr u64 kDivisor = kPower10 << kShift;
constexpr u64 kReciprocal = static_cast<u64>(~Wide{0} / kDivisor);  // less 2^64, which the conversion drops

u64 divide(u64& rest, u64 next) {
  const Wide estimate = Wide{kReciprocal} * rest + (Wide{rest} << 64 | next);
  u64 quotient = static_cast<u64>(estimate >> 64) + 1;
  rest = next - quotient * kDivisor;
  if (rest > static_cast<u64>(estimate)) {
    --quotient;
    rest += kDivisor;
  }
  if (rest >= kDivisor) [[unlikely]] {
    ++quotient;
    rest -= kDivisor;
  }
  return quotient;
}

// Divides the number in `count` limbs, least significant first, by 58^10 and returns the rest.
u64 divideLimbs(u64* limbs, u32 count) {
  u64 rest = limbs[count - 1] >> (64 - kShift);
  for (u32 i = count; i-- != 0;) {
    const u64 below = i != 0 ? limbs[i - 1] >> (64 - kShift) : 0;
    limbs[i] = divide(rest, limbs[i] << kShift | below);
  }
  return rest >> kShift;
}

// Writes the five characters of a number below 58^5 before `end`.
u8* putFive(u32 value, u8* end) {
  const u32 upper = value / kSquare;
  const Pair low = kPairs[value % kSquare], high = kPairs[upper % kSquare];
  end[-5] = static_cast<u8>(kDigits[upper / kSquare]);
  end[-4] = high.high;
  end[-3] = high.low;
  end[-2] = low.high;
  end[-1] = low.low;
  return end - 5;
}

// Writes the characters of up to 64 bytes, the first not zero. How many rounds there are, and which limbs each touches,
// follows from `n` alone: a round takes more than 58 bits away.
u32 putSmall(const u8* data, u32 n, u8* to) {
  constexpr s32 kRoundBits = 58;
  u64 limbs[kSmallBytes / 8];
  u8 chars[kSmallDigits + 12] = {};
  vk_num::bytesToLimbs(data, n, limbs);
  u8* p = chars + sizeof chars;
  for (s32 bits = static_cast<s32>(8 * n); bits > 0; bits -= kRoundBits) {
    const u64 rest = divideLimbs(limbs, (static_cast<u32>(bits) + 63) / 64);
    p = putFive(static_cast<u32>(rest % kPower5), p);
    p = putFive(static_cast<u32>(rest / kPower5), p);
  }
  while (*p == kDigits[0]) ++p;
  const u32 length = static_cast<u32>(chars + sizeof chars - p);
  vk_memcpy(to, p, length);
  return length;
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
  for (u32 i = 0; i < count; ++i) {
    const Wide product = Wide{limbs[i]} * factor + more;
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
    u32 count = 0, i = 0;
    for (u32 end = n_ % 10; i < n_; end += 10) {  // whole groups of ten at the end
      u64 group = 0;
      for (; i < end; ++i) group = group * kBase + digits_[i];
      multiplyAdd(limbs, count, kPower10, group);
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
  const u8* const chars = vk_codec::asBytes(text);
  u32 zeros = 0, count = 0, i = 0;
  u8 worst = 0;
  for (; i < n && (kValues[chars[i]] == 0 || kValues[chars[i]] == kSkipped); ++i)
    zeros += kValues[chars[i]] == 0 ? 1 : 0;
  for (; i < n; ++i) {
    const u8 value = kValues[chars[i]];
    digits[count] = value;
    count += value < kBase ? 1 : 0;
    worst = value > worst ? value : worst;
  }
  if (worst == kNoDigit) {  // no byte is known before the last digit
    for (i = 0; kValues[chars[i]] != kNoDigit;) ++i;
    return DecodeResult::fault(i);
  }
  return Number(digits, count, zeros, out).append() ? DecodeResult::good() : DecodeResult::noMemory();
}

bool ContentEncoder::decodeId7(const char* text, DataBuffer& out, LogBase&) {
  return vk_decodeBase58(text, vk_strlen(text), out).ok;
}
