#include "varnik/simd/FindBytes.h"

#if VARNIK_HAVE_NEON
#include <arm_neon.h>

#include <cstring>

namespace vk_simd {
namespace {

// Four bits for each byte that is not zero, the first byte's lowest.
u64 bitsOf(uint8x16_t mask) {
  return vget_lane_u64(vreinterpret_u64_u8(vshrn_n_u16(vreinterpretq_u16_u8(mask), 4)), 0);
}
u32 firstOf(u64 bits) {
  return static_cast<u32>(__builtin_ctzll(bits)) / 4;
}

}  // namespace

u32 mismatchNeon(const u8* a, const u8* b, u32 n) {
  u32 i = 0;
  for (; n - i >= 16; i += 16)
    if (const u64 bits = bitsOf(vmvnq_u8(vceqq_u8(vld1q_u8(a + i), vld1q_u8(b + i)))); bits != 0)
      return i + firstOf(bits);
  return i + mismatchScalar(a + i, b + i, n - i);
}

// Looks at both ends of the pattern at 16 places at once.
u32 BytesFinder::nextNeon(u32 from) const {
  const uint8x16_t head = vdupq_n_u8(pattern_[0]), tail = vdupq_n_u8(pattern_[m_ - 1]);
  u32 i = from;
  for (; i < places_ && places_ - i >= 16; i += 16) {
    const uint8x16_t ends = vandq_u8(vceqq_u8(vld1q_u8(data_ + i), head), vceqq_u8(vld1q_u8(data_ + i + m_ - 1), tail));
    for (u64 bits = bitsOf(ends); bits != 0; bits &= ~(u64{15} << 4 * firstOf(bits)))
      if (std::memcmp(data_ + i + firstOf(bits), pattern_, m_) == 0) return i + firstOf(bits);
  }
  return nextScalar(i);
}

}  // namespace vk_simd
#endif
