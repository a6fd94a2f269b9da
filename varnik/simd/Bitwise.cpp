#include "varnik/simd/Bitwise.h"

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {

void xorBytesScalar(u8* out, const u8* a, const u8* b, u32 n) {
  for (u32 i = 0; i < n; ++i) out[i] = static_cast<u8>(a[i] ^ b[i]);
}

void andBytesScalar(u8* out, const u8* a, const u8* b, u32 n) {
  for (u32 i = 0; i < n; ++i) out[i] = static_cast<u8>(a[i] & b[i]);
}

#if VARNIK_HAVE_AVX2
namespace {

[[VARNIK_AVX2]] inline __m256i load(const u8* p) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}
[[VARNIK_AVX2]] inline void store(u8* p, __m256i v) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v);
}

}  // namespace

[[VARNIK_AVX2]] void xorBytesAvx2(u8* out, const u8* a, const u8* b, u32 n) {
  u32 i = 0;
  for (; n - i >= 32; i += 32) store(out + i, _mm256_xor_si256(load(a + i), load(b + i)));
  if (i < n) xorBytesScalar(out + i, a + i, b + i, n - i);
}

[[VARNIK_AVX2]] void andBytesAvx2(u8* out, const u8* a, const u8* b, u32 n) {
  u32 i = 0;
  for (; n - i >= 32; i += 32) store(out + i, _mm256_and_si256(load(a + i), load(b + i)));
  if (i < n) andBytesScalar(out + i, a + i, b + i, n - i);
}
#endif

void xorBytes(u8* out, const u8* a, const u8* b, u32 n) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return xorBytesAvx2(out, a, b, n);
#endif
  xorBytesScalar(out, a, b, n);
}

void andBytes(u8* out, const u8* a, const u8* b, u32 n) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return andBytesAvx2(out, a, b, n);
#endif
  andBytesScalar(out, a, b, n);
}

}  // namespace vk_simd
