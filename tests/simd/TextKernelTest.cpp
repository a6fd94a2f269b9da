// The kernels of the text codecs beside plain code, at every length, with the data and the room for the result ending
// at an unreadable page.
#include <gtest/gtest.h>

#include "tests/simd/Forms.h"
#include "tests/support/Bytes.h"
#include "tests/support/GuardedBytes.h"
#include "varnik/simd/Ascii85.h"
#include "varnik/simd/Base45.h"
#include "varnik/simd/ByteSet.h"
#include "varnik/simd/DecList.h"
#include "varnik/simd/Escape.h"
#include "varnik/simd/HexEscape.h"
#include "varnik/simd/HexUnescape.h"
#include "varnik/simd/UuLines.h"

namespace {

constexpr u32 kMost = 300;

std::string stringAt(const u8* p, std::size_t n) {
  return {reinterpret_cast<const char*>(p), n};
}

/// `n` random characters of a list.
std::string randomOf(std::string_view list, std::size_t n, u32 seed) {
  std::string text = randomBytes(n, seed);
  for (char& c : text) c = list[static_cast<u8>(c) % list.size()];
  return text;
}

constexpr bool isLowerCase(u8 b) {
  return b >= 'a' && b <= 'z';
}

TEST(ByteSet, HoldsExactlyItsMembers) {
  constexpr auto kOdd = [](u8 b) { return b % 3 == 1 || b > 0xF0; };
  constexpr vk_simd::ByteSet kSet = vk_simd::byteSetOf(kOdd);
  GuardedBytes from(32), to(32);
  for (const auto& form : VARNIK_FORMS(copyRun))
    for (u32 b = 0; b < 256; ++b)
      ASSERT_EQ(form.run(kSet, from.ending(std::string(32, static_cast<char>(b))), 32, to.ending(32)),
                kOdd(static_cast<u8>(b)) ? 32u : 0u)
          << form.name << ", byte " << b;
}

TEST(ByteSet, CopiesUpToTheFirstOutsiderAtEveryPlace) {
  constexpr vk_simd::ByteSet kSet = vk_simd::byteSetOf(isLowerCase);
  GuardedBytes from(kMost), to(kMost);
  for (const auto& form : VARNIK_FORMS(copyRun))
    for (u32 n = 0; n <= 150; ++n)
      for (u32 at = 0; at <= n; ++at) {
        std::string given = randomOf("abcxyz", n, n);
        if (at < n) given[at] = '\xE1';
        if (at + 1 < n) given[n - 1] = '!';
        ASSERT_EQ(form.run(kSet, from.ending(given), n, to.ending(n)), at) << form.name << ", " << n << " bytes";
        ASSERT_EQ(stringAt(to.ending(n), at), given.substr(0, at)) << form.name << ", " << n << " bytes";
      }
}

TEST(Escape, WritesTheTablesEntries) {
  static constexpr vk_simd::EscapeTable kTable = vk_simd::escapeTableOf(isLowerCase, [](u8 b, u8* out) {
    for (u32 i = 0; i < 1 + b % 6U; ++i) out[i] = static_cast<u8>('0' + i);
    return 1 + b % 6U;
  });
  GuardedBytes from(kMost), to(kMost * 6 + 8);
  for (const char* const list : {"abcdefgh", "abcdefghijklmnopqrstuvwxyz\r\n", "ab\r\n\xFF\x80,", "\x05\x0B"})
    for (u32 n = 0; n <= kMost; ++n) {
      const std::string given = randomOf(list, n, n);
      std::string want;
      for (const char c : given)
        want += isLowerCase(static_cast<u8>(c)) ? std::string(1, c)
                                                : std::string("012345").substr(0, 1 + static_cast<u8>(c) % 6);
      for (const auto& form : VARNIK_FORMS(escapeBytes)) {
        u8* const out = to.ending(n * 6 + 8);
        ASSERT_EQ(stringAt(out, form.run(kTable, from.ending(given), n, out)), want) << form.name << ", " << n;
      }
    }
}

TEST(HexEscape, EncodesWhatHasRoom) {
  static constexpr vk_simd::HexEscape kHow = {vk_simd::byteSetOf(isLowerCase), '%'};
  GuardedBytes from(kMost), to(kMost * 3 + vk_simd::kHexEscapeSlack);
  const auto check = [&](const std::string& given, u32 room) {
    const u32 n = countOf(given);
    std::string want;
    u32 bytes = 0;
    for (; bytes < n; ++bytes) {
      const u8 b = static_cast<u8>(given[bytes]);
      char escape[4];
      std::snprintf(escape, sizeof escape, "%%%02X", b);
      const std::string more = isLowerCase(b) ? std::string(1, given[bytes]) : escape;
      if (want.size() + more.size() > room) break;
      want += more;
    }
    for (const auto& form : VARNIK_FORMS(escapeHex)) {
      u8* const out = to.ending(n * 3 + vk_simd::kHexEscapeSlack);
      const auto done = form.run(kHow, from.ending(given), n, room, out);
      ASSERT_EQ(done.bytes, bytes) << form.name << ", " << n << " bytes, room for " << room;
      ASSERT_EQ(stringAt(out, done.chars), want) << form.name << ", " << n << " bytes, room for " << room;
    }
  };
  for (const char* const list : {"abcdefgh", "abcdef%", "ab\xC3\xA9", "\x80\xFF%"}) {
    for (u32 n = 0; n <= kMost; ++n) check(randomOf(list, n, n), 3 * n);
    for (u32 n = 0; n <= 80; ++n)
      for (u32 room = 0; room <= 80; ++room) check(randomOf(list, n, n + room), room);
  }
}

TEST(HexEscape, IsUndone) {
  GuardedBytes from(kMost), to(kMost + vk_simd::kHexUnescapeSlack);
  for (const char* const list : {"%0aFg", "%%%00112233445566aabbccddeeff", "abcdefghijklmnopq%41", "xyz"})
    for (u32 n = 0; n <= kMost; ++n) {
      const std::string given = randomOf(list, n, n);
      std::string want;
      for (u32 i = 0; i < n; ++i) {
        const bool escape = given[i] == '%' && n - i >= 3 && std::isxdigit(given[i + 1]) && std::isxdigit(given[i + 2]);
        want += escape ? fromHex(given.substr(i + 1, 2)) : given.substr(i, 1);
        if (escape) i += 2;
      }
      for (const auto& form : VARNIK_FORMS_512(unescapeHex))
        for (const u32 behind : {0u, 1u, 40u}) {
          if (n + behind > kMost) continue;
          const u8* const text = from.ending(given + std::string(behind, '\n'));
          u8* const out = to.ending(n + vk_simd::kHexUnescapeSlack);
          ASSERT_EQ(stringAt(out, form.run('%', text, n, n + behind, out)), want) << form.name << ", " << given;
        }
    }
}

TEST(DecList, WritesAndReadsEveryLength) {
  GuardedBytes bytes(kMost + 32), text(kMost * 4 + vk_simd::kDecListSlack);
  for (u32 n = 0; n <= kMost; ++n) {
    const std::string given = randomBytes(n, n);
    std::string want;
    for (const char c : given) want += std::to_string(static_cast<u8>(c)) + ',';
    for (const auto& form : VARNIK_FORMS(putDecList)) {
      u8* const out = text.ending(n * 4 + vk_simd::kDecListSlack);
      ASSERT_EQ(stringAt(out, form.run(bytes.ending(given), n, out)), want) << form.name << ", " << n << " bytes";
    }
    for (const auto& form : VARNIK_FORMS(readDecList))
      for (const u32 room : {n, n + 1, n / 2}) {
        const auto done = form.run(text.ending(want), countOf(want), bytes.ending(room), room);
        ASSERT_EQ(done.values, std::min(n, room)) << form.name << ", " << n << " values";
        ASSERT_EQ(stringAt(bytes.ending(room), done.values), given.substr(0, done.values)) << form.name << ", " << n;
      }
  }
}

TEST(DecList, StopsBeforeWhatIsNotPlain) {
  GuardedBytes text(kMost), bytes(kMost);
  for (const char* const odd : {"256,", "999,", ",", "0001,", " 1,", "1 ,", "1\n", "-1,", "x"})
    for (u32 before = 0; before <= 40; ++before) {
      std::string list;
      for (const char c : randomBytes(before, before)) list += std::to_string(static_cast<u8>(c)) + ',';
      const u32 plain = countOf(list);
      list += odd + std::string(80, '1');
      for (const auto& form : VARNIK_FORMS(readDecList)) {
        const auto done = form.run(text.ending(list), countOf(list), bytes.ending(200), 200);
        EXPECT_EQ(done.chars, plain) << form.name << ", " << before << " values before '" << odd << "'";
        EXPECT_EQ(done.values, before) << form.name << ", '" << odd << "'";
      }
    }
}

TEST(UuLines, WritesAndReadsEveryLength) {
  GuardedBytes bytes(kMost + vk_simd::kUuSlack), text(kMost * 2);
  for (u32 n = 0; n <= kMost; ++n) {
    const std::string given = randomBytes(n, n);
    const u32 room = (n + 44) / 45 * 62 + vk_simd::kUuSlack;
    std::string want;
    for (const auto& form : VARNIK_FORMS(putUuLines)) {
      u8* const out = text.ending(room);
      const std::string got = stringAt(out, form.run(bytes.ending(given), n, out));
      if (want.empty()) want = got;  // the scalar form, which the codec's tests hold against other programs' text
      ASSERT_EQ(got, want) << form.name << ", " << n << " bytes";
    }
    const u32 lines = n / 45;
    for (const auto& form : VARNIK_FORMS(readUuLines)) {
      u8* const out = bytes.ending(lines * 45 + vk_simd::kUuSlack);
      const auto done = form.run(text.ending(want), countOf(want), out);
      ASSERT_LE(done.bytes, lines * 45) << form.name;
      ASSERT_EQ(done.chars, done.bytes / 45 * 62) << form.name;
      ASSERT_EQ(stringAt(out, done.bytes), given.substr(0, done.bytes)) << form.name << ", " << n << " bytes";
      ASSERT_GE(done.bytes + 90, lines * 45) << form.name << " reads on";
    }
  }
}

TEST(UuLines, StopsAtABadCharacterAtEveryPlace) {
  GuardedBytes bytes(90 + vk_simd::kUuSlack), text(kMost);
  for (u32 at = 0; at < 62; ++at)
    for (u32 c = 0; c < 256; ++c) {
      std::string lines = "M" + std::string(60, ' ') + "\nM" + std::string(60, '`') + "\n    ";
      lines[at] = static_cast<char>(c);
      const bool good = at == 0 ? c == 'M' : at == 61 ? c == '\n' : c >= 0x20 && c <= 0x60;
      for (const auto& form : VARNIK_FORMS(readUuLines)) {
        const auto done = form.run(text.ending(lines), countOf(lines), bytes.ending(90 + vk_simd::kUuSlack));
        ASSERT_EQ(done.bytes, good ? 90u : 0u) << form.name << ", character " << c << " at " << at;
      }
    }
}

// Both read groups; a bad one may stand at each place of a block, and with each kind of fault.
TEST(Base45, WritesAndReadsEveryLength) {
  GuardedBytes bytes(kMost + vk_simd::kBase45Slack), text(kMost * 2 + vk_simd::kBase45Slack);
  for (u32 n = 0; n <= kMost; n += 2) {
    const std::string given = randomBytes(n, n);
    std::string want;
    for (u32 i = 0; i < n; i += 2) {
      const u32 value = static_cast<u32>(static_cast<u8>(given[i]) * 256 + static_cast<u8>(given[i + 1]));
      for (const u32 digit : {value % 45, value / 45 % 45, value / 2025}) want += vk_simd::kBase45Digits[digit];
    }
    for (const auto& form : VARNIK_FORMS(putBase45)) {
      u8* const out = text.ending(want.size() + vk_simd::kBase45Slack);
      form.run(bytes.ending(given), n / 2, out);
      ASSERT_EQ(stringAt(out, want.size()), want) << form.name << ", " << n << " bytes";
    }
    for (const auto& form : VARNIK_FORMS(readBase45))
      for (u32 bad = 0; bad <= n / 2; ++bad) {
        std::string wrong = want;
        if (bad < n / 2) wrong.replace(3 * bad, 3, bad % 3 == 0 ? "GGW" : bad % 3 == 1 ? "0\n0" : "00a");
        u8* const out = bytes.ending(n + vk_simd::kBase45Slack);
        ASSERT_EQ(form.run(text.ending(wrong), countOf(wrong), out), bad) << form.name << ", " << n << " bytes";
        ASSERT_EQ(stringAt(out, 2 * bad), given.substr(0, 2 * bad)) << form.name << ", " << n << " bytes";
      }
  }
}

TEST(Base45, KnowsEveryTripleOfItsAlphabet) {
  GuardedBytes bytes(16 + vk_simd::kBase45Slack), text(28);
  for (u32 value = 0; value < 45 * 45 * 45; ++value) {
    std::string given(28, '0');
    for (u32 i = 0, rest = value; i < 3; ++i, rest /= 45) given[9 + i] = vk_simd::kBase45Digits[rest % 45];
    for (const auto& form : VARNIK_FORMS(readBase45)) {
      u8* const out = bytes.ending(16 + vk_simd::kBase45Slack);
      ASSERT_EQ(form.run(text.ending(given), 24, out), value < 65536 ? 8u : 3u) << form.name << ", " << value;
      ASSERT_EQ(value < 65536 ? u32{out[6]} << 8 | out[7] : value, value) << form.name;
    }
  }
}

TEST(Ascii85, WritesAndReadsEveryLength) {
  GuardedBytes bytes(kMost + vk_simd::kAscii85Slack), text(kMost * 2 + vk_simd::kAscii85Slack);
  for (u32 n = 0; n <= kMost; n += 4)
    for (const u32 zeroAt : {1000u, 0u, n / 8, n / 4 - 1}) {
      std::string given = randomBytes(n, n + 1);
      if (zeroAt < n / 4) given.replace(4 * zeroAt, 4, 4, '\0');
      std::string want;
      for (u32 i = 0; i < n; i += 4) {
        u32 value = 0;
        for (u32 k = 0; k < 4; ++k) value = value << 8 | static_cast<u8>(given[i + k]);
        std::string digits;
        for (u32 k = 0; k < 5; ++k, value /= 85) digits.insert(0, 1, static_cast<char>('!' + value % 85));
        want += digits == "!!!!!" ? "z" : digits;
      }
      for (const auto& form : VARNIK_FORMS(putAscii85)) {
        u8* const out = text.ending(n / 4 * 5 + vk_simd::kAscii85Slack);
        ASSERT_EQ(stringAt(out, form.run(bytes.ending(given), n / 4, out)), want) << form.name << ", " << n;
      }
      for (const auto& form : VARNIK_FORMS(readAscii85)) {
        u8* const out = bytes.ending(n + vk_simd::kAscii85Slack);
        const auto done = form.run(text.ending(want), countOf(want), out);
        ASSERT_EQ(done.chars, want.size()) << form.name << ", " << n;
        ASSERT_EQ(stringAt(out, 4 * done.words), given) << form.name << ", " << n;
      }
    }
}

TEST(Ascii85, StopsBeforeABadGroupAtEveryPlace) {
  GuardedBytes bytes(64 + vk_simd::kAscii85Slack), text(80);
  constexpr struct {
    const char* group;
    bool good;
  } kGroups[] = {{"s8W-!", true},  {"s8W-\"", false}, {"s8W.!", false}, {"uuuuu", false},   {"!!!!!", true},
                 {"!!z!!", false}, {"!!!! ", false},  {"v!!!!", false}, {"!\x80!!!", false}};
  for (const auto& c : kGroups)
    for (u32 at = 0; at < 16; ++at) {
      std::string given;
      for (u32 i = 0; i < 16; ++i) given += i == at ? c.group : "9jqo^";
      for (const auto& form : VARNIK_FORMS(readAscii85)) {
        const auto done = form.run(text.ending(given), countOf(given), bytes.ending(64 + vk_simd::kAscii85Slack));
        EXPECT_EQ(done.words, c.good ? 16u : at) << form.name << ", " << c.group;
      }
    }
}

}  // namespace
