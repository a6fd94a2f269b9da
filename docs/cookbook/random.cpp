// How do I make random bytes that nobody can guess?
//
// From the operating system's generator, which is fit for keys and safe across a fork. False is rare, and must not be
// overlooked.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer token;
  if (!token.appendRandomBytes(16)) return 1;
  StringBuffer text;
  if (!token.encodeDB("base64url", text)) return 1;
  std::printf("a token of %u characters\n", text.getSize());
  return 0;
}

// Prints:
//   a token of 22 characters
