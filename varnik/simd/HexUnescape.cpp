#include "varnik/simd/HexUnescape.h"

#include "varnik/simd/internal/HexAvx512.h"

#include <array>
#include <cstring>

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {

namespace {

constexpr std::array<u8, 256> kHexValues = [] {
  std::array<u8, 256> values{};
  for (u32 c = 0; c < 256; ++c) values[c] = hexValue(static_cast<u8>(c));
  return values;
}();

}  // namespace

u32 unescapeHexScalar(u8 marker, const u8* text, u32 n, u32, u8* out) {
  u8* p = out;
  for (u32 i = 0; i < n; ++i) {
    *p = text[i];
    if (text[i] == marker && n - i >= 3) {
      const u8 high = kHexValues[text[i + 1]], low = kHexValues[text[i + 2]];
      if ((high | low) < 16) {
        *p = static_cast<u8>(high << 4 | low);
        i += 2;
      }
    }
    ++p;
  }
  return static_cast<u32>(p - out);
}

#if VARNIK_HAVE_AVX2
namespace {

// For each mask of 8 bytes, the places of those to keep, in order.
struct Places {
  u8 at[256][8];
};
constexpr Places kPlaces = [] {
  Places places{};
  for (u32 mask = 0; mask < 256; ++mask)
    for (u32 bit = 0, kept = 0; bit < 8; ++bit)
      if ((mask >> bit & 1) != 0) places.at[mask][kept++] = static_cast<u8>(bit);
  return places;
}();

[[VARNIK_AVX2]] inline __m256i load(const u8* p) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}

// Stores the kept ones of the low 8 bytes and returns the place behind them; all 8 bytes there are written.
[[VARNIK_AVX2]] inline u8* storeKept8(u8* out, __m128i bytes, u32 keep) {
  const __m128i places = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(kPlaces.at[keep]));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_shuffle_epi8(bytes, places));
  return out + _mm_popcnt_u32(keep);
}

[[VARNIK_AVX2]] inline u8* storeKept32(u8* out, __m256i bytes, u32 keep) {
  const __m128i low = _mm256_castsi256_si128(bytes), high = _mm256_extracti128_si256(bytes, 1);
  out = storeKept8(out, low, keep & 0xFF);
  out = storeKept8(out, _mm_unpackhi_epi64(low, low), keep >> 8 & 0xFF);
  out = storeKept8(out, high, keep >> 16 & 0xFF);
  return storeKept8(out, _mm_unpackhi_epi64(high, high), keep >> 24);
}

// The values of hex digits of either case; above 15 where a character is none.
[[VARNIK_AVX2]] inline __m256i valuesOf(__m256i c) {
  // Each chain ends below 16 for its own characters only: the digits are moved to 0xF6..0xFF, which the saturated
  // subtraction keeps apart from what is below; the letters lie at 0..5, to which 10 is added with saturation.
  const __m256i fromNine = _mm256_add_epi8(c, _mm256_set1_epi8(static_cast<char>(0xFF - '9')));
  const __m256i digit =
      _mm256_sub_epi8(_mm256_subs_epu8(fromNine, _mm256_set1_epi8(6)), _mm256_set1_epi8(static_cast<char>(0xF0)));
  const __m256i upper = _mm256_and_si256(c, _mm256_set1_epi8(static_cast<char>(0xDF)));
  const __m256i letter = _mm256_adds_epu8(_mm256_sub_epi8(upper, _mm256_set1_epi8('A')), _mm256_set1_epi8(10));
  return _mm256_min_epu8(digit, letter);
}

struct Unescaped {
  __m256i bytes;
  u64 escapes;  // one bit for each place where an escape begins
};

// Every place of a block is taken as if an escape began there; then those are chosen where one does.
[[VARNIK_AVX2]] inline Unescaped unescape32(const u8* text, __m256i bytes, __m256i marked) {
  const __m256i fifteen = _mm256_set1_epi8(15);
  const __m256i high = valuesOf(load(text + 1)), low = valuesOf(load(text + 2));
  const __m256i both = _mm256_or_si256(high, low);
  const __m256i escape = _mm256_and_si256(marked, _mm256_cmpeq_epi8(_mm256_min_epu8(both, fifteen), both));
  const __m256i upper = _mm256_slli_epi16(_mm256_and_si256(high, fifteen), 4);
  return {_mm256_blendv_epi8(bytes, _mm256_or_si256(upper, low), escape),
          static_cast<u32>(_mm256_movemask_epi8(escape))};
}

// An escape's two digits are dropped from its block, or from the next one. Its digits are no markers, so that no two
// escapes overlap.
class Reader {
 public:
  [[VARNIK_AVX2]] Reader(u8 marker, u8* out) : markers_(_mm256_set1_epi8(static_cast<char>(marker))), p_(out) {}

