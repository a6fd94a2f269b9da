// The tool, as a person at a terminal, a script or a shell meets it.
#include <gtest/gtest.h>

#include <regex>

#include "tests/tool/Run.h"

using namespace std::string_literals;

namespace {

// The answer of a line of shell, or of "% LINE" in a terminal, as a terminal shows it: with a line feed at the end, and
// a status that is not 0 as "[1]". The carriage returns and the echo of Ctrl-D are left out.
std::string answerTo(const Desk& desk, std::string line, bool withStatus) {
  if (line.starts_with("% ")) {
    std::ofstream(desk.at(".line")) << line.substr(2);
    line = "$ script -qec 'sh .line' /dev/null </dev/null | tr -d '\\b\\004' | sed 's/^^D//'";
  }
  const Ran ran = desk.run("exec 2>&1\n" + line.substr(2));
  std::string answer = std::regex_replace(ran.out, std::regex("\r"), "");
  if (!answer.empty() && answer.back() != '\n') answer += '\n';
  return ran.status == 0 || !withStatus ? answer : answer + "[" + std::to_string(ran.status) + "]\n";
}

// Checks a session, lines "$ COMMAND" with the answers below, up to the line `end`, where it is a part of a page, which
// does not tell statuses. A '#' begins a comment.
void replay(const Desk& desk, std::istream& session, const std::string& end) {
  std::string line, command, shown;
  for (bool more = true; more;) {
    more = std::getline(session, line) && line != end;
    const bool isCommand = line.starts_with("$ ") || line.starts_with("% ");
    if (more && !isCommand && !line.empty() && line[0] != '#') shown += line + "\n";
    if (more && !isCommand) continue;
    if (!command.empty()) {
      EXPECT_EQ(answerTo(desk, command, end.empty()), shown) << command;
    }
    command = line;
    shown.clear();
  }
}

std::vector<std::string> linesOf(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// What stands in `text` from one mark to the next.
std::string between(const std::string& text, const std::string& from, const std::string& to) {
  const auto start = text.find(from);
  return start == text.npos ? "" : text.substr(start, text.find(to, start + from.size()) - start);
}

// The option has to be in the command's part of each script, and in its manual page.
void lookForOption(const std::string& name, const std::string& command, const std::string& bash, const std::string& zsh,
                   const std::string& fish, const std::string& manual) {
  const bool isLong = name.starts_with("--");
  EXPECT_TRUE(std::regex_search(bash, std::regex("[ \"]" + name + " "))) << command << name;
  EXPECT_NE(zsh.find("'*" + name + "["), zsh.npos) << command << name;
  EXPECT_NE(fish.find((isLong ? " -l " : " -s ") + name.substr(isLong ? 2 : 1) + " "), fish.npos) << command << name;
  EXPECT_NE(manual.find("fB" + std::regex_replace(name, std::regex("-"), "\\-") + "\\fR"), manual.npos)
      << command << name;
}

}  // namespace

TEST(Tool, AnswersAsInTheSessions) {
  for (const auto& each : std::filesystem::directory_iterator(TREE "/tests/tool/sessions")) {
    std::ifstream session(each.path());
    replay(Desk(), session, "");
  }
}

// The README shows the program that is built and run, and what the tool answers.
TEST(Tool, AnswersAsTheReadmeSays) {
  const std::string readme = readFile(TREE "/README.md"), program = readFile(TREE "/examples/first.cpp");
  EXPECT_NE(readme.find(program.substr(program.find('#'))), readme.npos);
  const Desk desk;
  desk.run("mkdir examples && ln -s .. examples/xml");
  std::istringstream session(readme.substr(readme.find("```console\n") + 11));
  replay(desk, session, "```");
}

// Every example of every help text runs, and every option that it lists is in the completions and the manual.
TEST(Tool, ExplainsWhatItHas) {
  const Desk desk;
  desk.run("vkbuf join koi8-r.xml utf8-bom.xml -o letter.bin");
  const std::string bash = desk.run("vkbuf completion bash").out, zsh = desk.run("vkbuf completion zsh").out,
                    fish = desk.run("vkbuf completion fish").out, pages = desk.run("vkbuf help --man").out;
  const auto commands =
      linesOf(desk.run("vkbuf completion fish | sed -n 's/.*use_subcommand -a \\([^ ]*\\).*/\\1/p'").out);
  EXPECT_GE(commands.size(), 21u);
  for (const std::string& command : commands) {
    const std::string manual = desk.run("vkbuf help --man " + command).out;
    const std::string part = "    " + command + ")\n";
    int examples = 0, options = 0;
    for (const std::string& line : linesOf(desk.run("vkbuf " + command + " --help").out)) {
      EXPECT_LE(line.size(), 120u) << line;
      if (line.starts_with("  vkbuf ")) {
        const Ran ran = desk.run(line);
        EXPECT_EQ(ran.status, 0) << line << "\n" << ran.err;
        EXPECT_EQ(ran.err, "") << line;
        ++examples;
      }
      std::smatch names;
      if (!std::regex_search(line, names, std::regex("^  (-[^ ]*)"))) continue;
      std::istringstream list(names[1]);
      for (std::string name; std::getline(list, name, ','); ++options)
        lookForOption(name, command, between(bash, part, "\n      ;;"), between(zsh, part, ";;\n"),
                      between(fish, "from " + command + "'", "use_subcommand"), manual);
    }
    EXPECT_GE(examples, 3) << command;
    EXPECT_GE(options, 10) << command;
    EXPECT_NE(pages.find("\\-" + std::regex_replace(command, std::regex("-"), "\\-") + " (1)"), pages.npos) << command;
  }
}

// A stream of any length needs no more than 16 MiB. The tool is started by a program that needs less itself.
TEST(Tool, StreamsInLittleMemory) {
#ifdef SANITIZED
  GTEST_SKIP() << "sanitizers need memory of their own";
#endif
  const Desk desk;
  desk.run(
      "truncate -s 64M data; vkbuf encode base64_mime data -o mime; vkbuf encode uu data -o uu; vkbuf encode hex data "
      "-o hex");
  for (const char* each : {"encode base64 data", "decode base64 mime", "encode uu data", "decode uu uu",
                           "decode hex hex", "hexdump data", "edit --xor 01 data", "find --count 0 data"}) {
    const Ran ran = desk.run("exec vkbuf "s + each + " >/dev/null");
    EXPECT_LE(ran.mostResident, 16 * 1024) << each;
  }
}
