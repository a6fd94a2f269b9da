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
  encode NAME    bytes to text: base64, base32, base58, hex, qp, url, uu, json
  decode NAME    text to bytes; tells where bad input is
  names          every NAME with a sample
  detect         charset, byte-order mark, line endings of a file
  convert        --from CHARSET --to CHARSET; xml-utf8 reads the declaration
  hexdump        bytes as hex and text
  clean          --pop --colors --ascii --nulls --accents
  find, replace  a pattern as text or, with --hex, as bytes
  pad, unpad     block-cipher padding 0 to 4; tls-check only looks
  split, join    files with a length-prefixed header; chunk reads a part
  random N       N bytes from the operating system
Options: -s TEXT, -o FILE, --in-place, --no-clobber, --chomp, -q, -h, -V
Exit status: 0 done or yes, 1 the data says no, 2 wrong use or failed I/O
Example: vkbuf encode base64 -s hello | vkbuf decode base64    (COMMAND --help)
)";

const char* const kStatuses = "Exit status: 0 done or yes, 1 the data says no, 2 wrong use or failed I/O";

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
    if (word == "--")
      optionsEnded = true;
    else if (isOption)
      throw Failure(kFailed,
                    command + ": no option is called '" + word + "'; nearest: " + nearestNames(word, optionNames(app)),
                    hint);
    else if (!takesMore)
      throw Failure(kFailed, command + ": '" + word + "' is one operand too many", hint);
  }
}

int runCommand(const Command& command, int argc, char** argv) {
  CLI::App app(command.summary, std::string("vkbuf ") + command.name);
  app.set_version_flag("-V,--version", kVersion, "the version");
  app.set_help_flag("-h,--help", "this text");
  const auto run = command.setUp(app);
  app.footer(app.get_footer() + "\n" + kStatuses);
  const bool takesMore = app.get_allow_extras();
  app.allow_extras();
  try {
    app.parse(argc, argv);
    checkLeftOver(app, command.name, takesMore);
  } catch (const CLI::CallForHelp&) {
    return print(app.help() + "\n", stdout);
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
