#include "tests/support/Test.h"

namespace {

u32 replaceAll(DataBuffer& b, std::string_view find, std::string_view with) {
  return b.replaceAllOccurances(bytesOf(find), countOf(find), bytesOf(with), countOf(with));
}

// The same by the standard library.
u32 replaceSlowly(std::string& text, std::string_view find, std::string_view with) {
  u32 count = 0;
  for (std::size_t at = 0; (at = text.find(find, at)) != std::string::npos; at += with.size(), ++count)
    text.replace(at, find.size(), with);
  return count;
}

TEST(Replace, AgreesWithThePlainReplacement) {
  for (u32 seed = 0; seed < 500; ++seed) {
    Random random(seed);
    std::string text = random.text(random.below(seed % 5 == 0 ? 5 : 2000), "aaa\xFF");
    const std::string find = random.text(1 + random.below(4), "a\xFF"), with = random.text(random.below(6), "a\377c");
    DataBuffer b = bufferOf(text);
    const u32 count = replaceAll(b, find, with);
    ASSERT_EQ(count, replaceSlowly(text, find, with)) << seed;
    ASSERT_EQ(textOf(b), text) << seed;
  }
}

TEST(Replace, KeepsTheBlockWhereNothingIsFound) {
  DataBuffer b = bufferOf("abc"), none;
  const u8* const block = b.getData2();
  const u64 before = faults::tally.blocks;
  EXPECT_EQ(replaceAll(b, "abd", "x") + replaceAll(b, "abcd", "x") + replaceAll(none, "a", "x"), 0U);
  EXPECT_EQ(b.replaceAllOccurances(nullptr, 1, block, 1) + b.replaceAllOccurances(block, 0, block, 1), 0U);
  EXPECT_EQ(faults::tally.blocks, before);
  EXPECT_TRUE(b.getData2() == block && stateOf(b) == "abc of 20000");
}

// The new block has the old size; only a result that outgrows it grows, as any append does.
TEST(Replace, GrowsFromTheOldSize) {
  DataBuffer b = bufferOf("abcabc");
  EXPECT_EQ(b.replaceAllOccurances(bytesOf("b"), 1, nullptr, 7), 2U);
  EXPECT_EQ(stateOf(b), "acac of 6");
  EXPECT_EQ(replaceAll(b, "c", "xy"), 2U);
  EXPECT_EQ(stateOf(b), "axyaxy of 20004") << "the last two bytes met a full block of four";
}

TEST(Replace, LeavesABorrowedBlockAlone) {
  std::string lent = "abcabc";
  DataBuffer b = borrowing(lent);
  EXPECT_EQ(replaceAll(b, "x", "y"), 0U);
  EXPECT_EQ(stateOf(b), "abcabc of 6, lent");
  EXPECT_EQ(replaceAll(b, "b", "X"), 2U);
  EXPECT_EQ(stateOf(b), "aXcaXc of 6");
  EXPECT_EQ(lent, "abcabc");
}

TEST(Replace, TakesItsArgumentsFromTheContentItself) {
  DataBuffer b = bufferOf("ab-ab-cdef");
  EXPECT_EQ(b.replaceAllOccurances(b.getData2(), 2, b.getData2() + 6, 4), 2U);
  EXPECT_EQ(textOf(b), "cdef-cdef-cdef");
}

TEST(Replace, ShortensTheResultWhenMemoryRunsOut) {
  const u32 refusals = faults::failEachAllocation([](u32 k, bool forGood) {
    DataBuffer b;
    b.copyData("a-b-c", 5);
    const u8* const block = b.getData2();
    const std::string with(1000, 'x'), whole = "a" + with + "b" + with + "c";
    const faults::FailAllocation fail(k, forGood);
    const u32 count = replaceAll(b, "-", with);
    if (k == 1) {
      EXPECT_EQ(count, 0U);
      EXPECT_EQ(b.getData2(), block);
      EXPECT_TRUE(b.equals2("a-b-c", 5));
    } else {
      // A refusal that passes is made up for by growth's second, smaller attempt.
      EXPECT_EQ(count, 2U) << "all that were found";
      EXPECT_TRUE(fail.struck() && forGood ? b.equals2("abc", 3) : b.equals2(whole.data(), countOf(whole)));
    }
    return fail.struck();
  });
  EXPECT_EQ(refusals, 4U);
}

TEST(Replace, ReplacesUtf16Bytes) {
  XString find = wideOf("A"), with = wideOf("\xC3\xA9\xE2\x82\xAC"), other = wideOf("B"), none;
  DataBuffer b = bufferOf(fromHex("41 00 42 00 00 41 00"));
  EXPECT_EQ(b.replaceUnicodeString(find, with), 2U) << "at any byte, between two units too";
  EXPECT_EQ(textOf(b), fromHex("E9 00 AC 20 42 00 00 E9 00 AC 20"));
  EXPECT_EQ(b.replaceUnicodeString(other, none), 1U);
  EXPECT_EQ(textOf(b), fromHex("E9 00 AC 20 00 E9 00 AC 20"));
  EXPECT_EQ(b.replaceUnicodeString(none, with), 0U);
}

TEST(Replace, IgnoresLetterCaseInUtf16) {
  constexpr struct {
    const char *find, *with;
    std::u16string_view given, left;
    u32 count;
  } kCases[] = {
      {"ab", "Z", u"xABy", u"xZy", 1},
      {"ab", "", u"abABx", u"x", 2},
      {"AB", "ab!", u"abaB", u"ab!ab!", 2},
      {"aa", "b", u"AaA", u"bA", 1},
      {"\xC3\xA9\xCF\x83", "e", u"x\u00C9\u03A3\u00E9\u03C3", u"xee", 2},
      {"ab", "Z", u"a", u"a", 0},
      {"ab", "Z", u"xay", u"xay", 0},
      {"", "Z", u"xay", u"xay", 0},
  };
  for (const auto& c : kCases)
    for (const u32 offset : {0U, 1U}) {  // an even address and an odd one
      XString find = wideOf(c.find), with = wideOf(c.with);
      std::string lent = std::string(offset, '.') + unitsOf(c.given);
      DataBuffer b = borrowing(lent.data() + offset, lent.size() - offset);
      EXPECT_EQ(b.replaceAllOccurancesUtf16NoCase(find, with), c.count) << c.find;
      EXPECT_EQ(textOf(b), unitsOf(c.left)) << c.find;
      EXPECT_EQ(lent, std::string(offset, '.') + unitsOf(c.given)) << c.find;
    }
}

TEST(Replace, DropsAnOddByteOnlyWhenSomethingIsReplaced) {
  XString find = wideOf("ab"), with = wideOf("XYZ");
  DataBuffer b = bufferOf(unitsOf(u"xab") + "!");
  EXPECT_EQ(b.replaceAllOccurancesUtf16NoCase(find, with), 1U);
  EXPECT_EQ(textOf(b), unitsOf(u"xXYZ"));
  DataBuffer kept = bufferOf(unitsOf(u"xyz") + "!");
  EXPECT_EQ(kept.replaceAllOccurancesUtf16NoCase(find, with), 0U);
  EXPECT_EQ(textOf(kept), unitsOf(u"xyz") + "!");
  EXPECT_EQ(b.replaceAllOccurancesUtf16NoCase(with, with), 1U) << "one string as both";
  EXPECT_EQ(textOf(b), unitsOf(u"xXYZ"));
}

}  // namespace
