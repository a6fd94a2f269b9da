// The first program: bytes in, text out, and back again.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer bytes;
  bytes.appendStr("Gr\xC3\xBC\xC3\x9F Gott");  // UTF-8

  StringBuffer text;
  if (!bytes.encodeDB("base64url", text)) return 1;
  std::printf("%s\n", text.getString());

  DataBuffer again;
  if (!again.appendEncoded(text.getString(), "base64url")) return 1;
  std::printf("%u bytes, %s\n", again.size(), again.equals(bytes) ? "the same" : "not the same");
  return 0;
}
