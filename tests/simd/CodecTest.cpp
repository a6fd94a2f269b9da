// Every form of the codec kernels against a slow codec of a few lines, and against inputs that end at an unreadable
// page.
#include <gtest/gtest.h>

#include <functional>

#include "tests/simd/Forms.h"
#include "tests/support/Bytes.h"
#include "tests/support/GuardedBytes.h"
#include "varnik/simd/Base32.h"
#include "varnik/simd/Base64.h"
#include "varnik/simd/GatherText.h"
#include "varnik/simd/Hex.h"

namespace {

constexpr u32 kMost = 300;

constexpr std::string_view kHexUpper = "0123456789ABCDEF", kHexLower = "0123456789abcdef";
constexpr std::string_view kBase32 = "ABCDEFGHIJKLMNOPQRSTUVWXYZ234567";
constexpr std::string_view kBase64 = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::string_view kBase64Url = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

std::string stringAt(const void* p, std::size_t n) {
  return {static_cast<const char*>(p), n};
}
char* text(u8* p) {
  return reinterpret_cast<char*>(p);
}

// Bit by bit, then padded to whole groups.
std::string slowEncode(std::string_view bytes, std::string_view alphabet, u32 bits, u32 group) {
  std::string out;
  u32 value = 0, held = 0;
  const auto put = [&](bool bit) {
    value = value << 1 | u32{bit};
    if (++held < bits) return;
    out += alphabet[value];
    value = held = 0;
  };
  for (const char c : bytes)
    for (int b = 7; b >= 0; --b) put((static_cast<u8>(c) >> b & 1) != 0);
  while (held != 0) put(false);
  while (out.size() % group != 0) out += '=';
  return out;
}

struct Codec {
  const char* name;
  std::string_view alphabet, alsoDecoded;
  u32 bits, group;
  std::function<void(const u8*, u32, char*)> encode;
  std::function<u32(const char*, u32, u8*)> decode;
};

std::vector<Codec> codecs() {
  std::vector<Codec> all;
  for (const bool lower : {false, true})
    for (const auto& form : with512(VARNIK_FORMS(hexEncode), vk_simd::hexEncode))  // has no such form of its own
      all.push_back({form.name,
                     lower ? kHexLower : kHexUpper,
                     lower ? "ABCDEF" : "abcdef",
                     4,
                     2,
                     [=](const u8* in, u32 n, char* out) { form.run(in, n, lower, out); },
                     {}});
  for (const bool url : {false, true})
    for (const auto& form : VARNIK_FORMS_512(base64Encode))
      all.push_back({form.name,
                     url ? kBase64Url : kBase64,
                     url ? "+/" : "",
                     6,
                     4,
                     [=](const u8* in, u32 n, char* out) { form.run(in, n, url, out); },
                     {}});
  for (const auto& form : VARNIK_FORMS(base32Encode)) all.push_back({form.name, kBase32, "", 5, 8, form.run, {}});
  for (Codec& c : all) {  // the decoder of the same form
    const std::string_view name = c.name;
    const bool url = c.alphabet == kBase64Url;
    for (const auto& form : VARNIK_FORMS_512(hexDecode))
      if (c.bits == 4 && name == form.name) c.decode = form.run;
    for (const auto& form : VARNIK_FORMS(base32Decode))
      if (c.bits == 5 && name == form.name) c.decode = form.run;
    for (const auto& form : VARNIK_FORMS_512(base64Decode))
      if (c.bits == 6 && name == form.name)
        c.decode = [=](const char* in, u32 n, u8* out) { return form.run(in, n, url, out); };
  }
  return all;
}

std::string label(const Codec& c) {
  return std::string(c.name) + " of " + std::string(c.alphabet);
}

TEST(CodecKernels, EncodeEveryLength) {
  GuardedBytes in(kMost), out(3 * kMost);
  for (const Codec& c : codecs())
    for (u32 n = 0; n <= kMost; ++n) {
      const std::string bytes = randomBytes(n, n), want = slowEncode(bytes, c.alphabet, c.bits, c.group);
      c.encode(in.ending(bytes), n, text(out.ending(want.size())));
      ASSERT_EQ(stringAt(out.ending(want.size()), want.size()), want) << label(c) << ", " << n << " bytes";
    }
}

// Whole groups come back from any length of text; what is no whole group is left alone.
TEST(CodecKernels, DecodeEveryLength) {
  GuardedBytes in(kMost), out(kMost);
  for (const Codec& c : codecs())
    for (u32 n = 0; n <= kMost; ++n) {
      const u32 whole = n / c.group * c.group, count = whole * c.bits / 8;
      const std::string bytes = randomBytes(n, n + 7);
      const std::string encoded = slowEncode(bytes, c.alphabet, c.bits, c.group).substr(0, n);
      ASSERT_EQ(c.decode(text(in.ending(encoded)), n, out.ending(count)), whole) << label(c) << ", " << n;
      ASSERT_EQ(stringAt(out.ending(count), count), bytes.substr(0, count)) << label(c) << ", " << n;
    }
}

// Each byte value at each place of a text that fills all kinds of block: the group that holds a wrong one stops it.
TEST(CodecKernels, StopAtEveryCharacterOutsideTheAlphabet) {
  constexpr u32 kLength = 64 + 32 + 24;
  GuardedBytes in(kLength), out(kLength);
  for (const Codec& c : codecs()) {
    const std::string bytes = randomBytes(kLength, 3);
    const std::string encoded = slowEncode(bytes, c.alphabet, c.bits, c.group).substr(0, kLength);
    for (u32 at = 0; at < kLength; ++at)
      for (u32 value = 0; value < 256; ++value) {
        std::string bad = encoded;
        bad[at] = static_cast<char>(value);
        const std::string_view known = c.alphabet;
        const bool good = known.find(bad[at]) != known.npos || c.alsoDecoded.find(bad[at]) != known.npos;
        const u32 stop = good ? kLength : at / c.group * c.group, count = stop * c.bits / 8;
        ASSERT_EQ(c.decode(text(in.ending(bad)), kLength, out.ending(kLength * c.bits / 8)), stop)
            << label(c) << ", " << value << " at " << at;
        if (good) continue;
        ASSERT_EQ(stringAt(out.ending(kLength * c.bits / 8), count), bytes.substr(0, count)) << label(c) << ", " << at;
      }
  }
}

TEST(CodecKernels, PutColonsBetweenBytes) {
  GuardedBytes in(kMost), out(3 * kMost);
  for (const auto& form : VARNIK_FORMS(hexEncodeColons))
    for (u32 n = 1; n <= kMost; ++n) {
      const std::string bytes = randomBytes(n, n), digits = slowEncode(bytes, kHexLower, 4, 2);
      std::string want = digits.substr(0, 2);
      for (u32 i = 1; i < n; ++i) want.append(1, ':').append(digits, 2 * i, 2);
      form.run(in.ending(bytes), n, true, text(out.ending(want.size())));
      ASSERT_EQ(stringAt(out.ending(want.size()), want.size()), want) << form.name << ", " << n << " bytes";
    }
}

TEST(CodecKernels, BreakBase64IntoLines) {
  const vk_simd::LineEnd ends[] = {{{'\r', '\n'}, 2}, {{'&', '#', 'x', 'D', ';', '\n'}, 6}};
  GuardedBytes in(kMost), out(9 * kMost);
  for (const auto& form : VARNIK_FORMS_512(base64EncodeLines))
    for (const auto& end : ends)
      for (const u32 lineBytes : {3U, 24U, 27U, 57U, 72U, 600U})
        for (u32 n = 0; n <= kMost; ++n) {
          const std::string bytes = randomBytes(n, n);
          std::string want;
          for (u32 i = 0; i < n; i += lineBytes)
            want += slowEncode(bytes.substr(i, lineBytes), kBase64, 6, 4) + std::string(end.text, end.length);
          form.run(in.ending(bytes), n, lineBytes, end, text(out.ending(want.size())));
          ASSERT_EQ(stringAt(out.ending(want.size()), want.size()), want)
              << form.name << ", " << n << " by " << lineBytes;
        }
}

// Whole lines from the front, up to the first that has another end, another length or a foreign character.
TEST(CodecKernels, DecodeBase64Lines) {
  GuardedBytes in(5 * kMost), out(4 * kMost);
  for (const auto& form : VARNIK_FORMS_512(base64DecodeLines))
    for (const std::string_view end : {"\n", "\r\n"})
      for (const u32 lineChars : {4U, 32U, 36U, 60U, 64U, 76U, 100U})
        for (u32 lines = 1; lines < 4; ++lines) {
          const u32 lineLength = lineChars + countOf(end), lineBytes = lineChars / 4 * 3;
          const std::string bytes = randomBytes(lines * lineBytes, lineChars);
          std::string encoded;
          for (u32 i = 0; i < lines; ++i)
            encoded.append(slowEncode(bytes.substr(i * lineBytes, lineBytes), kBase64, 6, 4)).append(end);
          for (u32 at = 0; at <= encoded.size(); ++at)
            for (const char c : {'!', '=', '\t', '\xC1'}) {
              std::string given = encoded;
              const u32 good = at == encoded.size() ? lines : at / lineLength;
              if (at < given.size()) given[at] = c;
              u8* const to = out.ending(bytes.size());
              ASSERT_EQ(form.run(text(in.ending(given)), countOf(given), lineChars, end, to), good)
                  << form.name << ", lines of " << lineChars << ", " << at;
              ASSERT_EQ(stringAt(to, good * lineBytes), bytes.substr(0, good * lineBytes)) << form.name << ", " << at;
            }
        }
}

TEST(CodecKernels, GatherWhatIsNoWhiteSpace) {
  constexpr std::string_view kChars = "aB3 \t\n\v\f\r\x08\x0E\x1F!\x80\xA0\x89=&";
  std::mt19937 engine = generator(5);
  const auto next = [&] { return static_cast<u32>(engine()); };
  GuardedBytes in(kMost), out(2 * kMost);
  for (u32 round = 0; round < 20000; ++round) {
    const u32 n = next() % kMost, most = next() % kMost, blanks = next() % 40, kinds = next() % 9 == 0 ? 18 : 16;
    std::string given(n, 'x'), want;
    for (char& c : given)
      if (blanks == 0 || next() % blanks == 0) c = kChars[next() % kinds];
    u32 read = 0;
    for (; read < n && want.size() < most && given[read] != '=' && given[read] != '&'; ++read)
      if (given[read] != ' ' && (given[read] < '\t' || given[read] > '\r')) want += given[read];
    for (const auto& form : VARNIK_FORMS(gatherText)) {
      u8* const to = out.ending(most + vk_simd::kGatherSlack);
      u32 gathered = 0;
      const u32 took = form.run(text(in.ending(given)), n, text(to), most, gathered);
      ASSERT_EQ(stringAt(to, gathered), want) << form.name;
      ASSERT_EQ(took, read) << form.name;
    }
  }
}

}  // namespace
