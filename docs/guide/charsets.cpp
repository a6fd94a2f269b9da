// The code of the page charsets.md.
#include <cstdio>

#include "varnik/Varnik.h"

static void print(const DataBuffer& b) {
  std::printf("%.*s\n", static_cast<int>(b.size()), reinterpret_cast<const char*>(b.getData2()));
}

static void xml() {
  LogNull log;
  DataBuffer document;
  document.appendStr("<?xml version='1.0' encoding='windows-1252'?><price>5 \x80</price>");
  document.convertXmlToUtf8(log);
  print(document);
}

static void converter() {
  LogNull log;
  _vkEncodingConvert converter;
  DataBuffer out;
  const u8 greek[] = {0xC1, 0xE8, 0xDE, 0xED, 0xE1};
  StringBuffer name("iso-8859-7");
  const bool clean = converter.ChConvert2(name, 65001, greek, 5, out, log);
  print(out);
  out.clear();
  const u8 broken[] = {'a', 0xC3, 'b', 0xE2, 0x82};
  const bool repaired = !converter.EncConvert(65001, 65001, broken, 5, out, log);
  print(out);
  std::printf("%d %d\n", clean, repaired);
}

static void detection() {
  DataBuffer utf16, utf8;
  if (!utf16.appendEncoded("6a00 e500", "hex") || !utf8.appendEncoded("6a c3 a5", "hex")) return;
  std::printf("%d %d\n", utf16.detectObviousCodePage(), utf8.detectObviousCodePage());
  std::printf("%d %d\n", utf8.is7bit(0), utf8.is7bit(1));
  utf8.shorten(1);
  std::printf("%u\n", utf8.numPartialTrailingUtf8Bytes());
}

static void strings() {
  XString text;
  if (!text.setFromUtf8("m\xC3\xA5l")) return;
  const u16* units = text.getUtf16_xe();
  if (!units) return;
  std::printf("%s: %u units, the second is U+%04X\n", text.getUtf8(), text.getNumChars(), units[1]);
}

static void names() {
  for (const char* label : {"latin1", "UTF8", "sjis", "cp1252", "no-such-charset"}) {
    StringBuffer name(label);
    const bool known = CharsetNames::canonicalizeCharset(name);
    std::printf("%s: %s\n", label, known ? name.getString() : "unknown");
  }
}

int main() {
  xml();
  converter();
  detection();
  strings();
  names();
  return 0;
}

// Prints:
//   <?xml version='1.0' encoding='windows-1252'?><price>5 €</price>
//   Αθήνα
//   a�b�
//   1 1
//   1200 -1
//   0 1
//   1
//   mål: 3 units, the second is U+00E5
//   latin1: iso-8859-1
//   UTF8: utf-8
//   sjis: shift_jis
//   cp1252: windows-1252
//   no-such-charset: unknown
