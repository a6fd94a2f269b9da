// How do I find every place where some bytes occur?
//
// `findBytesIdx` goes on from an index and says whether it found something. Step by one to see overlapping places, by
// the pattern's length to skip them.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer text;
  text.appendStr("banana, ananas");
  const u8 pattern[] = {'a', 'n', 'a'};

  bool found = false;
  u32 at = text.findBytesIdx(pattern, 3, found, 0);
  while (found) {
    std::printf("at %u\n", at);
    at = text.findBytesIdx(pattern, 3, found, at + 1);
  }
  return 0;
}

// Prints:
//   at 1
//   at 3
//   at 8
//   at 10
