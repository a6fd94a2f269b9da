// decode: text to bytes, under a name.
#include <CLI/CLI.hpp>
#include <array>
#include <cstring>
#include <memory>

#include "tools/vkbuf/Commands.h"
#include "tools/vkbuf/EncodingNames.h"
#include "tools/vkbuf/Job.h"
#include "tools/vkbuf/Text.h"
#include "tools/vkbuf/TextPieces.h"
#include "varnik/encoding/internal/DecodeText.h"

namespace {

constexpr s32 kUrl = 4, kAscii85 = 17, kUu = 37;
constexpr std::string_view kUuHead = "begin 644 data\n", kUuTail = "`\nend\n";

struct Options {
  Job job{""};
  std::string name;
  bool partial = false, ignoreGarbage = false;
};

bool isIn(std::string_view alphabet, u8 c) {
  return alphabet.find(static_cast<char>(c)) != alphabet.npos;
}

// Puts white space, which all these decoders skip, in the place of what is no text of the encoding. The letters of a
// reference would be taken for data; one that begins in the `n` characters may end in the `all` that are in view.
void blankGarbage(std::string_view alphabet, u8* text, u32 n, u32 all) {
  std::array<bool, 256> known{};
  for (int c = 0; c < 256; ++c)
    known[static_cast<u8>(c)] = isIn(alphabet, static_cast<u8>(c)) || isWhiteSpace(static_cast<u8>(c));
  for (u32 i = 0; i < n; ++i) {
    if (text[i] == '&' && isReturnReference(text + i, all - i)) std::memset(text + i, '\t', 5);
    if (!known[text[i]]) text[i] = '\t';
  }
}

// Decodes a text as it comes, keeps count of where it is, and ends the command at the first fault.
class Decoding {
 public:
  Decoding(const Options& options, s32 id)
      : options_(options), id_(id), output_(options.job.begin()), alphabet_(alphabetOf(id)) {}

  void whole(DataBuffer& text);
  void stream(Window& window, FindCut& findCut);
  void finish() { output_.finish(); }

 private:
  void blank(u8* text, u32 n, u32 all) const {
    if (options_.ignoreGarbage) blankGarbage(alphabet_, text, n, all);
  }
  void skipToBegin(Window& window);
  void openFrame(Window& window);
  void skip(Window& window, u32 n);
  static u32 whiteSpaceAtHead(Window& window);
  u32 inSight(Window& window);
  void refuseFrame(const u8* text, u32 n);
  void piece(u8* text, u32 n, bool ends);
  DecodeResult decode(u8* text, u32 n);
  DecodeResult decodeUrl(u8* text, u32 n);
  DecodeResult decodeLines(const u8* text, u32 n, bool ends);
  void nothingMore(Window& window);
  [[noreturn]] void refuse(const u8* text, u32 n, u32 at);
  std::string reasonAt(const u8* text, u32 at) const;
  bool hasPadding() const { return id_ != kAscii85 && isIn(alphabet_, '='); }

