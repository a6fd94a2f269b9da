// How do I accept only the one canonical base64 form of some bytes?
//
// Decoding is lenient about white space and padding. Where two texts must not mean the same bytes, in signatures or as
// keys of a cache, decode, encode again and compare.
#include <cstdio>

#include "varnik/Varnik.h"

static bool isCanonical(const char* text) {
  DataBuffer bytes;
  StringBuffer again;
  return bytes.appendEncoded(text, "base64") && bytes.encodeDB("base64", again) && again.equals(text);
}

int main() {
  for (const char* text : {"AQIDBA==", "AQIDBA", "AQID BA==", "AQIDBB==", "AQID-A=="})
    std::printf("%-10s %s\n", text, isCanonical(text) ? "canonical" : "refused");
  return 0;
}

// Prints:
//   AQIDBA==   canonical
//   AQIDBA     refused
//   AQID BA==  refused
//   AQIDBB==   refused
//   AQID-A==   refused
