// How do I break base64 into lines, of 76 characters or of another length?
//
// The name `base64_mime` writes mail's lines of 76 characters that end in CR LF. For another length call the encoder
// itself; PEM wants 64.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer bytes;
  bytes.appendCharN('v', 60);

  StringBuffer mail, pem;
  if (!bytes.encodeDB("base64_mime", mail)) return 1;
  ContentEncoder encoder;
  encoder.setLineLength(64);
  if (!encoder.encodeBase64Mime(bytes.getData2(), bytes.size(), pem)) return 1;

  for (StringBuffer* text : {&mail, &pem}) {
    text->removeCharOccurances('\r');  // only to print it here
    std::printf("%s--\n", text->getString());
  }
  return 0;
}

// Prints:
//   dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2
//   dnZ2
//   --
//   dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2dnZ2
//   dnZ2dnZ2dnZ2dnZ2
//   --
