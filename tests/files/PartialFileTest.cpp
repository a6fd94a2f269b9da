#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "tests/support/Bytes.h"
#include "tests/support/SystemCalls.h"
#include "tests/support/TempFolder.h"

namespace {

using faults::Call;
using faults::Fault;

const std::string kSample = fromHex("0A000000") + "headerbody";

TEST(PartialFile, SplitsHeaderAndBody) {
  const TempFolder folder;
  const struct {
    const char* what;
    std::string content;
    u32 limit;
    bool result, cacheResult;
    std::string_view header, body;  // of a header loaded when `result`, `cacheResult`
    u32 errors;
  } kCases[] = {
      {"the limit counts the prefix", kSample, 10, true, true, "header", "body", 0},
      {"a limit that is too low", kSample, 9, false, false, "", "", 1},
      {"no header", fromHex("04000000") + "body", 100, false, true, "", "", 1},
      {"below the least", fromHex("03000000") + "body", 100, false, false, "", "", 1},
      {"no body", fromHex("06000000") + "ab", 100, true, true, "ab", "", 0},
      {"a promise of one byte more", fromHex("07000000") + "ab", 100, false, false, "", "", 1},
      {"the largest promise", fromHex("FFFFFFFF") + "ab", 0xFFFFFFFF, false, false, "", "", 1},
      {"shorter than the prefix", fromHex("040000"), 100, true, true, "", "", 1},
      {"nothing", "", 100, true, true, "", "", 1},
  };
  for (const auto& c : kCases) {
    const std::string path = writeFile(folder / "f", c.content);
    DataBuffer body = bufferOf("old body"), header = bufferOf("old header"), cached = bufferOf("old");
    LogText log;
    EXPECT_EQ(body.loadFileWithHeaderUtf8(path.c_str(), header, c.limit, log), c.result) << c.what;
    EXPECT_EQ(textOf(body), c.body) << c.what;
    EXPECT_EQ(textOf(header), c.header.empty() ? "old header" : c.header) << c.what;
    EXPECT_EQ(log.numErrors(), c.errors) << c.what << log.getText();
    LogText cacheLog;
    EXPECT_EQ(cached.loadCacheHeaderUtf8(path.c_str(), c.limit, cacheLog), c.cacheResult) << c.what;
    EXPECT_EQ(textOf(cached), c.header) << c.what;
  }
}

TEST(PartialFile, GivesBlocksOfTheRightSize) {
  const TempFolder folder;
  const std::string path = writeFile(folder / "f", kSample), bare = writeFile(folder / "g", fromHex("0500000041"));
  DataBuffer body, header;
  LogNull log;
  ASSERT_TRUE(body.loadFileWithHeaderUtf8(path.c_str(), header, 10, log));
  EXPECT_EQ(body.getBufSize(), 8u);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(body.getData2()), 8), std::string("body\0\0\0\0", 8));
  EXPECT_EQ(header.getBufSize(), 20'000u);
  ASSERT_TRUE(body.loadFileWithHeaderUtf8(bare.c_str(), header, 10, log));
  EXPECT_EQ(body.size(), 0u);
  EXPECT_EQ(body.getBufSize(), 4u);
}

TEST(PartialFile, LoadsChunks) {
  const TempFolder folder;
  const std::string content = randomBytes(100), path = writeFile(folder / "f", content);
  constexpr struct {
    s64 offset;
    u32 maxLen;
    bool result;
    u32 start, length;
  } kCases[] = {{0, 50, true, 0, 50},   {0, 100, true, 0, 100},         {0, 0xFFFFFFFF, true, 0, 100},
                {90, 50, true, 90, 10}, {99, 1, true, 99, 1},           {100, 1, false, 0, 0},
                {101, 1, false, 0, 0},  {s64{1} << 62, 1, false, 0, 0}, {INT64_MAX, 1, false, 0, 0}};
  for (const auto& c : kCases) {
    DataBuffer b = bufferOf("old");
    LogText log;
    const u64 seeks = faults::calls(Call::kSeek);
    EXPECT_EQ(b.loadFileChunk(path.c_str(), c.offset, c.maxLen, log), c.result) << c.offset;
    EXPECT_EQ(textOf(b), content.substr(c.start, c.length)) << c.offset;
    EXPECT_EQ(b.getBufSize(), c.length);
    EXPECT_EQ(faults::calls(Call::kSeek) - seeks, c.offset > 0 && c.result ? 1u : 0u);
    EXPECT_EQ(log.numErrors(), 0u);
  }
  DataBuffer b = bufferOf("old");
  LogText log;
  EXPECT_FALSE(b.loadFileChunk(nullptr, 0, 1, log) || b.loadFileChunk(path.c_str(), -1, 1, log) ||
               b.loadFileChunk(path.c_str(), 0, 0, log));
  EXPECT_EQ(textOf(b), "old");
  EXPECT_STREQ(log.getText(), "");
}

