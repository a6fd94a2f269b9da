// detect: what the bytes of a file look like.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "tools/vkbuf/CharsetChoice.h"
#include "tools/vkbuf/Commands.h"
#include "tools/vkbuf/Job.h"
#include "tools/vkbuf/Text.h"
#include "varnik/services/charset/EncodingConvert.h"

namespace {

using Facts = std::vector<std::pair<std::string, std::string>>;

struct LineFacts {
  u32 crLf = 0, lf = 0, cr = 0, longest = 0;
};

LineFacts linesOf(const u8* data, u32 n) {
  LineFacts lines;
  u32 length = 0;
  for (u32 i = 0; i < n; ++i) {
    if (data[i] != '\r' && data[i] != '\n') {
      lines.longest = std::max(lines.longest, ++length);
      continue;
    }
    length = 0;
    if (data[i] == '\n') {
      ++lines.lf;
    } else if (i + 1 < n && data[i + 1] == '\n') {
      ++lines.crLf;
      ++i;
    } else {
      ++lines.cr;
    }
  }
  return lines;
}

std::string endingsOf(const LineFacts& lines) {
  std::string text;
  const auto count = [&text](u32 n, const char* what) {
    if (n != 0) text += (text.empty() ? "" : ", ") + std::to_string(n) + what;
  };
  count(lines.crLf, " CR LF");
  count(lines.lf, " LF");
  count(lines.cr, " CR");
  return text.empty() ? "none" : text;
}

// Text that was UTF-8, was read as windows-1252 and written as UTF-8 again becomes valid, shorter UTF-8 when it is
// taken back through windows-1252.
bool looksEncodedTwice(const DataBuffer& data) {
  constexpr s32 kWindows1252 = 1252;
  DataBuffer back;
  LogNull log;
  return _vkEncodingConvert().EncConvert(kUtf8, kWindows1252, data.getData2(), data.size(), back, log) &&
         back.size() < data.size() && !back.is7bit(0) && firstBadUtf8(back.getData2(), back.size()) == back.size();
}

std::string validity(const DataBuffer& data) {
  const u32 bad = firstBadUtf8(data.getData2(), data.size());
  if (bad < data.size()) return "no, first bad byte at " + std::to_string(bad);
  return !data.is7bit(0) && looksEncodedTwice(data) ? "yes; looks like UTF-8 encoded twice" : "yes";
}

Facts factsOf(DataBuffer& data) {
  Facts facts;
  const Mark mark = markOf(data);
  facts.emplace_back("byte-order mark", mark.codePage == 0 ? "none" : mark.charset);
  const s32 obvious = data.detectObviousCodePage();
  const s32 unicode = mark.codePage != 0 ? mark.codePage : obvious;
  if (mark.codePage == 0 && unicode > 0)
    facts.emplace_back("zero bytes",
                       "as in " + std::string(charsetOf(unicode)) + " (code page " + std::to_string(unicode) + ")");

  // Declaration and lines are those of the text, so UTF-16 and UTF-32 are looked at as UTF-8.
  DataBuffer text;
  LogNull log;
  const bool wide = unicode > 0 && unicode != kUtf8 &&
                    _vkEncodingConvert().EncConvert(unicode, kUtf8, data.getData2(), data.size(), text, log);
  DataBuffer& readable = wide ? text : data;
  StringBuffer declared;
  const bool isXml = readable.containsSubstring("<?xml", 0) && readable.getXmlCharset(declared);
  facts.emplace_back("XML declaration", isXml ? declared.getString() : "none");
  facts.emplace_back("7-bit", data.is7bit(0) ? "yes" : "no");
  facts.emplace_back("valid UTF-8", validity(data));
  const LineFacts lines = linesOf(readable.getData2(), readable.size());
  facts.emplace_back("line endings", endingsOf(lines));
  facts.emplace_back("longest line", std::to_string(lines.longest) + (wide ? ", as UTF-8" : ""));
  return facts;
}

int detect(Job& job) {
  std::vector<std::string> files = job.files();
  if (files.empty()) files.emplace_back("-");
  std::string report;
  int worst = kDone;
  for (const std::string& file : files) {
    DataBuffer data;
    try {
      if (job.hasText())
        job.read(data);
      else
        job.readFile(file, data);
    } catch (const Failure& failure) {  // the other files still have their turn
      if (files.size() == 1) throw;
      say(failure);
      worst = std::max(worst, failure.status);
      continue;
    }
    report += (job.hasText() ? "the text"
               : file == "-" ? "standard input"
                             : file) +
              ": " + std::to_string(data.size()) + " bytes\n";
    for (const auto& [what, fact] : factsOf(data))
      report += "  " + what + std::string(17 - what.size(), ' ') + fact + "\n";
  }
  job.write(report);
  return worst;
}

}  // namespace

std::function<int()> setUpDetect(CLI::App& app) {
  const auto job = std::make_shared<Job>("detect");
  job->addInputs(app);
  job->addOutput(app);
  app.footer("Examples:\n  vkbuf detect koi8-r.xml\n  vkbuf detect utf16le-nobom.xml utf32be-bom.xml\n");
  return [job] { return detect(*job); };
}
