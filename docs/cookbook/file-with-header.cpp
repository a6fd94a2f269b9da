// How do I keep facts about a file in front of it, and read them without the rest?
//
// A header-prefixed file begins with the header's length: 4 bytes, least significant first, that count themselves. The
// header follows, then the body.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  const char* const facts = "type=text/plain";
  DataBuffer file, header, body;
  LogNull log;
  file.appendUint32_le(4 + vk_strlen(facts));
  file.appendStr(facts);
  file.appendStr("the body");
  if (!file.db_saveToFileUtf8("entry.cache", &log)) return 1;

  if (!header.loadCacheHeaderUtf8("entry.cache", 1000, log)) return 1;
  std::printf("header alone: %u bytes\n", header.size());
  if (!body.loadFileWithHeaderUtf8("entry.cache", header, 1000, log)) return 1;
  std::printf("header %u bytes, body %u bytes\n", header.size(), body.size());
  return 0;
}

// Prints:
//   header alone: 15 bytes
//   header 15 bytes, body 8 bytes
