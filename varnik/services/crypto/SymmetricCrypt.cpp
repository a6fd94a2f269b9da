// A ciphertext, n bytes of plaintext:
//
//   IV, 12 bytes, random | the encrypted bytes, n | tag, 16 bytes
//
// Both directions write into a block of the final size before they give it to the caller's buffer, so that nothing
// grows, and so moves, with a secret inside; and nothing comes out before it is known to be right.
#include "varnik/services/crypto/SymmetricCrypt.h"

#include <openssl/core_names.h>
#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/kdf.h>

#include <algorithm>
#include <atomic>
#include <cstdint>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/crypto/internal/SystemRandom.h"

namespace {

constexpr u32 kKeySize = 32;
constexpr u32 kIvSize = 12;
constexpr u32 kTagSize = 16;
constexpr u32 kOverhead = kIvSize + kTagSize;
constexpr u32 kMostAtOnce = 1U << 30;                             // libcrypto counts in int
constexpr char kPurpose[] = "varnik SymmetricCrypt AES-256-GCM";  // never changes: old ciphertexts depend on it

// Looking an algorithm up costs more than encrypting a short message, so the first one found is kept. A failure is not.
// Libcrypto 3.0 goes on with a default context whose making has failed for want of memory, and crashes: so it is asked
// for first.
EVP_CIPHER* cipher() {
  static std::atomic<EVP_CIPHER*> kept{nullptr};
  if (EVP_CIPHER* known = kept.load(std::memory_order_acquire)) return known;
  if (!OSSL_LIB_CTX_get0_global_default()) return nullptr;
  EVP_CIPHER* fetched = EVP_CIPHER_fetch(nullptr, "AES-256-GCM", nullptr);
  EVP_CIPHER* before = nullptr;
  if (kept.compare_exchange_strong(before, fetched, std::memory_order_acq_rel)) return fetched;
  EVP_CIPHER_free(fetched);  // another thread was faster
  return before;
}

// Takes the errors that libcrypto recorded here off its queue: the caller's own use of it shall not find them.
class ErrorMark {
 public:
  ErrorMark() { ERR_set_mark(); }
  ~ErrorMark() { ERR_pop_to_mark(); }
  ErrorMark(const ErrorMark&) = delete;
  ErrorMark& operator=(const ErrorMark&) = delete;
};

// HKDF-SHA-256 (RFC 5869) without salt: a key of any length makes one of 32 bytes. Keys that differ in length alone,
// a zero byte behind one of them say, make different ones.
bool deriveKey(const DataBuffer& key, u8* out) {
  EVP_KDF* hkdf = EVP_KDF_fetch(nullptr, "HKDF", nullptr);
  EVP_KDF_CTX* context = EVP_KDF_CTX_new(hkdf);
  EVP_KDF_free(hkdf);
  if (!context) return false;
  char digest[] = "SHA256";
  const OSSL_PARAM parameters[] = {
      OSSL_PARAM_construct_utf8_string(OSSL_KDF_PARAM_DIGEST, digest, 0),
      OSSL_PARAM_construct_octet_string(OSSL_KDF_PARAM_KEY, key.getData2(), key.size()),
      OSSL_PARAM_construct_octet_string(OSSL_KDF_PARAM_INFO, const_cast<char*>(kPurpose), sizeof kPurpose - 1),
      OSSL_PARAM_construct_end()};
  const bool done = EVP_KDF_derive(context, out, kKeySize, parameters) == 1;
  EVP_KDF_CTX_free(context);
  return done;
}

// One message's cipher. Libcrypto wipes the context and its key schedule when it is released.
class Gcm {
 public:
  Gcm() : context_(EVP_CIPHER_CTX_new()) {}
  ~Gcm() { EVP_CIPHER_CTX_free(context_); }
  Gcm(const Gcm&) = delete;
  Gcm& operator=(const Gcm&) = delete;

  bool start(const DataBuffer& key, const u8* iv, bool encrypts) {
    if (!context_ || !cipher() || key.empty()) return false;
    if (key.size() == kKeySize) return startWith(key.getData2(), iv, encrypts);
    u8 derived[kKeySize];
    const bool done = deriveKey(key, derived) && startWith(derived, iv, encrypts);
    vk_memset(derived, 0, sizeof derived);
    return done;
  }

  bool transform(const u8* from, u32 n, u8* to) {
    for (u32 done = 0; done < n;) {
      const u32 piece = std::min(n - done, kMostAtOnce);
      int count = 0;
      if (EVP_CipherUpdate(context_, to + done, &count, from + done, static_cast<int>(piece)) != 1) return false;
      done += piece;
    }
    return true;
  }

