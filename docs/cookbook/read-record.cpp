// How do I read a record without running past its end?
//
// A cursor is an index of yours. Each read that succeeds moves it; one that would pass the end answers false and leaves
// it where it was, so the reads may be chained.
#include <cstdio>

#include "varnik/Varnik.h"

static void read(const DataBuffer& record) {
  u32 at = 0, length = 0;
  u16 kind = 0;
  StringBuffer name;
  if (record.expectByte(at, 0x7F) && record.parseUint16(at, false, kind) && record.parseUint32(at, false, length) &&
      record.parseString(at, length, name))
    std::printf("kind %u, name %s, next at %u\n", kind, name.getString(), at);
  else
    std::printf("cut off or no record: stopped at %u of %u\n", at, record.size());
}

int main() {
  DataBuffer record;
  if (!record.appendEncoded("7f 0003 00000005 4d616c6df6", "hex")) return 1;
  record.shorten(1);
  read(record);
  record.appendChar('o');
  read(record);
  return 0;
}

// Prints:
//   cut off or no record: stopped at 7 of 11
//   kind 3, name Malmo, next at 12
