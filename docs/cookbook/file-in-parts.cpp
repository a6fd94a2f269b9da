// How do I work through a file that is larger than I want to hold in memory?
//
// `loadFileChunk` replaces the buffer's content by a part of the file; the offset has 64 bits. It answers false at the
// end of the file.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer part;
  LogNull log;
  part.appendCharN('x', 2500);
  if (!part.db_saveToFileUtf8("large.bin", &log)) return 1;

  for (s64 offset = 0; part.loadFileChunk("large.bin", offset, 1000, log); offset += part.size())
    std::printf("%u bytes from %lld\n", part.size(), static_cast<long long>(offset));
  return 0;
}

// Prints:
//   1000 bytes from 0
//   1000 bytes from 1000
//   500 bytes from 2000
