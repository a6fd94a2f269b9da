// How do I clean a log of terminal colours?
//
// In place and in one pass. Other escape sequences stay as they are.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer log;
  log.appendStr("\x1B[01;31merror\x1B[0m: \x1B[1mmain.cpp\x1B[m:7\n");
  log.stripTerminalColorCodes();
  std::printf("%.*s", static_cast<int>(log.size()), reinterpret_cast<const char*>(log.getData2()));
  return 0;
}

// Prints:
//   error: main.cpp:7
