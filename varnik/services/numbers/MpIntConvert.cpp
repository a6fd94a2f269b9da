#include "varnik/services/numbers/MpIntConvert.h"

#include <algorithm>
#include <array>
#include <new>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/codecs/internal/Room.h"
#include "varnik/services/memory/Text.h"
#include "varnik/services/numbers/internal/BigDigits.h"

namespace {

constexpr s32 kLeastRadix = 2, kMostRadix = 36;
constexpr u8 kNoDigit = 0xFF;

constexpr std::array<u8, 256> kValues = [] {
  std::array<u8, 256> values{};
  values.fill(kNoDigit);
  for (u32 i = 0; i < 10; ++i) values['0' + i] = static_cast<u8>(i);
  for (u32 i = 0; i < 26; ++i) values['a' + i] = values['A' + i] = static_cast<u8>(10 + i);
  return values;
}();

void digitsToText(u8* digits, u32 n) {
  for (u32 i = 0; i < n; ++i) digits[i] = static_cast<u8>("0123456789abcdefghijklmnopqrstuvwxyz"[digits[i]]);
}

// A block on the stack when it is small.
template <class T>
class Scratch {
 public:
  bool allocate(u32 n) {
    if (n <= kSmall) return true;
    large_.reset(new (std::nothrow) T[n]);
    return large_ != nullptr;
  }
  T* get() { return large_ ? large_.get() : small_; }

 private:
  static constexpr u32 kSmall = 512 / sizeof(T);
  T small_[kSmall];
  std::unique_ptr<T[]> large_;
};

}  // namespace

mp_int::~mp_int() {
  delete[] limbs_;
}

bool MpIntConvert::bytesToMpInt(mp_int& value, const u8* bytes, s32 n) {
  value.numLimbs_ = 0;
  if (!bytes || n <= 0) return true;
  const u32 count = static_cast<u32>(n);
  auto limbs = vk_num::allocLimbs(vk_num::limbsOfBytes(count));
  if (!limbs) return false;
  value.numLimbs_ = vk_num::bytesToLimbs(bytes, count, limbs.get());
  delete[] value.limbs_;
  value.limbs_ = limbs.release();
  return true;
}

bool MpIntConvert::mpIntToBytes(const mp_int& value, DataBuffer& out) {
  if (value.numLimbs_ == 0) return out.append("", 1);
  const u32 n = vk_num::byteLength(value.limbs_, value.numLimbs_);
  u8* const to = vk_codec::roomFor(out, n);
  if (!to) return false;
  vk_num::limbsToBytes(value.limbs_, n, to);
  out.addToSize(n);
  return true;
}

bool MpIntConvert::textToMpInt(mp_int& value, const char* text, s32 radix) {
  value.numLimbs_ = 0;
  if (radix < kLeastRadix || radix > kMostRadix) return false;
  const u32 base = static_cast<u32>(radix);
  const u8* p = vk_codec::asBytes(text ? text : "");
  while (vk_codec::isSpace(*p)) ++p;
  u32 n = 0;
  while (n != 0xFFFFFFFF && kValues[p[n]] < base) ++n;
  if (n == 0) return false;
  Scratch<u8> digits;
  auto limbs = vk_num::allocLimbs(vk_num::limbsOfDigits(n, base));
  if (!limbs || !digits.allocate(n)) return false;
  for (u32 i = 0; i < n; ++i) digits.get()[i] = kValues[p[i]];
  if (!vk_num::digitsToLimbs(digits.get(), n, base, limbs.get(), value.numLimbs_)) return false;
  delete[] value.limbs_;
  value.limbs_ = limbs.release();
  for (p += n; vk_codec::isSpace(*p);) ++p;
  return *p == 0;
}

bool MpIntConvert::mpIntToText(const mp_int& value, StringBuffer& out, s32 radix) {
  if (radix < kLeastRadix || radix > kMostRadix) return false;
  const u32 n = value.numLimbs_, base = static_cast<u32>(radix);
  if (n == 0) return out.appendChar('0');
  Scratch<u64> copy;  // the conversion destroys what it is given
  if (!copy.allocate(n)) return false;
  std::copy(value.limbs_, value.limbs_ + n, copy.get());
  u8* const to = vk_codec::roomFor(out, vk_num::digitsOfLimbs(n, base));
  if (!to) return false;
  const u32 count = vk_num::limbsToDigits(copy.get(), n, base, to);
  digitsToText(to, count);
  out.addToSize(count);
  return count != 0;
}
