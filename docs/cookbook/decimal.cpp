// How do I write the bytes of a serial number in decimal?
//
// `decimal` takes the bytes as one unsigned number, most significant first; `declist` writes each byte by itself.
// Leading zero bytes are no part of a number and do not come back.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer serial;
  if (!serial.appendEncoded("00 8f 3a 01 ff", "hex")) return 1;
  StringBuffer number, list;
  if (!serial.encodeDB("decimal", number) || !serial.encodeDB("declist", list)) return 1;
  std::printf("%s\n%s\n", number.getString(), list.getString());

  DataBuffer back;
  if (!back.appendEncoded(number.getString(), "decimal")) return 1;
  std::printf("%u bytes come back of %u\n", back.size(), serial.size());
  return 0;
}

// Prints:
//   2402943487
//   0,143,58,1,255
//   4 bytes come back of 5
