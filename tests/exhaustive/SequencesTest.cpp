// Every sequence of four bytes read as UTF-8 and every pair of units read as UTF-16, against the tables of the
// standard.

#include "tests/exhaustive/Tried.h"
#include "tests/services/CharsetSupport.h"

namespace {

constexpr s32 kUtf8 = 65001, kUtf16Le = 1200, kUtf16Be = 1201;
constexpr char kBetween = 'x';  // stands between two sequences, so that neither is a part of the other

/// The bytes that may follow a lead byte at once (The Unicode Standard, table 3-7), and how many follow in all.
struct Follow {
  u8 least, most;
  u32 count;
};
Follow followOf(u8 lead) {
  if (lead >= 0xC2 && lead <= 0xDF) return {0x80, 0xBF, 1};
  if (lead >= 0xE0 && lead <= 0xEF) return {u8(lead == 0xE0 ? 0xA0 : 0x80), u8(lead == 0xED ? 0x9F : 0xBF), 2};
  if (lead >= 0xF0 && lead <= 0xF4) return {u8(lead == 0xF0 ? 0x90 : 0x80), u8(lead == 0xF4 ? 0x8F : 0xBF), 3};
  return {0, 0, 0};
}

void putUnit(std::string& out, u32 unit) {
  out += static_cast<char>(unit & 0xFF);
  out += static_cast<char>(unit >> 8);
}

/// Appends the UTF-16LE of the sequence, U+FFFD for each maximal bad part. Returns whether there is none.
bool readSlowly(const u8* p, u32 n, std::string& out) {
  bool good = true;
  for (u32 i = 0; i < n;) {
    const u8 lead = p[i++];
    Follow follow = followOf(lead);
    bool bad = lead >= 0x80 && follow.count == 0;
    u32 c = follow.count == 0 ? lead : lead & (0x3Fu >> follow.count);
    while (follow.count != 0 && i < n && p[i] >= follow.least && p[i] <= follow.most) {
      c = c << 6 | (p[i++] & 0x3Fu);
      follow = {0x80, 0xBF, follow.count - 1};
    }
    bad |= follow.count != 0;
    good &= !bad;
    if (bad) c = 0xFFFD;
    if (c > 0xFFFF) putUnit(out, 0xD7C0 + (c >> 10)), c = 0xDC00 | (c & 0x3FF);
    putUnit(out, c);
  }
  return good;
}

/// Holds what sequences become against what they should.
void hold(s32 from, s32 to, const std::string& given, const std::string& expected, bool isGood) {
  const Converted got = convert(from, to, given);
  EXPECT_EQ(got.good, isGood);
  EXPECT_TRUE(got.text == expected) << testing::PrintToString(given.substr(0, 100));
}

TEST(Exhaustive, QuadruplesOfUtf8) {
  const std::string tried = bytesTried("\x80\xBF\x8F\x90\x9F\xA0 \xC2\xE0\xED\xF0\xF4\xFF\x7F\xC0\xE2", 16);
  for (u32 a = 0; a < 256; ++a)
    for (u32 b = 0; b < 256 && !testing::Test::HasFailure(); ++b) {
      std::string given, expected;
      bool isGood = true;
      for (const char c : tried)
        for (const char d : tried) {
          const char sequence[] = {kBetween, static_cast<char>(a), static_cast<char>(b), c, d};
          given.append(sequence, 5);
          isGood &= readSlowly(reinterpret_cast<const u8*>(sequence), 5, expected);
        }
      hold(kUtf8, kUtf16Le, given, expected, isGood);
    }
}

void putUtf8(std::string& out, u32 c) {
  const u32 tail = c < 0x80 ? 0 : c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
  out += static_cast<char>(tail == 0 ? c : (0xFF00u >> (tail + 1) & 0xFF) | c >> 6 * tail);
  for (u32 k = tail; k-- != 0;) out += static_cast<char>(0x80 | (c >> 6 * k & 0x3F));
}

void checkPairs(s32 from, u32 first, u32 step) {
  std::string given, expected;
  bool isGood = true;
  const auto put = [&](u32 unit) {
    const char bytes[] = {static_cast<char>(unit), static_cast<char>(unit >> 8), static_cast<char>(unit)};
    given.append(bytes + (from == kUtf16Be), 2);
  };
  const auto isHigh = [](u32 unit) { return unit >> 10 == 0x36; };
  const auto isLow = [](u32 unit) { return unit >> 10 == 0x37; };
  const auto readOne = [&](u32 unit) {
    const bool isLone = isHigh(unit) || isLow(unit);
    isGood &= !isLone;
    putUtf8(expected, isLone ? 0xFFFD : unit);
  };
  for (u32 second = 0; second < 0x10000; second += second >= 0xD7F0 && second < 0xE010 ? 1 : step) {
    put(kBetween), put(first), put(second);
    expected += kBetween;
    if (isHigh(first) && isLow(second)) {
      putUtf8(expected, 0x10000 + ((first & 0x3FF) << 10) + (second & 0x3FF));
    } else {
      readOne(first), readOne(second);
    }
  }
  hold(from, kUtf8, given, expected, isGood);
}

TEST(Exhaustive, PairsOfUtf16) {
  const u32 step = soaks() ? 1 : kIsSlow ? 1021 : 61;
  for (u32 first = 0; first < 0x10000 && !testing::Test::HasFailure();
       first += first >= 0xD7F0 && first < 0xE010 ? 1 : step)
    for (const s32 from : {kUtf16Le, kUtf16Be}) checkPairs(from, first, step);
}

}  // namespace
