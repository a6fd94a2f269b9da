// How do I save a file so that a crash leaves the old one or the new one, never half of it?
//
// `db_saveToFileUtf8` writes a temporary file beside the target, flushes it to the disk and renames it over the target.
// Nothing else is to be done; true means that the bytes are on the disk.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer settings, loaded;
  settings.appendStr("colour = blue\n");
  LogText log;
  if (!settings.db_saveToFileUtf8("settings.txt", &log)) return 1;
  if (!loaded.loadFileUtf8("settings.txt", &log)) return 1;
  std::printf("%u bytes, %s\n", loaded.size(), loaded.equals(settings) ? "the same" : "others");

  if (!settings.db_saveToFileUtf8("no/such/folder/settings.txt", &log)) std::printf("not saved\n");
  return 0;
}

// Prints:
//   14 bytes, the same
//   not saved
