// names: the encodings as a table for people.
#include "tools/vkbuf/EncodingNames.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <memory>
#include <sstream>

#include "tools/vkbuf/Commands.h"
#include "tools/vkbuf/Job.h"
#include "tools/vkbuf/Nearest.h"
#include "tools/vkbuf/Text.h"
#include "varnik/services/charset/CharsetNames.h"
#include "varnik/services/strings/StringBuffer.h"

namespace {

struct Row {
  const char* name;
  const char* others;  // other spellings, blanks between them
  const char* what;
  const char* lines;    // whether it breaks lines
  const char* wayBack;  // what does not come back, or how; empty for nothing of note
};

constexpr Row kRows[] = {
    {"base64", "base-64", "RFC 4648 section 4, '=' padding", "no", ""},
    {"base64_mime", "", "base64 in lines (RFC 2045)", "76, CR LF", ""},
    {"base64url", "", "URL-safe alphabet, no padding (RFC 4648 section 5)", "no", ""},
    {"modBase64", "", "URL-safe alphabet, '=' padding", "no", ""},
    {"base64_crEntity", "", "base64 in lines, CR written as &#xD;", "76, &#xD; LF", ""},
    {"base64_cr13Entity", "", "base64 in lines, CR written as &#13;", "76, &#13; LF", ""},
    {"base58", "", "the Bitcoin alphabet", "no", ""},
    {"base32", "", "RFC 4648 section 6, '=' padding", "no", ""},
    {"base45", "", "RFC 9285", "no", ""},
    {"ascii85", "", "five characters for four bytes, 'z' for four zeros", "no", ""},
    {"hex", "hexidecimal", "upper-case digits", "no", ""},
    {"hexlower", "hex_lower hex-lower", "lower-case digits", "no", ""},
    {"fingerprint", "finger thumbprint thumb", "lower-case digits with colons; any word that begins so", "no", ""},
    {"eda", "", "digits to be read aloud: groups of four", "16 groups, LF", ""},
    {"qp", "quoted-printable", "quoted-printable (RFC 2045 section 6.7)", "76, CR LF", ""},
    {"qp-N", "", "quoted-printable in lines of N characters, as qp-40", "N, CR LF", ""},
    {"url", "url_rfc3986 url_oauth", "percent-encoding (RFC 3986)", "no", ""},
    {"url_rfc1738", "", "percent-encoding, fewer characters escaped (RFC 1738)", "no", ""},
    {"url_rfc2396", "", "percent-encoding, fewer characters escaped (RFC 2396)", "no", ""},
    {"uu", "", "uuencode, with its begin and end lines", "61, LF", ""},
    {"B", "", "mail header words in base64 (RFC 2047), UTF-8", "words of 75", ""},
    {"Q", "", "mail header words, readable (RFC 2047), UTF-8", "words of 75", ""},
    {"json", "", "the inside of a JSON string", "no", "ends at a zero byte"},
    {"declist", "", "decimal values, commas between them", "no", ""},
    {"decimal", "", "all bytes as one number", "no", "leading zero bytes are lost"},
    {"ascii", "us-ascii usascii asc ansi", "the bytes as they are, nothing checked", "no", ""},
};

std::vector<std::string> wordsOf(const std::string& text) {
  std::istringstream in(text);
  return {std::istream_iterator<std::string>(in), {}};
}

bool isCalled(const Row& row, const std::string& name) {
  const auto same = [&name](const std::string& each) {
    return StringBuffer(each.c_str()).equalsIgnoreCase(name.c_str());
  };
  const auto others = wordsOf(row.others);
  return same(row.name) || std::any_of(others.begin(), others.end(), same);
}

// The bytes 00 AB FF under a name. Line ends are shown as \r and \n, other bytes that are no ASCII as \x...
std::string sampleOf(const Row& row) {
  constexpr u8 kBytes[] = {0x00, 0xAB, 0xFF};
  StringBuffer text;
  DataBuffer::encodeDB2(row.name, kBytes, 3, text);
  std::string shown;
  for (u32 i = 0; i < text.getSize(); ++i) {
    const u8 c = static_cast<u8>(text.getString()[i]);
    char escape[8];
    if (c == '\r')
      shown += "\\r";
    else if (c == '\n')
      shown += "\\n";
    else if (c >= 0x20 && c < 0x7F)
      shown += static_cast<char>(c);
    else
      shown += (std::snprintf(escape, sizeof escape, "\\x%02x", c), escape);
  }
  return shown;
}

Cells cellsOf(const Row& row) {
  return {row.name, sampleOf(row), row.lines, row.others, row.what, row.wayBack};
}

std::string tableOf(const std::vector<Cells>& rows) {
  std::vector<size_t> widths(rows[0].size());
  for (const Cells& row : rows)
    for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
  std::string table;
  for (const Cells& row : rows) {
    std::string line;
    for (size_t i = 0; i < row.size(); ++i) line += row[i] + std::string(widths[i] - row[i].size() + 2, ' ');
    table += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
  }
  return table;
}

struct Options {
  Job job{"names"};
  std::string name;
  bool plain = false, json = false;
};

// One object a row, its keys the headings.
std::string jsonOf(const std::vector<Cells>& rows) {
  std::string json = "[";
  for (size_t r = 1; r < rows.size(); ++r) {
    json += r == 1 ? "\n  {" : ",\n  {";
    for (size_t c = 0; c < rows[r].size(); ++c)
      json += (c == 0 ? "" : ", ") + jsonText(rows[0][c]) + ": " + jsonText(rows[r][c]);
    json += "}";
  }
  return json + "\n]\n";
}

std::vector<Cells> encodingRows(const Options& options) {
  std::vector<Cells> table = {{"NAME", "00 AB FF", "LINES", "ALSO", "WHAT IT IS", "THE WAY BACK"}};
  for (const Row& row : kRows)
    if (options.name.empty() || isCalled(row, options.name)) table.push_back(cellsOf(row));
  if (table.size() == 1)
    throw Failure(kFailed, "no encoding is called '" + options.name +
                               "'; nearest: " + nearestNames(options.name, encodingNames()));
  return table;
}

// Each charset with the other spellings that lead to it.
std::vector<Cells> charsetRows() {
  std::vector<Cells> table = {{"NAME", "CODE PAGE", "ALSO"}};
  std::map<std::string, std::string> others;
  for (u32 i = 0; i < CharsetNames::countLabels(); ++i) {
    StringBuffer name(CharsetNames::labelAt(i));
    CharsetNames::canonicalizeCharset(name);
    if (name.equals(CharsetNames::labelAt(i))) continue;
    std::string& list = others[name.getString()];
    list += (list.empty() ? "" : " ") + std::string(CharsetNames::labelAt(i));
  }
  for (u32 i = 0; i < CharsetNames::count(); ++i) {
    StringBuffer name(CharsetNames::nameAt(i));
    table.push_back({name.getString(), std::to_string(CharsetNames::codePageForName(name, nullptr)),
                     others[CharsetNames::nameAt(i)]});
  }
  return table;
}

int printNames(Options& options) {
  const std::vector<Cells> table = options.name == "charsets"   ? charsetRows()
                                   : options.name == "paddings" ? paddingRows()
                                                                : encodingRows(options);
  std::string plain;
  for (size_t i = 1; i < table.size(); ++i) plain += table[i][0] + "\n";
  options.job.write(options.json ? jsonOf(table) : options.plain ? plain : tableOf(table));
  return kDone;
}

}  // namespace

