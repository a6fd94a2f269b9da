// The AVX-512 form of quoted-printable text. A step takes what fills a vector together with a soft break, which is put
// in without a branch: where lines are broken follows no pattern that could be foreseen.
#include "varnik/simd/QpLines.h"

#if VARNIK_HAVE_AVX512
#include <immintrin.h>

namespace vk_simd {
namespace {

constexpr u32 kClean = 61;                   // the most bytes of a step when all stand for themselves
constexpr u32 kMixed = 20;                   // and when some are escaped
constexpr u32 kLeastLimit = 64;              // so that no step takes two soft breaks
constexpr u64 kFirsts = 0x1249249249249249;  // the first place of each three

struct Tables {
  u8 kinds[128];  // the high bit is set for what is escaped
  u8 spread[64];  // each of 21 places three times
  u8 order[64];
  u8 digits[64];  // by the low four bits
};
alignas(64) constexpr Tables kTables = [] {
  Tables tables{};
  for (u32 c = 0; c < 128; ++c) tables.kinds[c] = isQpLiteral(static_cast<u8>(c)) ? 0 : 0x80;
  for (u32 i = 0; i < 64; ++i) {
    tables.spread[i] = static_cast<u8>(i / 3);
    tables.order[i] = static_cast<u8>(i);
    tables.digits[i] = static_cast<u8>("0123456789ABCDEF"[i & 15]);
  }
  return tables;
}();

[[VARNIK_AVX512]] inline u64 lowest(u64 count) {
  return _bzhi_u64(~u64{0}, count);
}

// Under a mask of all lanes: GCC 12 warns of an uninitialised operand of the form without one.
[[VARNIK_AVX512]] inline __m512i permuted(__m512i places, __m512i bytes) {
  return _mm512_maskz_permutexvar_epi8(~u64{0}, places, bytes);
}

// A text; its bytes are loaded 64 at a time.
class Text {
 public:
  Text(const u8* from, u32 n) : end_(from + n), short_(n < 64) {}

  const u8* end() const { return end_; }

  // The bytes at `at`, those behind the text zero. Near the end the last 64 are loaded and moved down: a masked load
  // would wait for stores behind the text, too, where the output may well go.
  [[VARNIK_AVX512]] __m512i load(const u8* at) const {
    const s64 left = end_ - at;
    if (left >= 64) return _mm512_loadu_si512(at);
    const u64 present = lowest(static_cast<u64>(left));
    if (short_) return _mm512_maskz_loadu_epi8(present, at);
    const __m512i skipped = _mm512_set1_epi8(static_cast<char>(64 - left));
    const __m512i places = _mm512_add_epi8(_mm512_load_si512(kTables.order), skipped);
    return _mm512_maskz_permutexvar_epi8(present, places, _mm512_loadu_si512(end_ - 64));
  }

 private:
  const u8* end_;
  bool short_;
};

// A bit for each byte that does not stand for itself.
[[VARNIK_AVX512]] inline u64 dirtyOf(__m512i bytes) {
  const __m512i low = _mm512_load_si512(kTables.kinds), high = _mm512_load_si512(kTables.kinds + 64);
  return _mm512_movepi8_mask(_mm512_or_si512(_mm512_permutex2var_epi8(low, bytes, high), bytes));
}

// The characters of some bytes, and a bit for each that is the first of a byte's.
struct Chars {
  __m512i text;
  u64 starts;
  u64 bytes, width;
};

// Those of the first of `left` bytes, as many as leave room for a soft break. `trailing` is 1 when the last byte of all
// is a blank to escape, else 0.
[[VARNIK_AVX512]] inline Chars charsOf(__m512i bytes, u64 left, u64 dirty, u64 trailing) {
  u64 count = left < kClean ? left : kClean;
  dirty = _bzhi_u64(dirty, count) | (count == left ? trailing << (left - 1) : 0);
  if (dirty == 0) return {bytes, ~u64{0}, count, count};
  count = left < kMixed ? left : kMixed;
  const u64 marked = _pdep_u64(_bzhi_u64(dirty, count), kFirsts);
  const u64 kept = (kFirsts & lowest(3 * count)) | marked << 1 | marked << 2;
  const __m512i spread = permuted(_mm512_load_si512(kTables.spread), bytes);
  const __m512i nibbles = _mm512_mask_mov_epi8(spread, kFirsts << 1, _mm512_srli_epi16(spread, 4));
  __m512i chars = permuted(nibbles, _mm512_load_si512(kTables.digits));
  chars = _mm512_mask_mov_epi8(chars, kFirsts, spread);
  chars = _mm512_mask_mov_epi8(chars, marked, _mm512_set1_epi8('='));
  return {_mm512_maskz_compress_epi8(kept, chars), _pext_u64(kFirsts, kept), count,
          static_cast<u64>(_mm_popcnt_u64(kept))};
}

// The CR LF pairs of a text, one after the other. They are looked for in blocks that do not depend on where lines
// begin, so that no line waits for the one before it.
class LineBreaks {
 public:
  LineBreaks(const Text& text, const u8* from) : text_(text), ahead_(from) {}

