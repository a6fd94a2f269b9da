// Every form of every kernel against its scalar twin, whose answers the tests of what is built on it hold against plain
// code, against other programs' and against the standards' examples.

#include "tests/simd/Forms.h"
#include "varnik/simd/Ascii85.h"
#include "varnik/simd/AsciiRun.h"
#include "varnik/simd/Base32.h"
#include "varnik/simd/Base45.h"
#include "varnik/simd/Base64.h"
#include "varnik/simd/Bitwise.h"
#include "varnik/simd/ByteHits.h"
#include "varnik/simd/CombiningMarks.h"
#include "varnik/simd/Compact.h"
#include "varnik/simd/Copy.h"
#include "varnik/simd/DecList.h"
#include "varnik/simd/Escape.h"
#include "varnik/simd/FindBytes.h"
#include "varnik/simd/FindUnits.h"
#include "varnik/simd/GatherText.h"
#include "varnik/simd/Hex.h"
#include "varnik/simd/HexEscape.h"
#include "varnik/simd/HexUnescape.h"
#include "varnik/simd/LetterCase.h"
#include "varnik/simd/Lines.h"
#include "varnik/simd/QpLines.h"
#include "varnik/simd/QpText.h"
#include "varnik/simd/ReplaceByte.h"
#include "varnik/simd/Reverse.h"
#include "varnik/simd/SwapBytes.h"
#include "varnik/simd/UuLines.h"

