// vkbuf: the library's operations in a person's hands. This file is the frame: it finds the command, has its options
// parsed, runs it, and turns whatever goes wrong into one line on standard error and an exit status.
#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <new>
#include <optional>

#include "tools/vkbuf/CommandLine.h"
#include "tools/vkbuf/Job.h"
#include "tools/vkbuf/Memory.h"
#include "tools/vkbuf/Nearest.h"
#include "tools/vkbuf/Progress.h"

namespace {

int print(const std::string& text, FILE* to) {
  return std::fputs(text.c_str(), to) < 0 || std::fflush(to) != 0 ? kFailed : kDone;
}

std::vector<std::string> optionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options())
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  return names;
}

/// What the parser left over is a mistake, an option that no one knows or one operand too many, unless the command
/// takes any number of operands.
void checkLeftOver(const CLI::App& app, const std::string& command, bool takesMore) {
  const std::string hint = app.get_name() + " --help";
  bool optionsEnded = false;
  for (const std::string& word : app.remaining()) {
    const bool isOption = !optionsEnded && word.size() > 1 && word[0] == '-';
    std::string fault;
    if (word == "--")
      optionsEnded = true;
    else if (isOption)
      fault.append("no option is called '")
          .append(word)
          .append("'; nearest: ")
          .append(nearestNames(word, optionNames(app)));
    else if (!takesMore)
      fault.append("'").append(word).append("' is one operand too many");
    if (!fault.empty()) throw Failure(kFailed, std::string(command).append(": ").append(fault), hint);
  }
}

int runCommand(const Command& command, int argc, char** argv) {
  CommandLine line(command);
  try {
    line.app->parse(argc, argv);
    checkLeftOver(*line.app, command.name, line.takesMore);
  } catch (const CLI::CallForHelp&) {
    return print(helpOf(line), stdout);
  } catch (const CLI::CallForVersion&) {
    return print(std::string(kVersion) + "\n", stdout);
  } catch (const CLI::ParseError& error) {  // its own exit codes, 100 and more, are not ours
    throw Failure(kFailed, std::string(command.name) + ": " + error.what(), line.app->get_name() + " --help");
  }
  Job::setQuiet(line.quiet);
  std::optional<Progress> progress;
  if (!line.quiet) progress.emplace();
  return line.run();
}

int runTool(int argc, char** argv) {
  if (argc < 2) {
    print(kHelp, stderr);
    return kFailed;
  }
  const std::string word = argv[1];
  if (word == "--help" || word == "-h") return print(kHelp, stdout);
  if (word == "--version" || word == "-V") return print(std::string(kVersion) + "\n", stdout);
  return runCommand(commandCalled(word), argc - 1, argv + 1);
}

/// A file opened later must not get the number of a standard stream that the caller closed: messages would go into it.
void occupyStandardStreams() {
  for (int number = 0; number <= 2; ++number)
    if (fcntl(number, F_GETFD) < 0 && open("/dev/null", number == 0 ? O_WRONLY : O_RDONLY) != number) _exit(kFailed);
}

}  // namespace

int main(int argc, char** argv) {
  occupyStandardStreams();
  watchMemory();
  try {
    const int status = runTool(argc, argv);
    checkMemory();
    return status;
  } catch (const Failure& failure) {
    if (!memoryRanOut()) {
      say(failure);
      return failure.status;
    }
  } catch (const std::bad_alloc&) {
  }
  say(std::string("out of memory"));  // short enough to need none
  return kFailed;
}
