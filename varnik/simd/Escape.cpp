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
[[VARNIK_AVX2]] u32 escapeBytesAvx2(const EscapeTable& table, const u8* from, u32 n, u8* out) {
  constexpr int kFew = 2;
  const SetTables tables = tablesOf(table.clean);
  u8* p = out;
  u32 i = 0;
  while (n - i >= 32) {
    const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + i));
    const u32 dirty = outsiders(tables, bytes);
    if (__builtin_popcount(dirty) > kFew) {
      p = putAll(table, from + i, 32, p);
      i += 32;
      continue;
    }
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), bytes);
    const u32 run = _tzcnt_u32(dirty);  // 32 when all are clean
    p += run;
    i += run;
    if (run == 32) continue;
    p = put(table, from[i++], p);
    if (i < n) p = put(table, from[i++], p);  // line ends come in pairs
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
