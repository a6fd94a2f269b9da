// How do I put text between the quotes of a JSON string?
//
// The name `json` escapes what RFC 8259 demands and no more. Decoding undoes escapes, surrogate pairs too.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer text;
  text.appendStr("say \"hi\"\n\tC:\\temp");
  StringBuffer escaped;
  if (!text.encodeDB("json", escaped)) return 1;
  std::printf("\"%s\"\n", escaped.getString());

  DataBuffer back;
  if (!back.appendEncoded("\\ud83d\\ude00 \\u00e9", "json")) return 1;
  back.appendChar(0);
  std::printf("%s\n", reinterpret_cast<const char*>(back.getData2()));
  return 0;
}

// Prints:
//   "say \"hi\"\n\tC:\\temp"
//   😀 é
