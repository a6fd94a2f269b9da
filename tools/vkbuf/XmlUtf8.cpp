// xml-utf8: an XML document in any charset, as UTF-8.
#include <CLI/CLI.hpp>
#include <memory>

#include "tools/vkbuf/CharsetChoice.h"
#include "tools/vkbuf/Commands.h"
#include "tools/vkbuf/Job.h"
#include "tools/vkbuf/Text.h"
#include "varnik/services/charset/EncodingConvert.h"
#include "varnik/services/logging/LogText.h"

namespace {

struct Options {
  Job job{"xml-utf8"};
  bool charset = false, substitute = false;
};

// The library takes UTF-32LE with a mark for UTF-16, whose mark begins the same. So four-byte marks are looked at
// first.
bool toUtf8(DataBuffer& data, LogBase& log) {
  const s32 codePage = markOf(data).codePage;
  if (codePage != kUtf32Le && codePage != kUtf32Be) return data.convertXmlToUtf8(log);
  DataBuffer converted;
  const bool whole = _vkEncodingConvert().EncConvert(codePage, kUtf8, data.getData2(), data.size(), converted, log);
  data.takeData(converted);
  return whole;
}

int convert(Options& options, DataBuffer& data) {
  Job& job = options.job;
  if (data.empty()) return kDone;
  LogText log;
  if (!toUtf8(data, log) && data.empty()) job.fail("out of memory");
  if (options.substitute) return kDone;
  const char* const kHint =
      "name the charset with 'vkbuf convert --from CHARSET --to utf-8', or carry on with --substitute";
  if (log.numErrors() != 0) job.refuse(reasonIn(log, "does not convert"), kHint);
  const u32 bad = firstBadUtf8(data.getData2(), data.size());
  if (bad < data.size())
    job.refuse("names no charset that is known and is no UTF-8: " + nameOfByte(data.byteAt(bad)) + " at " +
                   Place().of(data.getData2(), bad),
               kHint);
  return kDone;
}

int printCharset(Options& options) {
  Job& job = options.job;
  DataBuffer data;
  job.read(data);
  LogNull log;
  StringBuffer charset;
  if (data.empty() || (toUtf8(data, log), !data.getXmlCharset(charset))) job.refuse("names no charset");
  charset.appendChar('\n');
  job.write(charset);
  return kDone;
}

}  // namespace

std::function<int()> setUpXmlUtf8(CLI::App& app) {
  const auto options = std::make_shared<Options>();
  app.add_flag("--charset", options->charset, "only print the charset that the document names");
  app.add_flag("--substitute", options->substitute, "write U+FFFD for what does not convert, and carry on");
  options->job.addInputs(app);
  options->job.addOutput(app);
  options->job.addInPlace(app);
  app.footer(
      "The charset is found by the byte-order mark, by the zero bytes of UTF-16, or by the encoding that the document\n"
      "names; the declaration is left as written. UTF-32 is only recognised by its byte-order mark: without one it is\n"
      "taken for UTF-16.\n\n"
      "Examples:\n"
      "  vkbuf xml-utf8 shift_jis.xml\n"
      "  vkbuf xml-utf8 utf16le-nobom.xml | vkbuf encode base64_mime\n"
      "  vkbuf xml-utf8 --charset koi8-r.xml\n");
  return [options] {
    if (options->charset) return printCharset(*options);
    return options->job.filter([&](DataBuffer& data) { return convert(*options, data); });
  };
}
