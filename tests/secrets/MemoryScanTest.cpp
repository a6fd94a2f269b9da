// Nothing of a secret stays behind in the process's memory: heap, stack, and what libcrypto allocates.
//
// Every secret contains a mark of 16 bytes. The test knows the mark only masked, and looks for it in all the memory
// that the process can write; so each copy that is found was left by somebody else.
#include <fcntl.h>

#include <sstream>

#include "tests/support/Test.h"

namespace {

constexpr u32 kMark = 16;
const std::string kSeed = randomBytes(kMark, 4711);

// The mark, made of the seed a byte at a time: it stands nowhere.
u8 markByte(u32 i) {
  return static_cast<u8>('a' + static_cast<u8>(kSeed[i]) % 26);
}

// Writes a text of `n` characters with the mark from `at` on.
void makeSecret(u8* to, u32 n, u32 at) {
  for (u32 i = 0; i < n; ++i) to[i] = i >= at && i - at < kMark ? markByte(i - at) : 'x';
}

// The same as a buffer, with a zero behind it.
DataBuffer secretOf(u32 n, u32 at) {
  DataBuffer b;
  b.secure = 1;
  EXPECT_TRUE(b.ensureBuffer(n + 1));
  makeSecret(b.getData2(), n, at);
  b.getData2()[n] = 0;
  b.setDataSize_CAUTION(n);
  return b;
}

u8 window[1 << 16];  // what was read last; wiped after each look, and not looked at

constexpr u64 kOverlap = 2 * kMark - 1;  // so that a mark on the border is seen whole in the next window
constexpr u64 kStride = sizeof window - kOverlap;

// How often the mark begins in the stride, a byte of it every `step` bytes: 1, or 2 as in UTF-16.
u32 countMarks(u64 n, u32 step) {
  u32 count = 0;
  const u8* const end = window + n;
  const u8* const last = window + std::min(n, kStride);
  const u8* at = window;
  while ((at = static_cast<const u8*>(std::memchr(at, markByte(0), static_cast<std::size_t>(last - at))))) {
    u32 i = 0;
    while (i < kMark && at + u64{i} * step < end && at[u64{i} * step] == markByte(i)) ++i;
    if (i == kMark) ++count;
    ++at;
  }
  return count;
}

u32 countIn(int memory, u64 from, u64 to) {
  u32 count = 0;
  const auto skip = reinterpret_cast<u64>(window);
  for (u64 at = from; at < to; at += kStride) {
    const u64 n = std::min<u64>(sizeof window, to - at);
    if (at < skip + sizeof window && at + n > skip) continue;
    if (pread(memory, window, n, static_cast<off_t>(at)) == static_cast<ssize_t>(n)) {
      count += countMarks(n, 1) + countMarks(n, 2);
    }
  }
  std::memset(window, 0, sizeof window);
  return count;
}

// How often the mark stands in the process's memory.
u32 copiesInMemory() {
  u32 count = 0;
  const int memory = open("/proc/self/mem", O_RDONLY);
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    u64 from = 0, to = 0;
    char dash = 0;
    std::string rights;
    std::istringstream(line) >> std::hex >> from >> dash >> to >> rights;
    const bool isShadow = to - from > u64{1} << 30;  // of a sanitizer
    if (rights[0] == 'r' && rights[1] == 'w' && !isShadow) count += countIn(memory, from, to);
  }
  close(memory);
  return count;
}

// The first call of a function that is bound late saves the vector registers on the stack, with whatever was copied
// last: so all that a look calls has been called before there are secrets.
[[maybe_unused]] const u32 kFirstLook = copiesInMemory();

