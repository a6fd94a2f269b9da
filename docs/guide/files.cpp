// The code of the page files.md.
#include <cstdio>

#include "varnik/Varnik.h"

static void wholeFiles() {
  LogText log;
  DataBuffer b, loaded;
  b.appendStr("first\nsecond\n");
  if (!b.db_saveToFileUtf8("notes.txt", &log)) return;
  if (!loaded.loadFileUtf8("notes.txt", &log)) return;
  std::printf("size %u, capacity %u\n", loaded.size(), loaded.getBufSize());
}

static void failures() {
  LogText log;
  DataBuffer b;
  b.appendStr("old content");
  if (!b.loadFileUtf8("missing.txt", &log)) std::printf("%s%u bytes\n", log.getText(), b.size());
}

static void parts() {
  LogNull log;
  DataBuffer part;
  if (!part.loadFileChunk("notes.txt", 6, 100, log)) return;
  std::printf("%.*s", static_cast<int>(part.size()), reinterpret_cast<const char*>(part.getData2()));
  std::printf("behind the end: %d\n", part.loadFileChunk("notes.txt", 13, 100, log));
}

static void headers() {
  LogNull log;
  DataBuffer file, header, body;
  file.appendUint32_le(4 + 5);
  file.appendStr("factsbody");
  if (!file.db_saveToFileUtf8("entry", &log)) return;
  if (!body.loadFileWithHeaderUtf8("entry", header, 100, log)) return;
  std::printf("header %u bytes, body %u bytes\n", header.size(), body.size());
}

int main() {
  wholeFiles();
  failures();
  parts();
  headers();
  return 0;
}

// Prints:
//   size 13, capacity 45
//   loadFileX:
//     path: missing.txt
//     reason: No such file or directory
//     error: the file cannot be opened
//   0 bytes
//   second
//   behind the end: 0
//   header 5 bytes, body 4 bytes
