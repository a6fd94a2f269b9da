// Conversions between the Unicode forms: each form of a kernel against the scalar one.

#include "tests/simd/Forms.h"
#include "varnik/simd/Utf.h"

namespace {

using vk_simd::Utf;
constexpr Utf kAll[] = {Utf::k8, Utf::k16Le, Utf::k16Be, Utf::k32Le, Utf::k32Be};

struct Result {
  std::string text;
  bool bad;
  bool operator==(const Result&) const = default;
};

// Converts within room that ends at an unreadable page; what is written past the answer must stay inside.
template <class Convert>
Result run(Convert* convert, Utf from, Utf to, std::string_view text, u32 room) {
  static GuardedBytes in(1 << 16), out(1 << 18);
  u8* const to8 = out.ending(room);
  const auto done = convert(from, to, in.ending(text), countOf(text), to8, room);
  EXPECT_LE(done.written, room);
  EXPECT_LE(done.read, text.size());
  Result result{std::string(reinterpret_cast<char*>(to8), done.written), done.bad};
  if (done.read < text.size()) result.text.append("|").append(std::to_string(done.read));
  return result;
}

// Pieces of text that meet in every combination: each length of character, runs of each, and bad parts.
std::string pieces(u32 seed, u32 count, bool withBad) {
  static const std::string kGood[] = {"a",          "plain text of some length, enough for a block ",
                                      "\u00E9",     "\u041F\u0440\u0438\u0432\u0435\u0442\u043C\u0438\u0440",
                                      "\u20AC",     "\u7F13\u51B2\u533A\u5B57\u7B26\u7F16\u7801",
                                      "\U0001F600", "\U00010000\U0010FFFF",
                                      "\uFFFD",     "\uE000\uD7FF",
                                      "\0"s,        "\x7F\u0080\u07FF\u0800\uFFFF"};
  static const std::string kBad[] = {"\x80",         "\xC3",     "\xE2\x82",         "\xF0\x9F\x98",
                                     "\xED\xA0\x80", "\xC0\xAF", "\xF4\x90\x80\x80", "\xFF"};
  std::mt19937 next = generator(seed);
  std::string text;
  for (u32 i = 0; i < count; ++i)
    text += withBad && next() % 8 == 0 ? kBad[next() % std::size(kBad)] : kGood[next() % std::size(kGood)];
  return text;
}

std::string inForm(Utf form, const std::string& utf8) {
  return run(vk_simd::convertUtfScalar, Utf::k8, form, utf8, 1 << 17).text;
}

TEST(Utf, FormsAgree) {
  for (u32 seed = 0; seed < 400; ++seed) {
    const std::string utf8 = pieces(seed, seed % 60, seed % 2);
    for (const Utf from : kAll) {
      std::string text = from == Utf::k8 ? utf8 : inForm(from, utf8);
      if (seed % 2 && from != Utf::k8)
        for (u32 i = seed % 5; i < text.size(); i += seed % 3 == 0 ? 4 : 37) text[i] = static_cast<char>(0xD8 + i % 8);
      text.resize(text.size() - std::min<std::size_t>(text.size(), seed % 4));
      for (const Utf to : kAll) {
        const Result want = run(vk_simd::convertUtfScalar, from, to, text, 1 << 17);
        const u32 exact = countOf(want.text);
        for (const auto& form : VARNIK_FORMS(utfLength))
          ASSERT_EQ(form.run(from, to, bytesOf(text), countOf(text)), exact) << form.name;
        EXPECT_LE(exact, vk_simd::utfLengthBound(from, to, countOf(text)));
        for (const auto& form : VARNIK_FORMS(convertUtf))
          for (const u32 room : {1u << 17, exact, exact - std::min(exact, 1u), exact / 2, exact / 3, 0u})
            ASSERT_EQ(run(form.run, from, to, text, room), run(vk_simd::convertUtfScalar, from, to, text, room))
                << form.name << seed << " " << static_cast<int>(from) << static_cast<int>(to) << " " << room;
        for (const auto& form : VARNIK_FORMS(utfLengthIfValid)) {
          const u64 length = form.run(from, to, bytesOf(text), countOf(text));
          ASSERT_EQ(length, vk_simd::utfLengthIfValidScalar(from, to, bytesOf(text), countOf(text))) << form.name;
          ASSERT_TRUE(want.bad || length == exact) << form.name;
        }
      }
    }
  }
}

// A character of each length, and a bad byte, at each place of a text of each length, in the room that it needs, in
// more and in less.
TEST(Utf, EachCharacterAtEachPlace) {
  for (u32 n = 0; n <= 140; ++n)
    for (const char* piece : {"x", "\u00E9", "\u20AC", "\U0001F600", "\xE2\x82", "\xBF"})
      for (u32 at = 0; at <= n; at += 1 + at / 70) {
        std::string text(n, 'x');
        text.insert(at, piece);
        for (const Utf to : {Utf::k8, Utf::k16Le, Utf::k16Be, Utf::k32Le}) {
          const Result whole = run(vk_simd::convertUtfScalar, Utf::k8, to, text, 4096);
          const u32 exact = countOf(whole.text), n8 = countOf(text);
          for (const u32 room : {exact, exact + 256, 64 * n % (exact + 1)}) {
            const Result want = run(vk_simd::convertUtfScalar, Utf::k8, to, text, room);
            for (const auto& form : VARNIK_FORMS(convertUtf))
              ASSERT_EQ(run(form.run, Utf::k8, to, text, room), want) << form.name << n << " " << at << " " << room;
          }
          if (whole.bad || to == Utf::k8) continue;
          for (const u32 cut : {0u, 1u})  // of the last unit
            for (const u32 room : {n8, n8 + 256, 32 * n % n8}) {
              const std::string units = whole.text.substr(0, exact - cut);
              const Result want = run(vk_simd::convertUtfScalar, to, Utf::k8, units, room);
              for (const auto& form : VARNIK_FORMS(convertUtf))
                ASSERT_EQ(run(form.run, to, Utf::k8, units, room), want) << form.name << n << " " << at << " " << room;
            }
        }
      }
}

TEST(Utf, CountsOfLongTextsDoNotOverflowTheirLanes) {
  const std::string utf8 = repeated("\U0001F600\u20AC\u00E9x", 3'000'000);
  for (const Utf from : kAll) {
    std::string text(vk_simd::utfLength(Utf::k8, from, bytesOf(utf8), countOf(utf8)), '\0');
    vk_simd::convertUtf(Utf::k8, from, bytesOf(utf8), countOf(utf8), reinterpret_cast<u8*>(text.data()), countOf(text));
    for (const Utf to : kAll)
      for (const auto& form : VARNIK_FORMS(utfLengthIfValid))
        ASSERT_EQ(form.run(from, to, bytesOf(text), countOf(text)),
                  vk_simd::utfLength(from, to, bytesOf(text), countOf(text)))
            << form.name;
  }
}

}  // namespace
