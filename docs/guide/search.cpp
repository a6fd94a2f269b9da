// The code of the page search.md.
#include <cstdio>

#include "varnik/Varnik.h"

static void find() {
  DataBuffer b;
  b.appendStr("key=value; key=other");
  const u8 pattern[] = {'k', 'e', 'y', '='};
  const u8* first = b.findBytes(pattern, 4);
  bool found = false;
  const u32 second = b.findBytesIdx(pattern, 4, found, 1);
  std::printf("at %td, then %s at %u\n", first - b.getData2(), found ? "again" : "nothing", second);

  u32 index = 0;
  const bool inside = b.containsSubstring2("value", 0, 9, index);
  std::printf("%d %u %d %d\n", inside, index, b.containsSubstring("value", 8), b.endsWithStr("other"));
}

static void replace() {
  DataBuffer b;
  b.appendStr("aaaa");
  const u8 find[] = {'a', 'a'}, with[] = {'a'};
  const u32 n = b.replaceAllOccurances(find, 2, with, 1);
  std::printf("%u replaced, %u bytes left\n", n, b.size());
}

static void replaceUtf16() {
  DataBuffer b;
  XString text, what, by;
  if (!text.setFromUtf8("\xC3\x84rger, \xC3\xA4rgern")) return;
  if (!what.setFromUtf8("\xC3\xA4rger") || !by.setFromUtf8("Freude")) return;
  if (!text.getUtf16_le(false, b)) return;
  const u32 n = b.replaceAllOccurancesUtf16NoCase(what, by);
  StringBuffer utf8;
  b.cvUnicodeToUtf8(utf8);
  std::printf("%u: %s\n", n, utf8.getString());
}

int main() {
  find();
  replace();
  replaceUtf16();
  return 0;
}

// Prints:
//   at 0, then again at 11
//   1 4 0 1
//   2 replaced, 2 bytes left
//   2: Freude, Freuden
