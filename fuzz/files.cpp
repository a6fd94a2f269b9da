// Whole files, headers and chunks over a file in memory, with reads that move less, nothing or fail.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "fuzz/Fuzz.h"
#include "tests/support/SystemCalls.h"

namespace {

u32 headerLength(std::string_view file) {
  u32 length = 0;
  for (u32 i = 4; i-- != 0;) length = length << 8 | static_cast<u8>(file[i]);
  return length;
}

/// Checks what a load answers where reads do what they should, `struck` aside: then it may fail.
void check(bool done, bool expected, bool struck, const DataBuffer& b, std::string_view content) {
  CHECK(struck ? expected || !done : done == expected);
  if (done) CHECK(viewOf(b) == content);
  if (!done && !struck) CHECK(b.empty());
}

void load(u8 what, const char* path, std::string_view file, u32 most, u32 offset, faults::FailCall& fault) {
  LogNull log;
  DataBuffer b, header;
  b.append("held", 4);
  const u32 length = file.size() < 4 ? 0 : headerLength(file);
  const bool isShort = file.size() < 4, fits = length >= 4 && length <= most && length <= file.size();
  if (what == 0) {
    const bool done = b.loadFileUtf8(path, &log);
    check(done, true, fault.struck(), b, file);
    if (done && !file.empty()) CHECK(b.getBufSize() == file.size() + 32 && b.getBufAt(countOf(file))[31] == 0);
  } else if (what == 1) {
    const bool done = b.loadFileWithHeaderUtf8(path, header, most, log);
    check(done, isShort || (fits && length > 4), fault.struck(), b,
          isShort ? "" : file.substr(std::min<std::size_t>(length, file.size())));
    if (done && !isShort) CHECK(viewOf(header) == file.substr(4, length - 4) && b.getBufSize() == b.size() + 4);
  } else if (what == 2) {
    const bool done = b.loadCacheHeaderUtf8(path, most, log);
    check(done, isShort || fits, fault.struck(), b, isShort ? "" : file.substr(4, std::max(length, 4u) - 4));
  } else {
    const bool done = b.loadFileChunk(path, offset, most, log);
    if (most == 0) {
      CHECK(!done && viewOf(b) == "held");
      return;
    }
    check(done, offset < file.size(), fault.struck(), b, offset < file.size() ? file.substr(offset, most) : "");
    if (done) CHECK(b.getBufSize() == b.size());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t n) {
  static const int file = memfd_create("fuzz", 0);
  static const std::string path = "/proc/self/fd/" + std::to_string(file);
  constexpr faults::Fault kFaults[] = {{faults::Fault::kShort, 1},   {faults::Fault::kShort, 4000},
                                       {faults::Fault::kHalf, 0},    {faults::Fault::kNothing, 0},
                                       {faults::Fault::kError, EIO}, {faults::Fault::kError, EINTR}};
  Choices in(data, n);
  const u8 what = in.byte() % 4, how = in.byte(), k = in.byte() % 4;
  const u32 most = in.below(1000), offset = in.below(1000);
  const std::string_view content = in.rest();
  CHECK(ftruncate(file, 0) == 0 &&
        pwrite(file, content.data(), content.size(), 0) == static_cast<ssize_t>(content.size()));
  // An interruption for good would never end.
  faults::FailCall fault(faults::Call::kRead, k, how >= 128 && how % 6 != 5, kFaults[how % 6]);
  load(what, path.c_str(), content, most, offset, fault);
  return 0;
}
