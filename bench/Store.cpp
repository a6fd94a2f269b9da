// The queue, whole files and secrets, beside the standard library and OpenSSL.
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <unistd.h>

#include <deque>
#include <fstream>
#include <memory>

#include "bench/Bench.h"
#include "varnik/buffer/DataBuffer.h"
#include "varnik/buffer/DataBufferView.h"
#include "varnik/secrets/SecretData.h"
#include "varnik/services/logging/LogBase.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

// A record goes in and one comes out, with `waiting` bytes in between.
void addQueue(std::size_t waiting) {
  constexpr std::size_t kRecord = 1024;
  const Bytes record = bench::randomBytes(kRecord);
  const std::string operation = "queue_" + std::to_string(waiting);
  const auto ours = std::make_shared<DataBufferView>();
  const auto deque = std::make_shared<std::deque<std::uint8_t>>();
  for (std::size_t n = 0; n < waiting; n += kRecord) {
    ours->append(record.data(), kRecord);
    deque->insert(deque->end(), record.begin(), record.end());
  }
  bench::add(operation, kRecord, "varnik", [=, out = Bytes(kRecord)]() mutable {
    ours->append(record.data(), kRecord);
    return ours->takeBytes(kRecord, out.data());
  });
  bench::add(operation, kRecord, "std::deque, no lock", [=, out = Bytes(kRecord)]() mutable {
    deque->insert(deque->end(), record.begin(), record.end());
    std::copy_n(deque->begin(), kRecord, out.begin());
    deque->erase(deque->begin(), deque->begin() + kRecord);
    return out.data();
  });
}

// A file that lives as long as the program.
class File {
 public:
  explicit File(std::size_t n) {
    const int descriptor = mkstemp(path_.data());
    const Bytes bytes = bench::randomBytes(n);
    ok_ = descriptor >= 0 && write(descriptor, bytes.data(), n) == static_cast<ssize_t>(n);
    if (descriptor >= 0) close(descriptor);
  }
  ~File() { unlink(path_.c_str()); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  bool ok() const { return ok_; }
  const std::string& path() const { return path_; }

 private:
  std::string path_ = "varnik-bench-XXXXXX";
  bool ok_ = false;
};

void addLoad(std::size_t n) {
  const auto file = std::make_shared<File>(n);
  if (!file->ok()) return;
  bench::add("load_file", n, "varnik", [=] {
    DataBuffer bytes;
    return bytes.loadFileUtf8(file->path().c_str(), nullptr);
  });
  bench::add("load_file", n, "ifstream", [=] {
    std::string bytes(n, '\0');
    std::ifstream(file->path(), std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(n));
    return bytes.back();
  });
}

// As a program would write it: a context for each message, a fresh nonce, the tag behind the text.
bool sealed(EVP_CIPHER_CTX* context, const Bytes& key, const Bytes& plain, Bytes& out) {
  constexpr int kNonce = 12, kTag = 16;
  const int size = static_cast<int>(plain.size());
  int n = 0;
  return RAND_bytes(out.data(), kNonce) == 1 &&
         EVP_EncryptInit_ex(context, EVP_aes_256_gcm(), nullptr, key.data(), out.data()) == 1 &&
         EVP_EncryptUpdate(context, out.data() + kNonce, &n, plain.data(), size) == 1 &&
         EVP_EncryptFinal_ex(context, out.data() + kNonce + n, &n) == 1 &&
         EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_GCM_GET_TAG, kTag, out.data() + kNonce + size) == 1;
}

void addSecret(std::size_t n) {
  const Bytes plain = bench::randomBytes(n), key = bench::randomBytes(32);
  const auto ourKey = std::make_shared<DataBuffer>();
  ourKey->append(key.data(), 32);
  bench::add("secret_set", n, "varnik", [=, holder = std::make_shared<SecretData>()] {
    LogNull log;
    return holder->setSecret(*ourKey, plain.data(), static_cast<u32>(n), log);
  });
  bench::add("secret_set", n, "openssl", [=, out = Bytes(n + 64)]() mutable {
    const std::unique_ptr<EVP_CIPHER_CTX, void (*)(EVP_CIPHER_CTX*)> context(EVP_CIPHER_CTX_new(), EVP_CIPHER_CTX_free);
    return sealed(context.get(), key, plain, out);
  });
  // Filled here and not by the row above: the rows run in any order, and an empty holder answers at once.
  const auto holder = std::make_shared<SecretData>();
  LogNull setLog;
  if (!holder->setSecret(*ourKey, plain.data(), static_cast<u32>(n), setLog)) return;
  bench::add("secret_get", n, "varnik", [=, out = DataBuffer()]() mutable {
    LogNull log;
    out.clear();
    return holder->getSecret(*ourKey, out, log);
  });
}

}  // namespace

int main(int argc, char** argv) {
  for (const std::size_t waiting : {std::size_t{4} << 10, std::size_t{1} << 20}) addQueue(waiting);
  for (const std::size_t n : {std::size_t{4} << 10, std::size_t{1} << 20, std::size_t{64} << 20}) addLoad(n);
  for (const std::size_t n : {std::size_t{32}, std::size_t{1} << 10, std::size_t{1} << 20}) addSecret(n);
  return bench::run(argc, argv);
}
