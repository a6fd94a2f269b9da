#include "tests/support/Test.h"

namespace {

struct Case {
  const char* what;
  std::string given, left;
};

template <class Operation>
void check(const std::vector<Case>& cases, Operation operation) {
  for (const auto& c : cases) {
    DataBuffer b = bufferOf(c.given);
    const u32 capacity = b.getBufSize();
    operation(b);
    EXPECT_EQ(textOf(b), c.left) << c.what;
    EXPECT_EQ(b.getBufSize(), capacity) << c.what;
  }
}

// Holds an operation against a slow model: random contents of every length, made of the bytes that matter, between
// unreadable pages.
template <class Operation, class Model>
void compare(Operation operation, Model model, std::string_view alphabet) {
  GuardedBytes area(2100);
  for (u32 seed = 0; seed < 3000; ++seed) {
    Random random(seed);
    const u32 n = seed < 300 ? seed : random.below(1000);
    std::string given = random.text(n, alphabet);
    if (seed % 3 != 0) given += std::string(random.below(seed % 9 == 1 ? 900 : 200), 'x') + random.text(60, alphabet);
    if (given.empty()) continue;
    DataBuffer b = borrowing(area.ending(given), given.size());
    operation(b);
    ASSERT_EQ(textOf(b), model(given)) << "seed " << seed;
  }
}

std::string popModel(const std::string& s) {
  std::string left;
  for (std::size_t r = 0; r < s.size();)
    if (s.size() - r >= 3 && s.compare(r, 3, "\n..") == 0) {
      left += "\n.";
      r += 3;
    } else {
      left += s[r++];
    }
  return left;
}

TEST(CleanUp, UndoesDotStuffing) {
  const auto undo = [](DataBuffer& b) { b.processRawPopMime(); };
  check({{"a pair at the start stays", "..\r\n\n..", "..\r\n\n."}}, undo);
  compare(undo, popModel, "\n\n....x");
}

const std::string kProbe = "\0337\033[r\033[999;999H\033[6n\0338";

std::string colourModel(const std::string& s) {
  std::string left;
  for (std::size_t r = 0; r < s.size();) {
    const std::size_t m = s.find('m', r + 2);
    if (s[r] == '\033' && s.compare(r, 21, kProbe) == 0) {
      r += 21;
    } else if (s[r] == '\033' && s.size() - r >= 3 && s[r + 1] == '[' && m != std::string::npos && m - r <= 15) {
      r = m + 1;
    } else {
      left += s[r++];
    }
  }
  return left;
}

TEST(CleanUp, StripsTerminalSequences) {
  ASSERT_EQ(kProbe.size(), 21U);
  const auto strip = [](DataBuffer& b) { b.stripTerminalColorCodes(); };
  check({{"colour on and off", "\033[01;31mred\033[0m", "red"},
         {"the shortest", "a\033[mb", "ab"},
         {"sixteen bytes", "\033[1234567890123mx", "x"},
         {"seventeen bytes", "\033[12345678901234mx", "\033[12345678901234mx"},
         {"anything up to the m", "\033[ or m", ""},
         {"an ESC inside", "\033[\033[mx", "x"},
         {"an ESC that begins nothing", "\033\033[mx", "\033x"},
         {"a lone ESC at the end", "x\033", "x\033"},
         {"an unfinished one", "x\033[", "x\033["},
         {"another unfinished one", "x\033[1", "x\033[1"},
         {"the probe", "a" + kProbe + "b", "ab"},
         {"the probe alone", kProbe, ""},
         {"the probe cut off", kProbe.substr(0, 20), kProbe.substr(0, 20)},
         {"the probe cut off before text", kProbe.substr(0, 20) + "m", kProbe.substr(0, 5)},
         {"no ESC", "[31m", "[31m"},
         {"nothing", "", ""}},
        strip);
  compare(strip, colourModel, "\033\033\033[[[1m78");
  compare(strip, colourModel, "\033[1234567890;x");
}

// A sequence that never ends must not make every ESC look to the end of the data.
TEST(CleanUp, StripsEndlessSequencesInLinearTime) {
  DataBuffer b = bufferOf(repeated("\033[", 4'000'000));
  b.stripTerminalColorCodes();
  EXPECT_EQ(b.size(), 4'000'000u);
}

TEST(CleanUp, ReplacesAndDropsBytes) {
  const auto replace = [](char from, char to) { return [=](DataBuffer& b) { b.replaceChar(from, to); }; };
  check({{"every match and no other", "a.b.c", "a,b,c"}, {"nothing to do", "abc", "abc"}}, replace('.', ','));
  check({{"a high byte", "\xC3\x28\x7F\xFF\xC3", "x\x28\x7F\xFFx"}}, replace('\xC3', 'x'));
  check({{"a zero byte", "a\0b\0"s, "a\377b\xFF"}}, replace('\0', '\xFF'));
  check({{"every match", "..a..b.", "ab"}, {"all", "....", ""}, {"none", "ab", "ab"}, {"nothing", "", ""}},
        [](DataBuffer& b) { b.removeByteValue('.'); });
  check({{"zero and high bytes", fromHex("41 00 C3 A9 42"), "AB"}, {"ends of the range", "\x01\x7F\x80"s, "\x01\x7F"}},
        [](DataBuffer& b) { b.drop_non_usascii(); });
  check({{"odd count", fromHex("41 00 42 00 43"), "ABC"},
         {"whatever their values", fromHex("00 41 00 42"), "\0\0"s},
         {"one byte", "A", "A"}},
        [](DataBuffer& b) { b.dropNullBytes(); });
  check({{"one byte", "\x01", "\x01"}, {"three", "\x01\x02\x03", "\x03\x02\x01"}, {"nothing", "", ""}},
        [](DataBuffer& b) { b.reverseBytes(); });
}

TEST(CleanUp, AppendsWhatIsNotZero) {
  const std::string mixed = "a\0\0b\0c"s;
  DataBuffer b;
  EXPECT_TRUE(b.appendSkipNulls(nullptr, 5) && b.appendSkipNulls(bytesOf(mixed), 0));
  EXPECT_EQ(b.getBufSize(), 0U);
  EXPECT_TRUE(b.appendSkipNulls(bytesOf(mixed), countOf(mixed)));
  EXPECT_EQ(stateOf(b), "abc of 20000") << "room for all by the growth policy";

  DataBuffer full;
  full.copyData("x", 1);
  EXPECT_TRUE(full.appendSkipNulls(bytesOf("\0\0"s), 2));
  EXPECT_EQ(stateOf(full), "x of 20001") << "room is made whatever the values";

  DataBuffer self;
  self.copyData(mixed.data(), countOf(mixed));
  EXPECT_TRUE(self.appendSkipNulls(self.getData2() + 1, self.size() - 1));
  EXPECT_EQ(textOf(self), mixed + "bc") << "its own content, which moved";

  EXPECT_FALSE(full.appendSkipNulls(bytesOf(mixed), 0xFFFFFFFF)) << "the sum does not fit";
}

}  // namespace
