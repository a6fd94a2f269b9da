// How do I write numbers in a fixed byte order?
//
// `_le` and `_be` in a name say the order, on every processor. Reserve first when the record's size is known: then no
// write can fail.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer record;
  if (!record.ensureBuffer(22)) return 1;
  record.appendUint16_be(0x0102);
  record.appendUint32_le(0x01020304);
  record.appendInt64_be(-2);
  record.appendDouble_le(0.5);

  StringBuffer hex;
  record.toHexString(hex);
  std::printf("%u bytes: %s\n", record.size(), hex.getString());
  return 0;
}

// Prints:
//   22 bytes: 010204030201FFFFFFFFFFFFFFFE000000000000E03F
