// How do I turn bytes into base64 and back?
//
// Encoders append to a `StringBuffer`, decoders to a `DataBuffer`: both directions take the same name. `vkbuf names`
// and the table of encodings list all of them.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer bytes;
  bytes.appendStr("Hello, world");

  StringBuffer text;
  if (!bytes.encodeDB("base64", text)) return 1;
  std::printf("%s\n", text.getString());

  DataBuffer back;
  if (!back.appendEncoded(text.getString(), "base64")) return 1;
  std::printf("%u bytes, %s\n", back.size(), back.equals(bytes) ? "the same" : "others");
  return 0;
}

// Prints:
//   SGVsbG8sIHdvcmxk
//   12 bytes, the same
