// What happens when a buffer would pass its limit of 4 GiB, or memory runs out?
//
// Nothing is thrown, and nothing wraps around: the operation answers false, and the buffer is as it was.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer bytes;
  bytes.appendStr("kept");
  const bool grown = bytes.appendCharN('x', 0xFFFFFFFF);
  std::printf("%s: %u bytes, first %c\n", grown ? "grown" : "refused", bytes.size(), bytes.firstByte());
  return 0;
}

// Prints:
//   refused: 4 bytes, first k
