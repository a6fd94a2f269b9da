#include "varnik/simd/AsciiRun.h"

#if VARNIK_HAVE_NEON
#include <arm_neon.h>

namespace vk_simd {

u32 asciiRunNeon(const u8* data, u32 n) {
  u32 i = 0;
  for (; n - i >= 64; i += 64) {
    const uint8x16_t a = vorrq_u8(vld1q_u8(data + i), vld1q_u8(data + i + 16));
    const uint8x16_t b = vorrq_u8(vld1q_u8(data + i + 32), vld1q_u8(data + i + 48));
    if (vmaxvq_u8(vorrq_u8(a, b)) >= 0x80) break;
  }
  while (n - i >= 16 && vmaxvq_u8(vld1q_u8(data + i)) < 0x80) i += 16;
  return i + asciiRunScalar(data + i, n - i);
}

}  // namespace vk_simd
#endif
