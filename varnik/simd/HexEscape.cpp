#include "varnik/simd/HexEscape.h"

#include "varnik/simd/Classify.h"
#include "varnik/simd/Expand.h"

namespace vk_simd {

Escaped escapeHexScalar(const HexEscape& how, const u8* from, u32 n, u32 room, u8* out) {
  Escaped done{0, 0};
  for (; done.bytes < n; ++done.bytes) {
    const u8 b = from[done.bytes];
    const u32 width = how.clean.has(b) ? 1 : 3;
    if (room - done.chars < width) break;
    u8* const to = out + done.chars;
    if (width == 1) {
      to[0] = b;
    } else {
      to[0] = how.marker;
      to[1] = static_cast<u8>("0123456789ABCDEF"[b >> 4]);
      to[2] = static_cast<u8>("0123456789ABCDEF"[b & 15]);
    }
    done.chars += width;
  }
  return done;
}

#if VARNIK_HAVE_AVX2
namespace {

// For each choice among four bytes of those to escape, where the characters come from: of a vector that holds the four
// bytes, their high digits, their low digits and the marker.
struct Shapes {
  u8 at[16][16];
};
constexpr Shapes kShapes = [] {
  Shapes shapes{};
  for (u32 mask = 0; mask < 16; ++mask) {
    u8* p = shapes.at[mask];
    for (u32 k = 0; k < 4; ++k) {
      if ((mask >> k & 1) == 0) {
        *p++ = static_cast<u8>(k);
      } else {
        *p++ = 12;
        *p++ = static_cast<u8>(4 + k);
        *p++ = static_cast<u8>(8 + k);
      }
    }
  }
  return shapes;
}();

[[VARNIK_AVX2]] inline u8* put4(__m128i parts, u32 mask, u8* out) {
  const __m128i shape = _mm_loadu_si128(reinterpret_cast<const __m128i*>(kShapes.at[mask]));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_shuffle_epi8(parts, shape));
  return out + 4 + 2 * _mm_popcnt_u32(mask);
}

// Writes 16 bytes, those in `dirty` escaped; 16 characters from the last one on may be written.
[[VARNIK_AVX2]] inline void putEscaped(__m128i bytes, __m128i marker, u32 dirty, u8* out) {
  const __m128i digits = _mm_setr_epi8('0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'A', 'B', 'C', 'D', 'E', 'F');
  const __m128i nibble = _mm_set1_epi8(15);
  const __m128i high = _mm_shuffle_epi8(digits, _mm_and_si128(_mm_srli_epi16(bytes, 4), nibble));
  const __m128i low = _mm_shuffle_epi8(digits, _mm_and_si128(bytes, nibble));
  const Quarters parts = quartersOf(bytes, high, low, marker);
  out = put4(parts.at[0], dirty & 15, out);
  out = put4(parts.at[1], dirty >> 4 & 15, out);
  out = put4(parts.at[2], dirty >> 8 & 15, out);
  put4(parts.at[3], dirty >> 12 & 15, out);
}

inline u32 widthOf(u32 count, u32 dirty) {
  return count + 2 * static_cast<u32>(__builtin_popcount(dirty));
}

// How many of the first `count` of 16 bytes take no more than `room` characters: halves the steps.
[[VARNIK_AVX2]] inline Escaped cut(u32 count, u32 dirty, u32 room) {
  u32 fit = 0;
  for (u32 step = 8; step != 0; step /= 2)
    if (fit + step <= count && widthOf(fit + step, _bzhi_u32(dirty, fit + step)) <= room) fit += step;
  return {fit, widthOf(fit, _bzhi_u32(dirty, fit))};
}

// The last 1 to 15 bytes, moved to the front of a vector. They end an input of 16 or more.
[[VARNIK_AVX2]] inline __m128i lastBytes(const u8* end, u32 count) {
  static constexpr s8 kMoves[] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15,
                                  -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1};
  const __m128i move = _mm_loadu_si128(reinterpret_cast<const __m128i*>(kMoves + 16 - count));
  return _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(end - 16)), move);
}

// Writes pieces of an input one behind the other, until the room is used up.
class Writer {
 public:
  [[VARNIK_AVX2]] Writer(const HexEscape& how, u32 room, u8* out)
      : tables_(tablesOf(how.clean)), marker_(_mm_set1_epi8(static_cast<char>(how.marker))), room_(room), out_(out) {}

  const Escaped& done() const { return done_; }
  u8* end() const { return out_ + done_.chars; }
  u32 left() const { return room_ - done_.chars; }

  /// Both return false when not all had room.
  [[VARNIK_AVX2]] bool put32(const u8* from) {
    const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
    const u32 dirty = outsiders(tables_, bytes);
    if (dirty == 0 && left() >= 32) {
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(end()), bytes);
      done_ = {done_.bytes + 32, done_.chars + 32};
      return true;
    }
    return put(_mm256_castsi256_si128(bytes), 16, dirty & 0xFFFF) &&
           put(_mm256_extracti128_si256(bytes, 1), 16, dirty >> 16);
  }
  /// Puts the first `count` of 16 bytes.
  [[VARNIK_AVX2]] bool put16(__m128i bytes, u32 count) {
    return put(bytes, count, _bzhi_u32(outsiders16(tables_, bytes), count));
  }

 private:
  [[VARNIK_AVX2]] bool put(__m128i bytes, u32 count, u32 dirty) {
    putEscaped(bytes, marker_, dirty, end());
    Escaped more{count, widthOf(count, dirty)};
    if (more.chars > left()) more = cut(count, dirty, left());
    done_ = {done_.bytes + more.bytes, done_.chars + more.chars};
    return more.bytes == count;
  }

  const SetTables tables_;
  const __m128i marker_;
  const u32 room_;
  u8* const out_;
  Escaped done_{0, 0};
};

}  // namespace

[[VARNIK_AVX2]] Escaped escapeHexAvx2(const HexEscape& how, const u8* from, u32 n, u32 room, u8* out) {
  if (n < 16) return escapeHexScalar(how, from, n, room, out);
  Writer writer(how, room, out);
  u32 i = 0;
  for (; n - i >= 32; i += 32)
    if (!writer.put32(from + i)) return writer.done();
  if (n - i >= 16) {
    if (!writer.put16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from + i)), 16)) return writer.done();
    i += 16;
  }
  if (i < n) writer.put16(lastBytes(from + n, n - i), n - i);
  return writer.done();
}
#endif

Escaped escapeHex(const HexEscape& how, const u8* from, u32 n, u32 room, u8* out) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return escapeHexAvx2(how, from, n, room, out);
#endif
  return escapeHexScalar(how, from, n, room, out);
}

}  // namespace vk_simd
