#include "varnik/simd/CombiningMarks.h"

#include <array>
#include <cstring>
#include <string_view>

#include "varnik/simd/internal/StayingBytes.h"

namespace vk_simd {
namespace {

constexpr u8 kLead = 0xCC;  // of the marks' UTF-8 forms
constexpr u32 kNumMarks = 7, kNumLetters = 'z' - 'A' + 1;

// A combining mark by the second byte of its UTF-8 form, the letters that it composes with, and what they become.
struct Mark {
  u8 second;
  std::string_view letters;
  std::u16string_view composed;
};

constexpr Mark kMarks[kNumMarks] = {
    {0x80, "AEIOUaeiou", u"\u00C0\u00C8\u00CC\u00D2\u00D9\u00E0\u00E8\u00EC\u00F2\u00F9"},                // grave
    {0x81, "AEIOUYaeiouy", u"\u00C1\u00C9\u00CD\u00D3\u00DA\u00DD\u00E1\u00E9\u00ED\u00F3\u00FA\u00FD"},  // acute
    {0x82, "AEIOUaeiou", u"\u00C2\u00CA\u00CE\u00D4\u00DB\u00E2\u00EA\u00EE\u00F4\u00FB"},                // circumflex
    {0x83, "ANOano", u"\u00C3\u00D1\u00D5\u00E3\u00F1\u00F5"},                                            // tilde
    {0x88, "AEIOUYaeiouy", u"\u00C4\u00CB\u00CF\u00D6\u00DC\u0178\u00E4\u00EB\u00EF\u00F6\u00FC\u00FF"},  // diaeresis
    {0x8A, "Aa", u"\u00C5\u00E5"},                                                                        // ring above
    {0xA6, "Cc", u"\u00C7\u00E7"},  // comma below, which stands for a cedilla here
};

// By the second byte from 0x80 on: the mark's row, counted from 1; 0 for none.
constexpr auto kRow = [] {
  std::array<u8, 0x40> rows{};
  for (u32 i = 0; i < kNumMarks; ++i) rows[kMarks[i].second - 0x80u] = static_cast<u8>(i + 1);
  return rows;
}();

// By row and by letter from 'A' on: the composed character, 0 for none.
constexpr auto kComposed = [] {
  std::array<std::array<u16, kNumLetters>, kNumMarks + 1> table{};
  for (u32 i = 0; i < kNumMarks; ++i)
    for (u32 k = 0; k < kMarks[i].letters.size(); ++k)
      table[i + 1][static_cast<u8>(kMarks[i].letters[k]) - u32{'A'}] = static_cast<u16>(kMarks[i].composed[k]);
  return table;
}();

u16 compose(u8 letter, u8 second) {
  const u32 row = second - 0x80u, column = letter - u32{'A'};
  return row < kRow.size() && column < kNumLetters ? kComposed[kRow[row]][column] : u16{0};
}

// Composes from[0, n) into `out`, which may lie before it. The first byte stays whatever stands before it.
u32 composeTo(u8* out, const u8* from, u32 n) {
  u32 kept = 0;
  for (u32 i = 0; i < n; ++i) {
    const u16 composed = n - i >= 3 && from[i + 1] == kLead ? compose(from[i], from[i + 2]) : u16{0};
    if (composed == 0) {
      out[kept++] = from[i];
      continue;
    }
    out[kept++] = static_cast<u8>(0xC0 | composed >> 6);
    out[kept++] = static_cast<u8>(0x80 | (composed & 0x3F));
    i += 2;
  }
  return kept;
}

}  // namespace

u32 composeMarksScalar(u8* data, u32 n) {
  return composeTo(data, data, n);
}

#if VARNIK_HAVE_AVX2
namespace {

[[VARNIK_AVX2]] inline __m256i load(const u8* p) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}
[[VARNIK_AVX2]] inline __m256i all(u8 value) {
  return _mm256_set1_epi8(static_cast<char>(value));
}
[[VARNIK_AVX2]] inline u32 bitsOf(__m256i mask) {
  return static_cast<u32>(_mm256_movemask_epi8(mask));
}
// The table's entry for each of 32 indexes from 0 to 15.
[[VARNIK_AVX2]] inline __m256i lookUp(__m128i table, __m256i indexes) {
  return _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(table), indexes);
}
// Each byte of `v` one place on; the last one of `before` comes first.
[[VARNIK_AVX2]] inline __m256i onePlaceOn(__m256i v, __m256i before) {
  return _mm256_alignr_epi8(v, _mm256_permute2x128_si256(before, v, 0x21), 15);
}

