#include "tests/support/Test.h"

namespace {

// The compositions by letter and second byte of the mark, as pairs of bytes in hex.
const std::map<std::pair<char, u8>, std::string>& compositions() {
  static const auto all = [] {
    constexpr struct {
      u8 mark;
      const char *letters, *results;
    } kRows[] = {{0x80, "AEIOUaeiou", "C380 C388 C38C C392 C399 C3A0 C3A8 C3AC C3B2 C3B9"},
                 {0x81, "AEIOUYaeiouy", "C381 C389 C38D C393 C39A C39D C3A1 C3A9 C3AD C3B3 C3BA C3BD"},
                 {0x82, "AEIOUaeiou", "C382 C38A C38E C394 C39B C3A2 C3AA C3AE C3B4 C3BB"},
                 {0x83, "ANOano", "C383 C391 C395 C3A3 C3B1 C3B5"},
                 {0x88, "AEIOUYaeiouy", "C384 C38B C38F C396 C39C C5B8 C3A4 C3AB C3AF C3B6 C3BC C3BF"},
                 {0x8A, "Aa", "C385 C3A5"},
                 {0xA6, "Cc", "C387 C3A7"}};
    std::map<std::pair<char, u8>, std::string> made;
    for (const auto& row : kRows) {
      const std::string results = fromHex(row.results);
      for (std::size_t i = 0; row.letters[i] != 0; ++i) made[{row.letters[i], row.mark}] = results.substr(2 * i, 2);
    }
    return made;
  }();
  return all;
}

std::string model(const std::string& s) {
  if (s.size() < 3) return s;
  std::string left(1, s[0]);
  std::size_t r = 1;
  while (r + 1 < s.size()) {
    const auto found =
        s[r] == '\xCC' ? compositions().find({s[r - 1], static_cast<u8>(s[r + 1])}) : compositions().end();
    if (found != compositions().end()) {
      left.back() = found->second[0];
      left += found->second[1];
      r += 2;
    } else {
      left += s[r++];
    }
  }
  return left + s.substr(r);
}

TEST(CombiningMarks, ComposesExactlyTheTable) {
  ASSERT_EQ(compositions().size(), 54U);
  for (u32 letter = 0; letter < 256; ++letter)
    for (u32 mark = 0; mark < 256; ++mark) {
      const std::string given = {static_cast<char>(letter), '\xCC', static_cast<char>(mark)};
      const auto found = compositions().find({given[0], static_cast<u8>(mark)});
      DataBuffer b = bufferOf(given);
      b.consumeUtf8CombiningMarks();
      ASSERT_EQ(textOf(b), found != compositions().end() ? found->second : given) << letter << ' ' << mark;
    }
}

TEST(CombiningMarks, AgreesWithTheSlowModel) {
  GuardedBytes area(1200);
  for (u32 seed = 0; seed < 3000; ++seed) {
    Random random(seed);
    std::string given;
    const std::size_t end = seed < 300 ? seed : random.below(1000);
    while (given.size() < end) {
      given += random.text(random.below(seed % 2 == 0 ? 3 : 60), "aeAyYcnB \xC3\xCC");
      given += '\xCC';
      given += random.text(1, "\x80\x81\x82\x83\x84\x88\x8A\xA6\xA7");
    }
    DataBuffer b = given.empty() ? DataBuffer() : borrowing(area.ending(given), given.size());
    b.consumeUtf8CombiningMarks();
    ASSERT_EQ(textOf(b), model(given)) << "seed " << seed;
  }
}

}  // namespace
