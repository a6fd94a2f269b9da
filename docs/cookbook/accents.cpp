// Why do two texts that look the same differ, and what can I do?
//
// One has a letter with its accent, the other a letter and then an accent: files from another system are often named
// so. `consumeUtf8CombiningMarks` composes the letters of Western Europe.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer composed, decomposed;
  composed.appendStr("Se\xC3\xB1or Bj\xC3\xB6rn");
  decomposed.appendStr("Sen\xCC\x83or Bjo\xCC\x88rn");
  std::printf("%u and %u bytes, %s\n", composed.size(), decomposed.size(),
              composed.equals(decomposed) ? "equal" : "not equal");

  decomposed.consumeUtf8CombiningMarks();
  std::printf("%u and %u bytes, %s\n", composed.size(), decomposed.size(),
              composed.equals(decomposed) ? "equal" : "not equal");
  return 0;
}

// Prints:
//   13 and 15 bytes, not equal
//   13 and 13 bytes, equal