  bool finishAndTell(u8* tag) { return finish() && control(EVP_CTRL_AEAD_GET_TAG, tag); }
  bool finishAndCompare(const u8* tag) {
    u8 expected[kTagSize];
    vk_memcpy(expected, tag, kTagSize);
    return control(EVP_CTRL_AEAD_SET_TAG, expected) && finish();
  }

 private:
  bool startWith(const u8* key, const u8* iv, bool encrypts) {
    return EVP_CipherInit_ex2(context_, cipher(), key, iv, encrypts ? 1 : 0, nullptr) == 1;
  }
  bool finish() {
    u8 nothing[kTagSize];
    int count = 0;
    return EVP_CipherFinal_ex(context_, nothing, &count) == 1;
  }
  bool control(int what, u8* tag) { return EVP_CIPHER_CTX_ctrl(context_, what, kTagSize, tag) == 1; }

  EVP_CIPHER_CTX* context_;
};

// Zeroes the block of a buffer from offset `from` on, unless it is a caller's. It goes by the capacity: what was in use
// before may lie behind the size.
void wipe(DataBuffer& b, u32 from) {
  if (b.heapUsage() > from) vk_memset(b.getData2() + from, 0, b.heapUsage() - from);
}

// Exchanges the storage and nothing else. The buffer's own operations that take storage do nothing on a damaged one.
void exchangeStorage(DataBuffer& a, DataBuffer& b) {
  const u8 flagOfA = a.secure, flagOfB = b.secure;
  a.swapData(b);
  a.secure = flagOfA;
  b.secure = flagOfB;
}

bool liesIn(const DataBuffer& b, const u8* address) {
  const auto first = reinterpret_cast<std::uintptr_t>(b.getData2()), at = reinterpret_cast<std::uintptr_t>(address);
  return at - first < b.getBufSize();
}

// Makes `out` the `n` bytes that `produce` writes to a block, or leaves it empty. The block is `out`'s own when it is
// large enough and holds neither key nor input, so that repeated use allocates nothing; but `out` is without it until
// the bytes are known to be right. What lay in it before is overwritten or wiped.
template <class Produce>
bool replaceBy(DataBuffer& out, u64 n, const DataBuffer& key, const u8* input, Produce produce) {
  const ErrorMark mark;
  DataBuffer made;
  made.secure = 1;
  const bool isReused = n != 0 && out.heapUsage() >= n && !liesIn(out, input) && !liesIn(out, key.getData2());
  if (isReused) exchangeStorage(made, out);
  const bool fits = n <= 0xFFFFFFFF && made.ensureBuffer(static_cast<u32>(std::max<u64>(n, 1)));
  const bool done = fits && produce(made.getData2());
  const u32 size = done ? static_cast<u32>(n) : 0;
  wipe(made, size);
  wipe(out, 0);
  made.setDataSize_CAUTION(size);
  if (done || isReused) exchangeStorage(made, out);
  return done;
}

bool isKnown(s32 keyBits, const char* algorithm) {
  return keyBits == 256 && !algorithm;
}

// The end of either direction: a failure leaves nothing and is told once.
bool conclude(bool done, const char* failure, DataBuffer& out, LogBase& log) {
  if (done) return true;
  out.clear();
  log.LogError_lcr(failure);
  return false;
}

}  // namespace

bool SymmetricCrypt::encryptBytes(s32 keyBits, const char* algorithm, DataBuffer& key, const u8* data, u32 n,
                                  DataBuffer& out, LogBase& log) {
  const auto encrypt = [&](u8* to) {
    Gcm gcm;
    return vk_fillRandom(to, kIvSize) && gcm.start(key, to, true) && gcm.transform(data, n, to + kIvSize) &&
           gcm.finishAndTell(to + kIvSize + n);
  };
  const bool done =
      isKnown(keyBits, algorithm) && (data || n == 0) && replaceBy(out, u64{n} + kOverhead, key, data, encrypt);
  return conclude(done, "the bytes could not be encrypted", out, log);
}

bool SymmetricCrypt::decryptBytes(s32 keyBits, const char* algorithm, DataBuffer& key, const u8* data, u32 n,
                                  DataBuffer& out, LogBase& log) {
  const auto decrypt = [&](u8* to) {
    const u32 length = n - kOverhead;
    Gcm gcm;
    return gcm.start(key, data, false) && gcm.transform(data + kIvSize, length, to) &&
           gcm.finishAndCompare(data + kIvSize + length);
  };
  const bool done =
      isKnown(keyBits, algorithm) && data && n >= kOverhead && replaceBy(out, n - kOverhead, key, data, decrypt);
  return conclude(done, "the bytes could not be decrypted: changed, cut, or made under another key", out, log);
}
