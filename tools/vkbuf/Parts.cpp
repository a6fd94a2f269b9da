// split, join and chunk: files by pieces.
#include <CLI/CLI.hpp>
#include <memory>

#include "tools/vkbuf/Commands.h"
#include "tools/vkbuf/Job.h"
#include "tools/vkbuf/Text.h"
#include "varnik/services/logging/LogText.h"

namespace {

struct Options {
  Job job{""};
  std::string file, body, headerOut, bodyOut, maxHeader = "64M", offset = "0", length;
};

u64 countOf(const Options& options, const char* option, const std::string& typed, u64 most) {
  const auto count = parseCount(typed);
  if (!count || *count > most)
    options.job.fail(std::string(option) + ": '" + typed + "' is no count from 0 to " + std::to_string(most));
  return *count;
}

int split(Options& options) {
  Job& job = options.job;
  const u32 most = static_cast<u32>(countOf(options, "--max-header", options.maxHeader, 0xFFFFFFFF));
  job.checkFile(options.file);
  DataBuffer header, body;
  LogText log;
  const bool loaded = body.loadFileWithHeaderUtf8(options.file.c_str(), header, most, log);
  if (!loaded || log.numErrors() != 0) job.refuse(reasonIn(log, "cannot be split into header and body"));
  if (!options.headerOut.empty()) job.writeTo(options.headerOut, header);
  if (!options.bodyOut.empty()) job.writeTo(options.bodyOut, body);
  if (options.headerOut.empty() && options.bodyOut.empty())
    job.write("header  " + std::to_string(header.size()) + " bytes\nbody    " + std::to_string(body.size()) +
              " bytes\n");
  return kDone;
}

int join(Options& options) {
  Job& job = options.job;
  constexpr u32 kLengthField = 4;
  DataBuffer header, body, whole;
  job.readFile(options.file, header);
  if (header.empty()) job.refuse("the header is empty: split would not take it");
  job.readFile(options.body, body);
  if (!whole.appendUint32_le(header.size() + kLengthField) || !whole.append(header) || !whole.append(body))
    job.fail("out of memory, or the result would pass 4 GiB");
  job.write(whole);
  return kDone;
}

int chunk(Options& options) {
  Job& job = options.job;
  constexpr u64 kMost = 0x7FFFFFFFFFFFFFFF;
  const s64 offset = static_cast<s64>(countOf(options, "--offset", options.offset, kMost));
  const u32 length =
      options.length.empty() ? 0xFFFFFFFF : static_cast<u32>(countOf(options, "--length", options.length, 0xFFFFFFFF));
  if (length == 0) job.fail("--length: 0 bytes are no chunk");
  job.checkFile(options.file);
  DataBuffer data;
  LogText log;
  if (!data.loadFileChunk(options.file.c_str(), offset, length, log))
    job.refuse(reasonIn(log, "nothing to read at offset " + std::to_string(offset)));
  job.write(data);
  return kDone;
}

std::shared_ptr<Options> setUp(CLI::App& app, const char* command) {
  auto options = std::make_shared<Options>();
  options->job.setCommand(command);
  options->job.addOutput(app);
  return options;
}

}  // namespace

std::function<int()> setUpSplit(CLI::App& app) {
  const auto options = setUp(app, "split");
  app.add_option("FILE", options->file, "a file that begins with the length of its header")
      ->required()
      ->option_text(" ");
  app.add_option("--header-out", options->headerOut, "where the header goes; '-': standard output")
      ->option_text("FILE");
  app.add_option("--body-out", options->bodyOut, "where the body goes; '-': standard output")->option_text("FILE");
  app.add_option("--max-header", options->maxHeader, "the longest header taken, its length field included (64M)")
      ->option_text("N");
  app.footer(
      "The length is the first four bytes, least significant first, and counts them too. Without --header-out and\n"
      "--body-out only the two lengths are printed.\n\n"
      "Examples:\n"
      "  vkbuf split letter.bin\n"
      "  vkbuf split letter.bin --header-out - --max-header 1k\n"
      "  vkbuf split letter.bin --header-out head.xml --body-out body.xml\n");
  return [options] { return split(*options); };
}

std::function<int()> setUpJoin(CLI::App& app) {
  const auto options = setUp(app, "join");
  app.add_option("HEADER", options->file, "the file that becomes the header")->required()->option_text(" ");
  app.add_option("BODY", options->body, "the file that becomes the body")->required()->option_text(" ");
  app.footer(
      "Examples:\n"
      "  vkbuf join koi8-r.xml utf8-bom.xml | vkbuf hexdump\n"
      "  vkbuf join koi8-r.xml utf8-bom.xml -o letter.bin\n"
      "  vkbuf encode hex -s ab | vkbuf join koi8-r.xml - | vkbuf hexdump\n");
  return [options] { return join(*options); };
}

std::function<int()> setUpChunk(CLI::App& app) {
  const auto options = setUp(app, "chunk");
  app.add_option("FILE", options->file, "the file to read from")->required()->option_text(" ");
  app.add_option("--offset", options->offset, "where the chunk begins (0)")->option_text("N");
  app.add_option("--length", options->length, "how many bytes at most (as many as there are, below 4 GiB)")
      ->option_text("N");
  app.footer(
      "N is decimal or 0x..., with k, M or G for powers of 1024. An offset at or behind the end is status 1.\n\n"
      "Examples:\n"
      "  vkbuf chunk koi8-r.xml --offset 0x40 --length 16 | vkbuf hexdump\n"
      "  vkbuf chunk utf8-bom.xml --offset 3\n"
      "  vkbuf chunk shift_jis.xml --length 1k | vkbuf detect\n");
  return [options] { return chunk(*options); };
}
