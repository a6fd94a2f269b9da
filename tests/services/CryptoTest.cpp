#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <array>

#include "tests/support/Test.h"

namespace {

// ---- Random bytes ----

TEST(RandomSource, AppendsByTheGrowthRule) {
  DataBuffer b = bufferOf("x");
  EXPECT_TRUE(RandomSource::generateBytes(0, b));
  EXPECT_TRUE(RandomSource::generateBytes(19'999, b));
  EXPECT_EQ(b.getBufSize(), 20'000u);
  EXPECT_TRUE(RandomSource::generateBytes(1, b));
  EXPECT_EQ(b.getBufSize(), 40'000u);
  EXPECT_EQ(b.size(), 20'001u);
  EXPECT_EQ(b.firstByte(), 'x');
  u32 seen[256] = {};
  for (u32 i = 1; i < b.size(); ++i) ++seen[b.byteAt(i)];
  for (const u32 count : seen) EXPECT_TRUE(count > 20 && count < 200);
}

TEST(RandomSource, RefusesAndFailsWithoutATrace) {
  const std::tuple<bool, bool, Fault> kCases[] = {
      {true, false, {Fault::kError, EINTR}},   {true, true, {Fault::kHalf, 0}},
      {false, false, {Fault::kError, ENOSYS}}, {false, false, {Fault::kError, EAGAIN}},
      {false, false, {Fault::kBreak, EIO}},    {true, false, {Fault::kNothing, 0}}};
  for (const auto& [result, forGood, fault] : kCases) {
    DataBuffer b = bufferOf("old");
    const faults::FailCall armed(Call::kRandom, 1, forGood, fault);
    EXPECT_EQ(RandomSource::generateBytes(1000, b), result) << fault.kind << ' ' << fault.value;
    EXPECT_EQ(b.size(), result ? 1003u : 3u) << fault.kind << ' ' << fault.value;
  }
}

TEST(RandomSource, DrawsDifferentBytesInEachProcess) {
  const TempFolder folder;
  const std::string path = folder / "drawn";
  const auto draw = [&] {
    DataBuffer b;
    return RandomSource::generateBytes(32, b) && b.size() == 32 && std::ofstream(path) << textOf(b);
  };
  std::set<std::string> drawn;
  for (u32 i = 0; i < 65; ++i) {
    EXPECT_TRUE(i == 0 ? draw() : inChild(draw) == 1);
    drawn.insert(readFile(path));
  }
  EXPECT_EQ(drawn.size(), 65u);
}

// ---- Encryption ----

DataBuffer encrypted(std::string_view plain, DataBuffer& key) {
  DataBuffer out;
  LogText log;
  EXPECT_TRUE(SymmetricCrypt::encryptBytes(256, nullptr, key, bytesOf(plain), countOf(plain), out, log));
  EXPECT_STREQ(log.getText(), "");
  return out;
}

TEST(SymmetricCrypt, GivesNoInitialisationVectorTwice) {
  DataBuffer key = bufferOf("0123456789abcdef0123456789abcdef");
  const u32 numDrawn = soaks() ? 10'000'000 : 20'000;
  std::vector<std::array<char, 12>> drawn(numDrawn);
  for (auto& vector : drawn) std::memcpy(vector.data(), encrypted("", key).getData2(), vector.size());
  std::sort(drawn.begin(), drawn.end());
  EXPECT_EQ(std::adjacent_find(drawn.begin(), drawn.end()), drawn.end());
}

// The plaintext, or "(refused)" when the answer is false with `out` empty and one error told.
std::string decrypted(std::string_view cipher, DataBuffer& key) {
  DataBuffer out = bufferOf("old content");
  LogText log;
  const bool done = SymmetricCrypt::decryptBytes(256, nullptr, key, bytesOf(cipher), countOf(cipher), out, log);
  EXPECT_EQ(log.numErrors(), done ? 0u : 1u);
  EXPECT_EQ(ERR_peek_error(), 0ul) << "an error is left for the caller of libcrypto";
  EXPECT_TRUE(done || out.empty());
  return done ? textOf(out) : "(refused)";
}

// What the library's header promises, said again with libcrypto alone: HKDF by RFC 5869, then the decryption.
std::string twinDecrypted(const std::string& cipher, const std::string& key) {
  const std::string info = "varnik SymmetricCrypt AES-256-GCM\1", salt(32, '\0');
  u8 extracted[32], derived[32];
  HMAC(EVP_sha256(), salt.data(), 32, bytesOf(key), key.size(), extracted, nullptr);
  HMAC(EVP_sha256(), extracted, 32, bytesOf(info), info.size(), derived, nullptr);
  const u8* chosen = key.size() == 32 ? bytesOf(key) : derived;
  const auto n = static_cast<int>(cipher.size()) - 28;
  std::string out(static_cast<std::size_t>(n), '\0'), tag = cipher.substr(cipher.size() - 16);
  auto* to = reinterpret_cast<u8*>(out.data());
  int count = 0;
  EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
  EVP_DecryptInit_ex(context, EVP_aes_256_gcm(), nullptr, chosen, bytesOf(cipher));
  EVP_DecryptUpdate(context, to, &count, bytesOf(cipher) + 12, n);
  EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_AEAD_SET_TAG, 16, tag.data());
  const bool done = EVP_DecryptFinal_ex(context, to + count, &count) == 1;
  EVP_CIPHER_CTX_free(context);
  return done ? out : "(refused)";
}

TEST(SymmetricCrypt, IsAes256GcmWithItsIvInFront) {
  for (const u32 keySize : {1u, 16u, 31u, 32u, 33u, 64u, 1000u})
    for (const u32 n : {0u, 1u, 15u, 16u, 17u, 1000u, 100'000u}) {
      const std::string rawKey = randomBytes(keySize, keySize), plain = randomBytes(n, n + 1);
      DataBuffer key = bufferOf(rawKey);
      const std::string cipher = textOf(encrypted(plain, key));
      EXPECT_EQ(cipher.size(), n + 28u);
      EXPECT_TRUE(decrypted(cipher, key) == plain);
      EXPECT_TRUE(twinDecrypted(cipher, rawKey) == plain) << keySize << " " << n;
    }
}

TEST(SymmetricCrypt, RefusesWhatWasChanged) {
  DataBuffer key = bufferOf(randomBytes(32));
  for (const u32 n : {0u, 1u, 15u, 16u, 17u, 100u}) {
    const std::string cipher = textOf(encrypted(randomBytes(n, 7), key));
    for (u32 bit = 0; bit < 8 * cipher.size(); ++bit) {
      std::string changed = cipher;
      changed[bit / 8] = static_cast<char>(changed[bit / 8] ^ (1 << bit % 8));
      EXPECT_EQ(decrypted(changed, key), "(refused)") << n << " bit " << bit;
    }
    for (std::size_t cut = 0; cut < cipher.size(); ++cut) {
      EXPECT_EQ(decrypted(cipher.substr(0, cut), key), "(refused)");
      EXPECT_EQ(decrypted(cipher.substr(cipher.size() - cut), key), "(refused)");
    }
    EXPECT_EQ(decrypted(cipher + '\0', key), "(refused)");
    EXPECT_EQ(decrypted('\0' + cipher, key), "(refused)");
  }
}

TEST(SymmetricCrypt, RefusesEachOtherKey) {
  std::string keys[8];
  for (u32 i = 1; i < 8; ++i) keys[i] = randomBytes(32).substr(0, 25 + i);
  keys[0] = keys[7] + '\0';
  for (const std::string& mine : keys) {
    DataBuffer key = bufferOf(mine);
    const std::string cipher = textOf(encrypted("plain", key));
    for (const std::string& other : keys) {
      DataBuffer otherKey = bufferOf(other);
      EXPECT_EQ(decrypted(cipher, otherKey), mine == other ? "plain" : "(refused)");
    }
    DataBuffer none;
    EXPECT_EQ(decrypted(cipher, none), "(refused)");
  }
}

TEST(SymmetricCrypt, RefusesWhatItDoesNotKnow) {
  DataBuffer key = bufferOf(randomBytes(32)), none;
  const std::tuple<s32, const char*, DataBuffer*, const u8*, u32> kCases[] = {
      {128, nullptr, &key, bytesOf("x"), 1},          {256, "aes", &key, bytesOf("x"), 1},
      {256, nullptr, &none, bytesOf("x"), 1},         {256, nullptr, &key, nullptr, 1},
      {256, nullptr, &key, bytesOf("x"), 0xFFFFFFE4},  // too much
      {256, nullptr, &key, bytesOf("x"), 1}};          // no random bytes
  for (const auto& each : kCases) {
    const auto& [bits, algorithm, itsKey, data, n] = each;
    DataBuffer out = bufferOf("old");
    LogText log;
    const faults::FailCall last(Call::kRandom, &each - kCases == 5, true, {Fault::kError, ENOSYS});
    EXPECT_FALSE(SymmetricCrypt::encryptBytes(bits, algorithm, *itsKey, data, n, out, log)) << &each - kCases;
    EXPECT_TRUE(out.empty());
    EXPECT_EQ(log.numErrors(), 1u);
  }
}

TEST(SymmetricCrypt, WorksInPlaceAndLeavesLentMemoryAlone) {
  DataBuffer key = bufferOf(randomBytes(32)), b = bufferOf("plain text");
  EXPECT_TRUE(SymmetricCrypt::encryptBytes(256, nullptr, key, b.getData2(), b.size(), b, nowhere));
  EXPECT_TRUE(SymmetricCrypt::decryptBytes(256, nullptr, key, b.getData2(), b.size(), b, nowhere));
  EXPECT_EQ(textOf(b), "plain text");
  EXPECT_TRUE(SymmetricCrypt::encryptBytes(256, nullptr, key, bytesOf("plain text"), 10, key, nowhere));
  EXPECT_EQ(key.size(), 38u);
  char lent[] = "lent to the buffer, and longer than what comes out";
  const std::string before = lent;
  b.borrowData(lent, sizeof lent);
  EXPECT_TRUE(SymmetricCrypt::encryptBytes(256, nullptr, key, bytesOf("x"), 1, b, nowhere));
  EXPECT_EQ(b.heapUsage(), 29u);
  EXPECT_EQ(b.secure, 0);
  EXPECT_EQ(lent, before);
}

// A block that is large enough is used again, and nothing of what it held stays behind the new content.
TEST(SymmetricCrypt, UsesABlockAgain) {
  DataBuffer key = bufferOf(randomBytes(32));
  std::string cipher = textOf(encrypted("plain", key));
  for (const bool isChanged : {false, true}) {
    DataBuffer out = bufferOf("a secret that lay here before");
    const u8* block = out.getData2();
    const u64 before = faults::tally.blocks;
    if (isChanged) cipher[20] ^= 1;
    EXPECT_EQ(SymmetricCrypt::decryptBytes(256, nullptr, key, bytesOf(cipher), 33, out, nowhere), !isChanged);
    EXPECT_EQ(faults::tally.blocks, before);
    EXPECT_EQ(textOf(out), isChanged ? "" : "plain");
    ASSERT_EQ(out.getData2(), block);
    for (u32 i = out.size(); i < out.getBufSize(); ++i) ASSERT_EQ(block[i], 0) << i;
  }
}

}  // namespace
