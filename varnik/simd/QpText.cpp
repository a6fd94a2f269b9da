// The decoder of quoted-printable text, RFC 2045 section 6.7; the numbers are those of its rules.
#include "varnik/simd/QpText.h"

#include <cstring>

#include "varnik/simd/ByteSet.h"
#include "varnik/simd/QpLines.h"
#include "varnik/simd/internal/HexAvx512.h"

namespace vk_simd {
namespace {

constexpr ByteSet kPlain = byteSetOf([](u8 b) { return b != '=' && b != '\n'; });

// White space at a line's end was added on the way (rule 3); a `=` before it is a soft break, but not at the end of the
// text.
class Reader {
 public:
  Reader(const u8* text, u32 n, u8* to) : text_(text), n_(n), to_(to) {}

  bool atEnd() const { return i_ == n_; }
  u8* end() const { return to_; }

  /// Takes what is left of a line, with its end.
  void takeLine() {
    const u32 plain = i_ + copyRun(kPlain, text_ + i_, n_ - i_, to_);  // most lines hold no escape
    if (plain == n_) {
      to_ += withoutBlanks(n_) - i_;
      i_ = n_;
    } else if (text_[plain] == '\n') {
      to_ += contentEnd(plain) - i_;
      lineBreak(plain);
    } else {
      to_ += plain - i_;
      i_ = plain;
      takeFromMarker();
    }
  }

#if VARNIK_HAVE_AVX512
  [[VARNIK_AVX512]] void takeBlocks();
#endif

 private:
  u32 withoutBlanks(u32 end) const {
    while (end > i_ && isQpBlank(text_[end - 1])) --end;
    return end;
  }

  bool isPair(u32 feed) const {
    return feed > i_ && text_[feed - 1] == '\r';
  }

  // Where what is left of the line that the LF at `feed` ends has its content's end.
  u32 contentEnd(u32 feed) const {
    return withoutBlanks(isPair(feed) ? feed - 1 : feed);
  }

  void lineBreak(u32 feed) {
    if (isPair(feed)) *to_++ = '\r';
    *to_++ = '\n';
    i_ = feed + 1;
  }

  // The rest of a line, which begins with a `=`.
  void takeFromMarker() {
    const void* const at = std::memchr(text_ + i_, '\n', n_ - i_);
    if (!at) {
      put(withoutBlanks(n_));
      i_ = n_;
      return;
    }
    const u32 feed = static_cast<u32>(static_cast<const u8*>(at) - text_), end = contentEnd(feed);
    if (text_[end - 1] == '=') {
      put(end - 1);
      i_ = feed + 1;
    } else {
      put(end);
      lineBreak(feed);
    }
  }

  void put(u32 end) {
    to_ += unescapeHex('=', text_ + i_, end - i_, n_ - i_, to_);
  }

  const u8* text_;
  u32 n_, i_ = 0;
  u8* to_;
};

}  // namespace

u32 readQpTextByLine(const u8* text, u32 n, u8* out) {
  Reader reader(text, n, out);
  while (!reader.atEnd()) reader.takeLine();
  return static_cast<u32>(reader.end() - out);
}

#if VARNIK_HAVE_AVX512
namespace {

[[VARNIK_AVX512]] inline u64 places(__m512i bytes, char c) {
  return _mm512_cmpeq_epi8_mask(bytes, _mm512_set1_epi8(c));
}

}  // namespace

// Takes blocks of 64 characters up to one that holds white space at the end of a line, or behind which no two are left.
// Where lines end follows no pattern that could be foreseen: soft breaks are dropped without a branch.
[[VARNIK_AVX512]] void Reader::takeBlocks() {
  constexpr u32 kBlock = 64, kReach = kBlock + 2;
  const __m512i table = hexTable();
  u64 carried = 0;  // the characters at the front of the block that belong to an escape or soft break of the last one
  while (n_ - i_ >= kReach) {
    const u8* const at = text_ + i_;
    __m512i bytes = _mm512_loadu_si512(at);
    const __m512i second = _mm512_loadu_si512(at + 1), third = _mm512_loadu_si512(at + 2);
    const u64 pairs = places(second, '\r') & places(third, '\n'), ends = pairs | places(second, '\n');
    const u64 blanks = places(bytes, ' ') | places(bytes, '\t'), marked = places(bytes, '=');
    if ((blanks & ends) != 0) [[unlikely]]
      break;
    u32 count = kBlock;
    // Whether white space that goes on behind the block ends a line is not to be seen yet, nor what a `=` before it is.
    const u64 open = blanks | marked;
    if (((open >> 63) & isQpBlank(at[kBlock])) != 0) [[unlikely]] {
      count -= static_cast<u32>(_lzcnt_u64(~open));
      if (count == 0) break;
    }
    const u64 soft = marked & ends;
    u64 two = soft, three = soft & pairs;  // what takes two characters and more, and what takes three
    if ((marked & ~soft) != 0) {
      const auto [unescaped, escapes] = unescape64(bytes, second, third, marked, table);
      bytes = unescaped;
      two |= escapes;
      three |= escapes;
    }
    const u64 keep = _bzhi_u64(~(soft | two << 1 | three << 2 | carried), count);
    carried = two >> 63 | three >> 62;
    _mm512_storeu_si512(to_, _mm512_maskz_compress_epi8(keep, bytes));
    to_ += _mm_popcnt_u64(keep);
    i_ += count;
  }
  i_ += static_cast<u32>(_mm_popcnt_u64(carried));
}

[[VARNIK_AVX512]] u32 readQpTextAvx512(const u8* text, u32 n, u8* out) {
  Reader reader(text, n, out);
  while (!reader.atEnd()) {
    reader.takeBlocks();
    reader.takeLine();
  }
  return static_cast<u32>(reader.end() - out);
}
#endif

u32 readQpText(const u8* text, u32 n, u8* out) {
#if VARNIK_HAVE_AVX512
  constexpr u32 kWorth = 160;  // less goes faster without the table of digits
  if (n >= kWorth && hasAvx512()) return readQpTextAvx512(text, n, out);
#endif
  return readQpTextByLine(text, n, out);
}

}  // namespace vk_simd
