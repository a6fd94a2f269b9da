#include <array>

#include "varnik/simd/Utf.h"
#include "varnik/simd/internal/UtfForms.h"

namespace vk_simd {
namespace {

template <class From, class To>
struct Pair {
  static UtfProgress convert(const u8* data, u32 n, u8* out, u32 room) {
    UtfCursor c{data, n, out, room};
    convertTo<From, To>(c, n);
    return c.progress();
  }

  static u64 length(const u8* data, u32 n) {
    u64 sum = 0;
    for (u32 i = 0; i < n;) {
      u32 code;
      i += From::decode(data + i, n - i, code);
      sum += To::size(code == kBadPart ? kReplacement : code);
    }
    return sum;
  }
};

// 0, 1, 2 for units of 1, 2, 4 bytes.
u32 widthClass(Utf form) {
  return form == Utf::k8 ? 0 : form <= Utf::k16Be ? 1 : 2;
}

struct UtfCounts {
  u64 characters = 0, supplementary = 0, utf8 = 0;  // utf8: bytes in that form
};

UtfCounts countUtf8(const u8* p, u32 n) {
  UtfCounts counts{0, 0, n};
  for (u32 i = 0; i < n; ++i) {
    counts.characters += (p[i] & 0xC0) != 0x80;
    counts.supplementary += p[i] >= 0xF0;
  }
  return counts;
}

template <class Form>
UtfCounts countUtf16(const u8* p, u32 n) {
  u64 surrogates = 0, bytes = 0;
  for (u32 i = 0; n - i >= 2; i += 2) {
    const u32 unit = Form::unit(p + i);
    surrogates += isSurrogate(unit);
    bytes += 1u + (unit >= 0x80) + (unit >= 0x800) - isSurrogate(unit);
  }
  return {n / 2 - surrogates / 2, surrogates / 2, bytes};
}

template <class Form>
UtfCounts countUtf32(const u8* p, u32 n) {
  UtfCounts counts{n / 4, 0, 0};
  for (u32 i = 0; n - i >= 4; i += 4) {
    const u32 value = Form::value(p + i);
    counts.supplementary += value >= 0x10000;
    counts.utf8 += 1u + (value >= 0x80) + (value >= 0x800) + (value >= 0x10000);
  }
  return counts;
}

UtfCounts countsOf(Utf from, const u8* data, u32 n) {
  switch (from) {
    case Utf::k8:
      return countUtf8(data, n);
    case Utf::k16Le:
      return countUtf16<Utf16Le>(data, n);
    case Utf::k16Be:
      return countUtf16<Utf16Be>(data, n);
    case Utf::k32Le:
      return countUtf32<Utf32Le>(data, n);
    default:
      return countUtf32<Utf32Be>(data, n);
  }
}

struct Functions {
  UtfProgress (*convert)(const u8*, u32, u8*, u32);
  u64 (*length)(const u8*, u32);
};

template <class From, class To>
constexpr Functions functionsOf() {
  return {Pair<From, To>::convert, Pair<From, To>::length};
}
template <class From>
constexpr std::array<Functions, kUtfForms> rowOf() {
  return {functionsOf<From, Utf8>(), functionsOf<From, Utf16Le>(), functionsOf<From, Utf16Be>(),
          functionsOf<From, Utf32Le>(), functionsOf<From, Utf32Be>()};
}
constexpr std::array<std::array<Functions, kUtfForms>, kUtfForms> kFunctions = {
    rowOf<Utf8>(), rowOf<Utf16Le>(), rowOf<Utf16Be>(), rowOf<Utf32Le>(), rowOf<Utf32Be>()};

const Functions& functions(Utf from, Utf to) {
  return kFunctions[static_cast<u8>(from)][static_cast<u8>(to)];
}

}  // namespace

UtfProgress convertUtfScalar(Utf from, Utf to, const u8* data, u32 n, u8* out, u32 room) {
  return functions(from, to).convert(data, n, out, room);
}

u64 utfLengthScalar(Utf from, Utf to, const u8* data, u32 n) {
  return functions(from, to).length(data, n);
}

u64 utfLengthBound(Utf from, Utf to, u32 n) {
  // What the unit of each form becomes at most; a bad part becomes no more, and is never empty.
  static constexpr u8 kMost[3][3] = {{3, 2, 4}, {3, 2, 4}, {4, 4, 4}};
  const u32 f = widthClass(from);
  return ((u64{n} + (1u << f) - 1) >> f) * kMost[f][widthClass(to)];
}

u64 utfLengthIfValidScalar(Utf from, Utf to, const u8* data, u32 n) {
  if (from == Utf::k8 && to == Utf::k8) return n;
  const UtfCounts counts = countsOf(from, data, n);
  switch (widthClass(to)) {
    case 0:
      return counts.utf8;
    case 1:
      return 2 * (counts.characters + counts.supplementary);
    default:
      return 4 * counts.characters;
  }
}

}  // namespace vk_simd
