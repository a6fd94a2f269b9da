// Runs the codecs on bytes that valgrind holds to be undefined, which makes it report each branch and each address that
// depends on them. Last it does both on purpose: that has to be reported.
#include <valgrind/memcheck.h>

#include <cstdio>
#include <cstring>
#include <random>
#include <vector>

#include "varnik/simd/Base32.h"
#include "varnik/simd/Base64.h"
#include "varnik/simd/Hex.h"

namespace {

using namespace vk_simd;
constexpr u32 kMost = 300;

struct Codec {
  const char* name;
  u32 bits, group;
  void (*encode)(const u8* in, u32 n, char* out);
  u32 (*decode)(const char* in, u32 n, u8* out);
};

template <auto encode, auto decode, bool option>
constexpr Codec withOption(const char* name, u32 bits, u32 group) {
  if constexpr (std::is_invocable_v<decltype(decode), const char*, u32, u8*>)
    return {name, bits, group, [](const u8* in, u32 n, char* out) { encode(in, n, option, out); }, decode};
  else
    return {name, bits, group, [](const u8* in, u32 n, char* out) { encode(in, n, option, out); },
            [](const char* in, u32 n, u8* out) { return decode(in, n, option, out); }};
}

const Codec kCodecs[] = {
    withOption<hexEncodeScalar, hexDecodeScalar, true>("hex, lower case, scalar", 4, 2),
    withOption<hexEncodeScalar, hexDecodeScalar, false>("hex, upper case, scalar", 4, 2),
    withOption<hexEncode, hexDecode, true>("hex, lower case", 4, 2),
    withOption<hexEncode, hexDecode, false>("hex, upper case", 4, 2),
    {"base32, scalar", 5, 8, base32EncodeScalar, base32DecodeScalar},
    {"base32", 5, 8, base32Encode, base32Decode},
    withOption<base64EncodeScalar, base64DecodeScalar, false>("base64, scalar", 6, 4),
    withOption<base64Encode, base64Decode, false>("base64", 6, 4),
    withOption<base64EncodeScalar, base64DecodeScalar, true>("base64url, scalar", 6, 4),
    withOption<base64Encode, base64Decode, true>("base64url", 6, 4),
};

// Whole groups come back; what an encoder pads is not poisoned, and the decoders are not given it.
bool comesBack(const Codec& c, u32 n) {
  static std::mt19937 next(7);
  std::vector<u8> bytes(n), back(n + 8);
  for (u8& b : bytes) b = static_cast<u8>(next());
  std::vector<u8> poisoned = bytes;
  std::vector<char> text(3 * n + 16);
  (void)VALGRIND_MAKE_MEM_UNDEFINED(poisoned.data(), n);
  c.encode(poisoned.data(), n, text.data());
  const u32 groupBytes = c.group * c.bits / 8, whole = n / groupBytes * groupBytes;
  (void)VALGRIND_MAKE_MEM_UNDEFINED(text.data(), whole / groupBytes * c.group);
  const u32 read = c.decode(text.data(), whole / groupBytes * c.group, back.data());
  (void)VALGRIND_MAKE_MEM_DEFINED(back.data(), n);
  return read == whole / groupBytes * c.group && std::memcmp(back.data(), bytes.data(), whole) == 0;
}

u8 table[256] = {1, 2, 3};
volatile u8 kept;

__attribute__((noinline)) void lookUp(const u8* secret) {
  kept = table[*secret];
}
__attribute__((noinline)) void branch(const u8* secret) {
  if (*secret > 7) std::puts("");
}

// Whether what `leak` does with a secret is reported.
bool isFound(void (*leak)(const u8*)) {
  const auto before = VALGRIND_COUNT_ERRORS;
  u8 secret = 5;
  (void)VALGRIND_MAKE_MEM_UNDEFINED(&secret, 1);
  leak(&secret);
  return VALGRIND_COUNT_ERRORS != before;
}

}  // namespace

int main() {
  if (!RUNNING_ON_VALGRIND) return 3;
  int status = 0;
  for (const Codec& c : kCodecs) {
    const auto before = VALGRIND_COUNT_ERRORS;
    bool same = true;
    for (u32 n = 0; n <= kMost; ++n) same = comesBack(c, n) && same;
    const auto found = VALGRIND_COUNT_ERRORS - before;
    std::printf("  %-24s %s\n", c.name, !same ? "does not come back" : found ? "depends on the data" : "constant time");
    if (!same || found) status = 1;
  }
  if (isFound(lookUp) && isFound(branch)) return status;
  std::puts("  a table lookup or a branch was not found: the method does not work here");
  return 2;
}
