#include "varnik/simd/FindUnits.h"

#include <cstddef>
#include <cstring>

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {
namespace {

bool isOneOf(const u8* unit, const u16 (&set)[4]) {
  u16 value;
  std::memcpy(&value, unit, 2);
  return value == set[0] || value == set[1] || value == set[2] || value == set[3];
}

}  // namespace

u32 findUnitPairScalar(const u8* units, u32 places, const UnitPair& pair) {
  const u8* const behind = units + std::size_t{2} * pair.distance;
  u32 i = 0;
  while (i < places &&
         !(isOneOf(units + std::size_t{2} * i, pair.first) && isOneOf(behind + std::size_t{2} * i, pair.second)))
    ++i;
  return i;
}

#if VARNIK_HAVE_AVX2
namespace {

struct UnitSet {
  __m256i a, b, c, d;

  [[VARNIK_AVX2]] explicit UnitSet(const u16 (&set)[4])
      : a(_mm256_set1_epi16(static_cast<s16>(set[0]))),
        b(_mm256_set1_epi16(static_cast<s16>(set[1]))),
        c(_mm256_set1_epi16(static_cast<s16>(set[2]))),
        d(_mm256_set1_epi16(static_cast<s16>(set[3]))) {}

  // All bits of a lane where the unit is in the set.
  [[VARNIK_AVX2]] __m256i matches(const u8* units) const {
    const __m256i block = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(units));
    return _mm256_or_si256(_mm256_or_si256(_mm256_cmpeq_epi16(block, a), _mm256_cmpeq_epi16(block, b)),
                           _mm256_or_si256(_mm256_cmpeq_epi16(block, c), _mm256_cmpeq_epi16(block, d)));
  }
};

}  // namespace

[[VARNIK_AVX2]] u32 findUnitPairAvx2(const u8* units, u32 places, const UnitPair& pair) {
  const UnitSet first(pair.first), second(pair.second);
  const u8* const behind = units + std::size_t{2} * pair.distance;
  u32 i = 0;
  for (; places - i >= 16; i += 16) {
    const std::size_t at = std::size_t{2} * i;
    const __m256i both = _mm256_and_si256(first.matches(units + at), second.matches(behind + at));
    const u32 mask = static_cast<u32>(_mm256_movemask_epi8(both));
    if (mask != 0) return i + static_cast<u32>(__builtin_ctz(mask)) / 2;
  }
  return i + findUnitPairScalar(units + std::size_t{2} * i, places - i, pair);
}
#endif

u32 findUnitPair(const u8* units, u32 places, const UnitPair& pair) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return findUnitPairAvx2(units, places, pair);
#endif
  return findUnitPairScalar(units, places, pair);
}

}  // namespace vk_simd
