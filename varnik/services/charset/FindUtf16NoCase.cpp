// Search without regard to case, in two gears. The first looks for two units of the needle at once, in all their case
// variants, and compares at the candidates; on text it is nearly all there is. Where candidates keep failing late (runs
// of one letter) the second takes over: the two-way algorithm (Crochemore and Perrin, 1991), linear in the worst case
// and without memory of its own.
#include <cstddef>
#include <cstring>

#include "varnik/services/charset/Utf16Case.h"
#include "varnik/services/charset/internal/CaseMap.h"
#include "varnik/simd/FindUnits.h"

namespace {

using vk_charset::FoldedCase;
using vk_charset::LowerCase;
using vk_charset::UpperCase;

u16 fold(u16 unit) {
  if (unit < 0x80) return static_cast<u16>(unit >= 'A' && unit <= 'Z' ? unit + 0x20 : unit);
  return FoldedCase::of(unit);
}

// Units at any address, folded as they are read.
class Folded {
 public:
  explicit Folded(const u16* units) : units_(reinterpret_cast<const u8*>(units)) {}
  u16 operator[](s64 i) const {
    u16 unit;
    std::memcpy(&unit, units_ + 2 * i, 2);
    return fold(unit);
  }
  u16 raw(s64 i) const {
    u16 unit;
    std::memcpy(&unit, units_ + 2 * i, 2);
    return unit;
  }
  const u8* at(s64 i) const { return units_ + 2 * i; }

 private:
  const u8* units_;
};

// The units that fold to another one but are neither its upper nor its lower case (long s, the Kelvin sign, final
// sigma, the letters of titlecase, ...).
constexpr struct {
  u16 folded, unit;
} kOddOnes[] = {{0x03BC, 0x00B5}, {0x0073, 0x017F}, {0x01C6, 0x01C5}, {0x01C9, 0x01C8}, {0x01CC, 0x01CB},
                {0x01F3, 0x01F2}, {0x03B9, 0x0345}, {0x03C3, 0x03C2}, {0x03B2, 0x03D0}, {0x03B8, 0x03D1},
                {0x03C6, 0x03D5}, {0x03C0, 0x03D6}, {0x03BA, 0x03F0}, {0x03C1, 0x03F1}, {0x03B8, 0x03F4},
                {0x03B5, 0x03F5}, {0x0432, 0x1C80}, {0x0434, 0x1C81}, {0x043E, 0x1C82}, {0x0441, 0x1C83},
                {0x0442, 0x1C84}, {0x0442, 0x1C85}, {0x044A, 0x1C86}, {0x0463, 0x1C87}, {0xA64B, 0x1C88},
                {0x1E61, 0x1E9B}, {0x00DF, 0x1E9E}, {0x03B9, 0x1FBE}, {0x03C9, 0x2126}, {0x006B, 0x212A},
                {0x00E5, 0x212B}};

// All units that fold as `unit` does: Unicode has four at most.
void variantsOf(u16 unit, u16 (&set)[4]) {
  const u16 folded = fold(unit);
  for (u16& each : set) each = folded;
  u32 count = 1;
  const auto add = [&](u16 variant) {
    if (variant != folded && fold(variant) == folded && count < 4) set[count++] = variant;
  };
  add(Utf16Case::toUpper(folded));
  add(Utf16Case::toLower(folded));
  if (folded >= 0x80 || folded == 'k' || folded == 's')
    for (const auto& odd : kOddOnes)
      if (odd.folded == folded) add(odd.unit);
}

struct Factor {
  s64 last;    // of the left part of a factorization: -1 where it is empty
  s64 period;  // of the right part
};

// The factorization whose right part is the greatest suffix in the order of the units, or in the reversed order.
Factor greatestSuffix(Folded needle, s64 m, bool reversed) {
  s64 suffix = -1, at = 0, k = 1, period = 1;
  while (at + k < m) {
    const u16 a = needle[at + k], b = needle[suffix + k];
    if (a == b) {
      if (k == period) at += period;
      k = k == period ? 1 : k + 1;
    } else if ((a < b) != reversed) {
      at += k;
      k = 1;
      period = at - suffix;
    } else {
      suffix = at++;
      k = period = 1;
    }
  }
  return {suffix, period};
}

bool isPeriodic(Folded needle, const Factor& factor, s64 m) {
  if (factor.period + factor.last >= m) return false;
  for (s64 i = 0; i <= factor.last; ++i)
    if (needle[i] != needle[i + factor.period]) return false;
  return true;
}

// The first occurrence at or behind `place`; n when there is none.
s64 twoWay(Folded text, s64 n, Folded needle, s64 m, s64 place) {
  const Factor one = greatestSuffix(needle, m, false), other = greatestSuffix(needle, m, true);
  Factor factor = one.last > other.last ? one : other;
  const bool periodic = isPeriodic(needle, factor, m);
  if (!periodic) factor.period = (factor.last + 1 > m - factor.last - 1 ? factor.last + 1 : m - factor.last - 1) + 1;
  s64 known = -1;  // the last index of the needle's front that is known to match
  while (place <= n - m) {
    s64 i = (factor.last > known ? factor.last : known) + 1;
    while (i < m && needle[i] == text[place + i]) ++i;
    if (i < m) {
      place += i - factor.last;
      known = -1;
      continue;
    }
    i = factor.last;
    while (i > known && needle[i] == text[place + i]) --i;
    if (i <= known) return place;
    place += factor.period;
    known = periodic ? m - factor.period - 1 : -1;
  }
  return n;
}

}  // namespace

const u16* vk_findUtf16NoCase(const u16* haystack, u32 n, const u16* needle, u32 m) {
  if (m == 0) return haystack;
  if (!haystack || !needle || m > n) return nullptr;
  const Folded text(haystack), wanted(needle);
  vk_simd::UnitPair ends{{}, {}, m - 1};
  variantsOf(wanted.raw(0), ends.first);
  variantsOf(wanted.raw(m - 1), ends.second);

  const u32 places = n - m + 1;
  u64 work = 0;
  for (u32 i = 0;; ++i) {
    i += vk_simd::findUnitPair(text.at(i), places - i, ends);
    if (i == places) return nullptr;
    u32 k = 1;
    while (k + 1 < m && text[i + k] == wanted[k]) ++k;
    if (k + 1 >= m) return haystack + i;
    constexpr u32 kCandidate = 8;  // what a candidate costs, in units compared
    work += k + kCandidate;
    if (work > u64{4} * i + u64{4} * m + 1024) {
      const s64 hit = twoWay(text, n, wanted, m, s64{i} + 1);
      return hit < n ? haystack + hit : nullptr;
    }
  }
}
