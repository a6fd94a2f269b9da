// vkbuf: the library's operations in a person's hands. This file is the frame: it finds the command, has its options
// parsed, runs it, and turns whatever goes wrong into one line on standard error and an exit status.
#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <new>

#include "tools/vkbuf/Commands.h"
#include "tools/vkbuf/Failure.h"
#include "tools/vkbuf/Nearest.h"

namespace {

const char* const kVersion = "vkbuf " VARNIK_VERSION;

const char* const kHelp =
    R"(vkbuf - encode, decode, convert, search and repair bytes
Usage: vkbuf COMMAND [OPTIONS] [FILE]    (no FILE or '-': standard input)
  hexdump        bytes as hex
Options: -s TEXT, -o FILE, --in-place, --no-clobber, --chomp, -q, -h, -V
Exit status: 0 done or yes, 1 the data says no, 2 wrong use or failed I/O
Example: vkbuf encode base64 -s hello | vkbuf decode base64    (COMMAND --help)
)";

const char* const kStatuses = "Exit status: 0 done or yes, 1 the data says no, 2 wrong use or failed I/O";

int print(const std::string& text, FILE* to) {
  return std::fputs(text.c_str(), to) < 0 || std::fflush(to) != 0 ? kFailed : kDone;
}

/// What the parser left over is a mistake: an option that no one knows, or one operand too many.
void checkLeftOver(const CLI::App& app) {
  for (const std::string& word : app.remaining()) {
    if (word == "--") continue;
    if (word.size() < 2 || word[0] != '-')
      throw CLI::ExtrasError(app.get_name(), {"'" + word + "' is one operand too many"});
    std::vector<std::string> known;
    for (const CLI::Option* option : app.get_options())
      for (const std::string& name : option->get_lnames()) known.push_back("--" + name);
    const std::string typed = word.substr(0, word.find('='));
    throw CLI::ExtrasError(app.get_name(),
                           {"no option is called '" + typed + "'; nearest: " + nearestNames(typed, known)});
  }
}

int runCommand(const Command& command, int argc, char** argv) {
  CLI::App app(command.summary, std::string("vkbuf ") + command.name);
  app.set_version_flag("-V,--version", kVersion);
  const auto run = command.setUp(app);
  app.footer(app.get_footer() + "\n" + kStatuses);
  app.allow_extras();
  try {
    app.parse(argc, argv);
    checkLeftOver(app);
  } catch (const CLI::CallForHelp&) {
    return print(app.help(), stdout);
  } catch (const CLI::CallForVersion&) {
    return print(std::string(kVersion) + "\n", stdout);
  } catch (const CLI::ParseError& error) {  // its own exit codes, 100 and more, are not ours
    throw Failure(kFailed, std::string(command.name) + ": " + error.what(), app.get_name() + " --help");
  }
  return run();
}

int runTool(int argc, char** argv) {
  if (argc < 2) {
    print(kHelp, stderr);
    return kFailed;
  }
  std::string word = argv[1];
  if (word == "help" && argc > 2) {  // help COMMAND is COMMAND --help
    word = argv[2];
    static char asked[] = "--help";
    argv[2] = asked;
  }
  if (word == "--help" || word == "-h" || word == "help") return print(kHelp, stdout);
  if (word == "--version" || word == "-V") return print(std::string(kVersion) + "\n", stdout);
  if (const Command* command = findCommand(word)) return runCommand(*command, argc - 1, argv + 1);
  throw Failure(kFailed, "no command is called '" + word + "'; nearest: " + nearestNames(word, commandNames()),
                "vkbuf --help");
}

/// A file opened later must not get the number of a standard stream that the caller closed: messages would go into it.
void occupyStandardStreams() {
  for (int number = 0; number <= 2; ++number)
    if (fcntl(number, F_GETFD) < 0 && open("/dev/null", number == 0 ? O_WRONLY : O_RDONLY) != number) _exit(kFailed);
}

}  // namespace

int main(int argc, char** argv) {
  occupyStandardStreams();
  try {
    return runTool(argc, argv);
  } catch (const Failure& failure) {
    say(failure);
    return failure.status;
  } catch (const std::bad_alloc&) {
    say(std::string("out of memory"));
    return kFailed;
  }
}
