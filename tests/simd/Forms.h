// The forms of a kernel that this processor can run, and what holds them against the scalar one.
#pragma once

#include "tests/support/Test.h"
#include "varnik/simd/Cpu.h"

template <class Function>
struct Form {
  const char* name;
  Function* run;
};

/// VARNIK_FORMS(name): the scalar form of a kernel, the AVX2 form where the processor has it, and the chooser.
#if VARNIK_HAVE_AVX2
#define VARNIK_FORMS(kernel) formsOf(vk_simd::kernel, vk_simd::kernel##Scalar, vk_simd::kernel##Avx2)
#else
#define VARNIK_FORMS(kernel) formsOf(vk_simd::kernel, vk_simd::kernel##Scalar, vk_simd::kernel##Scalar)
#endif

/// VARNIK_FORMS_512(name): these and the AVX-512 form.
#if VARNIK_HAVE_AVX512
#define VARNIK_FORMS_512(kernel) with512(VARNIK_FORMS(kernel), vk_simd::kernel##Avx512)
#else
#define VARNIK_FORMS_512(kernel) VARNIK_FORMS(kernel)
#endif

template <class Function>
std::vector<Form<Function>> with512(std::vector<Form<Function>> forms, Function& avx512) {
  if (vk_simd::hasAvx512()) forms.push_back({"avx512", &avx512});
  return forms;
}

template <class Function>
std::vector<Form<Function>> formsOf(Function& chosen, Function& scalar, Function& avx2) {
  std::vector<Form<Function>> forms = {{"scalar", &scalar}, {"chosen", &chosen}};
  if (vk_simd::hasAvx2()) forms.push_back({"avx2", &avx2});
  return forms;
}

/// What `write(out)`, which returns a count, writes to `out`: `room` bytes before an unreadable page, of which none is
/// as a form that ran before has left it.
template <class Write>
std::string into(std::size_t room, Write write) {
  static GuardedBytes area(1 << 16);
  u8* const out = area.ending(room);
  std::memset(out, 0xA5, room);
  const std::size_t count = write(out);
  EXPECT_LE(count, room);
  return stringAt(out, count);
}

/// The pieces that texts for a kernel are made of.
using Pieces = std::vector<std::string>;
inline Pieces eachOf(std::string_view chars) {
  Pieces pieces;
  for (const char c : chars) pieces.emplace_back(1, c);
  return pieces;
}
inline Pieces anyBytes() {
  std::string all;
  for (int c = 0; c < 256; ++c) all += static_cast<char>(c);
  return eachOf(all);
}

/// Holds each form against the scalar one by what `answer(run, data, n)` makes of it: texts of every length to 1,024 at
/// the end of a page, at the start of one and at another offset, those of up to 130 (all, when it soaks) at each offset
/// of 64; the bytes before and behind a text cannot be read.
template <class Function, class Answer>
void holdTwins(const std::vector<Form<Function>>& forms, const std::vector<Pieces>& contents, Answer answer) {
  constexpr u32 kMost = 1024;
  static GuardedBytes area(kMost + 64), front(kMost + 64);
  for (const Pieces& pieces : contents) {
    Random random(static_cast<u32>(pieces.size()));
    std::string text;
    std::vector<std::size_t> starts;  // a text begins where a piece does
    for (; text.size() < 4 * kMost; text += pieces[random.below(static_cast<u32>(pieces.size()))])
      if (text.size() < 2 * kMost) starts.push_back(text.size());
    for (u32 n = 0; n <= kMost; ++n) {
      const std::string given = text.substr(starts[n % starts.size()], n);
      const std::string want = answer(forms[0].run, area.ending(given), n);
      const bool everywhere = (n <= 130 || soaks()) && &pieces == &contents[0];
      for (const auto& form : forms) {
        ASSERT_EQ(answer(form.run, area.ending(given), n), want) << form.name << ", " << n << " bytes at the end";
        for (u32 offset = everywhere ? 0 : n % 64; offset < 64; offset += everywhere ? 1 : 64)
          ASSERT_EQ(answer(form.run, front.starting(std::string(offset, '\xA5') + given) + offset, n), want)
              << form.name << ", " << n << " bytes at " << offset;
        ASSERT_EQ(answer(form.run, front.starting(given), n), want) << form.name << ", " << n << " bytes at the start";
      }
    }
  }
}

/// The same for a text so long that it fills blocks of every kind, with each place spoilt by many bytes and each byte
/// at many places: every seventh, which hits every place of a group, as no group has seven characters.
template <class Function, class Answer>
void holdSpoilt(const std::vector<Form<Function>>& forms, const std::string& piece, Answer answer) {
  constexpr u32 kLength = 128 + 64 + 32 + 24;
  static GuardedBytes area(kLength);
  const std::string good = repeated(piece, kLength).substr(0, kLength);
  for (u32 at = 0; at < kLength; ++at)
    for (u32 value = at % 7; value < 256; value += 7) {
      std::string given = good;
      given[at] = static_cast<char>(value);
      const std::string want = answer(forms[0].run, area.ending(given), kLength);
      for (std::size_t i = 1; i < forms.size(); ++i)
        ASSERT_EQ(answer(forms[i].run, area.ending(given), kLength), want)
            << forms[i].name << ", " << value << " at " << at;
    }
}
