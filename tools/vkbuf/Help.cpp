// help: the texts that explain the tool, on a screen and as manual pages.
#include <CLI/CLI.hpp>
#include <memory>
#include <sstream>

#include "tools/vkbuf/CommandLine.h"
#include "tools/vkbuf/Job.h"
#include "tools/vkbuf/Nearest.h"

const char* const kHelp =
    R"(vkbuf - encode, decode, convert, search and repair bytes
Usage: vkbuf COMMAND [OPTIONS] [FILE]    (no FILE or '-': standard input)
  encode NAME    bytes to text: base64, base32, base58, hex, qp, url, uu, json
  decode NAME    text to bytes; tells where bad input is
  names          every NAME with a sample; 'names charsets', 'names paddings'
  detect         charset, byte-order mark, line endings, likely encoding
  convert        --from CHARSET --to CHARSET; xml-utf8 reads the declaration
  hexdump        bytes as hex; --reverse turns a dump back into bytes
  clean          --pop --colors --ascii --nulls --accents
  find, replace  a pattern as text or, with --hex, as bytes
  edit, fields   cut, insert, reverse, swap, xor; write and read numbers
  pad, unpad     block-cipher padding 0 to 4; tls-check only looks
  split, join    files with a length-prefixed header; chunk reads a part
  random N       N bytes from the operating system
Options: -s TEXT, -o FILE, --in-place, --no-clobber, --chomp, --json, -q, -h, -V
Exit status: 0 done or yes, 1 the data says no, 2 wrong use or failed I/O
Example: vkbuf encode base64 -s hello | vkbuf decode base64    (COMMAND --help)
)";

namespace {

// Text as troff takes it: hyphens that can be copied, and nothing that looks like a request.
std::string escaped(const std::string& text) {
  std::string out;
  for (const char c : text) {
    const bool atStart = out.empty() || out.back() == '\n';
    if (c == '-')
      out += "\\-";
    else if (c == '\\')
      out += "\\e";
    else if (atStart && (c == '.' || c == '\''))
      out += std::string("\\&") + c;
    else
      out += c;
  }
  return out;
}

std::string asShown(const std::string& lines) {
  return ".nf\n" + escaped(lines) + ".fi\n";
}

// The head and the first two sections of the page that is called `name`.
std::string beginning(const std::string& name, const std::string& summary, const std::string& usage) {
  std::string capitals = name;
  for (char& c : capitals) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return ".TH " + escaped(capitals) + " 1 \"\" \"" + kVersion + "\" \"User Commands\"\n.SH NAME\n" + escaped(name) +
         " \\- " + escaped(summary) + "\n.SH SYNOPSIS\n" + usage + "\n";
}

std::string ending(const std::vector<std::string>& seeAlso) {
  std::string text = std::string(".SH \"EXIT STATUS\"\n") + kStatuses + ".\n.SH \"SEE ALSO\"\n";
  for (size_t i = 0; i < seeAlso.size(); ++i)
    text += ".BR " + escaped(seeAlso[i]) + " (1)" + (i + 1 < seeAlso.size() ? ",\n" : "\n");
  return text;
}

std::string entry(const OptionFacts& option) {
  std::string names;
  for (const std::string& name : option.names) names += (names.empty() ? "\\fB" : ", \\fB") + escaped(name) + "\\fR";
  if (!option.value.empty()) names += " \\fI" + escaped(option.value) + "\\fR";
  return ".TP\n" + names + "\n" + escaped(option.what) + "\n";
}

std::string section(const char* heading, const std::string& text) {
  return text.empty() ? "" : std::string(".SH ") + heading + "\n" + text;
}

}  // namespace

std::string manualOf(const Command& command) {
  const CommandLine line(command);
  std::string operands, options, shared, usage = std::string("\\fBvkbuf ") + command.name + "\\fR [\\fIOPTIONS\\fR]";
  for (const OptionFacts& option : optionsOf(line)) {
    (option.isOperand ? operands : option.isShared ? shared : options) += entry(option);
    if (!option.isOperand) continue;
    const std::string name = "\\fI" + option.names[0] + "\\fR";
    usage += option.isRequired ? " " + name : " [" + name + "]";
  }
  const std::string footer = line.app->get_footer();
  const size_t examples = footer.find("Examples:\n"), statuses = footer.find("\nExit status:");
  std::vector<std::string> seeAlso = {"vkbuf"};
  std::istringstream also(command.seeAlso);
  for (std::string name; also >> name;) seeAlso.push_back("vkbuf-" + name.substr(0, name.find(',')));
  const std::string page = std::string("vkbuf-") + command.name;
  return beginning(page, command.summary, usage) + section("OPERANDS", operands) + section("OPTIONS", options) +
         section("\"SHARED OPTIONS\"", shared) + section("NOTES", escaped(footer.substr(0, examples))) +
         ".SH EXAMPLES\n" + asShown(footer.substr(examples + 10, statuses - examples - 10)) + ending(seeAlso);
}

std::string manualOfTool() {
  std::string commands;
  std::vector<std::string> pages;
  for (const Command& each : allCommands()) {
    commands += std::string(".TP\n\\fB") + escaped(each.name) + "\\fR\n" + escaped(each.summary) + "\n";
    pages.push_back(std::string("vkbuf-") + each.name);
  }
  const std::string help = kHelp;
  return beginning("vkbuf", "encode, decode, convert, search and repair bytes",
                   "\\fBvkbuf\\fR \\fICOMMAND\\fR [\\fIOPTIONS\\fR] [\\fIFILE\\fR]") +
         ".SH DESCRIPTION\n" + asShown(help.substr(help.find("\n  ") + 1)) + section("COMMANDS", commands) +
         ending(pages);
}

namespace {

struct Options {
  Job job{"help"};
  std::string command;
  bool manual = false;
};

int help(const Options& options) {
  if (options.command.empty()) {
    options.job.write(options.manual ? manualOfTool() : kHelp);
    return kDone;
  }
  const Command& command = commandCalled(options.command);
  options.job.write(options.manual ? manualOf(command) : helpOf(CommandLine(command)));
  return kDone;
}

}  // namespace

std::function<int()> setUpHelp(CLI::App& app) {
  const auto options = std::make_shared<Options>();
  app.add_option("COMMAND", options->command, "explain this one")->option_text(" ");
  app.add_flag("--man", options->manual, "as a manual page, for man -l -");
  options->job.addOutput(app);
  app.footer("Examples:\n  vkbuf help\n  vkbuf help encode\n  vkbuf help --man encode -o vkbuf-encode.1\n");
  return [options] { return help(*options); };
}
