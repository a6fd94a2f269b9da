// Searches and replacements against the standard library's, and the search without case against ICU's folding.
#include <unicode/uchar.h>

#include "fuzz/Fuzz.h"

namespace {

u32 replaceAll(std::string& s, const std::string& find, const std::string& with) {
  u32 count = 0;
  for (std::size_t at = 0; (at = s.find(find, at)) != s.npos; at += with.size(), ++count)
    s.replace(at, find.size(), with);
  return count;
}

void checkSearch(const DataBuffer& b, std::string_view all, const std::string& pattern, u32 start, u32 most) {
  const auto m = static_cast<s32>(pattern.size());
  const std::size_t first = all.find(pattern), next = start <= all.size() ? all.find(pattern, start) : all.npos;
  const u8* const found = b.findBytes(bytesOf(pattern), m);
  CHECK(first == all.npos ? !found : found == b.getData2() + first);
  bool isFound = true;
  const u32 index = b.findBytesIdx(bytesOf(pattern), m, isFound, start);
  CHECK(isFound == (next != all.npos) && index == (isFound ? next : 0));
  CHECK(b.beginsWith(bytesOf(pattern), m) == (all.substr(0, pattern.size()) == pattern));
  const std::string text = pattern.c_str();
  CHECK(b.endsWithStr(text.c_str()) == all.ends_with(text));
  const std::string_view window = start < all.size() ? all.substr(start, most ? most : all.npos) : std::string_view();
  u32 at = 0;
  const bool contains = b.containsSubstring2(text.c_str(), start, most, at);
  CHECK(contains == (start < all.size() && window.find(text) != window.npos));
  if (contains) CHECK(at == start + window.find(text));
}

void checkWithoutCase(std::u16string_view all, std::u16string_view pattern) {
  const auto fold = [](char16_t c) { return u_foldCase(c, U_FOLD_CASE_DEFAULT); };
  const auto units = [](std::u16string_view s) { return reinterpret_cast<const u16*>(s.data()); };
  const u16* const found =
      vk_findUtf16NoCase(units(all), static_cast<u32>(all.size()), units(pattern), static_cast<u32>(pattern.size()));
  std::size_t expected = all.npos;
  for (std::size_t i = 0; expected == all.npos && i + pattern.size() <= all.size(); ++i) {
    std::size_t k = 0;
    while (k < pattern.size() && fold(all[i + k]) == fold(pattern[k])) ++k;
    if (k == pattern.size()) expected = i;
  }
  CHECK(expected == all.npos ? !found : found == units(all) + expected);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t n) {
  Choices in(data, n);
  const u32 start = in.byte(), most = in.byte(), m = in.byte() % 12, w = in.byte() % 12;
  const std::string find(in.bytes(m)), with(in.bytes(w));
  std::string all(in.rest());
  DataBuffer b;
  b.append(all.data(), countOf(all));
  if (all.empty()) return 0;
  checkSearch(b, all, find, start, most);
  const auto wide = [](std::string_view s) {
    std::u16string units(s.size() / 2, u'\0');
    __builtin_memcpy(units.data(), s.data(), units.size() * 2);
    return units;
  };
  checkWithoutCase(wide(all), wide(find));
  const u32 count = find.empty() ? 0 : replaceAll(all, find, with);
  CHECK(b.replaceAllOccurances(bytesOf(find), m, bytesOf(with), countOf(with)) == count && viewOf(b) == all);
  return 0;
}
