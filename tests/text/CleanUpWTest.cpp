#include "tests/support/Test.h"

namespace {

// Runs an operation on units at an even and at an odd address and compares what is left.
template <class Operation>
void check(const char* what, const std::string& given, const std::string& left, Operation operation) {
  for (const u32 offset : {0U, 1U}) {
    std::string lent = std::string(offset, '.') + given;
    DataBuffer b = borrowing(lent.data() + offset, given.size());
    operation(b);
    EXPECT_EQ(textOf(b), left) << what << ", offset " << offset;
  }
}

TEST(CleanUpW, RemovesUnits) {
  const auto remove = [](u16 ch) { return [ch](DataBuffer& b) { b.removeCharOccurancesW(ch); }; };
  check("every match", unitsOf(u"axbxx"), unitsOf(u"ab"), remove('x'));
  check("a byte that only looks like it", unitsOf(u"\u7800x\u0078"), unitsOf(u"\u7800"), remove('x'));
  check("all", unitsOf(u"xx"), "", remove('x'));
  check("none, but the odd byte goes", unitsOf(u"ab") + "!", unitsOf(u"ab"), remove('x'));
  check("zero removes nothing", unitsOf(u"ab") + "!", unitsOf(u"ab") + "!", remove(0));
  check("one byte is no unit", "x", "x", remove('x'));
  check("nothing", "", "", remove('x'));
}

TEST(CleanUpW, ReplacesUnits) {
  const auto replace = [](u16 from, u16 to) { return [=](DataBuffer& b) { b.replaceCharW(from, to); }; };
  check("every match", unitsOf(u"xabx") + "x", unitsOf(u"\u20ACab\u20AC") + "x", replace('x', 0x20AC));
  check("one byte is no unit", "x", "x", replace('x', 'y'));
  check("from zero", unitsOf({u"a\0b", 3}), unitsOf({u"a\0b", 3}), replace(0, 'x'));
  check("to zero", unitsOf(u"axb"), unitsOf(u"axb"), replace('x', 0));
}

TEST(CleanUpW, ChopsAtAUnit) {
  struct {
    const char* what;
    std::string given, first, last;
    bool found;
  } const kCases[] = {{"two matches", unitsOf(u"axbxc"), unitsOf({u"a\0", 2}), unitsOf({u"axb\0", 4}), true},
                      {"at the start", unitsOf(u"xab") + "!", unitsOf({u"\0", 1}), unitsOf({u"\0", 1}), true},
                      {"at the end", unitsOf(u"abx"), unitsOf({u"ab\0", 3}), unitsOf({u"ab\0", 3}), true},
                      {"none, odd byte", unitsOf(u"ab") + "x", unitsOf(u"ab"), unitsOf(u"ab"), false},
                      {"alone", unitsOf(u"x"), unitsOf({u"\0", 1}), unitsOf({u"\0", 1}), true},
                      {"one byte", "x", "x", "x", false},
                      {"nothing", "", "", "", false}};
  for (const auto& c : kCases) {
    check(c.what, c.given, c.first, [&](DataBuffer& b) { EXPECT_EQ(b.chopAtFirstCharW('x'), c.found) << c.what; });
    check(c.what, c.given, c.last, [&](DataBuffer& b) { EXPECT_EQ(b.chopAtLastCharW('x'), c.found) << c.what; });
    check(c.what, c.given, c.given, [](DataBuffer& b) { EXPECT_FALSE(b.chopAtFirstCharW(0)); });
    check(c.what, c.given, c.given, [](DataBuffer& b) { EXPECT_FALSE(b.chopAtLastCharW(0)); });
  }
}

TEST(CleanUpW, MapsLetterCase) {
  check("words", unitsOf(u"aZ1\u00E9\u03C3\u0434"), unitsOf(u"AZ1\u00C9\u03A3\u0414"),
        [](DataBuffer& b) { b.toUppercaseW(); });
  check("words", unitsOf(u"aZ1\u00C9\u03A3\u0414"), unitsOf(u"az1\u00E9\u03C3\u0434"),
        [](DataBuffer& b) { b.toLowercaseW(); });
}

}  // namespace