  u8* end() const { return p_; }
  /// Characters at the front of the next block that belong to an escape of the last one.
  u32 carried() const { return static_cast<u32>(__builtin_popcountll(drop_)); }

  /// Takes the first `count` of 32 characters; 34 are read, and 32 bytes may be written.
  [[VARNIK_AVX2]] void take(const u8* text, u32 count) {
    const __m256i bytes = load(text), marked = _mm256_cmpeq_epi8(bytes, markers_);
    if ((static_cast<u32>(_mm256_movemask_epi8(marked)) | drop_) == 0) {
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(p_), bytes);
      p_ += count;
      return;
    }
    const Unescaped block = unescape32(text, bytes, marked);
    drop_ |= block.escapes << 1 | block.escapes << 2;
    p_ = storeKept32(p_, block.bytes, _bzhi_u32(~static_cast<u32>(drop_), count));
    drop_ >>= 32;
  }

 private:
  const __m256i markers_;
  u8* p_;
  u64 drop_ = 0;  // bit 0 is the first character of the next block
};

constexpr u32 kReach = 34;

// The last characters, fewer than `kReach`, go on from a copy with room behind it.
[[VARNIK_AVX2]] void takeRest(Reader& reader, const u8* text, u32 n) {
  u8 copy[32 + kReach] = {};
  std::memcpy(copy, text, n);
  reader.take(copy, n < 32 ? n : 32);
  if (n > 32) reader.take(copy + 32, n - 32);
}

}  // namespace

[[VARNIK_AVX2]] u32 unescapeHexAvx2(u8 marker, const u8* text, u32 n, u32 readable, u8* out) {
  constexpr u32 kShort = 8;  // is not worth a copy
  Reader reader(marker, out);
  u32 i = 0;
  for (; n - i >= kReach; i += 32) reader.take(text + i, 32);
  for (; i < n && readable - i >= kReach; i += 32) reader.take(text + i, n - i < 32 ? n - i : 32);
  if (i < n && n - i > kShort) {
    takeRest(reader, text + i, n - i);
  } else if (i + reader.carried() < n) {
    i += reader.carried();
    return static_cast<u32>(reader.end() - out) + unescapeHexScalar(marker, text + i, n - i, n - i, reader.end());
  }
  return static_cast<u32>(reader.end() - out);
}
#endif

#if VARNIK_HAVE_AVX512
namespace {

// 64 characters of a text that goes on for `left` in all; what lies behind reads as zero bytes.
[[VARNIK_AVX512]] inline __m512i load64(const u8* text, u32 left) {
  return _mm512_maskz_loadu_epi8(_bzhi_u64(~u64{0}, left < 64 ? left : 64), text);
}

}  // namespace

// As in the AVX2 form an escape's digits are dropped from its block or the next one.
[[VARNIK_AVX512]] u32 unescapeHexAvx512(u8 marker, const u8* text, u32 n, u32, u8* out) {
  const __m512i table = hexTable();
  const __m512i markers = _mm512_set1_epi8(static_cast<char>(marker));
  u8* p = out;
  u64 carried = 0;  // the characters at the front of the block that belong to the last one's escapes
  for (u32 i = 0; i < n; i += 64) {
    const u32 left = n - i;
    __m512i bytes = load64(text + i, left);
    u64 drop = carried;
    carried = 0;
    if (const u64 marked = _mm512_cmpeq_epi8_mask(bytes, markers); marked != 0) {
      const __m512i second = load64(text + i + 1, left - 1), third = load64(text + i + 2, left > 2 ? left - 2 : 0);
      const auto [unescaped, escapes] = unescape64(bytes, second, third, marked, table);
      bytes = unescaped;
      drop |= escapes << 1 | escapes << 2;
      carried = escapes >> 63 | escapes >> 62;
    }
    const u64 keep = _bzhi_u64(~drop, left < 64 ? left : 64);
    const u32 kept = static_cast<u32>(__builtin_popcountll(keep));
    _mm512_mask_storeu_epi8(p, _bzhi_u64(~u64{0}, kept), _mm512_maskz_compress_epi8(keep, bytes));
    p += kept;
  }
  return static_cast<u32>(p - out);
}
#endif

u32 unescapeHex(u8 marker, const u8* text, u32 n, u32 readable, u8* out) {
#if VARNIK_HAVE_AVX512
  if (hasAvx512()) return unescapeHexAvx512(marker, text, n, readable, out);
#endif
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return unescapeHexAvx2(marker, text, n, readable, out);
#endif
  return unescapeHexScalar(marker, text, n, readable, out);
}

}  // namespace vk_simd
