// How do I append millions of single bytes without many reallocations?
//
// Growth is by steps, never by doubling, and the steps for single bytes are small. Say how much will come: then the
// block is allocated once.
#include <cstdio>

#include "varnik/Varnik.h"

static u32 movesWhileAppending(DataBuffer& b, u32 n) {
  u32 moves = 0;
  for (u32 i = 0; i < n; ++i) {
    moves += !b.canAppendWithoutRealloc(1);
    b.appendChar('x');
  }
  return moves;
}

int main() {
  DataBuffer plain, reserved;
  std::printf("plain: %u reallocations\n", movesWhileAppending(plain, 1'000'000));
  if (!reserved.ensureBuffer(1'000'000)) return 1;
  std::printf("reserved: %u reallocations\n", movesWhileAppending(reserved, 1'000'000));
  return 0;
}

// Prints:
//   plain: 103 reallocations
//   reserved: 0 reallocations
