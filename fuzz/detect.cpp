// What a content is taken for: code page, 7 bits, UTF-8 after all, a cut character at the end; against slow models.
#include <algorithm>

#include "fuzz/Fuzz.h"

namespace {

s32 obvious(std::string_view s) {
  using namespace std::string_view_literals;
  if (s.empty()) return -1;
  if (s.starts_with("\xFF\xFE\0\0"sv)) return 12000;
  if (s.starts_with("\xFF\xFE")) return 1200;
  if (s.starts_with("\xFE\xFF")) return 1201;
  if (s.starts_with("\xEF\xBB\xBF")) return 65001;
  if (s.starts_with("\0\0\xFE\xFF"sv)) return 12001;
  std::size_t zeros[2] = {0, 0};
  for (std::size_t i = 0; i < s.size(); ++i) zeros[i % 2] += s[i] == 0;
  const std::size_t least = std::min<std::size_t>(s.size() >= 8 ? s.size() / 8 : 1, 33);
  return zeros[1] >= least ? 1200 : zeros[0] >= least ? 1201 : -1;
}

u32 partial(std::string_view s) {
  for (u32 k = 1; k <= std::min<std::size_t>(s.size(), 4); ++k) {
    const u8 b = static_cast<u8>(s[s.size() - k]);
    if (b >= 0x80 && b < 0xC0) continue;
    const u32 length = b < 0x80 ? 1 : b < 0xE0 ? 2 : b < 0xF0 ? 3 : b < 0xF8 ? 4 : 0;
    return k < length ? k : 0;
  }
  return 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t n) {
  constexpr s32 kPages[] = {1252, 65001, 932, 1200, 50220, 7};
  Choices in(data, n);
  const s32 page = kPages[in.byte() % 6];
  const u32 most = in.byte();
  const std::string given(in.rest());
  DataBuffer b;
  std::string lent = given;
  if (!given.empty()) b.borrowData(lent.data(), countOf(lent));
  CHECK(b.detectObviousCodePage() == obvious(given));
  const std::string_view head = std::string_view(given).substr(0, most ? most : given.size());
  CHECK(b.is7bit(most) == std::all_of(head.begin(), head.end(), [](char c) { return static_cast<u8>(c) < 0x80; }));
  CHECK(b.numPartialTrailingUtf8Bytes() == partial(given));
  bool hasPair = false;
  for (std::size_t i = 1; i < given.size(); ++i)
    hasPair |= (given[i - 1] == '\xC2' || given[i - 1] == '\xC3') && static_cast<u8>(given[i]) >= 0x80;
  LogNull log;
  DataBuffer out;
  const bool converts = _vkEncodingConvert().EncConvert(page, 65001, bytesOf(given), countOf(given), out, log);
  CHECK(b.isReallyUtf8(page) == (hasPair && !converts) && viewOf(b) == given);
  return 0;
}
