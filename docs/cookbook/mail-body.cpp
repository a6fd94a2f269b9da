// How do I decode a mail body?
//
// What stands in `Content-Transfer-Encoding` is the name of an encoding: `base64` or `quoted-printable`. The bytes that
// come out are in the charset of `Content-Type`; `toXString` makes Unicode text of them.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  const char* const body = "Gr=FC=DFe aus K=F6ln, am Fu=DF einer sehr lange=\r\nn Zeile.";

  DataBuffer bytes;
  if (!bytes.appendEncoded(body, "quoted-printable")) return 1;
  XString text;
  bytes.toXString("iso-8859-1", text);
  std::printf("%s\n", text.getUtf8());
  return 0;
}

// Prints:
//   Grüße aus Köln, am Fuß einer sehr langen Zeile.
