// The code of the page cost.md.
#include <cstdio>

#include "varnik/Varnik.h"

/// What building a buffer of `total` bytes costs: reallocations, and bytes that these copied.
template <class Append>
static void count(const char* how, u32 total, Append append) {
  DataBuffer b;
  u32 moves = 0;
  u64 copied = 0;
  while (b.size() < total) {
    const u8* before = b.getData2();
    const u32 held = b.size();
    const u32 capacity = b.getBufSize();
    if (!append(b)) return;
    if (b.getBufSize() != capacity || b.getData2() != before) {
      ++moves;
      copied += held;
    }
  }
  std::printf("%-12s %8u bytes: %4u reallocations, %5.1f bytes copied for each\n", how, total, moves,
              static_cast<double>(copied) / total);
}

static bool bytes(DataBuffer& b) {
  return b.appendChar('x');
}
static bool copies(DataBuffer& b) {
  return b.appendCharN('x', 100);
}
static bool blocks(DataBuffer& b) {
  static const u8 block[100] = {};
  return b.append(block, 100);
}

/// By how much an append of one block, or of one byte, makes a full buffer of `held` bytes grow.
static u32 step(u32 held, bool (*append)(DataBuffer&)) {
  DataBuffer b;
  if (held != 0 && !b.ensureBuffer(held)) return 0;
  b.setDataSize_CAUTION(held);
  return append(b) ? b.getBufSize() - held : 0;
}

static void steps() {
  for (const u32 held :
       {0u, 50'000u, 100'000u, 1'000'000u, 2'000'000u, 3'000'000u, 4'000'000u, 8'000'000u, 12'000'000u})
    std::printf("append to %8u: %8u more\n", held, step(held, blocks));
  for (const u32 held : {0u, 64u, 256u, 1024u}) std::printf("appendChar to %4u: %8u more\n", held, step(held, bytes));
}

static void growth() {
  for (const u32 total : {10'000u, 1'000'000u, 10'000'000u}) {
    count("appendChar", total, bytes);
    count("appendCharN", total, copies);
    count("append", total, blocks);
  }
}

static void reserve() {
  DataBuffer b;
  if (!b.ensureBuffer(1'000'000)) return;
  const u8* before = b.getData2();
  for (u32 i = 0; i < 1'000'000; ++i) b.appendChar('x');
  std::printf("%s\n", b.getData2() == before ? "not moved" : "moved");
}

static bool produce(DataBuffer& b, u32 n) {
  u8* at = b.getAppendPtr(n);
  if (!at) return false;
  for (u32 i = 0; i < n; ++i) at[i] = static_cast<u8>(i);
  b.addToSize(n);
  return true;
}

int main() {
  steps();
  growth();
  reserve();
  DataBuffer b;
  if (produce(b, 1000)) std::printf("%u bytes\n", b.size());
  return 0;
}

// Prints:
//   append to        0:    20000 more
//   append to    50000:    50000 more
//   append to   100000:   100000 more
//   append to  1000000:  1000000 more
//   append to  2000000:  2000000 more
//   append to  3000000:  3000000 more
//   append to  4000000:  4000000 more
//   append to  8000000:  8000000 more
//   append to 12000000: 12000000 more
//   appendChar to    0:       64 more
//   appendChar to   64:      256 more
//   appendChar to  256:     1024 more
//   appendChar to 1024:    10000 more
//   appendChar      10000 bytes:    4 reallocations,   0.2 bytes copied for each
//   appendCharN     10000 bytes:    1 reallocations,   0.0 bytes copied for each
//   append          10000 bytes:    1 reallocations,   0.0 bytes copied for each
//   appendChar    1000000 bytes:  103 reallocations,  49.6 bytes copied for each
//   appendCharN   1000000 bytes:  100 reallocations,  50.0 bytes copied for each
//   append        1000000 bytes:   13 reallocations,   4.7 bytes copied for each
//   appendChar   10000000 bytes: 1003 reallocations, 499.6 bytes copied for each
//   appendCharN  10000000 bytes:  991 reallocations, 495.5 bytes copied for each
//   append       10000000 bytes:   17 reallocations,   2.0 bytes copied for each
//   not moved
//   1000 bytes
