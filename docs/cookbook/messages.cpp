// How do I cut a stream of bytes into messages?
//
// Append to a queue what arrives, look whether a whole message is there, take it. What is consumed is dropped in bulk,
// so the front costs little.
#include <cstdio>

#include "varnik/Varnik.h"

static void takeMessages(DataBufferView& stream) {
  while (stream.getViewSize() >= 2) {
    const u8* head = stream.getViewData();
    const u32 length = head[0] * 256u + head[1];
    if (stream.getViewSize() < 2 + length) return;  // the rest is on its way
    std::printf("[%.*s]\n", static_cast<int>(length), reinterpret_cast<const char*>(head + 2));
    stream.consume(2 + length);
  }
}

int main() {
  DataBufferView stream;
  for (const char* part : {"0005 6865", "6c6c6f 00", "02 6869 0001"}) {
    DataBuffer arrived;
    if (!arrived.appendEncoded(part, "hex") || !stream.append(arrived)) return 1;
    takeMessages(stream);
  }
  std::printf("%u bytes wait\n", stream.getViewSize());
  return 0;
}

// Prints:
//   [hello]
//   [hi]
//   2 bytes wait
