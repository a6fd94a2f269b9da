// pad, unpad and tls-check: the padding of block ciphers. And random, for keys and tests.
#include <CLI/CLI.hpp>
#include <memory>

#include "tools/vkbuf/Commands.h"
#include "tools/vkbuf/EncodingNames.h"
#include "tools/vkbuf/Job.h"
#include "tools/vkbuf/Nearest.h"
#include "tools/vkbuf/Text.h"
#include "varnik/services/logging/LogText.h"

namespace {

struct Scheme {
  const char* name;  // its number is its place
  const char* what;
  const char* comesOff;
};

constexpr Scheme kSchemes[] = {
    {"pkcs7", "N bytes that hold N (RFC 5652 section 6.3)", "yes"},
    {"fips81", "random bytes, then the length of the pad", "yes"},
    {"random", "random bytes", "no"},
    {"zeros", "zero bytes", "no"},
    {"spaces", "blanks", "no"},
};

std::vector<std::string> schemeNames() {
  std::vector<std::string> names;
  for (const Scheme& each : kSchemes) names.emplace_back(each.name);
  return names;
}

struct Options {
  Job job{""};
  std::string scheme = "0", count;
  int block = 16;
};

s32 schemeOf(const Options& options) {
  for (size_t i = 0; i < std::size(kSchemes); ++i)
    if (options.scheme == std::to_string(i) || options.scheme == kSchemes[i].name) return static_cast<s32>(i);
  throw Failure(kFailed,
                "no scheme is called '" + options.scheme + "'; nearest: " + nearestNames(options.scheme, schemeNames()),
                "schemes are 0 to 4: pkcs7, fips81, random, zeros, spaces");
}

int pad(const Options& options, s32 scheme, DataBuffer& data) {
  options.job.noteLineEnd(data.getData2(), data.size());
  LogText log;
  const u64 padded = u64{data.size()} + data.padForEncryption(scheme, options.block, log);
  // The pad's length is told even when there was no room for it.
  if (data.size() % static_cast<u32>(options.block) != 0 || padded < data.size()) options.job.fail("out of memory");
  return kDone;
}

int unpad(const Options& options, s32 scheme, DataBuffer& data) {
  LogText log;
  const u32 before = data.size();
  data.unpadAfterDecryption(scheme, options.block, log);
  if (data.size() == before) options.job.refuse("does not end in a well-formed pad; nothing was removed");
  return kDone;
}

int checkTls(Job& job) {
  DataBuffer data;
  job.read(data);
  LogText log;
  if (!data.verifyTlsPadding(log)) job.refuse(reasonIn(log, "the padding is not well formed"));
  job.write("well formed: " + std::to_string(data.lastByte()) + " bytes of padding and their length\n");
  return kDone;
}

int random(Options& options) {
  const auto count = parseCount(options.count);
  if (!count || *count > 0xFFFFFFFF - 32) options.job.fail("'" + options.count + "' is no count of bytes below 4 GiB");
  DataBuffer data;
  data.secure = 1;
  if (!data.ensureBuffer(static_cast<u32>(*count)) || !data.appendRandomBytes(static_cast<u32>(*count)))
    options.job.fail("no random bytes to be had");
  options.job.write(data);
  return kDone;
}

std::shared_ptr<Options> setUp(CLI::App& app, const char* command) {
  auto options = std::make_shared<Options>();
  options->job.setCommand(command);
  app.add_option("--scheme", options->scheme, "the kind of pad, by name or number from 0 (pkcs7)")
      ->option_text("pkcs7|fips81|random|zeros|spaces");
  app.add_option("--block", options->block, "the cipher's block size, 8 or 16 (16)")
      ->option_text("N")
      ->check(CLI::IsMember({8, 16}));
  options->job.addInputs(app);
  options->job.addOutput(app);
  options->job.addInPlace(app);
  return options;
}

}  // namespace

std::vector<Cells> paddingRows() {
  std::vector<Cells> table = {{"NAME", "SCHEME", "UNPAD", "WHAT IT IS"}};
  for (size_t i = 0; i < std::size(kSchemes); ++i)
    table.push_back({kSchemes[i].name, std::to_string(i), kSchemes[i].comesOff, kSchemes[i].what});
  return table;
}

std::function<int()> setUpPad(CLI::App& app) {
  const auto options = setUp(app, "pad");
  app.footer(
      "Examples:\n"
      "  vkbuf pad -s abc --block 8 | vkbuf hexdump\n"
      "  vkbuf pad --scheme zeros koi8-r.xml | vkbuf hexdump\n"
      "  vkbuf names paddings\n");
  return [options] {
    const s32 scheme = schemeOf(*options);
    return options->job.filter([&, scheme](DataBuffer& data) { return pad(*options, scheme, data); });
  };
}

std::function<int()> setUpUnpad(CLI::App& app) {
  const auto options = setUp(app, "unpad");
  app.footer(
      "Only the pads of schemes 0 and 1 tell their length, so only they can be removed. Authenticate what was "
      "encrypted\n"
      "before you unpad it: what this command answers can help an attacker otherwise.\n\n"
      "Examples:\n"
      "  vkbuf pad -s abc | vkbuf unpad\n"
      "  vkbuf pad -s abc --scheme fips81 --block 8 | vkbuf unpad --scheme fips81 --block 8\n"
      "  vkbuf decode hex -s '6162 0606 0606 0606' | vkbuf unpad --block 8\n");
  return [options] {
    const s32 scheme = schemeOf(*options);
    if (scheme > 1)
      options->job.fail("a pad of scheme " + options->scheme + " does not tell its length, so it cannot be removed");
    return options->job.filter([&, scheme](DataBuffer& data) { return unpad(*options, scheme, data); });
  };
}

std::function<int()> setUpTlsCheck(CLI::App& app) {
  const auto job = std::make_shared<Job>("tls-check");
  job->addInput(app);
  job->addOutput(app);
  app.footer(
      "Looks whether the data ends in the padding of TLS (RFC 5246 section 6.2.3.2): N bytes that hold N, and N "
      "itself.\n\n"
      "Examples:\n"
      "  vkbuf decode hex -s 'aa bb 02 02 02' | vkbuf tls-check\n"
      "  vkbuf decode hex -s '00' | vkbuf tls-check\n"
      "  vkbuf decode hex -s '6162 63 00' | vkbuf tls-check -q\n");
  return [job] { return checkTls(*job); };
}

std::function<int()> setUpRandom(CLI::App& app) {
  const auto options = std::make_shared<Options>();
  options->job.setCommand("random");
  app.add_option("N", options->count, "how many bytes; k, M and G are powers of 1024")->required()->option_text(" ");
  options->job.addOutput(app);
  app.footer(
      "Examples:\n"
      "  vkbuf random 32 | vkbuf encode base64url\n"
      "  vkbuf random 1k | vkbuf hexdump\n"
      "  vkbuf random 16 -o key.bin\n");
  return [options] { return random(*options); };
}
