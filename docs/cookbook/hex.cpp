// How do I write bytes as hex, in the spelling that somebody asks for?
//
// Upper case, lower case, with colons as in a fingerprint, in groups to be read aloud: each is a name.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer bytes;
  if (!bytes.appendEncoded("0,171,255,16,32", "declist")) return 1;
  for (const char* name : {"hex", "hexlower", "fingerprint", "eda"}) {
    StringBuffer text;
    if (!bytes.encodeDB(name, text)) return 1;
    std::printf("%-12s %s\n", name, text.getString());
  }
  return 0;
}

// Prints:
//   hex          00ABFF1020
//   hexlower     00abff1020
//   fingerprint  00:ab:ff:10:20
//   eda          00ab ff10 20
