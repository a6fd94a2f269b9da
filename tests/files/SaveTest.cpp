// Saving: the whole old content or the whole new, whatever happens.
#include <fcntl.h>
#include <sys/stat.h>

#include <csignal>

#include "tests/support/Test.h"
#include "varnik/services/files/internal/AtomicFile.h"

namespace {

bool save(const std::string& path, std::string_view content, LogBase* log = nullptr) {
  return borrowing(const_cast<char*>(content.data()), content.size()).db_saveToFileUtf8(path.c_str(), log);
}

struct stat statOf(const std::string& path) {
  struct stat facts = {};
  stat(path.c_str(), &facts);
  return facts;
}
mode_t modeOf(const std::string& path) {
  return statOf(path).st_mode & 07777;
}

// Saves in a process of another user.
bool savesAsNobody(const std::string& path, const char* content) {
  const int status = inChild([&] { return setgid(65534) != 0 || setuid(65534) != 0 ? 77 : save(path, content); });
  EXPECT_LE(status, 1);
  return status == 1;
}

TEST(Save, CreatesAndReplaces) {
  const TempFolder folder;
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  for (const std::string& name : {folder / std::string(255, 'n'), "here"s, "./here too"s})
    for (const u32 length : {0u, 1u, 100'000u, 0u, 20'000'000u}) {
      const std::string content = randomBytes(length, length);
      EXPECT_TRUE(save(name, content));
      EXPECT_TRUE(readFile(name) == content) << length;
    }
  std::filesystem::current_path(before);
  EXPECT_EQ(folder.entries(), 3u);
  const std::string path = folder / "here";
  EXPECT_TRUE(_vkFileSys::writeFileUtf8(path.c_str(), nullptr, 0, nullptr));
  EXPECT_EQ(readFile(path), "");
  EXPECT_FALSE(_vkFileSys::writeFileUtf8(path.c_str(), nullptr, 1, nullptr));
}

TEST(Save, GivesANewFileTheModeOfAnyNewFileAndKeepsAnOldOnes) {
  const TempFolder folder;
  for (const mode_t mask : {0u, 022u, 027u, 077u, 0777u}) {
    const std::string path = folder / std::to_string(mask);
    const mode_t before = umask(mask);
    EXPECT_TRUE(save(path, "x"));
    EXPECT_EQ(umask(before), mask) << "the umask was changed";
    EXPECT_EQ(modeOf(path), 0666 & ~mask);
  }
  const std::string path = writeFile(folder / "f", "old");
  const bool privileged = geteuid() == 0;
  for (const mode_t mode : {0600u, 0644u, 0755u, 0666u, 02750u, 04711u}) {
    ASSERT_TRUE(!privileged || chown(path.c_str(), 65534, 12345) == 0);
    ASSERT_EQ(chmod(path.c_str(), mode), 0);
    EXPECT_TRUE(save(path, "new"));
    EXPECT_EQ(modeOf(path), mode);
    EXPECT_TRUE(!privileged || (statOf(path).st_uid == 65534 && statOf(path).st_gid == 12345));
  }
}

// While it fills, nobody else can open the temporary, whatever the target's mode will be.
TEST(Save, HidesTheTemporaryUntilItIsFull) {
  const TempFolder folder;
  const mode_t before = umask(0);
  chmod(writeFile(folder / "old", "x").c_str(), 0666);
  for (const char* name : {"new", "old"}) {
    vk_files::AtomicFile file;
    ASSERT_TRUE(file.open((folder / name).c_str()) && file.write("abc", 3));
    u32 seen = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
      seen += entry.path().filename().string()[0] == '.' && modeOf(entry.path()) == 0600;
    EXPECT_EQ(seen, 1u);
    EXPECT_TRUE(file.commit());
    EXPECT_EQ(modeOf(folder / name), 0666u);
  }
  umask(before);
}

TEST(Save, FollowsLinks) {
  const TempFolder folder;
  namespace fs = std::filesystem;
  fs::create_directories(folder / "a/b");
  writeFile(folder / "a/b/target", "old");
  fs::create_symlink("b/target", folder / "a/near");
  fs::create_symlink(folder / "a/near", folder / "far");
  fs::create_symlink("a", folder / "door");
  fs::create_symlink("a/b/missing", folder / "dangling");
  for (const std::string path : {"far", "door/near", "door/b/../near", "dangling"}) {
    EXPECT_TRUE(save(folder / path, path));
    EXPECT_EQ(readFile(folder / (path == "dangling" ? "a/b/missing" : "a/b/target")), path);
    for (const char* link : {"far", "a/near", "dangling"}) EXPECT_TRUE(fs::is_symlink(folder / link)) << link;
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(folder / "a/b"), {}), 2);
}

TEST(Save, RefusesWhatCannotBeWritten) {
  const TempFolder folder;
  std::filesystem::create_directory(folder / "folder");
  std::filesystem::create_symlink("loop", folder / "loop");
  std::filesystem::create_symlink("nowhere/", folder / "to no folder");
  writeFile(folder / "file", "x");
  const std::size_t entries = folder.entries();
  const u32 before = faults::openDescriptors();
  for (const std::string& name :
       {""s, "folder"s, "folder/"s, "new/"s, "missing/f"s, "loop"s, "to no folder"s, "file/f"s, "/dev/full"s,
        "/proc/self/status"s, std::string(256, 'n'), "." + std::string(5000, '/') + "f"}) {
    LogText log;
    EXPECT_FALSE(save(name.empty() || name[0] == '/' ? name : folder / name, "new", &log)) << name;
    EXPECT_EQ(log.numErrors(), 1u) << log.getText();
    EXPECT_NE(std::string(log.getText()).find("reason: "), std::string::npos);
  }
  EXPECT_FALSE(_vkFileSys::writeFileUtf8(nullptr, bytesOf("x"), 1, nullptr));
  EXPECT_EQ(folder.entries(), entries);
  EXPECT_EQ(faults::openDescriptors(), before);
}

TEST(Save, AsksForTheRightsOfTheCaller) {
  if (geteuid() != 0) GTEST_SKIP() << "another user's rights can only be tried by root";
  const TempFolder folder;
  chmod(folder.path().c_str(), 0777);
  const std::string theirs = writeFile(folder / "theirs", "old"), open = writeFile(folder / "open", "old");
  chmod(theirs.c_str(), 0644);
  chmod(open.c_str(), 0646);
  EXPECT_FALSE(savesAsNobody(theirs, "new")) << "a rename would have replaced it";
  EXPECT_TRUE(savesAsNobody(open, "new") && savesAsNobody(folder / "own", "new"));
  chmod(folder.path().c_str(), 0755);
  EXPECT_FALSE(savesAsNobody(open, "newer")) << "the folder takes no temporary";
  EXPECT_EQ(readFile(theirs) + readFile(open), "oldnew");
  EXPECT_EQ(modeOf(open), 0646u);
  EXPECT_EQ(folder.entries(), 3u);
}

TEST(Save, WritesDevicesAndPipesDirectly) {
  const TempFolder folder;
  const struct stat device = statOf("/dev/null");
  EXPECT_TRUE(save("/dev/null", "gone"));
  EXPECT_TRUE(S_ISCHR(statOf("/dev/null").st_mode) && statOf("/dev/null").st_ino == device.st_ino);

  const std::string pipe = folder / "pipe", content = randomBytes(200'000);
  mkfifo(pipe.c_str(), 0600);
  std::string got;
  std::thread reader([&] { got = readFile(pipe); });
  EXPECT_TRUE(save(pipe, content));
  reader.join();
  EXPECT_TRUE(got == content);
  EXPECT_TRUE(std::filesystem::is_fifo(pipe));
}

// A reader that goes away makes the save fail and nothing else: no signal ends the process.
TEST(Save, OutlivesTheReaderOfAPipe) {
  const TempFolder folder;
  const std::string pipe = folder / "pipe";
  mkfifo(pipe.c_str(), 0600);
  const auto outlives = [&] {
    signal(SIGPIPE, SIG_DFL);
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
    vk_files::AtomicFile file;
    bool right = file.open(pipe.c_str());
    close(reader);
    right = right && !file.write("lost", 4) && file.error() == EPIPE && !file.commit();
    sigset_t waiting, blocked;
    sigpending(&waiting);
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    return right && !sigismember(&waiting, SIGPIPE) && !sigismember(&blocked, SIGPIPE);
  };
  EXPECT_EQ(inChild(outlives), 1);
}

TEST(Save, LeavesOldOrNewAfterEachFailure) {
  const TempFolder folder;
  const std::string path = folder / "f", now = "new content, longer";
  u32 struck = 0;
  for (const std::string old : {"(none)", "old content"}) {
    const auto sweep = [&](Call call, bool forGood, Fault fault) {
      struck += faults::strikeEach(call, forGood, fault, [&] {
        std::filesystem::remove(path);
        if (old != "(none)") writeFile(path, old);
        const bool done = save(path, now);
        const std::string left = readFile(path);
        EXPECT_TRUE(left == now || (!done && left == old)) << left;
        EXPECT_LE(folder.entries(), 1u) << "a temporary is left";
      });
    };
    for (const int error : {EIO, ENOSPC, EACCES, EMFILE, EDQUOT, EINTR})
      for (u32 call = 0; call <= static_cast<u32>(Call::kAny); ++call)  // a call interrupted for good is made for ever
        if (const bool any = static_cast<Call>(call) == Call::kAny; any || error != EINTR)
          sweep(static_cast<Call>(call), !any, {Fault::kError, error});
    for (const Fault fault :
         {Fault{Fault::kShort, 1}, Fault{Fault::kHalf, 0}, Fault{Fault::kNothing, 0}, Fault{Fault::kBreak, ENOSPC}})
      for (const bool forGood : {false, true}) sweep(Call::kWrite, forGood, fault);
  }
  EXPECT_GE(struck, 200u);
}

// Before the rename every failure leaves the old file; the rename's own and what comes before it are told.
TEST(Save, TellsEachFailureOfTheDisk) {
  const TempFolder folder;
  const std::string path = folder / "f";
  constexpr std::pair<Call, u32> kCalls[] = {{Call::kWrite, 1u}, {Call::kChmod, 1u},  {Call::kSync, 1u},
                                             {Call::kClose, 1u}, {Call::kRename, 1u}, {Call::kSync, 2u}};
  for (const auto& [call, k] : kCalls) {
    writeFile(path, "old");
    LogText log;
    const faults::FailCall fault(call, k, false, {Fault::kError, EIO});
    EXPECT_FALSE(save(path, "new", &log)) << static_cast<int>(call);
    EXPECT_EQ(readFile(path), k == 2 ? "new" : "old") << static_cast<int>(call);
    EXPECT_EQ(log.numErrors(), 1u);
  }
}

TEST(Save, IsWholeWhereverTheProcessDies) {
  for (const std::string old : {"(none)", "old content"})
    for (u32 k = 1, status = 9; status == 9; ++k) {
      const TempFolder folder;
      const std::string path = folder / "f", content = randomBytes(300'000);
      if (old != "(none)") writeFile(path, old);
      status = static_cast<u32>(inChild([&] {
        const faults::FailCall armed(Call::kAny, k, false, {Fault::kDie, 0});
        return !save(path, content);
      }));
      const std::string left = readFile(path);
      EXPECT_TRUE(left == content || left == old) << "call " << k;
      EXPECT_TRUE(status == 9 || (status == 0 && k > 10)) << "call " << k;
    }
}

TEST(AtomicFile, TakesPiecesAndCanBeGivenUp) {
  const TempFolder folder;
  const std::string path = writeFile(folder / "f", "old");
  {
    vk_files::AtomicFile givenUp;
    EXPECT_TRUE(givenUp.open(path.c_str()) && givenUp.write("new", 3) && readFile(path) == "old");
  }
  EXPECT_EQ(readFile(path), "old");
  EXPECT_EQ(folder.entries(), 1u);
  vk_files::AtomicFile file;
  EXPECT_FALSE(file.write("x", 1) || file.commit());
  EXPECT_TRUE(file.open(path.c_str()) && file.write("ne", 2) && file.write(nullptr, 0) && file.write("w", 1));
  EXPECT_TRUE(file.commit());
  EXPECT_FALSE(file.write("x", 1) || file.commit());
  EXPECT_EQ(readFile(path), "new");
}

}  // namespace
