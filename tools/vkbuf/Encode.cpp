// encode: bytes to text, under a name.
#include <CLI/CLI.hpp>
#include <memory>

#include "tools/vkbuf/Commands.h"
#include "tools/vkbuf/EncodingNames.h"
#include "tools/vkbuf/Job.h"
#include "tools/vkbuf/Text.h"

namespace {

using vk_codec::TextCodec;

struct Options {
  Job job{""};
  std::string name, width, lineEnd;
};

// How many bytes, or a multiple of it, become text by themselves. 0 for an encoding that needs the whole input.
u32 bytesOfGroup(TextCodec codec) {
  switch (codec) {
    case TextCodec::base64:
    case TextCodec::base64Url:
    case TextCodec::modBase64:
      return 3;
    case TextCodec::base64Mime:
    case TextCodec::base64CrEntity:
    case TextCodec::base64Cr13Entity:
      return 57;  // a line
    case TextCodec::base32:
      return 5;
    case TextCodec::ascii85:
      return 4;
    case TextCodec::uu:
      return 45;  // a line
    case TextCodec::hex:
    case TextCodec::hexLower:
    case TextCodec::decList:
    case TextCodec::urlRfc3986:
    case TextCodec::urlRfc1738:
    case TextCodec::urlRfc2396:
    case TextCodec::plain:
      return 1;
    default:
      return 0;
  }
}

bool hasLineOption(TextCodec codec) {
  switch (codec) {
    case TextCodec::base64:
    case TextCodec::base64Url:
    case TextCodec::modBase64:
    case TextCodec::base32:
    case TextCodec::hex:
    case TextCodec::hexLower:
      return true;
    default:
      return false;
  }
}

// What -w and --eol make of a text that comes in pieces.
class Lines {
 public:
  Lines(const Options& options, TextCodec codec);

  // Writes a piece; no piece ends within a line end of the encoding's own.
  void write(StringBuffer& text, Output& output);
  void finish(Output& output) const {
    if (column_ != 0) output.write(end_.data(), end_.size());
  }

 private:
  void wrap(const StringBuffer& text);

  u32 width_ = 0;  // 0: the encoding's own lines
  std::string own_, end_, wrapped_;
  u32 column_ = 0;
};

Lines::Lines(const Options& options, TextCodec codec) {
  const Job& job = options.job;
  const bool wraps = vk_codec::factsOf(codec).wraps;
  end_ = options.lineEnd == "crlf" ? "\r\n" : "\n";
  if (!options.width.empty()) {
    const auto width = parseCount(options.width);
    if (!hasLineOption(codec))
      job.fail("-w is for base64, base64url, base32 and hex",
               codec == TextCodec::quotedPrintable ? "qp-N has lines of N characters" : "");
    if (!width || *width > 0x7FFFFFFF) job.fail("-w: '" + options.width + "' is no count of characters");
    width_ = static_cast<u32>(*width);
  }
  if (options.lineEnd.empty() || width_ != 0) return;
  const bool entity = codec == TextCodec::base64CrEntity || codec == TextCodec::base64Cr13Entity;
  if (!wraps || entity) job.fail("--eol: there are no lines to end", hasLineOption(codec) ? "-w N makes lines" : "");
  own_ = codec == TextCodec::uu || codec == TextCodec::eda ? "\n" : "\r\n";
}

void Lines::wrap(const StringBuffer& text) {
  wrapped_.clear();
  for (u32 at = 0; at < text.getSize();) {
    const u32 n = std::min(width_ - column_, text.getSize() - at);
    wrapped_.append(text.getString() + at, n);
    at += n;
    column_ += n;
    if (column_ < width_) break;
    wrapped_ += end_;
    column_ = 0;
  }
}

void Lines::write(StringBuffer& text, Output& output) {
  if (width_ != 0) {
    wrap(text);
    return output.write(wrapped_.data(), wrapped_.size());
  }
  if (!own_.empty() && own_ != end_) text.replaceAllOccurances(own_.c_str(), end_.c_str());
  output.write(text.getString(), text.getSize());
}

void encodePiece(const Options& options, const u8* data, u32 n, StringBuffer& text) {
  if (!DataBuffer::encodeDB2(options.name.c_str(), data, n, text))
    options.job.fail("out of memory, or the text would pass 4 GiB");
}

void encodeWhole(Options& options, Lines& lines) {
  DataBuffer data;
  options.job.read(data);
  StringBuffer text;
  encodePiece(options, data.getData2(), data.size(), text);
  Output output = options.job.begin();
  lines.write(text, output);
  output.finish();
  options.job.noteLineEnd(data.getData2(), data.size());
}

// Takes what stands around the text of every piece away where pieces meet: the lines `begin` and `end` of uuencoded
// text.
void trimFrame(StringBuffer& text, bool first, bool last) {
  constexpr std::string_view kHead = "begin 644 data\n", kTail = "`\nend\n";
  if (!last) text.shorten(kTail.size());
  if (first) return;
  StringBuffer rest;
  rest.appendN(text.getString() + kHead.size(), text.getSize() - static_cast<u32>(kHead.size()));
  text = std::move(rest);
}

void encodeStream(Options& options, TextCodec codec, Lines& lines) {
  const u32 group = bytesOfGroup(codec);
  const auto input = options.job.open();
  Window window = options.job.view(*input);
  Output output = options.job.begin();
  StringBuffer text;
  for (bool first = true;; first = false) {
    const bool last = window.isLast();
    const u32 n = last ? window.size() : window.size() / group * group;
    text.weakClear();
    if (codec == TextCodec::decList && !first && n != 0) text.appendChar(',');
    encodePiece(options, window.data(), n, text);
    if (codec == TextCodec::uu) trimFrame(text, first, last);
    lines.write(text, output);
    if (last) break;
    window.advance(n);
  }
  lines.finish(output);
  output.finish();
  options.job.noteLineEnd(window.data(), window.size());
}

int encode(Options& options) {
  options.job.setCommand("encode " + options.name);
  const TextCodec codec = codecOf(options.name);
  Lines lines(options, codec);
  if (bytesOfGroup(codec) == 0)
    encodeWhole(options, lines);
  else
    encodeStream(options, codec, lines);
  return kDone;
}

}  // namespace

std::function<int()> setUpEncode(CLI::App& app) {
  const auto options = std::make_shared<Options>();
  app.add_option("NAME", options->name, "the encoding; 'vkbuf names' lists them")->required()->option_text(" ");
  app.add_option("-w,--wrap", options->width, "lines of N characters, for base64, base64url, base32 and hex")
      ->option_text("N");
  app.add_option("--eol", options->lineEnd, "how lines end: lf (usual) or crlf (usual in mail)")
      ->option_text("lf|crlf")
      ->check(CLI::IsMember({"lf", "crlf"}));
  options->job.addInput(app);
  options->job.addOutput(app);
  app.footer(
      "Examples:\n"
      "  vkbuf encode base64 -s 'Hello, world'\n"
      "  vkbuf encode base64_mime utf8-bom.xml --eol lf | vkbuf decode base64\n"
      "  vkbuf encode qp-40 windows-1252.xml | vkbuf decode qp\n");
  return [options] { return encode(*options); };
}
