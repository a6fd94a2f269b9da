// How do I read hex that people typed?
//
// `hex` takes digits of both cases and skips white space; `fingerprint` also takes colons. Anything else is a fault: a
// leading `0x` goes first.
#include <cstdio>

#include "varnik/Varnik.h"

static bool readHex(const char* text, DataBuffer& bytes) {
  if (text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) text += 2;
  return bytes.appendEncoded(text, "fingerprint");
}

int main() {
  for (const char* text : {"DEADbeef", "0xdeadbeef", "de:ad:be:ef", "de ad\nbe ef", "dead bee", "dead-beef"}) {
    DataBuffer bytes;
    const bool ok = readHex(text, bytes);
    std::printf("%s %u\n", ok ? "read" : "refused after", bytes.size());
  }
  return 0;
}

// Prints:
//   read 4
//   read 4
//   read 4
//   read 4
//   refused after 3
//   refused after 2
