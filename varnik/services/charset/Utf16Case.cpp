#include "varnik/services/charset/Utf16Case.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "varnik/services/charset/internal/CaseMap.h"
#include "varnik/simd/LetterCase.h"

namespace {

using vk_charset::LowerCase;
using vk_charset::UpperCase;

// What the kernel leaves goes unit by unit, but not one by one: behind a unit that it does not know others follow.
constexpr u32 kUnitsAtOnce = 32;

template <class Map>
void mapUnits(u8* units, u32 n) {
  for (u32 i = 0; i < n; ++i) {
    u16 unit;
    std::memcpy(&unit, units + std::size_t{2} * i, 2);
    unit = Map::of(unit);
    std::memcpy(units + std::size_t{2} * i, &unit, 2);
  }
}

template <class Map>
void mapBlocks(u8* units, u32 n, u32 (*knownBlocks)(u8*, u32)) {
  for (u32 i = 0; i < n;) {
    i += knownBlocks(units + std::size_t{2} * i, n - i);
    const u32 count = std::min(kUnitsAtOnce, n - i);
    mapUnits<Map>(units + std::size_t{2} * i, count);
    i += count;
  }
}

}  // namespace

u16 Utf16Case::toUpper(u16 unit) {
  if (unit < 0x80) return static_cast<u16>(unit >= 'a' && unit <= 'z' ? unit - 0x20 : unit);
  return UpperCase::of(unit);
}

u16 Utf16Case::toLower(u16 unit) {
  if (unit < 0x80) return static_cast<u16>(unit >= 'A' && unit <= 'Z' ? unit + 0x20 : unit);
  return LowerCase::of(unit);
}

void Utf16Case::toUpper(u8* units, u32 n) {
  mapBlocks<UpperCase>(units, n, vk_simd::upperBlocks);
}

void Utf16Case::toLower(u8* units, u32 n) {
  mapBlocks<LowerCase>(units, n, vk_simd::lowerBlocks);
}
