// How do I swap the byte order of a whole file of samples?
//
// `byteSwap21` exchanges the bytes of pairs, `byteSwap4321` reverses groups of four, in place.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer samples;
  if (!samples.appendEncoded("00000001 00000100", "hex")) return 1;
  samples.byteSwap4321();

  u32 at = 0, value = 0;
  while (samples.parseUint32(at, true, value)) std::printf("%u\n", value);
  return 0;
}

// Prints:
//   1
//   256
