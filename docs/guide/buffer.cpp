// The code of the page buffer.md.
#include <cstdio>
#include <utility>

#include "varnik/Varnik.h"

static void show(const char* what, const DataBuffer& b) {
  std::printf("%-22s size %6u, capacity %8u, heap %8u\n", what, b.size(), b.getBufSize(), b.heapUsage());
}

static void storageStates() {
  DataBuffer b;
  show("none", b);
  b.appendStr("hello");
  show("owned", b);
  b.clear();
  show("after clear", b);
  b.clearWithDeallocate();
  show("let go", b);

  u8 block[16] = {};
  b.borrowData(block, 16);
  show("borrowed", b);
  b.appendChar(1);
  show("after an append", b);
}

static void growth() {
  DataBuffer one, bulk, large;
  one.appendChar('x');
  bulk.append("xyz", 3);
  if (!large.ensureBuffer(5'000'000)) return;
  large.setDataSize_CAUTION(5'000'000);
  large.append("xyz", 3);
  show("one byte", one);
  show("three bytes", bulk);
  show("three more of 5 MB", large);

  DataBuffer reserved;
  if (!reserved.ensureBuffer(1000)) return;
  show("ensureBuffer(1000)", reserved);
  reserved.appendCharN('x', 600);
  reserved.minimizeMemoryUsage();
  show("minimizeMemoryUsage", reserved);
}

static void ownership() {
  DataBuffer a, b;
  a.appendStr("moved");
  b.takeData(a);  // as std::move, but b keeps its own `secure` flag
  show("taken from", a);
  show("taken by", b);
  DataBuffer c = b;  // a copy, with the same capacity
  c.swapData(a);
  show("swapped", a);
}

static void editing() {
  DataBuffer b;
  b.appendStr("0123456789");
  b.removeHead(2);
  b.removeChunk(3, 2);
  b.insertAt(3, "--", 2);
  b.shorten(1);
  std::printf("%.*s\n", static_cast<int>(b.size()), reinterpret_cast<const char*>(b.getData2()));
}

static void fields() {
  DataBuffer b;
  b.appendUint16_be(3);
  b.appendUint32_le(70'000);
  u32 at = 0;
  u16 kind = 0;
  u32 length = 0;
  const bool ok = b.parseUint16(at, false, kind) && b.parseUint32(at, true, length);
  std::printf("%s: kind %u, length %u, cursor %u\n", ok ? "read" : "cut off", kind, length, at);
  const bool more = b.parseUint16(at, false, kind);
  std::printf("%s: kind %u, cursor %u\n", more ? "read" : "cut off", kind, at);
}

int main() {
  storageStates();
  growth();
  ownership();
  editing();
  fields();
  return 0;
}

// Prints:
//   none                   size      0, capacity        0, heap        0
//   owned                  size      5, capacity    20000, heap    20000
//   after clear            size      0, capacity    20000, heap    20000
//   let go                 size      0, capacity        0, heap        0
//   borrowed               size     16, capacity       16, heap        0
//   after an append        size     17, capacity       80, heap       80
//   one byte               size      1, capacity       64, heap       64
//   three bytes            size      3, capacity    20000, heap    20000
//   three more of 5 MB     size 5000003, capacity  9000000, heap  9000000
//   ensureBuffer(1000)     size      0, capacity     1000, heap     1000
//   minimizeMemoryUsage    size    600, capacity      604, heap      604
//   taken from             size      0, capacity        0, heap        0
//   taken by               size      5, capacity    20000, heap    20000
//   swapped                size      5, capacity    20000, heap    20000
//   234--78
//   read: kind 3, length 70000, cursor 6
//   cut off: kind 0, cursor 6
