#include "varnik/simd/Hex.h"

#if VARNIK_HAVE_NEON
#include <arm_neon.h>

namespace vk_simd {
namespace {

// The value of each digit; any other character gives 16 or more. As in the AVX2 form, the smaller of two readings.
uint8x16_t valuesOf(uint8x16_t c) {
  const uint8x16_t decimal = vsubq_u8(c, vdupq_n_u8('0'));
  const uint8x16_t letter = vsubq_u8(vandq_u8(c, vdupq_n_u8(0xDF)), vdupq_n_u8('A'));
  const uint8x16_t notDecimal = vcgtq_u8(decimal, vdupq_n_u8(9));
  return vminq_u8(vorrq_u8(decimal, notDecimal), vqaddq_u8(letter, vdupq_n_u8(10)));
}

}  // namespace

void hexEncodeNeon(const u8* in, u32 n, bool lower, char* out) {
  static constexpr char kDigits[2][17] = {"0123456789ABCDEF", "0123456789abcdef"};
  const uint8x16_t digits = vld1q_u8(reinterpret_cast<const u8*>(kDigits[lower]));
  for (; n >= 16; n -= 16, in += 16, out += 32) {
    const uint8x16_t bytes = vld1q_u8(in);
    vst2q_u8(reinterpret_cast<u8*>(out),
             {{vqtbl1q_u8(digits, vshrq_n_u8(bytes, 4)), vqtbl1q_u8(digits, vandq_u8(bytes, vdupq_n_u8(15)))}});
  }
  hexEncodeScalar(in, n, lower, out);
}

// The scalar finds the fault in the block that has one.
u32 hexDecodeNeon(const char* in, u32 n, u8* out) {
  u32 i = 0;
  for (; n - i >= 32; i += 32) {
    const uint8x16x2_t pairs = vld2q_u8(reinterpret_cast<const u8*>(in + i));
    const uint8x16_t high = valuesOf(pairs.val[0]), low = valuesOf(pairs.val[1]);
    if (vmaxvq_u8(vorrq_u8(high, low)) > 15) break;
    vst1q_u8(out + i / 2, vsliq_n_u8(low, high, 4));
  }
  return i + hexDecodeScalar(in + i, n - i, out + i / 2);
}

}  // namespace vk_simd
#endif
