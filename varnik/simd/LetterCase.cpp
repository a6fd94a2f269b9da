#include "varnik/simd/LetterCase.h"

#include <cstddef>
#include <cstring>
#include <span>

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {
namespace {

constexpr u32 kBlock = 16;

// Values stand twice in 32 bits, as that is spread over a vector by nothing but a load.
constexpr u32 twice(u32 value) {
  return (value & 0xFFFF) * 0x10001;
}

// The units from `first` to `last`. Shifted so that `first` is the least signed value, they are what is below a limit:
// vectors compare signed values only.
struct Range {
  u32 shift, limit;
  constexpr Range(u16 first, u16 last) : shift(twice(0x8000U - first)), limit(twice(0x8000U + last - first + 1)) {}
};

// The units whose mappings stand below; those that no change names map to themselves.
constexpr Range kKnown[] = {{0x0000, 0x00FF}, {0x0386, 0x03CE}, {0x0400, 0x045F},
                            {0x2000, 0x20FF}, {0x2E80, 0xA63F}, {0xAC00, 0xFAFF}};

// What is added to units modulo 2^16. Where a unit is in two ranges both values are, so that one unit inside a range
// can be taken out of it or differ.
struct Change {
  Range units;
  u32 add;
  constexpr Change(Range range, s32 distance) : units(range), add(twice(static_cast<u32>(distance))) {}
};

constexpr Change kUpper[] = {{{'a', 'z'}, -32},
                             {{0xB5, 0xB5}, 0x39C - 0xB5},
                             {{0xE0, 0xFE}, -32},
                             {{0xF7, 0xF7}, 32},  // the division sign stays
                             {{0xFF, 0xFF}, 0x178 - 0xFF},
                             {{0x3AC, 0x3AC}, -38},
                             {{0x3AD, 0x3AF}, -37},
                             {{0x3B1, 0x3CB}, -32},
                             {{0x3C2, 0x3C2}, 1},  // final sigma
                             {{0x3CC, 0x3CC}, -64},
                             {{0x3CD, 0x3CE}, -63},
                             {{0x430, 0x44F}, -32},
                             {{0x450, 0x45F}, -80}};
constexpr Change kLower[] = {
    {{'A', 'Z'}, 32},     {{0xC0, 0xDE}, 32},   {{0xD7, 0xD7}, -32},  // the multiplication sign stays
    {{0x386, 0x386}, 38}, {{0x388, 0x38A}, 37}, {{0x38C, 0x38C}, 64},
    {{0x38E, 0x38F}, 63}, {{0x391, 0x3AB}, 32}, {{0x3A2, 0x3A2}, -32},  // no character
    {{0x400, 0x40F}, 80}, {{0x410, 0x42F}, 32}};

constexpr bool isIn(u16 unit, Range range) {
  return static_cast<s16>(unit + range.shift) < static_cast<s16>(range.limit);
}

u32 mapBlocks(u8* units, u32 n, std::span<const Change> changes) {
  u32 done = 0;
  for (; n - done >= kBlock; done += kBlock) {
    u16 block[kBlock];
    u8* const at = units + std::size_t{2} * done;
    std::memcpy(block, at, sizeof block);
    bool allKnown = true;
    for (u16& unit : block) {
      bool known = false;
      u16 add = 0;
      for (const Range range : kKnown) known |= isIn(unit, range);
      for (const Change& change : changes)
        if (isIn(unit, change.units)) add = static_cast<u16>(add + static_cast<u16>(change.add));
      unit = static_cast<u16>(unit + add);
      allKnown &= known;
    }
    if (!allKnown) break;
    std::memcpy(at, block, sizeof block);
  }
  return done;
}

}  // namespace

u32 upperBlocksScalar(u8* units, u32 n) {
  return mapBlocks(units, n, kUpper);
}
u32 lowerBlocksScalar(u8* units, u32 n) {
  return mapBlocks(units, n, kLower);
}

#if VARNIK_HAVE_AVX2
namespace {

[[VARNIK_AVX2]] inline __m256i spread(u32 twice) {
  return _mm256_set1_epi32(static_cast<s32>(twice));
}

// All ones in the units of the range.
[[VARNIK_AVX2]] inline __m256i isIn(__m256i units, Range range) {
  return _mm256_cmpgt_epi16(spread(range.limit), _mm256_add_epi16(units, spread(range.shift)));
}

template <u32 kCount>
[[VARNIK_AVX2]] inline bool allKnown(const __m256i* block) {
  __m256i known[kCount] = {};
  for (const Range range : kKnown)
    for (u32 i = 0; i < kCount; ++i) known[i] = _mm256_or_si256(known[i], isIn(block[i], range));
  __m256i all = known[0];
  for (u32 i = 1; i < kCount; ++i) all = _mm256_and_si256(all, known[i]);
  return _mm256_movemask_epi8(all) == -1;
}

template <u32 kCount>
[[VARNIK_AVX2]] inline void change(__m256i* block, std::span<const Change> changes) {
  __m256i add[kCount] = {};
  for (const Change& each : changes)
    for (u32 i = 0; i < kCount; ++i)
      add[i] = _mm256_add_epi16(add[i], _mm256_and_si256(isIn(block[i], each.units), spread(each.add)));
  for (u32 i = 0; i < kCount; ++i) block[i] = _mm256_add_epi16(block[i], add[i]);
}

// Maps kCount blocks at once, which share the constants and the branches; false, and nothing changed, when one of them
// has a unit that is not known.
template <u32 kCount>
[[VARNIK_AVX2]] inline bool mapTogether(__m256i* at, std::span<const Change> changes) {
  __m256i block[kCount], all = _mm256_setzero_si256();
  for (u32 i = 0; i < kCount; ++i) all = _mm256_or_si256(all, block[i] = _mm256_loadu_si256(at + i));
  if (_mm256_testz_si256(all, spread(twice(0xFF80)))) {
    change<kCount>(block, changes.first(1));  // ASCII's letters are the first
  } else {
    if (!allKnown<kCount>(block)) return false;
    change<kCount>(block, changes);
  }
  for (u32 i = 0; i < kCount; ++i) _mm256_storeu_si256(at + i, block[i]);
  return true;
}

[[VARNIK_AVX2]] inline u32 mapBlocksAvx2(u8* units, u32 n, std::span<const Change> changes) {
  auto* const at = reinterpret_cast<__m256i*>(units);
  u32 block = 0;
  while (n / kBlock - block >= 4 && mapTogether<4>(at + block, changes)) block += 4;
  while (n / kBlock - block >= 1 && mapTogether<1>(at + block, changes)) ++block;
  return block * kBlock;
}

}  // namespace

[[VARNIK_AVX2]] u32 upperBlocksAvx2(u8* units, u32 n) {
  return mapBlocksAvx2(units, n, kUpper);
}
[[VARNIK_AVX2]] u32 lowerBlocksAvx2(u8* units, u32 n) {
  return mapBlocksAvx2(units, n, kLower);
}
#endif

#if VARNIK_HAVE_AVX512
namespace {

[[VARNIK_AVX512]] inline __m512i spread512(u32 twice) {
  return _mm512_set1_epi32(static_cast<s32>(twice));
}

// A bit for each unit of the range.
[[VARNIK_AVX512]] inline __mmask32 among(__m512i units, Range range) {
  return _mm512_cmpgt_epi16_mask(spread512(range.limit), _mm512_add_epi16(units, spread512(range.shift)));
}

// Two blocks at once; false, and nothing changed, when a unit is not known.
[[VARNIK_AVX512]] inline bool mapTwo(u8* at, std::span<const Change> changes) {
  const __m512i units = _mm512_loadu_si512(at);
  if (_mm512_test_epi16_mask(units, spread512(twice(0xFF80))) == 0) {
    changes = changes.first(1);  // ASCII's letters are the first
  } else {
    __mmask32 known = 0;
    for (const Range range : kKnown) known |= among(units, range);
    if (known != ~__mmask32{0}) return false;
  }
  __m512i mapped = units;
  for (const Change& each : changes)
    mapped = _mm512_mask_add_epi16(mapped, among(units, each.units), mapped, spread512(each.add));
  _mm512_storeu_si512(at, mapped);
  return true;
}

[[VARNIK_AVX512]] inline u32 mapBlocksAvx512(u8* units, u32 n, std::span<const Change> changes) {
  u32 done = 0;
  while (n - done >= 2 * kBlock && mapTwo(units + std::size_t{2} * done, changes)) done += 2 * kBlock;
  return done + mapBlocksAvx2(units + std::size_t{2} * done, n - done, changes);
}

}  // namespace

[[VARNIK_AVX512]] u32 upperBlocksAvx512(u8* units, u32 n) {
  return mapBlocksAvx512(units, n, kUpper);
}
[[VARNIK_AVX512]] u32 lowerBlocksAvx512(u8* units, u32 n) {
  return mapBlocksAvx512(units, n, kLower);
}
#endif

u32 upperBlocks(u8* units, u32 n) {
#if VARNIK_HAVE_AVX512
  if (hasAvx512()) return upperBlocksAvx512(units, n);
#endif
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return upperBlocksAvx2(units, n);
#endif
  return upperBlocksScalar(units, n);
}
u32 lowerBlocks(u8* units, u32 n) {
#if VARNIK_HAVE_AVX512
  if (hasAvx512()) return lowerBlocksAvx512(units, n);
#endif
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return lowerBlocksAvx2(units, n);
#endif
  return lowerBlocksScalar(units, n);
}

}  // namespace vk_simd
