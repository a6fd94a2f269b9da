// How do I put bytes into a QR code?
//
// base45 (RFC 9285) uses only characters of the code's alphanumeric mode, which takes 5.5 bits a character: three
// characters carry two bytes.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer bytes;
  bytes.appendStr("ietf!");
  StringBuffer text;
  if (!bytes.encodeDB("base45", text)) return 1;
  std::printf("%s\n", text.getString());
  return 0;
}

// Prints:
//   QED8WEX0
