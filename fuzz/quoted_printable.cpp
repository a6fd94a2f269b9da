// Quoted-printable: every line length carries all bytes there and back in lines that keep to it; any text decodes as a
// slow reading of RFC 2045 section 6.7 has it.
#include "fuzz/Fuzz.h"

namespace {

int digit(char c) {
  return c >= '0' && c <= '9' ? c - '0' : (c | 32) >= 'a' && (c | 32) <= 'f' ? (c | 32) - 'a' + 10 : -1;
}

/// One line without its line feed: blanks at its end are dropped, escapes undone; a `=` at the end joins the next line,
/// where there is one.
void decodeLine(std::string line, bool hasEnd, std::string& out) {
  const bool pair = hasEnd && !line.empty() && line.back() == '\r';
  if (pair) line.pop_back();
  while (!line.empty() && (line.back() == ' ' || line.back() == '\t')) line.pop_back();
  const bool joins = hasEnd && !line.empty() && line.back() == '=';
  if (joins) line.pop_back();
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '=' && line.size() - i > 2 && digit(line[i + 1]) >= 0 && digit(line[i + 2]) >= 0) {
      out += static_cast<char>(digit(line[i + 1]) * 16 + digit(line[i + 2]));
      i += 2;
    } else {
      out += line[i];
    }
  }
  if (!joins && hasEnd) out += pair ? "\r\n" : "\n";
}

std::string decoded(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    decodeLine(std::string(text.substr(0, end)), end != text.npos, out);
    text.remove_prefix(end == text.npos ? text.size() : end + 1);
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t n) {
  Choices in(data, n);
  const u32 length = in.byte(), limit = length < 4 ? 76 : length;
  const std::string_view given = in.rest();
  ContentEncoder encoder;
  encoder.setLineLength(length);
  StringBuffer text;
  CHECK(encoder.encodeQuotedPrintable(bytesOf(given), countOf(given), text));
  std::size_t start = 0;
  for (std::size_t i = 0; i <= text.getSize(); ++i) {
    const char c = text.getString()[i];
    CHECK(c == '\r' || c == '\n' || c == '\t' || c == 0 || (c >= ' ' && c <= '~'));
    if (c != '\r' && i != text.getSize()) continue;
    CHECK(i - start <= limit && (i == start || (text.getString()[i - 1] != ' ' && text.getString()[i - 1] != '\t')));
    CHECK(c == 0 || text.getString()[i + 1] == '\n');
    start = i + 2;
  }
  DataBuffer back, free;
  CHECK(encoder.decodeQuotedPrintable(text.getString(), text.getSize(), back) && viewOf(back) == given);
  CHECK(encoder.decodeQuotedPrintable(given.data(), countOf(given), free) && viewOf(free) == decoded(given));
  return 0;
}
