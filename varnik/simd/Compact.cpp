#include "varnik/simd/Compact.h"

#include "varnik/simd/internal/StayingBytes.h"

namespace vk_simd {
namespace {

// Which bytes go: of one, and a bit for each of a vector's.
struct EqualTo {
  u8 value;
  bool operator()(u8 each) const { return each == value; }
#if VARNIK_HAVE_AVX2
  [[VARNIK_AVX2]] u32 operator()(__m256i block) const {
    return static_cast<u32>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(block, _mm256_set1_epi8(static_cast<char>(value)))));
  }
#endif
#if VARNIK_HAVE_AVX512
  [[VARNIK_AVX512]] u64 operator()(__m512i block) const {
    return _mm512_cmpeq_epi8_mask(block, _mm512_set1_epi8(static_cast<char>(value)));
  }
#endif
};

struct ZeroOrHigh {
  bool operator()(u8 each) const { return each == 0 || each >= 0x80; }
#if VARNIK_HAVE_AVX2
  [[VARNIK_AVX2]] u32 operator()(__m256i block) const {
    return ~static_cast<u32>(_mm256_movemask_epi8(_mm256_cmpgt_epi8(block, _mm256_setzero_si256())));
  }
#endif
#if VARNIK_HAVE_AVX512
  [[VARNIK_AVX512]] u64 operator()(__m512i block) const {
    return _mm512_cmple_epi8_mask(block, _mm512_setzero_si512());
  }
#endif
};

// Every byte is written, and the next one writes over it where it goes: there is no branch to mispredict.
template <class Going>
u32 compactScalar(u8* out, const u8* from, u32 n, Going going) {
  u32 kept = 0;
  for (u32 i = 0; i < n; ++i) {
    const u8 each = from[i];
    out[kept] = each;
    kept += !going(each);
  }
  return kept;
}

}  // namespace

u32 dropByteScalar(u8* out, const u8* from, u32 n, u8 value) {
  return compactScalar(out, from, n, EqualTo{value});
}

u32 keepAsciiScalar(u8* out, const u8* from, u32 n) {
  return compactScalar(out, from, n, ZeroOrHigh{});
}

u32 keepEvenScalar(u8* out, const u8* from, u32 n) {
  const u32 kept = n / 2 + n % 2;
  for (u32 i = 0; i < kept; ++i) out[i] = from[2 * i];
  return kept;
}

#if VARNIK_HAVE_AVX2
namespace {

[[VARNIK_AVX2]] inline __m256i load(const u8* p) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}

// A block is in a register before anything is stored over it, and the stores stay within as many bytes as were read: so
// the output may run closely behind the input, and needs no room beyond `n`.
template <class Going>
[[VARNIK_AVX2]] u32 compactAvx2(u8* out, const u8* from, u32 n, Going going) {
  u32 i = 0, kept = 0;
  for (; n - i >= 32; i += 32) {
    const __m256i block = load(from + i);
    kept += putStaying(out + kept, block, going(block));
  }
  return kept + compactScalar(out + kept, from + i, n - i, going);
}

}  // namespace

[[VARNIK_AVX2]] u32 dropByteAvx2(u8* out, const u8* from, u32 n, u8 value) {
  return compactAvx2(out, from, n, EqualTo{value});
}

[[VARNIK_AVX2]] u32 keepAsciiAvx2(u8* out, const u8* from, u32 n) {
  return compactAvx2(out, from, n, ZeroOrHigh{});
}

[[VARNIK_AVX2]] u32 keepEvenAvx2(u8* out, const u8* from, u32 n) {
  const __m256i even = _mm256_set1_epi16(0x00FF);
  u32 i = 0;
  for (; n - i >= 64; i += 64) {
    const __m256i a = _mm256_and_si256(load(from + i), even), b = _mm256_and_si256(load(from + i + 32), even);
    const __m256i packed = _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), 0xD8);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + i / 2), packed);
  }
  return i / 2 + keepEvenScalar(out + i / 2, from + i, n - i);
}
#endif

#if VARNIK_HAVE_AVX512
namespace {

template <class Going>
[[VARNIK_AVX512]] u32 compactAvx512(u8* out, const u8* from, u32 n, Going going) {
  u32 i = 0, kept = 0;
  for (; n - i >= 64; i += 64) {
    const __m512i block = _mm512_loadu_si512(from + i);
    const u64 staying = ~going(block);
    _mm512_storeu_si512(out + kept, _mm512_maskz_compress_epi8(staying, block));
    kept += static_cast<u32>(__builtin_popcountll(staying));
  }
  if (i == n) return kept;
  const u64 rest = _bzhi_u64(~u64{0}, n - i);
  const __m512i block = _mm512_maskz_loadu_epi8(rest, from + i);
  const u64 staying = rest & ~going(block);
  const u32 count = static_cast<u32>(__builtin_popcountll(staying));
  _mm512_mask_storeu_epi8(out + kept, _bzhi_u64(~u64{0}, count), _mm512_maskz_compress_epi8(staying, block));
  return kept + count;
}

}  // namespace

[[VARNIK_AVX512]] u32 dropByteAvx512(u8* out, const u8* from, u32 n, u8 value) {
  return compactAvx512(out, from, n, EqualTo{value});
}

[[VARNIK_AVX512]] u32 keepAsciiAvx512(u8* out, const u8* from, u32 n) {
  return compactAvx512(out, from, n, ZeroOrHigh{});
}
#endif

u32 dropByte(u8* out, const u8* from, u32 n, u8 value) {
#if VARNIK_HAVE_AVX512
  if (hasAvx512()) return dropByteAvx512(out, from, n, value);
#endif
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return dropByteAvx2(out, from, n, value);
#endif
  return dropByteScalar(out, from, n, value);
}

u32 keepAscii(u8* out, const u8* from, u32 n) {
#if VARNIK_HAVE_AVX512
  if (hasAvx512()) return keepAsciiAvx512(out, from, n);
#endif
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return keepAsciiAvx2(out, from, n);
#endif
  return keepAsciiScalar(out, from, n);
}

u32 keepEven(u8* out, const u8* from, u32 n) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return keepEvenAvx2(out, from, n);
#endif
  return keepEvenScalar(out, from, n);
}

}  // namespace vk_simd
