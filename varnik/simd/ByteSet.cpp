#include "varnik/simd/ByteSet.h"

#include <algorithm>

#include "varnik/simd/Classify.h"

namespace vk_simd {

u32 copyRunScalar(const ByteSet& set, const u8* from, u32 n, u8* out) {
  u32 i = 0;
  for (; i < n && set.has(from[i]); ++i) out[i] = from[i];
  return i;
}

u64 membersAmongScalar(const ByteSet& set, const u8* bytes, u32 n) {
  u64 members = 0;
  for (u32 i = 0; i < std::min(n, 64U); ++i) members |= u64{set.has(bytes[i])} << i;
  return members;
}

#if VARNIK_HAVE_AVX2
namespace {

[[VARNIK_AVX2]] inline __m256i load32(const u8* p) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}
[[VARNIK_AVX2]] inline __m128i load16(const u8* p) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

// Copies 32 (16) bytes and returns which of them are not in the set.
[[VARNIK_AVX2]] inline u32 copyBlock(const SetTables& tables, const u8* from, u8* out) {
  const __m256i bytes = load32(from);
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), bytes);
  return outsiders(tables, bytes);
}
[[VARNIK_AVX2]] inline u32 copyBlock16(const SetTables& tables, const u8* from, u8* out) {
  const __m128i bytes = load16(from);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), bytes);
  return outsiders16(tables, bytes);
}
inline u32 firstOf(u32 mask) {
  return static_cast<u32>(__builtin_ctz(mask));
}

// 16 to 31 bytes: one block from either end. Where they overlap they write the same bytes.
[[VARNIK_AVX2]] u32 copyRunShort(const SetTables& tables, const u8* from, u32 n, u8* out) {
  if (const u32 mask = copyBlock16(tables, from, out); mask != 0) return firstOf(mask);
  const u32 last = n - 16;
  const u32 mask = copyBlock16(tables, from + last, out + last);
  return mask != 0 ? last + firstOf(mask) : n;
}

}  // namespace

[[VARNIK_AVX2]] u32 copyRunAvx2(const ByteSet& set, const u8* from, u32 n, u8* out) {
  if (n < 16) return copyRunScalar(set, from, n, out);
  const SetTables tables = tablesOf(set);
  if (n < 32) return copyRunShort(tables, from, n, out);
  u32 i = 0;
  for (; n - i >= 32; i += 32)
    if (const u32 mask = copyBlock(tables, from + i, out + i); mask != 0) return i + firstOf(mask);
  if (i == n) return n;
  const u32 last = n - 32;  // overlaps bytes that are known to belong
  const u32 mask = copyBlock(tables, from + last, out + last);
  return mask != 0 ? last + firstOf(mask) : n;
}

// Two halves, of which the second ends where the bytes end.
[[VARNIK_AVX2]] u64 membersAmongAvx2(const ByteSet& set, const u8* bytes, u32 n) {
  if (n < 16) return membersAmongScalar(set, bytes, n);
  const SetTables tables = tablesOf(set);
  if (n < 32) {
    const u32 low = 0xFFFF ^ outsiders16(tables, load16(bytes));
    return low | u64{0xFFFF ^ outsiders16(tables, load16(bytes + n - 16))} << (n - 16);
  }
  const u32 last = std::min(n, 64U) - 32;
  const u32 low = ~outsiders(tables, load32(bytes)), high = ~outsiders(tables, load32(bytes + last));
  return low | u64{high} << last;
}
#endif

u32 copyRun(const ByteSet& set, const u8* from, u32 n, u8* out) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return copyRunAvx2(set, from, n, out);
#endif
  return copyRunScalar(set, from, n, out);
}

u64 membersAmong(const ByteSet& set, const u8* bytes, u32 n) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return membersAmongAvx2(set, bytes, n);
#endif
  return membersAmongScalar(set, bytes, n);
}

}  // namespace vk_simd
