// How do I read an old uuencoded attachment?
//
// The name `uu` reads the frame of `begin` and `end` and what lies between. The file's name in the frame is not used.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  const char* const attachment = "begin 644 note.txt\n-2&5L;&\\L('=O<FQD(0``\n`\nend\n";
  DataBuffer bytes;
  if (!bytes.appendEncoded(attachment, "uu")) return 1;
  bytes.appendChar(0);
  std::printf("%s\n", reinterpret_cast<const char*>(bytes.getData2()));
  return 0;
}

// Prints:
//   Hello, world!
