// How do I print a block of bytes as lines of hex?
//
// `toHexLines` breaks after as many bytes as you say, with CR LF. For a dump with offsets and characters there is
// `vkbuf hexdump`.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer bytes;
  for (u32 i = 0; i < 20; ++i) bytes.appendChar(static_cast<u8>(i * 13));

  StringBuffer text;
  bytes.toHexLines(text, 8);
  text.removeCharOccurances('\r');
  std::printf("%s", text.getString());
  return 0;
}

// Prints:
//   000D1A2734414E5B
//   6875828F9CA9B6C3
//   D0DDEAF7
