// Encoding and decoding by name, beside OpenSSL, what people write by hand, and memcpy. A count is the plain bytes.
#include <openssl/evp.h>

#include <cstring>
#include <memory>

#include "bench/Bench.h"
#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/strings/StringBuffer.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

// Words with punctuation and line ends, which is what the text formats are made for.
Bytes words(std::size_t n) {
  constexpr std::string_view kText = "The header says \"it\": 7 lines, of text/plain = 100% of it.\r\n";
  Bytes bytes(n);
  for (std::size_t i = 0; i < n; ++i) bytes[i] = static_cast<std::uint8_t>(kText[i % kText.size()]);
  return bytes;
}

void addOurs(const char* name, const Bytes& bytes) {
  const std::size_t n = bytes.size();
  const auto text = std::make_shared<StringBuffer>();
  bench::add(std::string(name) + "_encode", n, "varnik", [=] {
    text->weakClear();
    DataBuffer::encodeDB2(name, bytes.data(), static_cast<u32>(bytes.size()), *text);
    return text->getString();
  });
  StringBuffer encoded;
  DataBuffer::encodeDB2(name, bytes.data(), static_cast<u32>(n), encoded);
  bench::add(std::string(name) + "_decode", n, "varnik", [=, out = DataBuffer()]() mutable {
    out.clear();
    return out.appendEncoded(encoded.getString(), name);
  });
}

void addOpenSsl(const Bytes& bytes) {
  const int n = static_cast<int>(bytes.size());
  Bytes text(bytes.size() / 3 * 4 + 8);
  const int chars = EVP_EncodeBlock(text.data(), bytes.data(), n);
  bench::add("base64_encode", bytes.size(), "openssl",
             [=]() mutable { return EVP_EncodeBlock(text.data(), bytes.data(), n); });
  bench::add("base64_decode", bytes.size(), "openssl",
             [=, out = Bytes(bytes.size() + 8)]() mutable { return EVP_DecodeBlock(out.data(), text.data(), chars); });
}

// The loop with a table of digits that programs carry.
void addHexLoop(const Bytes& bytes) {
  bench::add("hex_encode", bytes.size(), "loop", [=, text = std::string(bytes.size() * 2, ' ')]() mutable {
    constexpr char kDigits[] = "0123456789ABCDEF";
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      text[2 * i] = kDigits[bytes[i] >> 4];
      text[2 * i + 1] = kDigits[bytes[i] & 15];
    }
    return text.data();
  });
}

void addMemcpy(const Bytes& bytes) {
  bench::add("hex_encode", bytes.size(), "memcpy", [=, to = Bytes(bytes.size())]() mutable {
    std::memcpy(to.data(), bytes.data(), bytes.size());
    return to.data();
  });
}

}  // namespace

int main(int argc, char** argv) {
  for (const std::size_t n :
       {std::size_t{64}, std::size_t{512}, std::size_t{4} << 10, std::size_t{64} << 10, std::size_t{1} << 20}) {
    const Bytes random = bench::randomBytes(n), text = words(n);
    for (const char* name : {"hex", "base32", "base45", "base64", "base64_mime", "base64url", "ascii85", "uu"})
      addOurs(name, random);
    for (const char* name : {"qp", "url", "json", "declist"}) addOurs(name, text);
    addOpenSsl(random);
    addHexLoop(random);
    addMemcpy(random);
  }
  return bench::run(argc, argv);
}
