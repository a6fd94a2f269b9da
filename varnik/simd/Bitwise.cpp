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

struct Xor {
  [[VARNIK_AVX2]] __m256i operator()(__m256i a, __m256i b) const { return _mm256_xor_si256(a, b); }
};
struct And {
  [[VARNIK_AVX2]] __m256i operator()(__m256i a, __m256i b) const { return _mm256_and_si256(a, b); }
};

// Combines the whole blocks of n bytes; returns how many bytes they are. Long areas go on from where `out` is aligned,
// as a store across two cache lines counts twice; the head that this leaves out is computed first, because `out` may be
// an operand, and stored last.
template <class Op>
[[VARNIK_AVX2]] inline u32 combineBlocks(u8* out, const u8* a, const u8* b, u32 n, Op op) {
  constexpr u32 kLong = 256;
  u32 i = 0;
  if (n < kLong) {
    for (; n - i >= 32; i += 32) store(out + i, op(load(a + i), load(b + i)));
    return i;
  }
  const __m256i head = op(load(a), load(b));
  for (i = 32 - static_cast<u32>(reinterpret_cast<std::uintptr_t>(out) % 32); n - i >= 32; i += 32)
    store(out + i, op(load(a + i), load(b + i)));
  store(out, head);
  return i;
}

}  // namespace

[[VARNIK_AVX2]] void xorBytesAvx2(u8* out, const u8* a, const u8* b, u32 n) {
  const u32 i = combineBlocks(out, a, b, n, Xor());
  if (i < n) xorBytesScalar(out + i, a + i, b + i, n - i);
}

[[VARNIK_AVX2]] void andBytesAvx2(u8* out, const u8* a, const u8* b, u32 n) {
  const u32 i = combineBlocks(out, a, b, n, And());
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
