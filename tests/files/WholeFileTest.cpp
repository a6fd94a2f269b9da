#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstring>
#include <filesystem>

#include "tests/support/Allocations.h"
#include "tests/support/Bytes.h"
#include "tests/support/GuardedBytes.h"
#include "tests/support/SystemCalls.h"
#include "tests/support/TempFolder.h"

namespace {

using faults::Call;
using faults::Fault;

bool load(DataBuffer& b, const std::string& path, LogBase* log = nullptr) {
  return b.loadFileUtf8(path.c_str(), log);
}

bool isZero(const DataBuffer& b, u32 from, u32 to) {
  for (u32 i = from; i < to; ++i)
    if (b.getBufAt(i) == nullptr || *b.getBufAt(i) != 0) return false;
  return true;
}

TEST(WholeFile, LoadsWithZerosBehind) {
  const TempFolder folder;
  for (const u32 length : {0u, 1u, 5u, 4096u, 100'000u, 9'000'000u, 16'777'217u}) {
    const std::string content = randomBytes(length);
    DataBuffer b = bufferOf("old content");
    ASSERT_TRUE(load(b, writeFile(folder / "f", content))) << length;
    EXPECT_EQ(textOf(b), content);
    EXPECT_EQ(b.getBufSize(), length == 0 ? 0 : length + 32);
    EXPECT_EQ(b.getData2() == nullptr, length == 0);
    EXPECT_TRUE(isZero(b, length, b.getBufSize()));
  }
}

TEST(WholeFile, DropsBorrowedStorageWithoutFreeingIt) {
  const TempFolder folder;
  char lent[] = "lent";
  DataBuffer b;
  b.borrowData(lent, 4);
  EXPECT_TRUE(load(b, writeFile(folder / "f", "abc")));
  EXPECT_EQ(textOf(b), "abc");
  EXPECT_EQ(b.heapUsage(), 35u);
  EXPECT_STREQ(lent, "lent");
}

TEST(WholeFile, RefusesWhatCannotBeLoaded) {
  const TempFolder folder;
  mkfifo((folder / "pipe").c_str(), 0600);
  std::filesystem::create_symlink("loop", folder / "loop");
  const struct {
    const char* what;
    std::string path;
  } kCases[] = {
      {"a missing file", folder / "missing"},
      {"a folder", folder.path()},
      {"a pipe without a writer", folder / "pipe"},
      {"a device", "/dev/zero"},
      {"an empty name", ""},
      {"a file taken for a folder", writeFile(folder / "f", "x") + "/"},
      {"a link to itself", folder / "loop"},
      {"a name that is too long", folder / std::string(300, 'n')},
  };
  for (const auto& c : kCases) {
    const u32 before = faults::openDescriptors();
    DataBuffer b = bufferOf("old content");
    LogText log;
    EXPECT_FALSE(load(b, c.path, &log)) << c.what;
    EXPECT_EQ(b.getData2(), nullptr) << c.what;
    EXPECT_EQ(log.numErrors(), 1u) << c.what << "\n" << log.getText();
    EXPECT_EQ(std::string(log.getText()).rfind("loadFileX:\n", 0), 0u);
    EXPECT_EQ(faults::openDescriptors(), before) << c.what;
  }
  DataBuffer b = bufferOf("old content");
  EXPECT_FALSE(b.loadFileUtf8(nullptr, nullptr));
  EXPECT_EQ(b.getData2(), nullptr);
}

TEST(WholeFile, TakesNoNameWithANul) {
  const TempFolder folder;
  XString path;
  path.setFromUtf8(writeFile(folder / "f", "x").c_str());
  path.getUtf8Sb_rw().appendN("\0hidden", 7);
  DataBuffer b;
  LogNull log;
  EXPECT_FALSE(b.loadFileX(path, log));
}

TEST(WholeFile, TakesAnyOtherByteInAName) {
  const TempFolder folder;
  const std::string path = folder / "not UTF-8: \xFF\xFE, \\, \n";
  EXPECT_TRUE(bufferOf("x").db_saveToFileUtf8(path.c_str(), nullptr));
  DataBuffer b;
  EXPECT_TRUE(load(b, path));
  EXPECT_EQ(textOf(b), "x");
}

// What the system generates on reading has no length to be asked for.
TEST(WholeFile, LoadsAFileOfTheSystemAsEmpty) {
  DataBuffer b = bufferOf("old content");
  EXPECT_TRUE(load(b, "/proc/self/status"));
  EXPECT_EQ(b.getData2(), nullptr);
}

TEST(WholeFile, RefusesTooLargeAFileBeforeAllocating) {
  const TempFolder folder;
  const std::string path = writeFile(folder / "sparse", "");
  for (const u64 length : {0xFFFFFFE0ull, 0xFFFFFFFFull, 0x100000000ull, 0x180000005ull}) {
    std::filesystem::resize_file(path, length);
    DataBuffer b = bufferOf("old content");
    LogText log;
    EXPECT_FALSE(load(b, path, &log)) << length;
    EXPECT_LT(faults::lastAllocation(), 100'000u);
    EXPECT_EQ(b.getData2(), nullptr);
    EXPECT_EQ(log.numErrors(), 1u);
    EXPECT_NE(std::string(log.getText()).find(std::to_string(length)), std::string::npos);
  }
}

TEST(WholeFile, AsksForPermissionBeforeAllElse) {
  const TempFolder folder;
  const std::string path = writeFile(folder / "f", "x");
  DataBuffer b = bufferOf("old content");
  LogText log;
  _vkFileSys::setPermissions(false, true);
  EXPECT_FALSE(load(b, path, &log));
  _vkFileSys::setPermissions(true, true);
  EXPECT_EQ(textOf(b), "old content");
  EXPECT_EQ(std::string(log.getText()).find("loadFileX"), std::string::npos);
  EXPECT_TRUE(load(b, path));
}

TEST(WholeFile, KeepsWhatAFailedReadGave) {
  const TempFolder folder;
  const std::string path = writeFile(folder / "f", "0123456789");
  const struct {
    const char* what;
    u32 k;
    bool forGood;
    Fault fault;
    bool result;
    std::string_view left;
  } kCases[] = {
      {"interrupted once", 1, false, {Fault::kError, EINTR}, true, "0123456789"},
      {"short once", 1, false, {Fault::kShort, 1}, true, "0123456789"},
      {"short for good", 1, true, {Fault::kHalf, 0}, true, "0123456789"},
      {"error at once", 1, false, {Fault::kError, EIO}, false, {"\0\0\0\0\0\0\0\0\0\0", 10}},
      {"error half-way", 1, false, {Fault::kBreak, EIO}, false, {"01234\0\0\0\0\0", 10}},
      {"end half-way", 1, false, {Fault::kBreak, 0}, false, {"01234\0\0\0\0\0", 10}},
      {"end at once", 1, false, {Fault::kNothing, 0}, false, {"\0\0\0\0\0\0\0\0\0\0", 10}},
  };
  for (const auto& c : kCases) {
    DataBuffer b;
    LogText log;
    {
      const faults::FailCall fault(Call::kRead, c.k, c.forGood, c.fault);
      EXPECT_EQ(load(b, path, &log), c.result) << c.what;
    }
    EXPECT_EQ(textOf(b), c.left) << c.what;
    EXPECT_EQ(b.getBufSize(), 42u) << c.what;
    EXPECT_TRUE(isZero(b, 10, 42)) << c.what;
    EXPECT_EQ(log.numErrors(), c.result ? 0u : 1u) << c.what;
  }
}

// How many bytes of `content` a read of all of them put at an address `offset` bytes behind a page's start before its
// `k`-th call of the system failed half-way.
u32 readUntilFault(const std::string& path, const std::string& content, std::size_t offset, u32 k) {
  XString name;
  name.setFromUtf8(path.c_str());
  LogNull log;
  FileHandle file;
  int error = -1;
  EXPECT_TRUE(_vkFileSys::openFileForRead(file, name, false, error, log));
  GuardedBytes memory(content.size() + 4096);
  u8* area = memory.starting("") + offset;
  u32 numRead = 0;
  bool atEnd = false, done = false;
  {
    const faults::FailAllocation refused(k == 0 ? 1 : 0, true);
    const faults::FailCall armed(Call::kRead, k, false, {Fault::kBreak, EIO});
    done = file.readBytesToBuf32(area, countOf(content), numRead, atEnd, log);
    EXPECT_EQ(done, !armed.struck());
  }
  EXPECT_EQ(done, numRead == content.size());
  EXPECT_FALSE(atEnd);
  EXPECT_EQ(std::memcmp(area, content.data(), numRead), 0);
  return numRead;
}

// Where a large area begins decides how it is filled, not what comes of it; nor does memory that is not to be had.
TEST(WholeFile, ReadsLargeFilesToAnyAddress) {
  const TempFolder folder;
  const std::string content = randomBytes(9'000'001), path = writeFile(folder / "f", content);
  for (const std::size_t offset : {0u, 1u, 16u, 64u, 100u}) {
    EXPECT_EQ(readUntilFault(path, content, offset, 0), content.size());
    EXPECT_GT(readUntilFault(path, content, offset, 1), 100'000u);
    EXPECT_EQ(readUntilFault(path, content, offset, 1000), content.size());
  }
  EXPECT_GT(readUntilFault(path, content, 16, 20), 20 * 100'000u);
}

TEST(WholeFile, SurvivesEachFailure) {
  const TempFolder folder;
  const std::string path = writeFile(folder / "f", "0123456789");
  const u32 before = faults::openDescriptors();
  u32 struck = 0;
  for (const int error : {EIO, ENOSPC, EINTR, EACCES, EMFILE, ENOMEM})
    for (const bool forGood : {false, true})
      for (u32 k = 1; !(forGood && error == EINTR); ++k) {  // a call that is interrupted for ever is repeated for ever
        DataBuffer b = bufferOf("old content");
        const faults::FailCall fault(Call::kAny, k, forGood, {Fault::kError, error});
        const bool done = load(b, path);
        if (!fault.struck()) break;
        ++struck;
        EXPECT_EQ(faults::openDescriptors(), before);
        if (done) {
          EXPECT_EQ(textOf(b), "0123456789");
        } else {
          EXPECT_TRUE(b.getData2() == nullptr || b.size() == 10u);
        }
      }
  EXPECT_GE(struck, 30u);

  EXPECT_EQ(faults::openDescriptors(), before);
}

}  // namespace
