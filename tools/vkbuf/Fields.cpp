// fields: numbers and texts at fixed places, written and read.
#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>
#include <cstring>
#include <memory>

#include "tools/vkbuf/Commands.h"
#include "tools/vkbuf/Job.h"
#include "tools/vkbuf/Nearest.h"
#include "tools/vkbuf/Text.h"

namespace {

struct Options {
  Job job{"fields"};
  std::string put, get;
  bool json = false;
};

enum class Content { natural, integer, real, text, hex };

struct Type {
  const char* name;
  Content content;
  u32 bytes;  // 0: told by what follows the name
  bool littleEndian;
};

constexpr Type kTypes[] = {
    {"u8", Content::natural, 1, true},     {"i8", Content::integer, 1, true},     {"u16le", Content::natural, 2, true},
    {"u16be", Content::natural, 2, false}, {"i16le", Content::integer, 2, true},  {"i16be", Content::integer, 2, false},
    {"u32le", Content::natural, 4, true},  {"u32be", Content::natural, 4, false}, {"i32le", Content::integer, 4, true},
    {"i32be", Content::integer, 4, false}, {"u64le", Content::natural, 8, true},  {"u64be", Content::natural, 8, false},
    {"i64le", Content::integer, 8, true},  {"i64be", Content::integer, 8, false}, {"f32le", Content::real, 4, true},
    {"f32be", Content::real, 4, false},    {"f64le", Content::real, 8, true},     {"f64be", Content::real, 8, false},
    {"text", Content::text, 0, true},      {"hex", Content::hex, 0, true},
};

struct Field {
  const Type* type;
  std::string operand;  // the value behind '=', or the length behind ':'
};

std::vector<std::string> typeNames() {
  std::vector<std::string> names;
  for (const Type& each : kTypes) names.emplace_back(each.name);
  return names;
}

// Reads "u16le=513,text=abc" or "u16le,text:3", `mark` being the character between.
std::vector<Field> fieldsOf(const Job& job, const std::string& list, char mark) {
  std::vector<Field> fields;
  for (size_t start = 0; start <= list.size();) {
    const size_t end = std::min(list.find(',', start), list.size());
    const std::string item = list.substr(start, end - start);
    const size_t split = std::min(item.find(mark), item.size());
    const std::string name = item.substr(0, split);
    const Type* type = nullptr;
    for (const Type& each : kTypes)
      if (name == each.name) type = &each;
    if (!type)
      job.fail("no type is called '" + name + "'; nearest: " + nearestNames(name, typeNames()), "vkbuf fields --help");
    const bool hasOperand = split != item.size();
    if (hasOperand != (mark == '=' || type->bytes == 0))
      job.fail("'" + item + "': " +
               (mark == '='        ? "a value is given by TYPE=VALUE"
                : type->bytes == 0 ? "a length is given by TYPE:N"
                                   : "its length is known"));
    fields.push_back({type, hasOperand ? item.substr(split + 1) : ""});
    start = end + 1;
  }
  return fields;
}

void appendBits(const Type& type, u64 bits, DataBuffer& out) {
  for (u32 i = 0; i < type.bytes; ++i)
    out.appendChar(static_cast<u8>(bits >> (8 * (type.littleEndian ? i : type.bytes - 1 - i))));
}

template <class Number>
Number numberOf(const Job& job, const Field& field) {
  std::string_view text = field.operand;
  Number number{};
  std::from_chars_result result;
  if constexpr (std::is_floating_point_v<Number>) {
    result = std::from_chars(text.data(), text.data() + text.size(), number);
  } else {
    const bool hex = text.starts_with("0x");
    if (hex) text.remove_prefix(2);
    result = std::from_chars(text.data(), text.data() + text.size(), number, hex ? 16 : 10);
  }
  if (result.ec != std::errc() || result.ptr != text.data() + text.size())
    job.fail("'" + field.operand + "' is no value for " + field.type->name);
  return number;
}

template <class To, class From>
To bitsOf(From value) {
  To bits;
  static_assert(sizeof bits == sizeof value);
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

void put(const Job& job, const Field& field, DataBuffer& out) {
  const Type& type = *field.type;
  const u32 spare = type.bytes == 0 ? 0 : 64 - 8 * type.bytes;
  switch (type.content) {
    case Content::natural: {
      const u64 value = numberOf<u64>(job, field);
      if (type.bytes < 8 && value >> (8 * type.bytes) != 0) job.fail(field.operand + " is too large for " + type.name);
      return appendBits(type, value, out);
    }
    case Content::integer: {
      const s64 value = numberOf<s64>(job, field);
      if (static_cast<s64>(static_cast<u64>(value) << spare) >> spare != value)
        job.fail(field.operand + " is too large for " + type.name);
      return appendBits(type, static_cast<u64>(value), out);
    }
    case Content::real:
      if (type.bytes == 4) return appendBits(type, bitsOf<u32>(numberOf<float>(job, field)), out);
      return appendBits(type, bitsOf<u64>(numberOf<double>(job, field)), out);
    case Content::text:
      out.append(field.operand.data(), static_cast<u32>(field.operand.size()));
      return;
    case Content::hex:
      out.append(job.bytesOfHex(field.operand));
  }
}

template <class Number>
std::string shortest(Number number) {
  char area[32];
  return {area, std::to_chars(area, area + sizeof area, number).ptr};
}

// JSON has no infinities: there they are texts.
std::string realOf(double value, const std::string& digits, bool json) {
  return json && !std::isfinite(value) ? jsonText(digits) : digits;
}

std::string valueOf(const Type& type, const u8* data, u32 n, bool json) {
  u64 bits = 0;
  for (u32 i = 0; i < type.bytes; ++i) bits |= u64{data[i]} << (8 * (type.littleEndian ? i : type.bytes - 1 - i));
  const u32 spare = type.bytes == 0 ? 0 : 64 - 8 * type.bytes;
  switch (type.content) {
    case Content::natural:
      return std::to_string(bits);
    case Content::integer:
      return std::to_string(static_cast<s64>(bits << spare) >> spare);
    case Content::real:
      if (type.bytes == 4) {
        const float value = bitsOf<float>(static_cast<u32>(bits));
        return realOf(value, shortest(value), json);
      }
      return realOf(bitsOf<double>(bits), shortest(bitsOf<double>(bits)), json);
    case Content::text: {
      const std::string_view text(reinterpret_cast<const char*>(data), n);
      return json ? jsonText(text) : std::string(text);
    }
    case Content::hex:
      break;
  }
  StringBuffer digits;
  DataBuffer::encodeDB2("hexlower", data, n, digits);
  return json ? jsonText(digits.getString()) : digits.getString();
}

int getFields(Options& options) {
  Job& job = options.job;
  const auto fields = fieldsOf(job, options.get, ':');
  DataBuffer data;
  job.read(data);
  std::string result = options.json ? "[" : "";
  u64 at = 0;
  for (const Field& field : fields) {
    u64 n = field.type->bytes;
    if (n == 0) {
      const auto count = parseCount(field.operand);
      if (!count || *count > 0xFFFFFFFF) job.fail("'" + field.operand + "' is no length");
      n = *count;
    }
    if (at + n > data.size())
      job.refuse("ends too early: " + std::string(field.type->name) + " at byte " + std::to_string(at) + " takes " +
                 std::to_string(n) + ", " + std::to_string(data.size() - at) + " are left");
    const std::string value =
        valueOf(*field.type, data.getDataAt2(static_cast<u32>(at)), static_cast<u32>(n), options.json);
    result += options.json ? (at == 0 && &field == &fields[0] ? "" : ", ") + value : value + "\n";
    at += n;
  }
  job.write(options.json ? result + "]\n" : result);
  return kDone;
}

int fields(Options& options) {
  if (options.put.empty() == options.get.empty()) options.job.fail("give either --put LIST or --get LIST");
  if (!options.get.empty()) return getFields(options);
  if (options.job.hasText() || !options.job.files().empty() || options.json)
    options.job.fail("--put takes no input; its values are all that it writes");
  DataBuffer data;
  for (const Field& field : fieldsOf(options.job, options.put, '=')) put(options.job, field, data);
  options.job.write(data);
  return kDone;
}

}  // namespace

std::function<int()> setUpFields(CLI::App& app) {
  const auto options = std::make_shared<Options>();
  app.add_option("--put", options->put, "write values: TYPE=VALUE, commas between them")->option_text("LIST");
  app.add_option("--get", options->get, "read values, one a line: TYPE, or TYPE:N for text and hex")
      ->option_text("LIST");
  app.add_flag("--json", options->json, "with --get: the values as a JSON array");
  options->job.addInput(app);
  options->job.addOutput(app);
  app.footer(
      "Types: u and i (with a sign) of 8, 16, 32 or 64 bits, f of 32 or 64, then le or be for the order of the bytes:\n"
      "u8 i16le u32be i64le f64be; text and hex. A text holds no comma. Data that ends too early is status 1.\n\n"
      "Examples:\n"
      "  vkbuf fields --put u16le=513,u32be=1,f64le=0.5,text=abc | vkbuf hexdump\n"
      "  vkbuf fields --get u16be,text:3 utf16be-bom.xml --json\n"
      "  vkbuf decode hex -s 0201 | vkbuf fields --get u16le\n");
  return [options] { return fields(*options); };
}
