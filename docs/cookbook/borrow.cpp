// How do I use the library on memory that is not mine, without a copy?
//
// A buffer that borrows refers to your block and never releases it. Edits in place write into your block; an append
// moves the content into a block of the buffer's own, and yours stays as it is.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  char block[] = "2024-05-17";
  DataBuffer date;
  date.borrowData(block, 10);
  date.replaceChar('-', '/');
  std::printf("%s, heap %u\n", block, date.heapUsage());

  date.appendStr(" 12:00");
  date.reverseBytes();
  std::printf("%s, heap %u\n", block, date.heapUsage());
  return 0;
}

// Prints:
//   2024/05/17, heap 0
//   2024/05/17, heap 20010