// Compositions by the place of their letter: whether there is one, and the two bytes of its result.
struct Composed {
  __m256i valid, first, second;
};

// The arithmetic behind the table, on the second byte of the result. The low half of letter and mark choose by
// shuffles: a bit for each mark (1 grave, 2 acute, 4 circumflex, 8 tilde, 16 diaeresis, 32 ring, 64 cedilla), which
// marks a letter takes, what its row of accented letters begins with, and how far into the row a mark leads. Rows
// without a tilde are one shorter before the diaeresis. Lower case is 0x20 further on, but U+0178 stands alone.
[[VARNIK_AVX2]] inline Composed composeBlock(__m256i letters, __m256i isLead, __m256i marks) {
  const __m256i low = all(0x0F), high = all(0xF0), zero = _mm256_setzero_si256();
  const __m256i letterLow = _mm256_and_si256(letters, low), markLow = _mm256_and_si256(marks, low);

  //                                    A      C      E            I               N   O
  const __m128i take4 = _mm_setr_epi8(0, 63, 0, 64, 0, 23, 0, 0, 0, 23, 0, 0, 0, 0, 8, 31);
  const __m128i row4 = _mm_setr_epi8(0, -128, 0, -121, 0, -120, 0, 0, 0, -116, 0, 0, 0, 0, -114, -110);
  //                                                U            Y
  const __m128i take5 = _mm_setr_epi8(0, 0, 0, 0, 0, 23, 0, 0, 0, 18, 0, 0, 0, 0, 0, 0);
  const __m128i row5 = _mm_setr_epi8(0, 0, 0, 0, 0, -103, 0, 0, 0, -100, 0, 0, 0, 0, 0, 0);
  const __m256i caseless = _mm256_and_si256(letters, all(0xD0));
  const __m256i is4 = _mm256_cmpeq_epi8(caseless, all(0x40)), is5 = _mm256_cmpeq_epi8(caseless, all(0x50));
  const __m256i takes =
      _mm256_or_si256(_mm256_and_si256(is4, lookUp(take4, letterLow)), _mm256_and_si256(is5, lookUp(take5, letterLow)));
  const __m256i row =
      _mm256_or_si256(_mm256_and_si256(is4, lookUp(row4, letterLow)), _mm256_and_si256(is5, lookUp(row5, letterLow)));

  //                                 80 81 82 83       A6    88     8A
  const __m128i bit = _mm_setr_epi8(1, 2, 4, 8, 0, 0, 64, 0, 16, 0, 32, 0, 0, 0, 0, 0);
  const __m128i step = _mm_setr_epi8(0, 1, 2, 3, 0, 0, 0, 0, 4, 0, 5, 0, 0, 0, 0, 0);
  const __m128i half = _mm_setr_epi8(-128, -128, -128, -128, 0, 0, -96, 0, -128, 0, -128, 0, 0, 0, 0, 0);
  const __m256i isMark = _mm256_cmpeq_epi8(_mm256_and_si256(marks, high), lookUp(half, markLow));
  const __m256i refused = _mm256_cmpeq_epi8(_mm256_and_si256(takes, lookUp(bit, markLow)), zero);
  const __m256i valid = _mm256_andnot_si256(refused, _mm256_and_si256(isLead, isMark));

  const __m256i hasNoTilde = _mm256_cmpeq_epi8(_mm256_and_si256(takes, all(8)), zero);
  const __m256i oneBack = _mm256_and_si256(hasNoTilde, _mm256_cmpeq_epi8(marks, all(0x88)));  // -1 where it holds
  const __m256i place = _mm256_add_epi8(_mm256_add_epi8(row, lookUp(step, markLow)), oneBack);
  const __m256i second = _mm256_add_epi8(place, _mm256_and_si256(letters, all(0x20)));
  const __m256i isAlone = _mm256_cmpeq_epi8(second, all(0x9F));  // Y with diaeresis
  return {valid, _mm256_add_epi8(all(0xC3), _mm256_and_si256(isAlone, all(2))),
          _mm256_blendv_epi8(second, all(0xB8), isAlone)};
}