TEST(PartialFile, LoadsAChunkFarBehind32Bits) {
  const TempFolder folder;
  const std::string path = writeFile(folder / "sparse", "");
  constexpr s64 kGiB = s64{1} << 30;
  std::filesystem::resize_file(path, 6 * kGiB);
  std::fstream(path, std::ios::in | std::ios::out).seekp(5 * kGiB).write("far away", 8);
  DataBuffer b, header;
  LogText log;
  EXPECT_TRUE(b.loadFileChunk(path.c_str(), 5 * kGiB - 1, 10, log));
  EXPECT_EQ(textOf(b), std::string("\0far away\0", 10));
  EXPECT_TRUE(b.loadFileChunk(path.c_str(), 6 * kGiB - 5, 1000, log));
  EXPECT_EQ(b.size(), 5u);
  EXPECT_FALSE(b.loadFileWithHeaderUtf8(path.c_str(), header, 100, log)) << "its length does not fit in 32 bits";
  EXPECT_EQ(log.numErrors(), 0u);
  EXPECT_FALSE(b.loadCacheHeaderUtf8(path.c_str(), 100, log));
  EXPECT_EQ(log.numErrors(), 1u);
}

TEST(PartialFile, AsksForItsPermission) {
  const TempFolder folder;
  const std::string path = writeFile(folder / "f", kSample);
  for (const bool mayRead : {false, true}) {
    DataBuffer body = bufferOf("old"), header = bufferOf("old"), cached = bufferOf("old"), chunk = bufferOf("old");
    LogText log;
    _vkFileSys::setPermissions(mayRead, !mayRead);
    EXPECT_EQ(body.loadFileWithHeaderUtf8(path.c_str(), header, 10, log), mayRead);
    EXPECT_EQ(chunk.loadFileChunk(path.c_str(), 10, 4, log), mayRead);
    EXPECT_EQ(cached.loadCacheHeaderUtf8(path.c_str(), 10, log), !mayRead);
    _vkFileSys::setPermissions(true, true);
    EXPECT_EQ(textOf(body) + textOf(header) + textOf(chunk), mayRead ? "bodyheaderbody" : "oldoldold");
    EXPECT_EQ(textOf(cached), mayRead ? "old" : "header");
  }
}

// The three loaders under one signature.
using Loader = bool (*)(DataBuffer& b, DataBuffer& header, const char* path, LogBase& log);
constexpr Loader kLoaders[] = {
    [](DataBuffer& b, DataBuffer& header, const char* path, LogBase& log) {
      return b.loadFileWithHeaderUtf8(path, header, 100, log);
    },
    [](DataBuffer& b, DataBuffer&, const char* path, LogBase& log) { return b.loadCacheHeaderUtf8(path, 100, log); },
    [](DataBuffer& b, DataBuffer&, const char* path, LogBase& log) { return b.loadFileChunk(path, 4, 6, log); },
};

TEST(PartialFile, RefusesWhatIsNoFile) {
  const TempFolder folder;
  mkfifo((folder / "pipe").c_str(), 0600);
  for (const std::string& path : {folder / "missing", folder.path(), folder / "pipe", std::string()})
    for (const Loader load : kLoaders) {
      DataBuffer b = bufferOf("old"), header = bufferOf("old");
      LogText log;
      EXPECT_FALSE(load(b, header, path.c_str(), log)) << path;
      EXPECT_EQ(b.getData2(), nullptr);
      EXPECT_EQ(textOf(header), "old");
    }
}

TEST(PartialFile, KeepsWhatAFailedReadOfTheBodyGave) {
  const TempFolder folder;
  const std::string path = writeFile(folder / "f", kSample);
  for (const int error : {EIO, 0}) {
    DataBuffer body, header;
    LogText log;
    const faults::FailCall armed(Call::kRead, 3, false, {Fault::kBreak, error});
    EXPECT_FALSE(body.loadFileWithHeaderUtf8(path.c_str(), header, 10, log));
    EXPECT_EQ(textOf(body), std::string("bo\0\0", 4));
    EXPECT_EQ(body.getBufSize(), 8u);
    EXPECT_EQ(textOf(header), "header");
    EXPECT_EQ(log.numErrors(), 1u);
  }
}

// A failure leaves the buffer empty; only a failed read of the body leaves its size, with zeros.
TEST(PartialFile, SurvivesEachFailure) {
  const TempFolder folder;
  const std::string path = writeFile(folder / "f", kSample);
  const u32 before = faults::openDescriptors();
  u32 struck = 0;
  for (const Loader load : kLoaders)
    for (const Fault fault :
         {Fault{Fault::kError, EIO}, Fault{Fault::kError, EINTR}, Fault{Fault::kError, EMFILE}, Fault{Fault::kShort, 1},
          Fault{Fault::kHalf, 0}, Fault{Fault::kNothing, 0}, Fault{Fault::kBreak, EIO}})
      for (u32 k = 1;; ++k) {
        DataBuffer b = bufferOf("old"), header;
        LogNull log;
        const faults::FailCall armed(Call::kAny, k, false, fault);
        const bool done = load(b, header, path.c_str(), log);
        if (!armed.struck()) break;
        ++struck;
        EXPECT_EQ(faults::openDescriptors(), before);
        if (done) {
          EXPECT_TRUE(textOf(b) == "body" || textOf(b) == "header");
        } else {
          EXPECT_TRUE(b.getData2() == nullptr || textOf(b) == std::string(4, '\0') ||
                      textOf(b) == std::string("bo\0\0", 4));
        }
      }
  EXPECT_GE(struck, 60u);

  EXPECT_EQ(faults::openDescriptors(), before);
}

}  // namespace
