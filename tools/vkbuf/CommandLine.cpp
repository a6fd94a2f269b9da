#include "tools/vkbuf/CommandLine.h"

#include <CLI/CLI.hpp>

#include "tools/vkbuf/Job.h"

CommandLine::CommandLine(const Command& command)
    : app(std::make_unique<CLI::App>(command.summary, std::string("vkbuf ") + command.name)) {
  app->set_help_flag();
  run = command.setUp(*app);
  app->add_flag("-q,--quiet", quiet, "no notes on standard error, errors only")->group(kShared);
  app->add_option_function<std::string>(
         "--color",
         [](const std::string& when) {
           setColor(when == "always" ? Color::always : when == "never" ? Color::never : Color::whereSeen);
         },
         "whether the head of an error is red (auto: in a terminal)")
      ->option_text("auto|always|never")
      ->check(CLI::IsMember({"auto", "always", "never"}))
      ->group(kShared);
  app->set_help_flag("-h,--help", "this text")->group(kShared);
  app->set_version_flag("-V,--version", kVersion, "the version")->group(kShared);
  std::string also = command.seeAlso;
  for (size_t at = 0; (at = also.find(", ", at)) != also.npos; at += 8) also.replace(at, 2, ", vkbuf ");
  app->footer(app->get_footer() + "\nExit status: " + kStatuses + "\nSee also: vkbuf " + also + ", vkbuf --help");
  takesMore = app->get_allow_extras();
  app->allow_extras();
}

CommandLine::~CommandLine() = default;

std::vector<std::string> OptionFacts::choices() const {
  std::vector<std::string> words;
  if (value.find('|') == value.npos) return words;
  for (size_t start = 0; start <= value.size();) {
    const size_t end = std::min(value.find('|', start), value.size());
    words.push_back(value.substr(start, end - start));
    start = end + 1;
  }
  return words;
}

std::vector<OptionFacts> optionsOf(const CommandLine& line) {
  std::vector<OptionFacts> all;
  for (const CLI::Option* option : static_cast<const CLI::App&>(*line.app).get_options()) {
    OptionFacts facts{{},
                      option->get_option_text(),
                      option->get_description(),
                      option->get_positional(),
                      option->get_required(),
                      option->get_group() == kShared};
    if (facts.value == " ") facts.value.clear();
    for (const std::string& name : option->get_snames()) facts.names.push_back("-" + name);
    for (const std::string& name : option->get_lnames()) facts.names.push_back("--" + name);
    if (facts.isOperand) facts.names.push_back(option->get_name(true, false));
    all.push_back(facts);
  }
  return all;
}

std::string helpOf(const CommandLine& line) {
  return line.app->help() + "\n";
}
