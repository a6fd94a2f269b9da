// How do I combine two blocks by XOR, and clear bits by a mask?
//
// Both blocks must be of one size. The result may be one of them.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer a, b, result;
  if (!a.appendEncoded("ff00ff00", "hex") || !b.appendEncoded("0ff00ff0", "hex")) return 1;
  if (!result.exclusiveOr(a, b)) return 1;
  const u8 mask[] = {0x0F, 0x0F};
  result.applyMask(mask, 2);
  StringBuffer hex;
  result.toHexString(hex);
  std::printf("%s\n", hex.getString());

  b.shorten(1);
  std::printf("of two sizes: %s\n", result.exclusiveOr(a, b) ? "combined" : "refused");
  return 0;
}

// Prints:
//   0000F0F0
//   of two sizes: refused
