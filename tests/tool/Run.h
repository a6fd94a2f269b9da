// Runs the real tool through the shell, as a person would.
#pragma once

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <sstream>

#include "tests/support/TempFolder.h"

struct Ran {
  int status;  // the exit status; 128 and the signal's number for a process that was killed
  std::string out, err;
  long mostResident;  // KiB, at the most
};

/// A folder of its own for a test, with the sample documents in it; gone with the object.
class Desk {
 public:
  Desk() {
    std::filesystem::create_directory(folder_ / "desk");
    for (const auto& each : std::filesystem::directory_iterator(TREE "/examples/xml"))
      if (each.path().extension() == ".xml") std::filesystem::copy(each.path(), folder_ / "desk");
  }

  std::filesystem::path at(const std::string& name) const { return folder_ / ("desk/" + name); }

  /// Runs a line of shell in the folder, `vkbuf` being the tool under test.
  Ran run(const std::string& line) const {
    const std::string tool = std::filesystem::path(VKBUF).parent_path().string();
    const std::string whole = "cd '" + folder_ / "desk" + "' && PATH='" + tool + "':\"$PATH\" && LC_ALL=C.UTF-8 && { " +
                              line + "\n} >../out 2>../err </dev/null";
    const pid_t child = fork();
    if (child == 0) {
      execl("/bin/sh", "sh", "-c", whole.c_str(), nullptr);
      _exit(127);
    }
    int status = 0;
    rusage used = {};
    wait4(child, &status, 0, &used);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), readFile(folder_ / "out"),
            readFile(folder_ / "err"), used.ru_maxrss};
  }

 private:
  TempFolder folder_;
};