// Runs every operation of the holders on a secret, into fresh and into used outputs, with good and with wrong keys.
// The caller's own copies are wiped before it returns.
void useHolders(DataBuffer& key, u32 n, u32 at) {
  DataBuffer plain = secretOf(n, at);
  SecretData data, copy;
  SecretString string;
  DataBuffer otherKey, wrongKey = bufferOf("wrong"), out;
  StringBuffer text;
  XString unicode;
  data.setSecretFromBuffer(key, plain);
  string.setSecString(key, reinterpret_cast<const char*>(plain.getData2()), nowhere);
  copy.copySecretFrom(otherKey, key, data);
  copy.copySecretFrom(otherKey, wrongKey, data);
  for (u32 round = 0; round < 2; ++round) {
    data.getSecret(key, out, nowhere);
    data.getSecret(wrongKey, out, nowhere);
    string.getSecData(key, out, nowhere);
    string.getSecString(key, text, nowhere);
    text.appendCharN('x', 100 + n);  // has to grow, with the secret in it
    string.getSecStringX(key, unicode, nowhere);
    unicode.getUtf16_xe();
    unicode.getUtf8Sb_rw().appendCharN('x', 100 + n);
    unicode.getUtf16_xe();
  }
}

// A message whose tag is wrong is decrypted before that shows.
void decryptChanged(DataBuffer& key, u32 n, u32 at) {
  DataBuffer plain = secretOf(n, at), cipher, out;
  ASSERT_TRUE(SymmetricCrypt::encryptBytes(256, nullptr, key, plain.getData2(), n, cipher, nowhere));
  *cipher.getDataAt2(n + 27) ^= 1;
  EXPECT_FALSE(SymmetricCrypt::decryptBytes(256, nullptr, key, cipher.getData2(), n + 28, out, nowhere));
  EXPECT_TRUE(SymmetricCrypt::encryptBytes(256, nullptr, key, plain.getData2(), n, plain, nowhere));  // over itself
}

TEST(MemoryScan, FindsWhatIsLeft) {
  auto* block = new u8[100]();
  makeSecret(block, 50, 17);
  EXPECT_EQ(copiesInMemory(), 1u);
  for (u32 i = 0; i < 2 * kMark; ++i) block[i] = i % 2 ? 0 : markByte(i / 2);
  vk_memset(block + 32, 0, 68);
  EXPECT_EQ(copiesInMemory(), 1u) << "as UTF-16";
  u8 onStack[kMark];
  makeSecret(onStack, kMark, 0);
  EXPECT_EQ(copiesInMemory(), 2u);
  vk_memset(onStack, 0, kMark);
  vk_memset(block, 0, 100);
  EXPECT_EQ(copiesInMemory(), 0u);
  delete[] block;
}

TEST(MemoryScan, FindsNoSecretThatWasHeld) {
  for (u32 i = 0; i < 1000; ++i) {
    const u32 n = kMark + (i % 10 == 0 ? i * 50 : i % 100), at = i * 7 % (n - kMark + 1);
    DataBuffer key = bufferOf(randomBytes(i % 3 == 0 ? 32 : 40, i));
    useHolders(key, n, at);
    decryptChanged(key, n, at);
    if (i % 100 == 0) {
      ASSERT_EQ(copiesInMemory(), 0u) << "after secret " << i << " of " << n << " bytes";
    }
  }
  EXPECT_EQ(copiesInMemory(), 0u);
}

TEST(MemoryScan, FindsNoKeyThatWasUsed) {
  for (const u32 n : {16u, 24u, 32u, 33u, 64u, 1000u})
    for (u32 at = 0; at <= n - kMark; at += kMark / 2) {
      DataBuffer key = secretOf(n, at);
      useHolders(key, 100, 80);
      decryptChanged(key, 100, 80);
    }
  EXPECT_EQ(copiesInMemory(), 0u);
}

TEST(MemoryScan, FindsNothingAfterRefusedAllocations) {
  const u32 refusals = faults::failEachAllocation([](u32 k, bool forGood) {
    DataBuffer key = bufferOf(randomBytes(32));
    const faults::FailAllocation fault(k + 1, forGood);  // the first is the plaintext's own
    useHolders(key, 300, 100);
    return fault.struck();
  });
  EXPECT_GE(refusals, 20u);
  EXPECT_EQ(copiesInMemory(), 0u);
}

}  // namespace