namespace {

char* text(u8* p) {
  return reinterpret_cast<char*>(p);
}

/// What is written, by `write(out)` that returns how much was read and how much was written, and how much was read.
template <class Write>
std::string withRead(std::size_t room, Write write) {
  u32 read = 0;
  const auto count = [&](u8* out) {
    const auto [taken, written] = write(out);
    read = taken;
    return written;
  };
  return into(room, count) + '|' + std::to_string(read);
}

/// The same for what `read(out)` reads in groups of `chars` characters, `bytes` bytes each.
template <class Read>
std::string withGroups(u32 chars, u32 bytes, u32 n, Read read) {
  return withRead(n / chars * bytes, [&](u8* out) {
    const u32 done = read(out);
    return std::pair(done, done / chars * bytes);
  });
}

const Pieces kAny = anyBytes();

/// Holds a kernel on texts of all kinds and on a good one that is spoilt.
template <class Forms, class Answer>
void hold(const Forms& forms, const std::vector<Pieces>& contents, const std::string& good, Answer answer) {
  holdTwins(forms, contents, answer);
  holdSpoilt(forms, good, answer);
}

// ---- Text codecs ----

// The forms of a kernel that writes past the caches and the scalar one of that which does not.
#if VARNIK_HAVE_AVX2
#define VARNIK_STREAM_FORMS(kernel) \
  formsOf(vk_simd::kernel##Stream, vk_simd::kernel##Scalar, vk_simd::kernel##StreamAvx2)
#else
#define VARNIK_STREAM_FORMS(kernel) formsOf(vk_simd::kernel##Stream, vk_simd::kernel##Scalar, vk_simd::kernel##Scalar)
#endif

// What `write(out)` writes, `n` bytes with `behind` more before the unreadable page.
template <class Write>
std::string before(u32 behind, u32 n, Write write) {
  return into(n + behind, [&](u8* out) {
    std::memset(out + n, '.', behind);
    write(out);
    return n + behind;
  });
}

TEST(Kernels, Hex) {
  for (const bool lower : {false, true}) {
    holdTwins(VARNIK_FORMS(hexEncode), {kAny}, [=](auto* run, const u8* data, u32 n) {
      return into(2 * n, [&](u8* out) { return run(data, n, lower, text(out)), 2 * n; });
    });
    holdTwins(VARNIK_STREAM_FORMS(hexEncode), {kAny}, [=](auto* run, const u8* data, u32 n) {
      return before(n % 2, 2 * n, [&](u8* out) { run(data, n, lower, text(out)); });
    });
    holdTwins(VARNIK_FORMS(hexEncodeColons), {kAny}, [=](auto* run, const u8* data, u32 n) {
      const u32 chars = n == 0 ? 0 : 3 * n - 1;
      return into(chars, [&](u8* out) { return n == 0 ? 0 : (run(data, n, lower, text(out)), chars); });
    });
  }
  hold(
      VARNIK_FORMS_512(hexDecode), {eachOf("0123456789abcdefABCDEF")}, "0123456789abcDEF",
      [](auto* run, u8* data, u32 n) { return withGroups(2, 1, n, [&](u8* out) { return run(text(data), n, out); }); });
}

TEST(Kernels, Base32) {
  holdTwins(VARNIK_FORMS(base32Encode), {kAny}, [](auto* run, const u8* data, u32 n) {
    return into((n + 4) / 5 * 8, [&](u8* out) { return run(data, n, text(out)), (n + 4) / 5 * 8; });
  });
  hold(
      VARNIK_FORMS(base32Decode), {eachOf("ABCDEFGHIJKLMNOPQRSTUVWXYZ234567")}, "AZ27KLMN",
      [](auto* run, u8* data, u32 n) { return withGroups(8, 5, n, [&](u8* out) { return run(text(data), n, out); }); });
}

TEST(Kernels, Base64) {
  const Pieces digits = eachOf("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/");
  for (const bool url : {false, true}) {
    holdTwins(VARNIK_FORMS_512(base64Encode), {kAny}, [=](auto* run, const u8* data, u32 n) {
      return into((n + 2) / 3 * 4, [&](u8* out) { return run(data, n, url, text(out)), (n + 2) / 3 * 4; });
    });
    holdTwins(VARNIK_STREAM_FORMS(base64Encode), {kAny}, [=](auto* run, const u8* data, u32 n) {
      return before(n % 4, (n + 2) / 3 * 4, [&](u8* out) { run(data, n, url, text(out)); });
    });
    hold(VARNIK_FORMS_512(base64Decode), {digits, eachOf("Aa+/-_")}, "AZaz09+/", [=](auto* run, u8* data, u32 n) {
      return withGroups(4, 3, n, [&](u8* out) { return run(text(data), n, url, out); });
    });
  }
  const vk_simd::LineEnd ends[] = {{{'\r', '\n'}, 2}, {{'&', '#', 'x', 'D', ';', '\n'}, 6}};
  for (const auto& end : ends)
    for (const u32 lineBytes : {3u, 24u, 27u, 57u, 72u, 600u})
      holdTwins(VARNIK_FORMS_512(base64EncodeLines), {kAny}, [&](auto* run, const u8* data, u32 n) {
        const u32 chars = (n / lineBytes * (lineBytes / 3) + (n % lineBytes + 2) / 3) * 4 +
                          (n + lineBytes - 1) / lineBytes * end.length;
        return into(chars, [&](u8* out) { return run(data, n, lineBytes, end, text(out)), chars; });
      });
  for (const std::string end : {"\n", "\r\n"})
    for (const u32 lineChars : {4u, 32u, 36u, 60u, 64u, 76u, 100u}) {
      const auto line = [&](char c) { return std::string(lineChars - 1, 'x') + c + end; };
      hold(VARNIK_FORMS_512(base64DecodeLines), {{line('A'), line('/')}, {line('b'), line('b'), line('b'), line('!')}},
           line('A'), [&](auto* run, u8* data, u32 n) {
             const u32 room = n / (lineChars + countOf(end)) * (lineChars / 4 * 3);
             return into(room, [&](u8* out) { return run(text(data), n, lineChars, end, out) * (lineChars / 4 * 3); });
           });
    }
}

TEST(Kernels, Base45) {
  holdTwins(VARNIK_FORMS(putBase45), {kAny}, [](auto* run, const u8* data, u32 n) {
    return into(n / 2 * 3 + vk_simd::kBase45Slack, [&](u8* out) { return run(data, n / 2, out), n / 2 * 3; });
  });
  const auto read = [](auto* run, const u8* data, u32 n) {
    return into(n / 3 * 2 + vk_simd::kBase45Slack, [&](u8* out) { return run(data, n, out) * 2; });
  };
  hold(VARNIK_FORMS(readBase45), {{"BB8", "FGW", "QED", "000", "::0"}}, "FGW", read);
  holdSpoilt(VARNIK_FORMS(readBase45), "BB8", read);
}

TEST(Kernels, Ascii85) {
  holdTwins(VARNIK_FORMS(putAscii85), {kAny, {std::string(4, '\0'), "abcd", "efgh", "\xFF\xFF\xFF\xFF"}},
            [](auto* run, const u8* data, u32 n) {
              return into(n / 4 * 5 + vk_simd::kAscii85Slack, [&](u8* out) { return run(data, n / 4, out); });
            });
  const auto read = [](auto* run, const u8* data, u32 n) {
    return withRead(n * 4 + vk_simd::kAscii85Slack, [&](u8* out) {
      const auto done = run(data, n, out);
      return std::pair(done.chars, 4 * done.words);
    });
  };
  hold(VARNIK_FORMS(readAscii85), {{"9jqo^", "s8W-!", "!!!!!"}, {"9jqo^", "BlbD-", "BlbD-", "z"}}, "s8W-!", read);
  holdSpoilt(VARNIK_FORMS(readAscii85), "9jqo^", read);
}

TEST(Kernels, DecimalLists) {
  holdTwins(VARNIK_FORMS_512(putDecList), {kAny}, [](auto* run, const u8* data, u32 n) {
    return into(n * 4 + vk_simd::kDecListSlack, [&](u8* out) { return run(data, n, out); });
  });
  const Pieces plain = {"0,", "7,", "10,", "99,", "100,", "199,", "249,", "255,", "200,", "26,"};
  Pieces odd(200, "12,");
  for (const char* each : {"256,", "999,", ",", "0001,", " 1,", "1 ,", "1\n", "-1,", "x"}) odd.emplace_back(each);
  for (const u32 divisor : {2u, 3u, 8u})  // room for all, for about as many as there are, and for few
    hold(VARNIK_FORMS_512(readDecList), {plain, odd}, "12,3,250,", [=](auto* run, const u8* data, u32 n) {
      return withRead(n / divisor, [&](u8* out) {
        const auto done = run(data, n, out, n / divisor);
        return std::pair(done.chars, done.values);
      });
    });
}

// What is left at the end by a form that stops before it is less than two lines.
TEST(Kernels, UuLines) {
  holdTwins(VARNIK_FORMS(putUuLines), {kAny, {std::string(3, '\0')}}, [](auto* run, const u8* data, u32 n) {
    return into((n + 44) / 45 * 62 + vk_simd::kUuSlack, [&](u8* out) { return run(data, n, out); });
  });
  const auto line = [](char c, const char* end) { return "M" + std::string(59, c) + "!" + end; };
  const auto read = [](auto* run, const u8* data, u32 n) {
    return withRead(n + vk_simd::kUuSlack, [&](u8* out) {
      const auto done = run(data, n, out);
      const auto rest = vk_simd::readUuLinesScalar(data + done.chars, n - done.chars, out + done.bytes);
      EXPECT_LE(rest.bytes, 45u);
      return std::pair(done.chars + rest.chars, done.bytes + rest.bytes);
    });
  };
  const Pieces lines = {line('!', "\n"), line('`', "\r\n"), line(' ', "\n"), line('5', "\n"), line('Z', "\r\n")};
  hold(VARNIK_FORMS(readUuLines), {lines, {line('C', "\n"), line('C', "\r!"), line('C', "!")}}, line('`', "\n"), read);
}

constexpr auto isLowerCase = [](u8 b) { return b >= 'a' && b <= 'z'; };
constexpr auto isOdd = [](u8 b) { return b % 3 == 1 || b > 0xF0; };
constexpr vk_simd::EscapeTable kTable = vk_simd::escapeTableOf(isLowerCase, [](u8 b, u8* out) {
  for (u32 i = 0; i < 1 + b % 6U; ++i) out[i] = static_cast<u8>('0' + i);
  return 1 + b % 6U;
});
constexpr vk_simd::HexEscape kHow = {vk_simd::byteSetOf(isLowerCase), '%'};
constexpr vk_simd::ByteSet kOdd = vk_simd::byteSetOf(isOdd);

TEST(Kernels, Escapes) {
  const std::vector<Pieces> texts = {eachOf("abcdefghijklmnopqrstuvwxyz\r\n"), eachOf("abcdefgh"), eachOf("ab\xC3\xA9"),
                                     kAny, eachOf("\x05\x0B")};
  hold(VARNIK_FORMS(copyRun), {eachOf("147:=@Cabc"), eachOf("147:=")}, "1",
       [](auto* run, const u8* data, u32 n) { return into(n, [&](u8* out) { return run(kOdd, data, n, out); }); });
  hold(VARNIK_FORMS(membersAmong), {kAny}, "1",
       [](auto* run, const u8* data, u32 n) { return std::to_string(run(kOdd, data, n)); });
  hold(VARNIK_FORMS(escapeBytes), texts, "a", [](auto* run, const u8* data, u32 n) {
    return into(n * 6 + 8, [&](u8* out) { return run(kTable, data, n, out); });
  });
  for (const u32 room : {3 * 1024u, 80u, 33u, 7u})
    hold(VARNIK_FORMS(escapeHex), texts, "a", [=](auto* run, const u8* data, u32 n) {
      return withRead(3 * n + vk_simd::kHexEscapeSlack, [&](u8* out) {
        const auto done = run(kHow, data, n, std::min(room, 3 * n), out);
        return std::pair(done.bytes, done.chars);
      });
    });
  for (const u32 behind : {0u, 1u, 40u})  // what follows the piece may be read, and is no digit
    hold(VARNIK_FORMS_512(unescapeHex),
         {{"%0a", "%Fg", "%4", "a"}, {"%", "%%", "a0", "%1b"}, eachOf("abcdefghijklmnopq%41"), eachOf("xyz")}, "%41%a",
         [=](auto* run, u8* data, u32 n) {
           const u32 piece = n - std::min(n, behind);
           std::memset(data + piece, '\n', n - piece);
           return into(n + vk_simd::kHexUnescapeSlack, [&](u8* out) { return run('%', data, piece, n, out); });
         });
}

TEST(Kernels, QuotedPrintable) {
  Pieces words(40, "words "), texts = {"text", " ", "\t", "\r\n", " \r\n", "=", "\xC3\xA4", "\r", "\n"};
  words.insert(words.end(), {"abc", "z", "\r\n", "\xE2\x80\xA6"});
  for (const u32 limit : {4u, 50u, 64u, 76u, 200u})  // in two pieces
    hold(VARNIK_FORMS_512(putQpLines), {texts, words, kAny, {"a"}, {"\xFF"}}, "words \r\n",
         [=](auto* run, const u8* data, u32 n) {
           u32 part = n / 3;
           while (part < n && (data[part] == '\r' || data[part] == '\n')) ++part;
           return into(vk_simd::qpRoom(n, limit), [&](u8* out) {
             vk_simd::QpLine line{limit};
             u8* const end = run(line, data + part, n - part, true, run(line, data, part, false, out));
             return static_cast<u32>(end - out);
           });
         });
}

TEST(Kernels, QuotedPrintableRead) {
  auto forms = formsOf(vk_simd::readQpText, vk_simd::readQpTextByLine, vk_simd::readQpTextByLine);
#if VARNIK_HAVE_AVX512
  forms = with512(forms, vk_simd::readQpTextAvx512);
#endif
  Pieces text(60, "abc d"), breaks(30, "abcd"), blanks(20, "          ");
  for (const char* each : {"=20", "=e4", "=", "==", "=4", "\r", "\n", "\r\n", "=\r\n", "=\n", " =\r\n"})
    text.emplace_back(each);
  for (const char* each : {"=\r\n", "=\n", "= \r\n", "=\r", "\r\n", " \n", "=41"}) breaks.emplace_back(each);
  for (const char* each : {"a", "=", "\t\r\n"}) blanks.emplace_back(each);
  hold(forms, {text, breaks, blanks, {"=41"}, {"=\r\n"}, kAny}, "a =\r\nb=3D\r\n",
       [](auto* run, const u8* data, u32 n) {
         return into(n + vk_simd::kQpTextSlack, [&](u8* out) { return run(data, n, out); });
       });
}

// ---- Bytes ----

TEST(Kernels, GatherWhatIsNoWhiteSpace) {
  const Pieces blanks = eachOf("aB3 \t\n\v\f\r\x08\x0E\x1F!\x80\xA0\x89");
  Pieces ends(100, "abc\r\n"), few(20, "abcdef");
  ends.insert(ends.end(), {"=", "&"});
  few.emplace_back(" ");
  for (const u32 most : {2000u, 150u, 33u, 5u})
    hold(VARNIK_FORMS(gatherText), {blanks, ends, few, {"abc"}}, "abcde", [=](auto* run, u8* data, u32 n) {
      return withRead(most + vk_simd::kGatherSlack, [&](u8* out) {
        u32 gathered = 0;
        const u32 read = run(text(data), n, text(out), most, gathered);
        return std::pair(read, gathered);
      });
    });
}

// Into another area, in place, and to a place closely before.
template <class Forms, class Run>
void holdCompacting(const Forms& forms, const std::vector<Pieces>& contents, Run run) {
  hold(forms, contents, "ab.d",
       [&](auto* form, const u8* data, u32 n) { return into(n, [&](u8* out) { return run(form, out, data, n); }); });
  for (const u32 before : {0u, 1u, 7u, 40u})
    holdTwins(forms, contents, [&](auto* form, const u8* data, u32 n) {
      return into(n + before, [&](u8* out) {
        std::memcpy(out + before, data, n);
        return run(form, out, out + before, n);
      });
    });
}

TEST(Kernels, Compact) {
  const std::vector<Pieces> dots = {eachOf("ab."), eachOf("abcdefghijklmnopqrstuvwxyz."), eachOf("abc"), eachOf(".")};
  const auto plain = [](auto* run, u8* out, const u8* data, u32 n) { return run(out, data, n); };
  holdCompacting(VARNIK_FORMS_512(dropByte), dots,
                 [](auto* run, u8* out, const u8* data, u32 n) { return run(out, data, n, '.'); });
  holdCompacting(VARNIK_FORMS_512(keepAscii),
                 {{"a", std::string(1, '\0'), "\x01", "\x7F", "\x80", "\xFF"}, eachOf("ab")}, plain);
  holdCompacting(VARNIK_FORMS(keepEven), {kAny}, plain);
  hold(VARNIK_FORMS(replaceByte), dots, "ab.d", [](auto* run, u8* data, u32 n) {
    run(data, n, '.', 0xFE);
    return stringAt(data, n);
  });
  Pieces rare(20, "words of text ");
  rare.emplace_back("e\u0301");
  for (const char* good : {"a\u0301", "\xCC.", "c\u0326e\u0308"})
    hold(VARNIK_FORMS_512(composeMarks),
         {{"a\xCC\x80", "n\xCC\x83", "Y\xCC\x88", "text", "e\xCC", "\xCC", "A\xCC\x8A"}, rare}, good,
         [](auto* run, u8* data, u32 n) {
           const u32 left = run(data, n);
           return stringAt(data, left);
         });
}

TEST(Kernels, Rewrite) {
  static const std::string other = randomBytes(1024, 3);
  // Apart, onto the first and onto the second.
  const auto combine = [](auto* run, u8* data, u32 n) {
    static GuardedBytes second(1024);
    const std::string apart = into(n, [&](u8* out) { return run(out, data, second.ending(other.substr(0, n)), n), n; });
    run(second.ending(n), data, second.ending(n), n);
    run(data, data, second.starting(other.substr(0, n)), n);
    return apart + stringAt(second.ending(n), n) + stringAt(data, n);
  };
  holdTwins(VARNIK_FORMS(xorBytes), {kAny}, combine);
  holdTwins(VARNIK_FORMS(andBytes), {kAny}, combine);
  holdTwins(VARNIK_FORMS(reverseCopy), {kAny},
            [](auto* run, const u8* data, u32 n) { return into(n, [&](u8* out) { return run(out, data, n), n; }); });
  const auto inPlace = [](auto* run, u8* data, u32 n) { return run(data, n), stringAt(data, n); };
  holdTwins(VARNIK_FORMS(reverseInPlace), {kAny}, inPlace);
  holdTwins(VARNIK_FORMS(swapPairs), {kAny}, [&](auto* run, u8* data, u32 n) { return inPlace(run, data, n / 2 * 2); });
  holdTwins(VARNIK_FORMS(swapFours), {kAny}, [&](auto* run, u8* data, u32 n) { return inPlace(run, data, n / 4 * 4); });
}

template <bool chosen>
std::string hitsOf(const u8* data, u32 n) {
  std::string hits;
  const auto put = [&](u32 i) { hits.append({static_cast<char>(i), static_cast<char>(i >> 8)}); };
  chosen ? vk_simd::eachHit(data, n, '.', put) : vk_simd::eachHitScalar(data, n, '.', put);
  return hits;
}

TEST(Kernels, Scans) {
  const auto number = [](auto* run, const u8* data, u32 n) { return std::to_string(run(data, n)); };
  hold(VARNIK_FORMS_512(asciiRun), {eachOf("a\x7F"), {std::string(200, 'a'), std::string(400, 'a'), "\x80"}}, "\x7F",
       number);
  hold(VARNIK_FORMS_512(hasBareLineEnd), {{"abc", "\r\n"}, {"abc"}}, "xyz\r\n", number);
  hold(VARNIK_FORMS(oddBytesAreZero), {{std::string("a\0", 2)}}, std::string("a\0", 2), number);
  const auto hits = formsOf(hitsOf<true>, hitsOf<false>, hitsOf<true>);
  hold(hits, {eachOf("ab."), eachOf("."), eachOf("abcdefghijklmnopqrstuvwxyzabcdefghijklm.")}, "a",
       [](auto* run, const u8* data, u32 n) { return run(data, n); });
  for (const u32 part : {0u, 1u, 2u, 5u, 40u})  // of the text before the range, which must not count
    hold(VARNIK_FORMS(behindLastLineEnd), {eachOf("x"), {std::string(90, 'x'), "\n\r"}}, "x",
         [=](auto* run, const u8* data, u32 n) { return std::to_string(run(data, n * part / 41, n)); });
  static const std::string same(1024, 'x');
  hold(VARNIK_FORMS(mismatch), {eachOf("x")}, "x", [](auto* run, const u8* data, u32 n) {
    static GuardedBytes right(1024);
    return std::to_string(run(data, right.ending(same.substr(0, n)), n));
  });
  for (const u32 m : {1u, 2u, 3u, 8u, 20u, 33u}) {
    std::string pattern(m, 'a');
    pattern[m / 2] = 'b';
    hold(VARNIK_FORMS(findBytes), {eachOf("aaaaaaaaaaaaaaaaab")}, "a", [&](auto* run, const u8* data, u32 n) {
      static GuardedBytes area(64);
      return std::to_string(n < m ? n : run(data, n, area.ending(pattern), m));
    });
  }
}

// ---- UTF-16 units ----

TEST(Kernels, LetterCase) {
  Pieces known, few(60, unitsOf(u"a"));
  for (const char16_t unit : std::u16string_view(
           u"azAZ09 "
           u"\u00B5\u00DF\u00E9\u00F7\u00FF\u00D7\u03AC\u03C2\u03CE\u0386\u03A2\u0401\u0451\u044F\u4E2D\U0001F600"))
    known.push_back(unitsOf({&unit, 1}));
  few.push_back(unitsOf(u"\u0101"));  // no kernel knows it
  const auto map = [](auto* run, u8* data, u32 n) {
    const u32 count = run(data, n / 2);
    EXPECT_EQ(count % 16, 0u);
    return stringAt(data, n) + std::to_string(count);
  };
  for (const auto& forms : {VARNIK_FORMS_512(upperBlocks), VARNIK_FORMS_512(lowerBlocks)})
    for (const char16_t good : {u'a', u'\u00E9', u'\u03C3', u'\u0434', u'\u4E2D'})
      hold(forms, {known, few}, unitsOf({&good, 1}), map);
}

TEST(Kernels, FindUnitPair) {
  const Pieces units = {unitsOf(u"k"), unitsOf(u"x"), unitsOf(u"xxxxxxxxxxxxxxxx"), unitsOf(u"\u212Axxxxs")};
  for (const u32 distance : {0u, 1u, 5u, 16u, 33u}) {
    vk_simd::UnitPair pair{{'k', 'K', 0x212A, 'k'}, {'s', 'S', 0x17F, 's'}, distance};
    if (distance == 0) std::copy(pair.first, pair.first + 4, pair.second);
    const auto find = [&](auto* run, const u8* data, u32 n) {
      return std::to_string(n / 2 < distance ? 0 : run(data, n / 2 - distance, pair));
    };
    for (const char16_t half : {u'k', u'S', u'x'}) hold(VARNIK_FORMS(findUnitPair), {units}, unitsOf({&half, 1}), find);
    hold(VARNIK_FORMS(findUnitPair), {{std::string(200, 'x'), unitsOf(u"KSKSKS\u017F")}}, "x", find);
  }
}

// ---- Copies ----

// Counts on both sides of each limit of the special road, at distances in and beside its window.
TEST(Copy, CopiesAtEveryDistance) {
  constexpr u32 kArea = 600 * 1024;
  const std::string given = randomBytes(kArea);
  GuardedBytes from(kArea), to(kArea + 64);
  for (const u32 n : {0U, 1U, 63U, 2047U, 2048U, 2049U, 4096U, 5000U, 524'288U, 524'289U})
    for (const u32 apart : {0U, 1U, 16U, 31U, 32U}) {
      const u8* const source = from.starting(given);
      u8* const target = to.starting(std::string(n + apart + 1, '\0')) + apart;
      EXPECT_EQ(vk_simd::isSlowCopy(target, source, n), apart >= 1 && apart <= 31 && n >= 2048 && n <= 524'288);
      vk_simd::copyBytes(target, source, n);
      ASSERT_EQ(stringAt(target, n), given.substr(0, n)) << n << " bytes, " << apart << " apart";
      ASSERT_EQ(target[n], 0) << n << " bytes, " << apart << " apart";
    }
#if VARNIK_HAVE_AVX2
  holdTwins(formsOf(vk_simd::copyBytes, vk_simd::copyBytes, vk_simd::copyBytesAvx2), {kAny},
            [](auto* run, const u8* data, u32 n) { return into(n, [&](u8* out) { return run(out, data, n), n; }); });
#endif
}

}  // namespace