std::vector<std::string> encodingNames() {
  std::vector<std::string> names;
  for (const Row& row : kRows) {
    names.emplace_back(row.name);
    for (const std::string& other : wordsOf(row.others)) names.push_back(other);
  }
  return names;
}

vk_codec::TextCodec codecOf(const std::string& name) {
  const vk_codec::EncodingName* const found = vk_codec::findEncodingName(name);
  if (found) return found->codec;
  throw Failure(kFailed, "no encoding is called '" + name + "'; nearest: " + nearestNames(name, encodingNames()));
}

std::string_view alphabetOf(s32 id) {
  switch (id) {
    case 1:
    case 24:
      return "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";
    case 10:
    case 20:
      return "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=-_";
    case 3:
    case 25:
      return "0123456789ABCDEFabcdef";
    case 18:
      return "0123456789ABCDEFabcdef:";
    case 30:
      return "ABCDEFGHIJKLMNOPQRSTUVWXYZ234567=";
    case 7:
      return "123456789ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz";
    case 17:
      return "!\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`abcdefghijklmnopqrstuz~";
    case 21:
      return "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ $%*+-./:";
    default:
      return {};
  }
}

std::function<int()> setUpNames(CLI::App& app) {
  const auto options = std::make_shared<Options>();
  app.add_option("NAME", options->name, "tell about this one only; or 'charsets', or 'paddings'")->option_text(" ");
  app.add_flag("--plain", options->plain, "the names alone, one a line");
  app.add_flag("--json", options->json, "the table as JSON");
  options->job.addOutput(app);
  app.footer("Examples:\n  vkbuf names\n  vkbuf names base64url --json\n  vkbuf names charsets --plain\n");
  return [options] { return printNames(*options); };
}
