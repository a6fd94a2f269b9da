// How do I make UTF-16 of my text, for a file or for an interface that wants it?
//
// An `XString` keeps UTF-8 and hands out UTF-16: as bytes in little-endian order, with a byte-order mark on demand, or
// as units in the processor's order.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  XString text;
  if (!text.setFromUtf8("\xC3\xA9 \xF0\x9F\x98\x80")) return 1;

  DataBuffer bytes;
  StringBuffer hex;
  if (!text.getUtf16_le(true, bytes)) return 1;
  bytes.toHexString(hex);
  std::printf("%u units: %s\n", text.getNumChars(), hex.getString());

  StringBuffer back;
  bytes.cvUnicodeToUtf8(back);
  std::printf("%s\n", back.getString());
  return 0;
}

// Prints:
//   4 units: FFFEE90020003DD800DE
//   é 😀
