// How do I find out whether a name is an encoding, a charset, or nothing?
//
// `appendEncoded` takes the names of encodings and of charsets alike. Ask before you use a name from outside: a name
// that is neither copies the text unchanged.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  LogNull log;
  for (const char* name : {"base64", " QP-72 ", "windows-1252", "bse64"}) {
    StringBuffer charset(name);
    if (_clsEncode::encodingIdForName(name, log) != 0)
      std::printf("'%s' is an encoding\n", name);
    else if (const s32 codePage = CharsetNames::codePageForName(charset, nullptr))
      std::printf("'%s' is a charset, code page %d\n", name, codePage);
    else
      std::printf("'%s' is neither\n", name);
  }
  return 0;
}

// Prints:
//   'base64' is an encoding
//   ' QP-72 ' is an encoding
//   'windows-1252' is a charset, code page 1252
//   'bse64' is neither
