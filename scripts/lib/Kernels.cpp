// Random cases for the forms of each kernel, 10^8 or as many as find time: SECONDS. Status 1 when two forms differ.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <vector>

#include "tests/simd/Forms.h"
#include "varnik/simd/Ascii85.h"
#include "varnik/simd/AsciiRun.h"
#include "varnik/simd/Base32.h"
#include "varnik/simd/Base45.h"
#include "varnik/simd/Base64.h"
#include "varnik/simd/Bitwise.h"
#include "varnik/simd/CombiningMarks.h"
#include "varnik/simd/Compact.h"
#include "varnik/simd/FindBytes.h"
#include "varnik/simd/Hex.h"
#include "varnik/simd/LetterCase.h"
#include "varnik/simd/Lines.h"
#include "varnik/simd/ReplaceByte.h"
#include "varnik/simd/Reverse.h"
#include "varnik/simd/SwapBytes.h"
#include "varnik/simd/Utf.h"

namespace {

constexpr u32 kMost = 1024;

// A kernel on in[0, n), as an answer and the count of bytes at `out` that count.
struct Result {
  u64 answer;
  u32 written;
};
using Run = std::function<Result(const u8* in, u32 n, u8* out)>;
struct Kernel {
  const char* name;
  std::vector<Run> forms;  // the scalar one first
};

/// A row of the table: what `call` makes of each form of a kernel.
template <class Function, class Call>
Kernel row(const char* name, const std::vector<Form<Function>>& forms, Call call) {
  Kernel kernel{name, {}};
  for (const auto& form : forms)
    kernel.forms.push_back([=](const u8* in, u32 n, u8* out) { return call(*form.run, in, n, out); });
  return kernel;
}
/// The same for kernels that change data where it lies, in whole groups of `group` bytes.
template <class Function, class Call>
Kernel inPlace(const char* name, const std::vector<Form<Function>>& forms, u32 group, Call call) {
  return row(name, forms, [=](auto& run, const u8* in, u32 n, u8* out) {
    n = n / group * group;
    std::memcpy(out, in, n);
    return call(run, out, n);
  });
}

const char* chars(const u8* in) {
  return reinterpret_cast<const char*>(in);
}
char* chars(u8* out) {
  return reinterpret_cast<char*>(out);
}

void addCodecs(std::vector<Kernel>& all) {
  for (const bool flag : {false, true}) {  // lower-case digits, the alphabet for addresses
    all.push_back(row("hexEncode", VARNIK_FORMS(hexEncode), [=](auto& run, const u8* in, u32 n, u8* out) {
      return run(in, n, flag, chars(out)), Result{0, 2 * n};
    }));
    all.push_back(row("base64Encode", VARNIK_FORMS_512(base64Encode), [=](auto& run, const u8* in, u32 n, u8* out) {
      n = n / 3 * 3;
      return run(in, n, flag, chars(out)), Result{0, n / 3 * 4};
    }));
    all.push_back(row("base64Decode", VARNIK_FORMS_512(base64Decode), [=](auto& run, const u8* in, u32 n, u8* out) {
      const u32 read = run(chars(in), n, flag, out);
      return Result{read, read / 4 * 3};
    }));
  }
  all.push_back(row("hexDecode", VARNIK_FORMS_512(hexDecode), [](auto& run, const u8* in, u32 n, u8* out) {
    const u32 read = run(chars(in), n, out);
    return Result{read, read / 2};
  }));
  all.push_back(row("base32Encode", VARNIK_FORMS(base32Encode), [](auto& run, const u8* in, u32 n, u8* out) {
    return run(in, n, chars(out)), Result{0, (n + 4) / 5 * 8};
  }));
  all.push_back(row("base32Decode", VARNIK_FORMS(base32Decode), [](auto& run, const u8* in, u32 n, u8* out) {
    const u32 read = run(chars(in), n, out);
    return Result{read, read / 8 * 5};
  }));
  all.push_back(row("putBase45", VARNIK_FORMS(putBase45), [](auto& run, const u8* in, u32 n, u8* out) {
    return run(in, n / 2, out), Result{0, n / 2 * 3};
  }));
  all.push_back(row("readBase45", VARNIK_FORMS(readBase45), [](auto& run, const u8* in, u32 n, u8* out) {
    const u32 groups = run(in, n, out);
    return Result{groups, 2 * groups};
  }));
  all.push_back(row("putAscii85", VARNIK_FORMS(putAscii85), [](auto& run, const u8* in, u32 n, u8* out) {
    return Result{0, run(in, n / 4, out)};
  }));
  all.push_back(row("readAscii85", VARNIK_FORMS(readAscii85), [](auto& run, const u8* in, u32 n, u8* out) {
    const auto read = run(in, n, out);
    return Result{read.chars, 4 * read.words};
  }));
}

void addRewriters(std::vector<Kernel>& all) {
  const auto halves = [](auto& run, const u8* in, u32 n, u8* out) {
    return run(out, in, in + n / 2, n / 2), Result{0, n / 2};
  };
  all.push_back(row("xorBytes", VARNIK_FORMS(xorBytes), halves));
  all.push_back(row("andBytes", VARNIK_FORMS(andBytes), halves));
  all.push_back(row("reverseCopy", VARNIK_FORMS(reverseCopy), [](auto& run, const u8* in, u32 n, u8* out) {
    return run(out, in, n), Result{0, n};
  }));
  const auto whole = [](auto& run, u8* data, u32 n) { return run(data, n), Result{0, n}; };
  all.push_back(inPlace("reverseInPlace", VARNIK_FORMS(reverseInPlace), 1, whole));
  all.push_back(inPlace("swapPairs", VARNIK_FORMS(swapPairs), 2, whole));
  all.push_back(inPlace("swapFours", VARNIK_FORMS(swapFours), 4, whole));
  all.push_back(inPlace("replaceByte", VARNIK_FORMS(replaceByte), 1, [](auto& run, u8* data, u32 n) {
    return run(data, n, 'a', '\n'), Result{0, n};
  }));
  all.push_back(inPlace("composeMarks", VARNIK_FORMS_512(composeMarks), 1, [](auto& run, u8* data, u32 n) {
    return Result{0, run(data, n)};
  }));
  const auto units = [](auto& run, u8* data, u32 n) { return Result{run(data, n / 2), n}; };
  all.push_back(inPlace("upperBlocks", VARNIK_FORMS(upperBlocks), 2, units));
  all.push_back(inPlace("lowerBlocks", VARNIK_FORMS(lowerBlocks), 2, units));
  all.push_back(row("dropByte", VARNIK_FORMS_512(dropByte), [](auto& run, const u8* in, u32 n, u8* out) {
    return Result{0, run(out, in, n, 'a')};
  }));
  const auto kept = [](auto& run, const u8* in, u32 n, u8* out) { return Result{0, run(out, in, n)}; };
  all.push_back(row("keepAscii", VARNIK_FORMS_512(keepAscii), kept));
  all.push_back(row("keepEven", VARNIK_FORMS(keepEven), kept));
}

void addScans(std::vector<Kernel>& all) {
  const auto scan = [](auto& run, const u8* in, u32 n, u8*) { return Result{run(in, n), 0}; };
  all.push_back(row("asciiRun", VARNIK_FORMS(asciiRun), scan));
  all.push_back(row("hasBareLineEnd", VARNIK_FORMS(hasBareLineEnd), scan));
  all.push_back(row("oddBytesAreZero", VARNIK_FORMS(oddBytesAreZero), scan));
  all.push_back(row("behindLastLineEnd", VARNIK_FORMS(behindLastLineEnd), [](auto& run, const u8* in, u32 n, u8*) {
    return Result{run(in, n / 8, n), 0};
  }));
  all.push_back(row("mismatch", VARNIK_FORMS(mismatch), [](auto& run, const u8* in, u32 n, u8*) {
    return Result{run(in, in + n / 2, n / 2), 0};
  }));
  all.push_back(row("findBytes", VARNIK_FORMS(findBytes), [](auto& run, const u8* in, u32 n, u8*) {
    const u32 m = 1 + n % 5;  // the last bytes are there; where else they may be, the text says
    return Result{n < m ? 0 : run(in, n, in + n - m, m), 0};
  }));
}

void addConversions(std::vector<Kernel>& all) {
  using vk_simd::Utf;
  for (u32 from = 0; from < vk_simd::kUtfForms; ++from)
    for (u32 to = 0; to < vk_simd::kUtfForms; ++to) {
      const auto f = static_cast<Utf>(from), t = static_cast<Utf>(to);
      all.push_back(row("convertUtf", VARNIK_FORMS(convertUtf), [=](auto& run, const u8* in, u32 n, u8* out) {
        const auto done = run(f, t, in, n, out, n % 3 == 0 ? n : 4 * kMost);
        return Result{done.read * u64{2} + done.bad, done.written};
      }));
      const auto length = [=](auto& run, const u8* in, u32 n, u8*) { return Result{run(f, t, in, n), 0}; };
      all.push_back(row("utfLength", VARNIK_FORMS(utfLength), length));
      all.push_back(row("utfLengthIfValid", VARNIK_FORMS(utfLengthIfValid), length));
    }
}

// Texts from which the cases are cut: of few letters and of many, with marks, in UTF-16, and bytes of any value.
std::vector<std::vector<u8>> sources(std::mt19937_64& random) {
  constexpr const char* kPieces[] = {
      "a",        "Az09+/",       "QUJDREVGR0g=",     "\r\n", "0123456789abcdef", "e\xCC\x81",
      "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "\xC2", "!!u8W-z",          "GEZDGNBV"};
  std::vector<std::vector<u8>> all(6);
  for (u32 s = 0; s < all.size(); ++s)
    while (all[s].size() < (1u << 18)) {
      const u64 dice = random();
      const char* const piece = kPieces[dice % (s == 0 ? 2 : std::size(kPieces))];
      if (s == 5) {
        for (u32 i = 0; i < 8; ++i) all[s].push_back(static_cast<u8>(dice >> 8 * i));
      } else if (s == 4) {
        for (const u32 unit : {u32(dice >> 8) % 0x80, u32(dice >> 16) % 0x600, u32(dice >> 32) % 0x10000}) {
          all[s].push_back(static_cast<u8>(unit));
          all[s].push_back(static_cast<u8>(unit >> 8));
        }
      } else {
        for (u32 times = s == 3 ? 1 + dice / 64 % 40 : 1; times != 0; --times)
          for (const char* c = piece; *c; ++c) all[s].push_back(static_cast<u8>(*c));
      }
    }
  return all;
}

int kernels(u64 seconds) {
  constexpr u64 kAll = 100'000'000;
  std::vector<Kernel> all;
  addCodecs(all);
  addRewriters(all);
  addScans(all);
  addConversions(all);
  const u64 seed = std::random_device()();
  std::mt19937_64 random(seed);
  const auto texts = sources(random);
  std::vector<u8> want(8 * kMost), got(8 * kMost);
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  u64 cases = 0, wrong = 0;
  while (cases < kAll && wrong < 10 && std::chrono::steady_clock::now() < end)
    for (u32 i = 0; i < 1000; ++i, ++cases) {
      const u64 dice = random();
      const Kernel& kernel = all[cases % all.size()];
      const auto& text = texts[dice % texts.size()];
      const u32 n = static_cast<u32>(dice >> 8) % ((2u << (dice >> 40) % 10) + 1);
      const u8* const in = text.data() + (dice >> 20) % (text.size() - kMost);
      const u32 offset = static_cast<u32>(dice >> 50) % 64;
      const Result expected = kernel.forms[0](in, n, want.data());
      for (u32 form = 1; form < kernel.forms.size(); ++form) {
        const Result result = kernel.forms[form](in, n, got.data() + offset);
        if (result.answer == expected.answer && result.written == expected.written &&
            std::memcmp(got.data() + offset, want.data(), expected.written) == 0)
          continue;
        std::printf("%s: form %u differs at %u bytes; seed %llu, case %llu\n", kernel.name, form, n,
                    static_cast<unsigned long long>(seed), static_cast<unsigned long long>(cases));
        ++wrong;
      }
    }
  std::printf("kernels: %llu random cases of %zu, %llu wrong\n", static_cast<unsigned long long>(cases), all.size(),
              static_cast<unsigned long long>(wrong));
  return wrong != 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2) return kernels(std::strtoull(argv[1], nullptr, 10));
  return std::puts("which seconds?"), 2;
}
