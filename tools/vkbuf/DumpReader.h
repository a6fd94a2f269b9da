// A dump back to bytes.
#pragma once

#include <string>
#include <string_view>

#include "tools/vkbuf/Job.h"
#include "tools/vkbuf/Text.h"

/// Reads what `vkbuf hexdump`, xxd and `hexdump -C` print: lines of an offset and bytes, or of digits alone. A line
/// that is none of these, and an offset that is not where the bytes before it end, are faults.
class DumpReader {
 public:
  DumpReader(const Job& job, Output& output) : job_(job), output_(output) {}

  void read(Window& window);

 private:
  void readLine(const u8* text, u32 start, u32 end);
  u32 readOffset(const u8* text, u32 start, u32 end, u32 colon);
  u32 readBytes(const u8* text, u32 at, u32 end, u32 mostGap);
  [[noreturn]] void refuse(const u8* text, u32 at, const char* why) const;

  const Job& job_;
  Output& output_;
  Place place_;           // of the window
  std::string bytes_;     // of the window, so far
  std::string previous_;  // the bytes of the line before, for a '*'
  u64 offset_ = 0;        // of the next byte, as the dump counts
  bool counts_ = false, repeats_ = false;
};
