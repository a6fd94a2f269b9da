// How do I keep the good part of a damaged text?
//
// A decoder that meets a fault answers false, and the bytes before the fault stay in the buffer. Decode into an empty
// buffer to see the fault: behind bytes that are there already, only what was good is appended.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer bytes;
  const bool whole = bytes.appendEncoded("SGVsbG8sIHdv!cmxk", "base64");
  bytes.appendChar(0);
  std::printf("%s, good so far: %s\n", whole ? "whole" : "damaged", reinterpret_cast<const char*>(bytes.getData2()));
  return 0;
}

// Prints:
//   damaged, good so far: Hello, wo
