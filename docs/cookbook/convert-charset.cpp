// How do I convert text from one charset to another, and notice what gets lost?
//
// The converter carries on to the end, puts a substitute where it has nothing better, and answers false. What the
// target lacks is one such case, bytes that the source does not know the other.
#include <cstdio>

#include "varnik/Varnik.h"

static void convert(const char* text, const char* from, const char* to) {
  StringBuffer fromName(from), toName(to);
  const u32 n = vk_strlen(text);
  DataBuffer out;
  LogNull log;
  _vkEncodingConvert converter;
  const bool clean = converter.ChConvert2(fromName, CharsetNames::codePageForName(toName, nullptr),
                                          reinterpret_cast<const u8*>(text), n, out, log);
  StringBuffer hex;
  out.encodeDB("fingerprint", hex);
  std::printf("%s to %s, %s: %s\n", from, to, clean ? "all of it" : "with loss", hex.getString());
}

int main() {
  convert("5 \xE2\x82\xAC", "utf-8", "windows-1252");
  convert("5 \xE2\x82\xAC", "utf-8", "iso-8859-1");
  convert("5 \x80", "windows-1252", "utf-8");
  convert("5 \x80", "utf-8", "utf-16be");
  return 0;
}

// Prints:
//   utf-8 to windows-1252, all of it: 35:20:80
//   utf-8 to iso-8859-1, with loss: 35:20:3f
//   windows-1252 to utf-8, all of it: 35:20:e2:82:ac
//   utf-8 to utf-16be, with loss: 00:35:00:20:ff:fd
