// How do I move text between a string and a buffer without a copy?
//
// A buffer takes a string's storage whole. The other way is a copy of the bytes.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  StringBuffer text("a long text");
  const char* const before = text.getString();
  DataBuffer bytes;
  bytes.takeString(text);
  std::printf("%u bytes, %s; the string has %u\n", bytes.size(),
              reinterpret_cast<const char*>(bytes.getData2()) == before ? "the same block" : "another block",
              text.getSize());

  if (!text.append(bytes)) return 1;
  std::printf("%s\n", text.getString());
  return 0;
}

// Prints:
//   11 bytes, the same block; the string has 0
//   a long text
