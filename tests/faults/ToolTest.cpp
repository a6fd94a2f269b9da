// The tool out of memory: each command, as the examples of its help have it, with every allocation refused in turn,
// once and for good. It does its work or says why not, with its status, and files are the old or the new ones.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <openssl/crypto.h>

#include <CLI/CLI.hpp>
#include <iomanip>
#include <map>

#include "tests/support/Allocations.h"
#include "tests/support/Soak.h"
#include "tests/tool/Run.h"
#include "tools/vkbuf/CommandLine.h"
#include "tools/vkbuf/Failure.h"

// The linker's --wrap=main: the program starts here, and the tool's own `main` goes by the other name.
extern "C" int __real_main(int argc, char** argv);
extern "C" int __wrap_main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}

namespace {

using Files = std::map<std::string, std::string>;
const char* const kStreams[] = {"in", "out", "err"};  // files in the folder like others

Files filesHere() {
  Files files;
  for (const auto& each : std::filesystem::directory_iterator("."))
    files[each.path().filename()] = readFile(each.path());
  return files;
}

void restore(const Files& wanted) {
  for (const auto& each : std::filesystem::directory_iterator("."))
    if (!wanted.contains(each.path().filename())) std::filesystem::remove(each);
  for (const auto& [name, content] : wanted) writeFile(name, content);
}

struct Ended {
  int status;
  bool struck;
  s64 blocksLeft;
  u64 allocations;
  Files files;
};

Ended run(std::vector<std::string> words, u32 k, bool forGood) {
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  int kept[3];
  for (int n = 0; n < 3; ++n) {
    kept[n] = dup(n);
    const int file = open(kStreams[n], n == 0 ? O_RDONLY : O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(file, n);
    close(file);
  }
  Ended ended;
  const s64 blocks = faults::tally.live;
  const u64 allocations = faults::tally.blocks;
  {
    const faults::FailAllocation refusal(k, forGood);
    ended.status = __real_main(static_cast<int>(words.size()), argv.data());
    ended.struck = refusal.struck();
  }
  ended.allocations = faults::tally.blocks - allocations;
  OPENSSL_thread_stop();
  ended.blocksLeft = faults::tally.live - blocks;
  for (int n = 0; n < 3; ++n) {
    dup2(kept[n], n);
    close(kept[n]);
  }
  ended.files = filesHere();
  return ended;
}

u32 refuseEach(const std::string& line) {
  std::istringstream in(line);
  std::vector<std::string> words;
  for (std::string word; in >> std::quoted(word, '\'');) words.push_back(word);
  const Files before = filesHere();
  const Ended first = run(words, 0, false);  // the services make what they keep for later calls
  restore(before);
  const Ended whole = run(words, 0, false);
  const bool isRepeatable = first.files == whole.files;  // random bytes are not
  const auto among = [&](const Files& files, const auto& file) {
    const auto at = files.find(file.first);
    return at != files.end() && (isRepeatable ? at->second == file.second : at->second.size() == file.second.size());
  };
  u32 refusals = 0;  // of the parser's allocations, which come first, only some
  for (const bool forGood : {false, true})
    for (u64 k = 1;; k += soaks() || k + 128 > whole.allocations ? 1 : 1 + whole.allocations / 32) {
      restore(before);
      const Ended now = run(words, static_cast<u32>(k), forGood);
      if (!now.struck) break;
      ++refusals;
      SCOPED_TRACE(::testing::Message() << line << ": allocation " << k << (forGood ? " and all after it" : ""));
      EXPECT_EQ(now.blocksLeft, 0);
      EXPECT_TRUE(now.status == kFailed ? now.files.at("err").starts_with("vkbuf: ") : now.status == whole.status)
          << now.status << now.files.at("err");
      for (const auto& file : now.files) {
        const bool isStream = file.first == "out" || file.first == "err";
        EXPECT_TRUE((now.status == kFailed && (isStream || among(before, file))) || among(whole.files, file))
            << file.first << ": " << file.second.substr(0, 80);
      }
    }
  restore(whole.files);
  return refusals;
}

}  // namespace

TEST(AllocationFailures, Tool) {
  setenv("TMPDIR", "/dev/shm", 0);  // much is saved
  const Desk desk;
  std::filesystem::current_path(desk.at("."));
  std::filesystem::copy("koi8-r.xml", "letter.bin");
  u32 lines = 0, refusals = 0;
  for (const Command& command : allCommands()) {
    std::istringstream examples(CommandLine(command).app->get_footer());
    for (std::string example; std::getline(examples, example);) {
      if (!example.starts_with("  vkbuf ")) continue;
      std::ofstream("in").flush();
      std::istringstream parts(example.substr(0, example.find(" &&")));
      for (std::string part; std::getline(parts, part, '|'); ++lines) {
        refusals += refuseEach(part);
        std::filesystem::rename("out", "in");
      }
    }
  }
  std::printf("%u command lines, %u refusals\n", lines, refusals);
}
