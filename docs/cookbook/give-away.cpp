// How do I give a buffer's block away, and take one over?
//
// `removeData` hands the block out: whoever has it calls array delete. `takeData` adopts a block that was made by
// `new u8[n]` or `allocByteArray`. Between buffers, `takeData` and `std::move` copy nothing.
#include <cstdio>
#include <memory>
#include <utility>

#include "varnik/Varnik.h"

int main() {
  DataBuffer first;
  first.appendStr("payload");
  const u32 n = first.size();
  std::unique_ptr<u8[]> block(first.removeData());
  std::printf("%u bytes handed out, %u left\n", n, first.size());

  DataBuffer second;
  second.takeData(block.release(), n);
  const DataBuffer third = std::move(second);
  std::printf("%u and %u bytes\n", second.size(), third.size());  // NOLINT(bugprone-use-after-move)
  return 0;
}

// Prints:
//   7 bytes handed out, 0 left
//   0 and 7 bytes
