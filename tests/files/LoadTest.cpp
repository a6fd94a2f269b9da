// Loading: whole files, header-prefixed files, chunks.
#include <sys/stat.h>

#include "tests/support/Test.h"

namespace {

const std::string kSample = "\x0A\0\0\0headerbody"s;

// The four loaders under one signature, and what each gives of the sample.
constexpr struct Loader {
  bool (*load)(DataBuffer& b, DataBuffer& header, const char* path, LogBase& log);
  std::string_view given;
  u32 spare;               // the zeros behind it
  bool leavesPart, reads;  // when a read fails; asks for the permission to read
} kLoaders[] = {
    {[](DataBuffer& b, DataBuffer&, const char* path, LogBase& log) { return b.loadFileUtf8(path, &log); },
     "\x0A\0\0\0headerbody"sv, 32, true, true},
    {[](DataBuffer& b, DataBuffer& header, const char* path, LogBase& log) {
       return b.loadFileWithHeaderUtf8(path, header, 100, log);
     },
     "body", 4, true, true},
    {[](DataBuffer& b, DataBuffer&, const char* path, LogBase& log) { return b.loadCacheHeaderUtf8(path, 100, log); },
     "header", 0, false, false},
    {[](DataBuffer& b, DataBuffer&, const char* path, LogBase& log) { return b.loadFileChunk(path, 4, 6, log); },
     "header", 0, false, true},
};

// Whether the block is zero behind the content to its end.
bool endsInZeros(const DataBuffer& b) {
  for (u32 i = b.size(); i < b.getBufSize(); ++i)
    if (*b.getBufAt(i) != 0) return false;
  return true;
}

TEST(Load, WholeFilesWithZerosBehind) {
  const TempFolder folder;
  char lent[] = "lent";
  for (const u32 length : {0u, 1u, 5u, 4096u, 100'000u, 9'000'000u, 16'777'217u}) {
    const std::string content = randomBytes(length), path = folder / "not UTF-8: \xFF\xFE, \\, \n";
    DataBuffer b = borrowing(lent, 4);
    ASSERT_TRUE(b.loadFileUtf8(writeFile(path, content).c_str(), nullptr)) << length;
    EXPECT_TRUE(textOf(b) == content && b.heapUsage() == (length == 0 ? 0 : length + 32)) << length;
    EXPECT_TRUE(endsInZeros(b) && (length != 0 || !b.getData2()));
  }
  EXPECT_STREQ(lent, "lent");
  DataBuffer b = bufferOf("old");  // what the system generates on reading has no length to be asked for
  EXPECT_TRUE(b.loadFileUtf8("/proc/self/status", nullptr));
  EXPECT_EQ(stateOf(b), " of 0, no block");
}

TEST(Load, SplitsHeaderAndBody) {
  const TempFolder folder;
  const std::string kLong(66'048, 'h'), kRefused = "old: of 0, no block, 1 error; refused";
  const std::tuple<std::string, u32, std::string> kCases[] = {
      // the file, the limit, "HEADER:BODY of CAPACITY", and of the header alone
      {kSample, 10, "header:body of 8; header"},
      {kSample, 9, "refused, " + kRefused},
      {"\4\2\1\0"s + kLong + "ab", 66'052, kLong + ":ab of 6; " + kLong},
      {"\4\0\0\0body"s, 100, "refused, old: of 0, no block, 1 error; "},
      {"\3\0\0\0body"s, 100, "refused, " + kRefused},
      {"\6\0\0\0ab"s, 100, "ab: of 4; ab"},
      {"\7\0\0\0ab"s, 100, "refused, " + kRefused},
      {"\xFF\xFF\xFF\xFF", 0xFFFFFFFF, "refused, " + kRefused},
      {"\4\0\0"s, 100, "old: of 0, no block, 1 error; "},
  };
  for (const auto& [content, limit, want] : kCases) {
    const std::string path = writeFile(folder / "f", content);
    DataBuffer body = bufferOf("old body"), header = bufferOf("old"), cached = bufferOf("old");
    LogText log;
    std::string got = body.loadFileWithHeaderUtf8(path.c_str(), header, limit, log) ? "" : "refused, ";
    got += textOf(header) + ":" + stateOf(body) + (log.numErrors() == 1 ? ", 1 error; " : "; ");
    got += cached.loadCacheHeaderUtf8(path.c_str(), limit, nowhere) ? textOf(cached) : "refused";
    EXPECT_EQ(got, want);
    EXPECT_TRUE(endsInZeros(body) && log.numErrors() <= 1 && (!got.ends_with("refused") || cached.empty()));
  }
}

TEST(Load, Chunks) {
  const TempFolder folder;
  const std::string content = randomBytes(100), path = writeFile(folder / "f", content);
  constexpr std::tuple<s64, u32, u32> kCases[] = {
      {0, 50, 50}, {0, 100, 100}, {0, 0xFFFFFFFF, 100}, {90, 50, 10},      {99, 1, 1}, {100, 1, 0},
      {101, 1, 0}, {200, 1, 0},   {s64{1} << 62, 1, 0}, {INT64_MAX, 1, 0}, {-1, 1, 0}, {0, 0, 0}};
  for (const auto& [offset, maxLen, length] : kCases) {
    DataBuffer b = bufferOf("old");
    LogText log;
    const bool isAsked = offset >= 0 && maxLen != 0;
    const u64 seeks = faults::calls(Call::kSeek);
    EXPECT_EQ(b.loadFileChunk(path.c_str(), offset, maxLen, log), length != 0) << offset;
    EXPECT_EQ(textOf(b), isAsked ? content.substr(length ? static_cast<u32>(offset) : 0, length) : "old");
    EXPECT_EQ(b.getBufSize(), isAsked ? length : 20'000);
    EXPECT_EQ(faults::calls(Call::kSeek) - seeks, offset > 0 && length != 0 ? 1u : 0u);
    EXPECT_STREQ(log.getText(), isAsked ? "loadFileChunk:\n" : "");
    EXPECT_FALSE(b.loadFileChunk(nullptr, 0, 1, log));
  }
}

TEST(Load, FilesOf4GiBAndMore) {
  const TempFolder folder;
  const std::string path = writeFile(folder / "sparse", "");
  DataBuffer b, header;
  LogText log;
  for (const u64 length : {0xFFFFFFE0ull, 0xFFFFFFFFull, 0x100000000ull, 0x180000000ull}) {
    std::filesystem::resize_file(path, length);
    b.append("old", 3);
    log.clear();
    EXPECT_FALSE(b.loadFileUtf8(path.c_str(), &log)) << length;
    EXPECT_LT(faults::tally.last, 100'000u) << "it is refused before anything is asked for";
    EXPECT_EQ(b.getData2(), nullptr);
    EXPECT_NE(std::string(log.getText()).find(std::to_string(length)), std::string::npos);
  }
  constexpr s64 kGiB = s64{1} << 30;
  std::fstream(path, std::ios::in | std::ios::out).seekp(5 * kGiB).write("far away", 8);
  log.clear();
  EXPECT_TRUE(b.loadFileChunk(path.c_str(), 5 * kGiB - 1, 10, log));
  EXPECT_EQ(textOf(b), "\0far away\0"s);
  EXPECT_TRUE(b.loadFileChunk(path.c_str(), 6 * kGiB - 5, 1000, log) && b.size() == 5);
  EXPECT_FALSE(b.loadFileWithHeaderUtf8(path.c_str(), header, 100, log) || log.numErrors() != 0);
  EXPECT_FALSE(b.loadCacheHeaderUtf8(path.c_str(), 100, log) || log.numErrors() != 1);
}

TEST(Load, RefusesWhatIsNoFile) {
  const TempFolder folder;
  mkfifo((folder / "pipe").c_str(), 0600);
  std::filesystem::create_symlink("loop", folder / "loop");
  writeFile(folder / "f", kSample);
  const u32 before = faults::openDescriptors();
  for (const std::string& name : {"missing"s, "."s, "pipe"s, "/dev/zero"s, ""s, "f/"s, "loop"s, std::string(300, 'n')})
    for (const Loader& loader : kLoaders) {
      const std::string path = name.empty() || name[0] == '/' ? name : folder / name;
      DataBuffer b = bufferOf("old"), header = bufferOf("old");
      LogText log;
      EXPECT_FALSE(loader.load(b, header, path.c_str(), log)) << path;
      EXPECT_TRUE(!b.getData2() && textOf(header) == "old") << path;
      EXPECT_EQ(faults::openDescriptors(), before) << path;
      if (&loader != kLoaders) continue;
      EXPECT_EQ(log.numErrors(), 1u) << path << "\n" << log.getText();
      EXPECT_EQ(std::string(log.getText()).rfind("loadFileX:\n", 0), 0u);
    }
  DataBuffer b = bufferOf("old");
  XString name = wideOf((folder / "f").c_str());
  name.getUtf8Sb_rw().appendN("\0hidden", 7);
  EXPECT_FALSE(b.loadFileUtf8(nullptr, nullptr) || b.getData2() || b.loadFileX(name, nowhere));
}

TEST(Load, AsksForItsPermissionBeforeAllElse) {
  const TempFolder folder;
  const std::string path = writeFile(folder / "f", kSample);
  for (const Loader& loader : kLoaders)
    for (const bool mayRead : {false, true}) {
      DataBuffer b = bufferOf(path + '\0'), header = bufferOf("old");  // the path lies in the buffer that is filled
      LogText log;
      _vkFileSys::setPermissions(mayRead, !mayRead);
      EXPECT_EQ(loader.load(b, header, reinterpret_cast<char*>(b.getData2()), log), mayRead == loader.reads);
      _vkFileSys::setPermissions(true, true);
      EXPECT_EQ(textOf(b), mayRead == loader.reads ? loader.given : path + '\0');
      EXPECT_TRUE(mayRead == loader.reads || std::string(log.getText()).find("loadFile") == std::string::npos);
    }
}

TEST(Load, KeepsWhatAFailedReadGave) {
  const TempFolder folder;
  const std::string path = writeFile(folder / "f", kSample);
  const std::string kNone(14, '\0'), kHalf = "\x0A\0\0\0hea\0\0\0\0\0\0\0"s, kOfBody = "bo\0\0"s;
  const std::tuple<u32, bool, Fault, std::string> kCases[] = {
      // the loader's first read of the content, whether for good, what it leaves: all, or it fails
      {0, false, {Fault::kError, EINTR}, kSample}, {0, false, {Fault::kShort, 1}, kSample},
      {0, true, {Fault::kHalf, 0}, kSample},       {0, false, {Fault::kError, EIO}, kNone},
      {0, false, {Fault::kBreak, EIO}, kHalf},     {0, false, {Fault::kBreak, 0}, kHalf},
      {0, false, {Fault::kNothing, 0}, kNone},     {1, false, {Fault::kBreak, EIO}, kOfBody},
      {1, false, {Fault::kBreak, 0}, kOfBody},
  };
  for (const auto& [which, forGood, fault, left] : kCases) {
    const Loader& loader = kLoaders[which];
    DataBuffer b, header = bufferOf("header");
    LogText log;
    const faults::FailCall armed(Call::kRead, which == 0 ? 1 : 3, forGood, fault);
    EXPECT_EQ(loader.load(b, header, path.c_str(), log), left == loader.given) << fault.kind << ' ' << fault.value;
    EXPECT_EQ(textOf(b), left) << fault.kind << ' ' << fault.value;
    EXPECT_TRUE(b.getBufSize() == left.size() + loader.spare && endsInZeros(b)) << left;
    EXPECT_EQ(textOf(header), "header");
    EXPECT_EQ(log.numErrors(), left == loader.given ? 0u : 1u) << left;
  }
}

// What a failure leaves is nothing, or what was read with zeros behind it.
TEST(Load, SurvivesEachFailure) {
  const TempFolder folder;
  const std::string path = writeFile(folder / "f", kSample);
  u32 struck = 0;
  for (const Loader& loader : kLoaders) {
    const auto load = [&] {
      DataBuffer b = bufferOf("old"), header;
      const bool done = loader.load(b, header, path.c_str(), nowhere);
      const std::string left = textOf(b);
      if (done || !b.getData2()) {
        EXPECT_EQ(left, done ? loader.given : "");
        return;
      }
      const auto read = std::min(left.find_last_not_of('\0') + 1, left.size());
      EXPECT_TRUE(loader.leavesPart && left.size() == loader.given.size());
      EXPECT_EQ(left.substr(0, read), loader.given.substr(0, read));
    };
    for (const bool forGood : {false, true})
      for (const int error : {EIO, EACCES, EMFILE, ENOMEM})
        struck += faults::strikeEach(Call::kAny, forGood, {Fault::kError, error}, load);
    for (const Fault fault : {Fault{Fault::kError, EINTR}, Fault{Fault::kShort, 1}, Fault{Fault::kHalf, 0},
                              Fault{Fault::kNothing, 0}, Fault{Fault::kBreak, EIO}})
      struck += faults::strikeEach(Call::kAny, false, fault, load);
  }
  EXPECT_GE(struck, 120u);
}

// A large area that does not begin with a line of the cache is filled by way of a block of its own, where there is
// memory for one.
TEST(Load, ReadsLargeFilesWithAStationOrWithout) {
  const TempFolder folder;
  const std::string content = randomBytes(9'000'001);
  XString name = wideOf(writeFile(folder / "f", content + "more").c_str());
  for (const auto& [failing, hasStation, least] : {std::tuple{0u, true, 9'000'001u},
                                                   {1u, true, 100'000u},
                                                   {20u, true, 2'000'000u},
                                                   {1u, false, 4'000'000u},
                                                   {20u, false, 9'000'001u}}) {
    FileHandle file;
    GuardedBytes memory(content.size());
    u8* const area = memory.ending(content.size());
    int error = -1;
    u32 numRead = 0;
    bool atEnd = true;
    ASSERT_TRUE(_vkFileSys::openFileForRead(file, name, false, error, nowhere));
    const faults::FailAllocation refused(!hasStation, true);
    const faults::FailCall armed(Call::kRead, failing, false, {Fault::kBreak, EIO});
    const bool done = file.readBytesToBuf32(area, countOf(content), numRead, atEnd, nowhere);
    EXPECT_TRUE(done == !armed.struck() && numRead >= least && (numRead == content.size()) != armed.struck() && !atEnd)
        << failing << numRead;
    EXPECT_EQ(std::memcmp(area, content.data(), numRead), 0);
  }
}

}  // namespace
