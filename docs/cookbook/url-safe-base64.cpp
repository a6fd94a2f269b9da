// How do I write base64 that may stand in a URL, with or without padding?
//
// `base64url` uses `-` and `_` and writes no `=`; `modBase64` keeps the `=`. `base64url` reads both forms back: padding
// that is missing is restored.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer bytes;
  bytes.appendStr("i>~w");
  for (const char* name : {"base64", "modBase64", "base64url"}) {
    StringBuffer text;
    if (!bytes.encodeDB(name, text)) return 1;
    std::printf("%-10s %s\n", name, text.getString());
  }

  DataBuffer back;
  const bool read = back.appendEncoded("aT5-dw==", "base64url") && back.appendEncoded("aT5-dw", "base64url");
  std::printf("%s: %u bytes\n", read ? "read" : "refused", back.size());
  return 0;
}

// Prints:
//   base64     aT5+dw==
//   modBase64  aT5-dw==
//   base64url  aT5-dw
//   read: 8 bytes