// The first place at which a letter may have a mark; n when there is none.
u32 firstLetter(const u8* data, u32 n) {
  const void* const lead = n >= 3 ? std::memchr(data + 1, kLead, n - 2) : nullptr;
  return lead ? static_cast<u32>(static_cast<const u8*>(lead) - data) - 1 : n;
}

// What goes from block to block. A block of 32 is decided on by the places of letters: the first byte of a result goes
// there, the second one place on, and the byte two places on is dropped; `pending` tells which bytes of the next block
// that are.
struct Composing {
  u32 pending = 0;
  Composed before{};
};

// The block at `at` with the bytes of its results in place, and in `going` which of its bytes are to be dropped.
[[VARNIK_AVX2]] inline __m256i compose32(const u8* at, Composing& c, u32& going) {
  const __m256i block = load(at), isLead = _mm256_cmpeq_epi8(load(at + 1), all(kLead));
  const Composed now = composeBlock(block, isLead, load(at + 2));
  const __m256i firsts = _mm256_blendv_epi8(block, now.first, now.valid);
  const __m256i both =
      _mm256_blendv_epi8(firsts, onePlaceOn(now.second, c.before.second), onePlaceOn(now.valid, c.before.valid));
  const u32 letters = bitsOf(now.valid);
  going = letters << 2 | c.pending;
  c = {letters >> 30, now};
  return both;
}

// Composes what is left behind the blocks, from data[i, n) to data[kept]. Returns the size of all.
[[VARNIK_AVX2]] inline u32 composeRest(u8* data, u32 kept, u32 i, u32 n, const Composing& c) {
  if (c.pending == 2) data[kept++] = static_cast<u8>(_mm256_extract_epi8(c.before.second, 31));
  i += c.pending;
  return kept + composeTo(data + kept, data + i, n - i);
}

}  // namespace

[[VARNIK_AVX2]] u32 composeMarksAvx2(u8* data, u32 n) {
  Composing composing;
  u32 i = firstLetter(data, n), kept = i;
  for (; n - i >= 34; i += 32) {
    if ((bitsOf(_mm256_cmpeq_epi8(load(data + i + 1), all(kLead))) | composing.pending) == 0) {
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(data + kept), load(data + i));
      kept += 32;
      continue;
    }
    u32 going = 0;
    const __m256i block = compose32(data + i, composing, going);
    kept += putStaying(data + kept, block, going);
  }
  return composeRest(data, kept, i, n, composing);
}
#endif

#if VARNIK_HAVE_AVX512
// Every block is composed, whether it has marks or not: in text that has some a branch could not foresee which.
[[VARNIK_AVX512]] u32 composeMarksAvx512(u8* data, u32 n) {
  Composing composing;
  u32 i = firstLetter(data, n), kept = i;
  for (; n - i >= 34; i += 32) {
    u32 going = 0;
    const __m256i block = compose32(data + i, composing, going);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(data + kept), _mm256_maskz_compress_epi8(~going, block));
    kept += 32 - static_cast<u32>(__builtin_popcount(going));
  }
  return composeRest(data, kept, i, n, composing);
}
#endif

u32 composeMarks(u8* data, u32 n) {
#if VARNIK_HAVE_AVX512
  if (hasAvx512()) return composeMarksAvx512(data, n);
#endif
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return composeMarksAvx2(data, n);
#endif
  return composeMarksScalar(data, n);
}

}  // namespace vk_simd
