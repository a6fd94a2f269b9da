// Text with few bytes to escape is copied in blocks. Where a block has more of them, a table step for each byte (store
// the whole entry, advance by its length) is faster than finding them, as it has no branch to guess.
#include "varnik/simd/Escape.h"

#include <cstring>

#include "varnik/simd/Classify.h"

namespace vk_simd {

namespace {

inline u8* put(const EscapeTable& table, u8 b, u8* out) {
  const u8* const entry = table.entry[b];
  std::memcpy(out, entry, 8);
  return out + entry[EscapeTable::kCount];
}

inline u8* putAll(const EscapeTable& table, const u8* from, u32 n, u8* out) {
  for (u32 i = 0; i < n; ++i) out = put(table, from[i], out);
  return out;
}

}  // namespace

u32 escapeBytesScalar(const EscapeTable& table, const u8* from, u32 n, u8* out) {
  return static_cast<u32>(putAll(table, from, n, out) - out);
}

#if VARNIK_HAVE_AVX2
namespace {

[[VARNIK_AVX2]] inline void copy32(const u8* from, u8* out) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from)));
}

// Writes a block with few bytes to escape: after each of them the rest of the block is copied anew.
[[VARNIK_AVX2]] inline u8* putBlock(const EscapeTable& table, const u8* from, u32 dirty, u8* out) {
  u32 start = 0;
  do {
    const u32 at = _tzcnt_u32(dirty);
    out = put(table, from[at], out + (at - start));
    start = at + 1;
    copy32(from + start, out);
    dirty = _blsr_u32(dirty);
  } while (dirty != 0);
  return out + (32 - start);
}

}  // namespace

// The blocks lie at fixed places, so that finding what to escape in one does not wait for the one before it.
[[VARNIK_AVX2]] u32 escapeBytesAvx2(const EscapeTable& table, const u8* from, u32 n, u8* out) {
  constexpr int kFew = 4;
  const SetTables tables = tablesOf(table.clean);
  u8* p = out;
  u32 i = 0;
  for (; n - i >= 32; i += 32) {
    const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + i));
    const u32 dirty = outsiders(tables, bytes);
    const bool reachable = n - i >= 64;  // what is copied anew goes beyond the block
    if (dirty != 0 && (!reachable || __builtin_popcount(dirty) > kFew)) {
      p = putAll(table, from + i, 32, p);
      continue;
    }
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), bytes);
    p = dirty == 0 ? p + 32 : putBlock(table, from + i, dirty, p);
  }
  for (; n - i >= 16; i += 16) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + i));
    if (outsiders16(tables, bytes) != 0) {
      p = putAll(table, from + i, 16, p);
    } else {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(p), bytes);
      p += 16;
    }
  }
  return static_cast<u32>(putAll(table, from + i, n - i, p) - out);
}
#endif

u32 escapeBytes(const EscapeTable& table, const u8* from, u32 n, u8* out) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return escapeBytesAvx2(table, from, n, out);
#endif
  return escapeBytesScalar(table, from, n, out);
}

}  // namespace vk_simd