  const Options& options_;
  s32 id_;
  Output output_;
  std::string_view alphabet_;
  Place place_;  // of the text at hand
  bool framed_ = false, begun_ = false, padded_ = false;
  DataBuffer bytes_;
};

void Decoding::whole(DataBuffer& text) {
  if (!text.appendChar(0)) options_.job.fail("out of memory");  // decoders may look for the end
  text.shorten(1);
  blank(text.getData2(), text.size(), text.size());
  piece(text.getData2(), text.size(), true);
}

// A text that is in view as a whole is decoded as such.
void Decoding::stream(Window& window, FindCut& findCut) {
  if (id_ == kUu) skipToBegin(window);
  if (id_ == kAscii85) openFrame(window);
  while (!window.isLast()) {
    const TextCut cut = findCut(window.data(), inSight(window));
    if (cut.length != 0) piece(window.data(), cut.length, false);
    if (cut.length != 0 || !cut.closes) window.advance(cut.length);
    if (!cut.closes) continue;
    const u32 rest = inSight(window);
    piece(window.data(), rest, true);
    window.advance(rest);
    return nothingMore(window);
  }
  blank(window.data(), window.size(), window.size());
  const bool open = framed_ && !std::memchr(window.data(), '~', window.size());
  piece(window.data(), window.size(), true);
  if (!open) return;
  if (options_.partial) output_.finish();
  refuse(nullptr, 0, 0);
}

// What may be decoded without what follows: a reference must be seen whole to be told from garbage.
u32 Decoding::inSight(Window& window) {
  constexpr u32 kReference = 5;
  const u32 n = options_.ignoreGarbage && !window.isLast() ? window.size() - kReference : window.size();
  blank(window.data(), n, window.size());
  return n;
}

// What a mail says before the data is passed over.
void Decoding::skipToBegin(Window& window) {
  while (const u32 n = whiteSpaceAtHead(window)) skip(window, n);
  for (bool found = false; !found;) {
    const u32 begin = findUuBegin(window.data(), window.size(), found);
    if (!found && window.isLast()) options_.job.refuse("no line 'begin MODE NAME' tells where the data begins");
    if (begin != 0)
      skip(window, begin);
    else if (!found)
      window.advance(0);
  }
}

void Decoding::skip(Window& window, u32 n) {
  if (n == 0) return;
  place_.pass(window.data(), n);
  window.advance(n);
}

u32 Decoding::whiteSpaceAtHead(Window& window) {
  u32 at = 0;
  while (at < window.size() && isWhiteSpace(window.data()[at])) ++at;
  return at;
}

void Decoding::openFrame(Window& window) {
  const u32 at = whiteSpaceAtHead(window);
  framed_ = !window.isLast() && window.size() - at >= 2 && std::memcmp(window.data() + at, "<~", 2) == 0;
  if (framed_) skip(window, at + 2);
}

// The decoder would take a frame that opens at the head of a later piece for the beginning of a text.
void Decoding::refuseFrame(const u8* text, u32 n) {
  u32 at = 0;
  while (at < n && isWhiteSpace(text[at])) ++at;
  if (n - at >= 2 && std::memcmp(text + at, "<~", 2) == 0) refuse(text, n, at);
}

void Decoding::piece(u8* text, u32 n, bool ends) {
  if (id_ == kAscii85 && (begun_ || framed_)) refuseFrame(text, n);
  const DecodeResult result = id_ == kUu ? decodeLines(text, n, ends) : decode(text, n);
  const bool bad = !result.ok || result.badAt != kNoFault;
  if (!bad || options_.partial) output_.write(bytes_.getData2(), bytes_.size());
  if (bad && options_.partial) output_.finish();
  if (bad && result.badAt == kNoFault) options_.job.fail("out of memory, or the text does not decode");
  if (bad) refuse(text, n, result.badAt);
  begun_ = true;
  place_.pass(text, n);
  padded_ = padded_ || (hasPadding() && std::memchr(text, '=', n));
}

// Decoders may look for the end of the text, so the character behind it is a zero meanwhile.
DecodeResult Decoding::decode(u8* text, u32 n) {
  bytes_.clear();
  const u8 behind = std::exchange(text[n], u8{0});
  const DecodeResult result =
      id_ == kUrl ? decodeUrl(text, n) : vk_decodeText(id_, reinterpret_cast<const char*>(text), n, bytes_);
  text[n] = behind;
  return result;
}

// The decoder ends at a zero byte, which is nothing special to a person.
DecodeResult Decoding::decodeUrl(u8* text, u32 n) {
  for (u32 at = 0;; ++at) {
    const u32 length = static_cast<u32>(std::strlen(reinterpret_cast<const char*>(text + at)));
    if (!vk_decodeText(kUrl, reinterpret_cast<const char*>(text + at), length, bytes_).ok)
      return DecodeResult::noMemory();
    at += length;
    if (at == n) return DecodeResult::good();
    if (!bytes_.appendChar(0)) return DecodeResult::noMemory();
  }
}

// Lines from the middle of uuencoded text get the lines around them that the decoder wants to see.
DecodeResult Decoding::decodeLines(const u8* text, u32 n, bool ends) {
  const u32 head = !begun_ ? 0 : static_cast<u32>(kUuHead.size());
  DataBuffer lines;
  bytes_.clear();
  if (!lines.append(kUuHead.data(), head) || !lines.append(text, n) ||
      (!ends && !lines.append(kUuTail.data(), static_cast<u32>(kUuTail.size()))) || !lines.appendChar(0))
    return DecodeResult::noMemory();
  DecodeResult result = vk_decodeText(kUu, reinterpret_cast<const char*>(lines.getData2()), lines.size() - 1, bytes_);
  if (result.badAt != kNoFault) result.badAt -= std::min(result.badAt, head);
  return result;
}

// Behind the end of the data only white space may stand; what follows the last line of uuencoded text is no matter.
void Decoding::nothingMore(Window& window) {
  for (padded_ = true;; window.advance(window.size())) {
    blank(window.data(), window.size(), window.size());
    for (u32 i = 0; i < window.size() && id_ != kUu; ++i)
      if (!isWhiteSpace(window.data()[i])) refuse(window.data(), window.size(), i);
    place_.pass(window.data(), window.size());
    if (window.isLast()) return;
  }
}

// Why the character at `at` could not be decoded, as far as the alphabet tells.
std::string Decoding::reasonAt(const u8* text, u32 at) const {
  if (alphabet_.empty()) return "does not decode";
  if (!isIn(alphabet_, text[at])) return "is not in the alphabet";
  if (padded_ && id_ == kAscii85) return "stands behind the end of the frame";
  if (padded_ || (hasPadding() && std::memchr(text, '=', at))) return "stands behind the padding";
  return "belongs to a group that is incomplete or that no encoder writes";
}

void Decoding::refuse(const u8* text, u32 n, u32 at) {
  if (at >= n) options_.job.refuse("the text ends too early, at byte " + std::to_string(place_.offset() + n));
  const bool forUrl = isIn(alphabet_, '+') && !isIn(alphabet_, '-') && (text[at] == '-' || text[at] == '_');
  options_.job.refuse(nameOfByte(text[at]) + " at " + place_.of(text, at) + ", " + reasonAt(text, at),
                      forUrl ? "this looks like base64url" : "");
}

int decode(Options& options) {
  Job& job = options.job;
  job.setCommand("decode " + options.name);
  const s32 id = vk_codec::factsOf(codecOf(options.name)).decoderId;
  if (options.ignoreGarbage && alphabetOf(id).empty())
    job.fail("--ignore-garbage has no meaning here: every character has one");
  if (FindCut* const findCut = cutsOf(id)) {
    const auto input = job.open();
    Window window = job.view(*input);
    Decoding decoding(options, id);
    decoding.stream(window, *findCut);
    decoding.finish();
  } else {
    DataBuffer text;
    job.read(text);
    Decoding decoding(options, id);
    decoding.whole(text);
    decoding.finish();
  }
  return kDone;
}

}  // namespace

std::function<int()> setUpDecode(CLI::App& app) {
  const auto options = std::make_shared<Options>();
  app.add_option("NAME", options->name, "the encoding; 'vkbuf names' lists them")->required()->option_text(" ");
  app.add_flag("--ignore-garbage", options->ignoreGarbage, "skip characters that the encoding does not have");
  app.add_flag("--partial", options->partial, "write the bytes before a fault too");
  options->job.addInput(app);
  options->job.addOutput(app);
  app.footer(
      "Long text goes into a pipe block by block as it proves valid; a file gets all of it or nothing.\n\n"
      "Examples:\n"
      "  vkbuf decode base64url -s 'Pz8-Pg'\n"
      "  vkbuf decode hex -s '48 65 78'\n"
      "  vkbuf encode uu koi8-r.xml | vkbuf decode uu\n");
  return [options] { return decode(*options); };
}
