// How do I pass bytes from one thread to another?
//
// A `DataBufferView` is a queue under a lock: producers append, the consumer takes from the front. `takeBytes` takes
// all of what it is asked for or nothing.
#include <cstdio>
#include <thread>

#include "varnik/Varnik.h"

int main() {
  DataBufferView queue;
  std::thread producer([&queue] {
    for (u8 i = 0; i < 100; ++i) queue.append(&i, 1);
  });

  u32 taken = 0, sum = 0;
  while (taken < 100) {
    u8 b = 0;
    if (queue.takeBytes(1, &b)) {
      sum += b;
      ++taken;
    } else {
      std::this_thread::yield();
    }
  }
  producer.join();
  std::printf("%u bytes, sum %u\n", taken, sum);
  return 0;
}

// Prints:
//   100 bytes, sum 4950
