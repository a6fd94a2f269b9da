// The code of the page limits.md.
#include <cstdio>
#include <new>

#include "varnik/Varnik.h"

static void refused() {
  DataBuffer b;
  b.appendStr("kept");
  const bool grown = b.appendCharN('x', 0xFFFFFFFF);  // past 4 GiB
  std::printf("%d, %u bytes\n", grown, b.size());
}

static void destroyedObjects() {
  alignas(DataBuffer) unsigned char place[sizeof(DataBuffer)];
  auto* b = new (place) DataBuffer;
  b->~DataBuffer();
  const u32 before = Psdk::numReports();
  const bool ok = b->appendStr("too late");  // undefined in C++; caught here as far as the memory is still there
  std::printf("%d, %u report\n", ok, Psdk::numReports() - before);
}

static void namesThatAreNone() {
  StringBuffer out("text");
  DataBuffer b;
  const bool encoded = DataBuffer::encodeDB2("no-such-name", nullptr, 0, out);  // false, and `out` is emptied
  const bool decoded = b.appendEncoded("text", "no-such-name");                 // true: the text is copied unchanged
  std::printf("%d '%s', %d %u bytes\n", encoded, out.getString(), decoded, b.size());
}

int main() {
  refused();
  destroyedObjects();
  namesThatAreNone();
  return 0;
}

// Prints:
//   0, 4 bytes
//   0, 1 report
//   0 '', 1 4 bytes
