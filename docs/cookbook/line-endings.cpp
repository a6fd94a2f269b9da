// How do I turn line endings into CR LF, and back?
//
// Two replacements, so that pairs that are there already do not become three characters.
#include <cstdio>

#include "varnik/Varnik.h"

static const u8* bytes(const char* text) {
  return reinterpret_cast<const u8*>(text);
}

int main() {
  DataBuffer text;
  text.appendStr("one\ntwo\r\nthree\n");
  std::printf("bare ones: %s\n", text.containsBareCRLF() ? "yes" : "no");

  text.replaceAllOccurances(bytes("\r\n"), 2, bytes("\n"), 1);
  const u32 lines = text.replaceAllOccurances(bytes("\n"), 1, bytes("\r\n"), 2);
  std::printf("%u lines, %u bytes, bare ones: %s\n", lines, text.size(), text.containsBareCRLF() ? "yes" : "no");

  text.removeByteValue('\r');
  std::printf("%u bytes\n", text.size());
  return 0;
}

// Prints:
//   bare ones: yes
//   3 lines, 17 bytes, bare ones: no
//   14 bytes