  // The place of the next one; the text's end behind the last.
  [[VARNIK_AVX512]] const u8* next() {
    for (;;) {
      while (returns_ == 0) {
        if (ahead_ >= text_.end()) return text_.end();
        returns_ = _mm512_cmpeq_epi8_mask(text_.load(ahead_), _mm512_set1_epi8('\r'));
        ahead_ += 64;
      }
      const u8* const at = ahead_ - 64 + _tzcnt_u64(returns_);
      returns_ = _blsr_u64(returns_);
      if (text_.end() - at >= 2 && at[1] == '\n') return at;
    }
  }

 private:
  const Text& text_;
  const u8* ahead_;
  u64 returns_ = 0;
};

// What is written, and where in its line. Only the last byte of a line that ends by itself may take the last column,
// where else the `=` would stand: `ends` is 1 when such a byte comes last, else 0.
class Writer {
 public:
  Writer(const QpLine& line, u8* out) : limit_(line.limit), column_(line.column), out_(out) {}

  u32 column() const { return column_; }
  u8* end() const { return out_; }

  // Puts 64 bytes that stand for themselves if the line has room for all.
  [[VARNIK_AVX512]] bool putClean(__m512i bytes) {
    if (column_ + 64 >= limit_) return false;
    _mm512_storeu_si512(out_, bytes);
    out_ += 64;
    column_ += 64;
    return true;
  }

  // Puts the bytes, broken before the first one that has no room.
  [[VARNIK_AVX512]] void put(const Chars& chars, u32 ends) {
    const __m512i softBreak = _mm512_set1_epi32('=' | '\r' << 8 | '\n' << 16);
    const u32 room = limit_ - 1 - column_;
    const u64 cut = static_cast<u64>((s64{room} + ends - static_cast<s64>(chars.width)) >> 63);  // all bits or none
    const u32 fit = (static_cast<u32>(_lzcnt_u64(_bzhi_u64(chars.starts, room + 1))) ^ 63) & 63;
    const u64 gap = cut & u64{7} << fit;
    _mm512_storeu_si512(out_, _mm512_mask_expand_epi8(_mm512_maskz_expand_epi8(gap, softBreak), ~gap, chars.text));
    out_ += chars.width + (cut & 3);
    column_ = column_ + static_cast<u32>(chars.width) - (static_cast<u32>(cut) & (column_ + fit));
  }

  void lineBreak() {
    *out_++ = '\r';
    *out_++ = '\n';
    column_ = 0;
  }

 private:
  const u32 limit_;
  u32 column_;
  u8* out_;
};

}  // namespace

[[VARNIK_AVX512]] u8* putQpLinesAvx512(QpLine& line, const u8* from, u32 n, bool last, u8* out) {
  if (line.limit < kLeastLimit) return putQpLinesAvx2(line, from, n, last, out);
  const Text text(from, n);
  LineBreaks breaks(text, from);
  Writer writer(line, out);
  for (;; from += 2) {
    const u8* const end = breaks.next();
    const u32 ends = end != text.end() || last ? 1 : 0;
    const u32 trailing = ends != 0 && end != from && isQpBlank(end[-1]) ? 1 : 0;
    while (from != end) {
      const __m512i bytes = text.load(from);
      const u64 dirty = dirtyOf(bytes), left = static_cast<u64>(end - from);
      if (dirty == 0 && left >= 64 + trailing && writer.putClean(bytes)) {
        from += 64;
        continue;
      }
      const Chars chars = charsOf(bytes, left, dirty, trailing);
      writer.put(chars, chars.bytes == left ? ends : 0);
      from += chars.bytes;
    }
    if (end == text.end()) break;
    writer.lineBreak();
  }
  line.column = writer.column();
  return writer.end();
}

}  // namespace vk_simd
#endif
