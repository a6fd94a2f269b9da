// Codecs called by strings.
#pragma once

#include <gtest/gtest.h>

#include "tests/support/Allocations.h"
#include "tests/support/Bytes.h"
#include "tests/support/GuardedBytes.h"
#include "varnik/services/codecs/internal/DecodeResult.h"

/// What an encoder `encode(data, n, out)` appends; "failed" when it answers false.
template <class Encode>
std::string encoded(std::string_view bytes, Encode encode) {
  StringBuffer out;
  return encode(bytesOf(bytes), countOf(bytes), out) ? textOf(out) : "failed";
}

/// What a decoder made of a text that ends at an unreadable page.
struct Decoded {
  std::string bytes;
  bool ok;
  u32 badAt;

  bool operator==(const Decoded&) const = default;
};
inline std::ostream& operator<<(std::ostream& to, const Decoded& d) {
  return to << (d.ok ? "ok, " : "false, ") << "bad at " << static_cast<s32>(d.badAt) << ": "
            << testing::PrintToString(d.bytes);
}

template <class Decode>
Decoded decoded(std::string_view text, Decode decode) {
  GuardedBytes guarded(text.size());
  DataBuffer out;
  const DecodeResult result = decode(reinterpret_cast<const char*>(guarded.ending(text)), countOf(text), out);
  return {textOf(out), result.ok, result.badAt};
}

inline Decoded good(std::string bytes) {
  return {std::move(bytes), true, kNoFault};
}

/// Bytes as a codec meets them: random ones, text with line ends and blanks, UTF-8, runs of zeros.
inline std::string sampleBytes(std::size_t n, u32 seed) {
  static constexpr const char* kPieces[] = {"word", " ",        "\t",       "\r\n", "\r",  "\n",
                                            "=",    "%41",      "\xC3\xA9", ".",    "\\u", "\xF0\x9F\x98\x80",
                                            "\x7F", "\xFF\xFE", "_?=",      "\"/"};
  const std::string random = randomBytes(n, seed);
  if (seed % 4 == 0) return random;
  if (seed % 4 == 1) return std::string(n / 2, '\0') + random.substr(n / 2);
  std::string text;
  for (std::size_t i = 0; text.size() < n; ++i) text += kPieces[static_cast<u8>(random[i]) % (seed % 4 == 2 ? 16 : 6)];
  return text.substr(0, n);
}

/// Refuses each allocation of `call(out)` in turn. It has to be true with all appended, or false with a beginning of
/// it.
template <class Out, class Call>
void refuseEach(Call call) {
  Out all;
  ASSERT_TRUE(call(all));
  const u32 refusals = faults::failEachAllocation([&](u32 k, bool forGood) {
    Out out;
    bool ok = false, struck = false;
    {
      const faults::FailAllocation refuse(k, forGood);
      ok = call(out);
      struck = refuse.struck();
    }
    const std::string got = textOf(out), want = textOf(all);
    EXPECT_TRUE(ok ? got == want : struck && want.starts_with(got)) << "allocation " << k << ", " << got.size();
    return struck;
  });
  EXPECT_GT(refusals, 0u);
}

/// A call for `refuseEach` that decodes a text.
template <class Decode>
auto decoderOf(std::string text, Decode decode) {
  return [=](DataBuffer& out) { return decode(text.data(), countOf(text), out).ok; };
}
