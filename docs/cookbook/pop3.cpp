// How do I read a message from a POP3 server?
//
// The server doubles a dot at the head of a line, so that a single one can mark the end. Cut the end mark off, then
// undo the doubling.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer message;
  message.appendStr("Subject: dots\r\n\r\n..\r\n...and more\r\n.\r\n");
  if (message.endsWithStr("\r\n.\r\n")) message.shorten(3);
  message.processRawPopMime();
  message.removeByteValue('\r');  // only to print it here
  std::printf("%.*s", static_cast<int>(message.size()), reinterpret_cast<const char*>(message.getData2()));
  return 0;
}

// Prints:
//   Subject: dots
//
//   .
//   ..and more
