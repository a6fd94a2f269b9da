// Single-byte charsets to and from UTF-8: each form of a kernel against the scalar one, in every room. The tests of the
// converter hold the scalar one against other programs.

#include "tests/simd/Forms.h"
#include "varnik/simd/SingleByte.h"

namespace {

using vk_simd::SingleByteCharset;

// A charset whose bytes from `from` on are the units `first`, `first` + 1, ...; below it is Latin-1, but bytes in
// `none` stand for nothing.
struct Charset {
  Charset(u32 from, u32 first, u32 latinFrom, bool ascii, std::string_view none) {
    for (u32 i = 0; i < 256; ++i) {
      const u32 unit = i < from ? i : first + i - from;
      const bool isNone = none.find(static_cast<char>(i)) != std::string_view::npos;
      const u32 shown = isNone ? 0xFFFD : unit;
      utf8[i] = shown < 0x80 ? shown | 1u << 24
                : shown < 0x800
                    ? (0xC0 | shown >> 6) | (0x80 | (shown & 63)) << 8 | 2u << 24
                    : (0xE0 | shown >> 12) | (0x80 | (shown >> 6 & 63)) << 8 | (0x80 | (shown & 63)) << 16 | 3u << 24;
      if (isNone) {
        utf8[i] |= vk_simd::kNoCharacter;
        continue;
      }
      if (blockOf[unit >> 6] == 0) blockOf[unit >> 6] = ++used;
      blocks[blockOf[unit >> 6]][unit & 63] = static_cast<u8>(i);
    }
    charset = {utf8, blockOf, blocks, '?', ascii, latinFrom};
  }
  Charset(const Charset&) = delete;
  Charset& operator=(const Charset&) = delete;

  vk_simd::Utf8Entry utf8[256];
  u8 blockOf[1024] = {}, blocks[8][64] = {}, used = 0;
  SingleByteCharset charset;
};

template <class Convert>
std::string run(Convert* convert, const SingleByteCharset& charset, std::string_view text, u32 room) {
  static GuardedBytes in(4096), out(1 << 14);
  u8* const to = out.ending(room);
  const auto done = convert(charset, in.ending(text), countOf(text), to, room);
  return std::string(reinterpret_cast<char*>(to), done.written)
      .append(done.bad ? "|bad " : "|good ")
      .append(std::to_string(done.read));
}

TEST(SingleByte, FormsAgree) {
  Charset latin(256, 0, 0x80, true, ""), upper(256, 0, 0xA0, true, "\x81\x9D"),
      cyrillic(0xC0, 0x410, 0x100, true, "\xA5");
  Charset wide(0x80, 0x2500, 0x100, true, ""), turned(0x40, 0x41, 0x100, false, "\xFF");
  u32 seed = 0;
  for (const SingleByteCharset* charset :
       {&latin.charset, &upper.charset, &cyrillic.charset, &wide.charset, &turned.charset})
    for (u32 round = 0; round < 800; ++round) {
      // Every length as ASCII alone, mostly ASCII, mostly not, and any bytes.
      std::string text = randomBytes(round % 200, ++seed);
      for (char& c : text) {
        if (round < 200 || (round < 400 && c % 16 != 0)) c = static_cast<char>(c & 0x7F);
        if (round >= 600 && static_cast<u8>(c) < 0xA0 && c % 32 != 0) c = static_cast<char>(c | 0xE0);
      }
      const std::string all = run(vk_simd::singleByteToUtf8Scalar, *charset, text, 1 << 12);
      const u32 exact = countOf(all.substr(0, all.rfind('|')));
      for (const auto& form : VARNIK_FORMS(singleByteUtf8Length))
        ASSERT_EQ(form.run(*charset, bytesOf(text), countOf(text)), exact) << form.name;
      for (const u32 room : {1u << 12, exact, exact - std::min(exact, 1u), exact / 2, 31u, 0u})
        for (const auto& form : VARNIK_FORMS(singleByteToUtf8))
          ASSERT_EQ(run(form.run, *charset, text, room), run(vk_simd::singleByteToUtf8Scalar, *charset, text, room))
              << form.name;

      std::string utf8 = all.substr(0, exact);
      if (round % 4 == 1) {  // characters that the charset may have none of
        utf8 = run(vk_simd::singleByteToUtf8Scalar, latin.charset, text, 1 << 12);
        utf8.resize(utf8.rfind('|'));
      }
      if (round % 3 == 0 && utf8.size() > 9) utf8.replace(utf8.size() / 2, 1, round % 2 ? "\U0001F600" : "\xE2\x82");
      if (round % 5 == 0) utf8.resize(utf8.size() - std::min<std::size_t>(utf8.size(), 1));
      for (const u32 room : {1u << 12, countOf(text), countOf(text) / 2, 31u, 0u})
        for (const auto& form : VARNIK_FORMS(utf8ToSingleByte))
          ASSERT_EQ(run(form.run, *charset, utf8, room), run(vk_simd::utf8ToSingleByteScalar, *charset, utf8, room))
              << form.name;
    }
}

}  // namespace
