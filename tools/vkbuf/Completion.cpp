// completion: scripts that complete commands, options and their values, one for each shell.
#include <CLI/CLI.hpp>
#include <cstring>
#include <memory>

#include "tools/vkbuf/CommandLine.h"
#include "tools/vkbuf/Job.h"

namespace {

std::string joined(const std::vector<std::string>& words, const char* between) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : between) + word;
  return text;
}

// What may follow an option, or stand for an operand, in the words of a shell; empty for files and free text.
std::string wordsOf(const OptionFacts& option) {
  const std::string& kind = option.isOperand ? option.names[0] : option.value;
  if (kind == "NAME") return "$(vkbuf names --plain)";
  if (kind == "CHARSET") return "$(vkbuf names charsets --plain)";
  if (kind == "COMMAND") return joined(commandNames(), " ");
  return joined(option.choices(), " ");
}

bool takesFile(const OptionFacts& option) {
  const std::string& kind = option.isOperand ? option.names[0] : option.value;
  return kind.starts_with("FILE") || kind == "HEADER" || kind == "BODY";
}

bool takesValue(const OptionFacts& option) {
  return !option.isOperand && !option.value.empty() && option.value[0] != '[';
}

std::string bashScript() {
  std::string cases;
  for (const Command& command : allCommands()) {
    std::string options, values, operand;
    for (const OptionFacts& option : optionsOf(CommandLine(command))) {
      if (option.isOperand) {
        if (operand.empty()) operand = wordsOf(option);
        continue;
      }
      options += joined(option.names, " ") + " ";
      if (const std::string words = wordsOf(option); !words.empty())
        values += "        " + joined(option.names, "|") + ") words=\"" + words + "\" ;;\n";
    }
    cases += std::string("    ") + command.name + ")\n      words=\"" + options + "\"\n";
    if (!operand.empty()) cases += "      [[ $COMP_CWORD -eq 2 && $cur != -* ]] && words=\"" + operand + "\"\n";
    if (!values.empty()) cases += "      case $prev in\n" + values + "      esac\n";
    cases += "      ;;\n";
  }
  return "# bash completion for vkbuf\n_vkbuf() {\n  local cur=${COMP_WORDS[COMP_CWORD]} "
         "prev=${COMP_WORDS[COMP_CWORD-1]} words=\n  if [[ $COMP_CWORD -eq 1 ]]; then\n    COMPREPLY=($(compgen -W \"" +
         joined(commandNames(), " ") +
         " --help --version\" -- \"$cur\"))\n    return\n  fi\n  case ${COMP_WORDS[1]} in\n" + cases +
         "  esac\n  COMPREPLY=($(compgen -W \"$words\" -- \"$cur\"))\n}\n"
         "complete -o default -o bashdefault -F _vkbuf vkbuf\n";
}

// A text between single quotes, `special` characters behind a backslash.
std::string quoted(const std::string& text, const char* special) {
  std::string out;
  for (const char c : text) {
    if (c == '\'')
      out += "'\\''";
    else
      out += (std::strchr(special, c) ? "\\" : "") + std::string(1, c);
  }
  return out;
}

std::string zshOption(const OptionFacts& option) {
  std::string value;
  if (takesValue(option)) {
    const std::string words = wordsOf(option);
    value = ":" + quoted(option.value, ":") + ":" +
            (takesFile(option) ? "_files"
             : words.empty()   ? ""
                               : "(" + words + ")");
  }
  std::string lines;
  for (const std::string& name : option.names)
    lines.append(" \\\n        '*").append(name).append("[" + quoted(option.what, "[]:") + "]").append(value + "'");
  return lines;
}

std::string zshScript() {
  std::string commands, cases;
  for (const Command& command : allCommands()) {
    commands += std::string("    '") + command.name + ":" + quoted(command.summary, ":") + "'\n";
    std::string options, operand;
    for (const OptionFacts& option : optionsOf(CommandLine(command))) {
      if (!option.isOperand)
        options += zshOption(option);
      else if (const std::string words = wordsOf(option); !words.empty() && operand.empty())
        operand = " \\\n        \"1:" + option.names[0] + ":(" + words + ")\"";
    }
    cases.append("    ").append(command.name).append(")\n      _arguments -S").append(options).append(operand);
    cases += " \\\n        '*:file:_files' ;;\n";
  }
  return "#compdef vkbuf\nlocal -a commands\ncommands=(\n" + commands +
         ")\nif (( CURRENT == 2 )); then\n  _describe command commands\nelse\n  shift words\n  (( CURRENT-- ))\n  "
         "case $words[1] in\n" +
         cases + "  esac\nfi\n";
}

std::string fishOption(const std::string& where, const OptionFacts& option) {
  std::string line = where;
  for (const std::string& name : option.names)
    line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
  if (takesFile(option))
    line += " -r";
  else if (takesValue(option))
    line += " -x";
  if (const std::string words = wordsOf(option); !words.empty())
    line += words[0] == '$' ? " -a '" + words.substr(1) + "'" : " -a '" + words + "'";
  return line + " -d '" + quoted(option.what, "") + "'\n";
}

std::string fishScript() {
  std::string script = "# fish completion for vkbuf\n";
  for (const Command& command : allCommands()) {
    script += std::string("complete -c vkbuf -f -n __fish_use_subcommand -a ") + command.name + " -d '" +
              quoted(command.summary, "") + "'\n";
    const std::string where = std::string("complete -c vkbuf -n '__fish_seen_subcommand_from ") + command.name + "'";
    for (const OptionFacts& option : optionsOf(CommandLine(command))) {
      const std::string words = wordsOf(option);
      if (!option.isOperand)
        script += fishOption(where, option);
      else if (!words.empty())
        script += where + " -a '" + words.substr(words[0] == '$' ? 1 : 0) + "'\n";
    }
  }
  return script;
}

struct Options {
  Job job{"completion"};
  std::string shell;
};

}  // namespace

std::function<int()> setUpCompletion(CLI::App& app) {
  const auto options = std::make_shared<Options>();
  app.add_option("SHELL", options->shell, "bash, zsh or fish")
      ->required()
      ->option_text("bash|zsh|fish")
      ->check(CLI::IsMember({"bash", "zsh", "fish"}));
  options->job.addOutput(app);
  app.footer(
      "Put it where the shell looks, or read it in: . ./vkbuf.bash\n\n"
      "Examples:\n"
      "  vkbuf completion bash -o vkbuf.bash\n"
      "  vkbuf completion zsh -o _vkbuf\n"
      "  vkbuf completion fish -o vkbuf.fish\n");
  return [options] {
    const std::string& shell = options->shell;
    options->job.write(shell == "bash" ? bashScript() : shell == "zsh" ? zshScript() : fishScript());
    return kDone;
  };
}
