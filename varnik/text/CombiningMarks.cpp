// Composition of decomposed Western European letters in UTF-8.
#include <array>
#include <string_view>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/simd/ByteHits.h"
#include "varnik/text/internal/FrontMover.h"

namespace {

constexpr u8 kMarkLead = 0xCC;
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

}  // namespace

// The character goes over the letter and the mark's lead byte, and the mark's second byte is dropped. No later decision
// looks at what was written: the byte before a further mark is that second byte or comes after it.
void DataBuffer::consumeUtf8CombiningMarks() {
  if (!isValid() || !data_ || size_ < 3) return;
  FrontMover content(data_, size_);
  vk_simd::eachHit(data_, size_ - 1, kMarkLead, [this, &content](u32 i) {
    const u16 composed = i != 0 ? compose(data_[i - 1], data_[i + 1]) : u16{0};
    if (composed == 0) return;
    data_[i - 1] = static_cast<u8>(0xC0 | composed >> 6);
    data_[i] = static_cast<u8>(0x80 | (composed & 0x3F));
    content.keepTo(i + 1);
    content.dropTo(i + 2);
  });
  size_ = content.finish();
}
