// hexdump: the form of xxd, so that `xxd -r` reads it, and whoever knows one knows the other.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

#include "tools/vkbuf/Commands.h"
#include "tools/vkbuf/Job.h"
#include "varnik/services/strings/StringBuffer.h"

namespace {

constexpr u32 kPerLine = 16;
constexpr u32 kHexAt = 10, kTextAt = 51, kLine = kTextAt + kPerLine + 1;

// "00000000: 6162 6305 0505 0505                      abc.....": offset, pairs of bytes, text.
// Returns the length of the line, which stands at `line` and has room for kLine characters.
u32 dumpLine(u32 offset, const u8* data, u32 n, char* line) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::memset(line, ' ', kTextAt);
  for (u32 i = 0; i < 8; ++i) line[i] = kDigits[offset >> (28 - 4 * i) & 15];
  line[8] = ':';
  for (u32 i = 0; i < n; ++i) {
    char* const hex = line + kHexAt + i * 2 + i / 2;
    hex[0] = kDigits[data[i] >> 4];
    hex[1] = kDigits[data[i] & 15];
    line[kTextAt + i] = data[i] >= 0x20 && data[i] < 0x7F ? static_cast<char>(data[i]) : '.';
  }
  line[kTextAt + n] = '\n';
  return kTextAt + n + 1;
}

int hexdump(Job& job) {
  DataBuffer data;
  job.read(data);
  // A dump is four times as long as its bytes and may pass what one string holds: it goes out by pieces.
  constexpr u32 kPiece = 1024 * 1024;
  StringBuffer dump;
  const u32 n = data.size();
  for (u64 at = 0; at < n; at += kPerLine) {
    char* const line = dump.getAppendPtr(kLine);
    if (!line) job.fail("out of memory");
    const u32 offset = static_cast<u32>(at);
    dump.addToSize(dumpLine(offset, data.getDataAt2(offset), std::min(kPerLine, n - offset), line));
    if (dump.getSize() < kPiece) continue;
    job.writeMore(dump.getString(), dump.getSize());
    dump.weakClear();
  }
  job.write(dump);
  return kDone;
}

}  // namespace

std::function<int()> setUpHexdump(CLI::App& app) {
  const auto job = std::make_shared<Job>("hexdump");
  job->addInput(app);
  job->addOutput(app);
  app.footer("Examples:\n  vkbuf hexdump utf16le-bom.xml\n  vkbuf hexdump -s 'four'\n");
  return [job] { return hexdump(*job); };
}
