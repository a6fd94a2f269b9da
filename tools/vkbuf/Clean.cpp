// clean: tidying of captured text.
#include <CLI/CLI.hpp>
#include <memory>

#include "tools/vkbuf/Commands.h"
#include "tools/vkbuf/Job.h"

namespace {

struct Options {
  Job job{"clean"};
  bool pop = false, colors = false, ascii = false, nulls = false, accents = false;
};

int clean(const Options& options, DataBuffer& data) {
  if (options.pop) data.processRawPopMime();
  if (options.colors) data.stripTerminalColorCodes();
  if (options.ascii) data.drop_non_usascii();
  if (options.nulls) data.removeByteValue(0);
  if (options.accents) data.consumeUtf8CombiningMarks();
  return kDone;
}

}  // namespace

std::function<int()> setUpClean(CLI::App& app) {
  const auto options = std::make_shared<Options>();
  app.add_flag("--pop", options->pop, "undo the dot-stuffing of mail fetched by POP3");
  app.add_flag("--colors", options->colors, "remove the colour codes of terminals");
  app.add_flag("--ascii", options->ascii, "keep the bytes 01 to 7F only");
  app.add_flag("--nulls", options->nulls, "remove zero bytes");
  app.add_flag("--accents", options->accents, "join letters and the combining accents behind them (UTF-8)");
  options->job.addInputs(app);
  options->job.addOutput(app);
  options->job.addInPlace(app);
  app.footer(
      "What is asked for is done in the order of this list, however it is written.\n\n"
      "Examples:\n"
      "  vkbuf clean --ascii windows-1252.xml\n"
      "  vkbuf clean --nulls utf16le-nobom.xml | vkbuf hexdump\n"
      "  vkbuf clean --colors --ascii --in-place=.old koi8-r.xml\n");
  return [options] {
    if (!options->pop && !options->colors && !options->ascii && !options->nulls && !options->accents)
      options->job.fail("say what to clean: --pop, --colors, --ascii, --nulls, --accents");
    return options->job.filter([&](DataBuffer& data) { return clean(*options, data); });
  };
}
