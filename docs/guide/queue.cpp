// The code of the page queue.md.
#include <cstdio>
#include <thread>

#include "varnik/Varnik.h"

static void twoThreads() {
  DataBufferView queue;
  std::thread producer([&queue] { queue.append("0123456789", 10); });
  producer.join();

  DataBuffer first;
  if (queue.takeBytes(4, first)) std::printf("took %u, %u left\n", first.size(), queue.getViewSize());
  if (!queue.takeBytes(7, first)) std::printf("not yet, %u left\n", queue.getViewSize());
  queue.consume(100);
  std::printf("%u left\n", queue.getViewSize());
}

static void lookAndTakeAtOnce() {
  DataBufferView queue;
  queue.append("line one\nline", 13);
  const CritSecExitor lock(queue);  // no other thread comes between looking and taking
  const u8* at = queue.getViewData();
  const u8 lineEnd[] = {'\n'};
  if (const u8* end = DataBuffer::findBytes2(at, queue.getViewSize(), lineEnd, 1)) {
    std::printf("[%.*s]\n", static_cast<int>(end - at), reinterpret_cast<const char*>(at));
    queue.consume(static_cast<u32>(end - at) + 1);
  }
}

static void deadBytes() {
  DataBufferView queue;
  DataBuffer block;
  block.appendCharN('x', 30'000);
  queue.append(block);
  const u8* before = queue.getViewData();
  queue.consume(19'900);
  std::printf("moved by %td\n", queue.getViewData() - before);
  queue.consume(1);  // above 19,900 dead bytes of more than 20,000: they are dropped
  std::printf("moved by %td\n", queue.getViewData() - before);
}

int main() {
  twoThreads();
  lookAndTakeAtOnce();
  deadBytes();
  return 0;
}

// Prints:
//   took 4, 6 left
//   not yet, 6 left
//   0 left
//   [line one]
//   moved by 19900
//   moved by 0
