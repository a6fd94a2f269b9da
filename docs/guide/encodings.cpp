// The code of the page encodings.md.
#include <cstdio>

#include "varnik/Varnik.h"

static void bothWays() {
  DataBuffer bytes, back;
  StringBuffer text;
  bytes.appendStr("Gr\xC3\xBC\xC3\x9F Gott");
  if (!bytes.encodeDB("base64url", text)) return;
  if (!back.appendEncoded(text.getString(), "base64url")) return;
  std::printf("%s, %u bytes\n", text.getString(), back.size());
}

static void names() {
  const u8 bytes[] = {0x00, 0xAB, 0xFF};
  for (const char* name : {"HEX", "  hexlower ", "finger", "qp-40", "bse64"}) {
    StringBuffer out("out: ");
    const bool ok = DataBuffer::encodeDB2(name, bytes, 3, out);
    std::printf("%d '%s'\n", ok, out.getString());
  }
}

static void partOfABuffer() {
  DataBuffer packet;
  if (!packet.appendEncoded("0102 deadbeef 03", "hex")) return;
  StringBuffer out;
  packet.getEncodedRange("hexlower", 2, 4, out);
  out.append(" ");
  u32 at = 2;
  packet.parseDataEnc(at, 4, "declist", out);
  std::printf("%s, cursor %u\n", out.getString(), at);
}

static void faults() {
  DataBuffer bytes;
  const bool ok = bytes.appendEncoded("AQID!BAU=", "base64");
  std::printf("%s, %u bytes stay\n", ok ? "valid" : "invalid", bytes.size());
}

static void charsets() {
  DataBuffer bytes;
  bytes.appendEncoded("5 \xE2\x82\xAC", "windows-1252");
  StringBuffer hex;
  bytes.toHexString(hex);
  std::printf("%s\n", hex.getString());
}

int main() {
  bothWays();
  names();
  partOfABuffer();
  faults();
  charsets();
  return 0;
}

// Prints:
//   R3LDvMOfIEdvdHQ, 11 bytes
//   1 'out: 00ABFF'
//   1 'out: 00abff'
//   1 'out: 00:ab:ff'
//   1 'out: =00=AB=FF'
//   0 ''
//   deadbeef 222,173,190,239, cursor 6
//   invalid, 3 bytes stay
//   352080
