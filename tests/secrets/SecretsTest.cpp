#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "tests/support/Allocations.h"
#include "tests/support/Bytes.h"
#include "tests/support/SystemCalls.h"

namespace {

using faults::Call;
using faults::Fault;

bool set(SecretData& holder, DataBuffer& key, std::string_view secret) {
  LogNull log;
  return holder.setSecret(key, bytesOf(secret), countOf(secret), log);
}

// The secret; "(refused)" when the answer is false, with nothing in the buffer.
std::string get(SecretData& holder, DataBuffer& key) {
  DataBuffer out = bufferOf("old content");
  LogNull log;
  const bool done = holder.getSecret(key, out, log);
  EXPECT_TRUE(key.secure && out.secure);
  if (!done) {
    EXPECT_TRUE(out.empty());
  }
  return done ? textOf(out) : "(refused)";
}

TEST(SecretData, KeepsASecretUnderItsKey) {
  for (const u32 keySize : {0u, 1u, 32u, 100u})
    for (const u32 n : {0u, 1u, 16u, 1000u, 100'000u}) {
      SecretData holder;
      DataBuffer key = bufferOf(randomBytes(keySize));
      const std::string secret = randomBytes(n, n);
      EXPECT_TRUE(holder.isEmpty());
      EXPECT_TRUE(set(holder, key, secret));
      EXPECT_EQ(key.size(), keySize == 0 ? 32u : keySize);
      EXPECT_EQ(key.secure, 1);
      EXPECT_EQ(holder.getEncryptedSize(), n == 0 ? 0 : n + 28);
      EXPECT_EQ(holder.isEmpty(), n == 0);
      EXPECT_TRUE(get(holder, key) == secret);
      const std::string keyBefore = textOf(key);
      EXPECT_TRUE(set(holder, key, "another"));
      EXPECT_EQ(textOf(key), keyBefore);
      EXPECT_EQ(get(holder, key), "another");
      DataBuffer none, other = bufferOf("wrong");
      EXPECT_EQ(get(holder, none) + get(holder, other), "(refused)(refused)");
      EXPECT_EQ(none.size(), 0u);
      holder.secureClear();
      EXPECT_TRUE(holder.isEmpty());
      EXPECT_EQ(get(holder, none), "");
    }
}

TEST(SecretData, TakesNullForNoSecret) {
  SecretData holder;
  DataBuffer key;
  LogNull log;
  set(holder, key, "secret");
  EXPECT_TRUE(holder.setSecret(key, nullptr, 5, log));
  EXPECT_TRUE(holder.isEmpty());
  DataBuffer fresh;
  EXPECT_TRUE(holder.setSecret(fresh, bytesOf("x"), 0, log));
  EXPECT_EQ(fresh.size(), 32u);
}

TEST(SecretData, IsNeverCopiedWithItsSecret) {
  SecretData a, b;
  DataBuffer key;
  set(a, key, "secret a");
  set(b, key, "secret b");
  SecretData copy(a);  // NOLINT(performance-unnecessary-copy-initialization): what a copy holds is the question
  EXPECT_TRUE(copy.isEmpty());
  b = a;
  EXPECT_EQ(get(a, key) + get(b, key), "secret asecret b");
}

TEST(SecretData, MovesASecretUnderAnotherKey) {
  SecretData from, to;
  DataBuffer oldKey = bufferOf("old key"), newKey, none, wrong = bufferOf("wrong");
  set(from, oldKey, "secret");
  to.copySecretFrom(newKey, oldKey, from);
  EXPECT_EQ(newKey.size(), 32u);
  EXPECT_EQ(get(to, newKey) + get(to, oldKey) + get(from, oldKey), "secret(refused)secret");
  from.copySecretFrom(newKey, oldKey, from);
  EXPECT_EQ(get(from, newKey), "secret");
  for (DataBuffer* useless : {&none, &wrong}) {
    set(to, newKey, "held before");
    to.copySecretFrom(newKey, *useless, from);
    EXPECT_TRUE(to.isEmpty());
  }
  set(to, newKey, "held before");
  SecretData empty;
  DataBuffer unused;
  to.copySecretFrom(unused, unused, empty);
  EXPECT_TRUE(to.isEmpty() && unused.empty());
}

TEST(SecretData, KeepsItsSecretWhereNoKeyCanBeMade) {
  SecretData holder;
  DataBuffer key, fresh;
  LogText log;
  set(holder, key, "secret");
  {
    const faults::FailCall armed(Call::kRandom, 1, true, {Fault::kError, ENOSYS});
    EXPECT_FALSE(holder.setSecret(fresh, bytesOf("new"), 3, log));
    EXPECT_TRUE(fresh.empty());
    EXPECT_EQ(log.numErrors(), 1u);
    EXPECT_FALSE(holder.setSecretFromBuffer(fresh, key));
  }
  EXPECT_EQ(get(holder, key), "secret");
}

TEST(SecretData, GoesOnWithDamagedBuffersAfterReportingEach) {
  SecretData holder;
  DataBuffer key, out;
  set(holder, key, "secret");
  alignas(DataBuffer) unsigned char place[sizeof(DataBuffer)];
  auto* damaged = new (place) DataBuffer;
  damaged->~DataBuffer();
  LogNull log;
  const u32 before = Psdk::numReports();
  EXPECT_FALSE(holder.getSecret(*damaged, out, log)) << "it is an empty key";
  EXPECT_TRUE(holder.getSecret(key, *damaged, log));
  EXPECT_EQ(Psdk::numReports(), before + 2);
  EXPECT_EQ(textOf(*damaged), "secret");
  damaged->clear();
  damaged->swapData(out);
}

// The bytes of a freed block as they were just before.
template <class Let>
std::string seenAtRelease(const u8* block, u32 n, Let let) {
  const faults::WatchRelease watch(block, n);
  let();
  EXPECT_TRUE(watch.released());
  return {reinterpret_cast<const char*>(watch.bytes()), n};
}

TEST(SecretData, WipesTheCiphertextBeforeItGoes) {
  const auto offset = [](const SecretData& holder) {  // where the holder keeps the address of its ciphertext
    u8* block = nullptr;
    const DataBuffer& encrypted = *reinterpret_cast<const DataBuffer*>(reinterpret_cast<const u8*>(&holder) + 8);
    block = encrypted.getData2();
    EXPECT_EQ(encrypted.size(), holder.getEncryptedSize());
    return block;
  };
  DataBuffer key;
  const std::string zeros(34, '\0');
  SecretData empty;
  const std::pair<const char*, void (*)(SecretData&, DataBuffer&, SecretData&)> kWays[] = {
      {"secureClear", [](SecretData& h, DataBuffer&, SecretData&) { h.secureClear(); }},
      {"an empty secret", [](SecretData& h, DataBuffer& k, SecretData&) { set(h, k, ""); }},
      {"another secret", [](SecretData& h, DataBuffer& k, SecretData&) { set(h, k, "a longer secret"); }},
      {"the copy of nothing", [](SecretData& h, DataBuffer& k, SecretData& e) { h.copySecretFrom(k, k, e); }},
      {"destruction", [](SecretData&, DataBuffer&, SecretData&) {}},
  };
  for (const auto& [name, way] : kWays) {
    auto holder = std::make_unique<SecretData>();
    set(*holder, key, "secret");
    EXPECT_EQ(seenAtRelease(offset(*holder), 34, [&, let = way] { let(*holder, key, empty), holder.reset(); }), zeros)
        << name;
  }
}

TEST(SecretData, WipesWhatWasHandedOutBefore) {
  SecretData holder;
  DataBuffer key, out, wrong = bufferOf("wrong");
  LogNull log;
  for (DataBuffer* second : {&key, &wrong}) {
    set(holder, key, "the first secret");
    ASSERT_TRUE(holder.getSecret(key, out, log));
    set(holder, key, "the second one is longer");
    EXPECT_EQ(seenAtRelease(out.getData2(), 16,
                            [&] {
                              holder.getSecret(*second, out, log);
                              out.clearWithDeallocate();
                            }),
              std::string(16, '\0'));
  }
}

TEST(SecretString, HandsOutWhatItHolds) {
  SecretString holder;
  DataBuffer key;
  LogText log;
  EXPECT_TRUE(holder.setSecString(key,
                                  "s\xC3\xA9"
                                  "cret",
                                  log));
  EXPECT_EQ(holder.getEncryptedSize(), 7u + 28);
  StringBuffer text("old");
  XString unicode;
  unicode.setFromUtf8("old");
  DataBuffer data = bufferOf("old"), none;
  EXPECT_TRUE(holder.getSecString(key, text, log) && holder.getSecStringX(key, unicode, log) &&
              holder.getSecData(key, data, log));
  EXPECT_EQ(textOf(text) + unicode.getUtf8() + textOf(data),
            "s\xC3\xA9"
            "crets\xC3\xA9"
            "crets\xC3\xA9"
            "cret");
  EXPECT_EQ(unicode.getNumChars(), 6u);
  EXPECT_TRUE(unicode.isSecure() && data.secure && key.secure);
  EXPECT_FALSE(holder.getSecString(none, text, log) || holder.getSecStringX(none, unicode, log) ||
               holder.getSecData(none, data, log));
  EXPECT_TRUE(text.isEmpty() && unicode.isEmpty() && data.empty());
  EXPECT_STREQ(log.getText(), "");
  holder.secureClear();
  data.append("old", 3);
  EXPECT_TRUE(holder.isEmpty() && holder.getSecString(none, text, log) && holder.getSecStringX(none, unicode, log) &&
              holder.getSecData(none, data, log));
  EXPECT_TRUE(text.isEmpty() && unicode.isEmpty() && unicode.isSecure() && data.empty());
  EXPECT_TRUE(holder.setSecString(key, nullptr, log));
  EXPECT_TRUE(holder.isEmpty());
}

TEST(Companions, StartEmpty) {
  auto* shared = new RefCountedDataBuffer;
  EXPECT_TRUE(shared->buffer.empty() && shared->buffer.checkValidityDb());
  EXPECT_EQ(shared->buffer.secure, 0);
  shared->buffer.append("x", 1);
  shared->incRefCount();
  shared->decRefCount();
  EXPECT_EQ(textOf(shared->buffer), "x");
  const s64 held = faults::liveBlocks();
  shared->decRefCount();
  EXPECT_EQ(faults::liveBlocks(), held - 2);

  alignas(FixedScratchBuffers) unsigned char place[sizeof(FixedScratchBuffers)];
  std::memset(place, 0xFF, sizeof place);
  auto* scratch = new (place) FixedScratchBuffers;
  EXPECT_EQ(scratch->count, 0u);
  EXPECT_TRUE(std::all_of(scratch->firstArea, scratch->firstArea + 2048, [](u8 b) { return b == 0; }));
  EXPECT_TRUE(std::all_of(scratch->secondArea, scratch->secondArea + 1024, [](u8 b) { return b == 0; }));
  scratch->count = 7;
  scratch->firstArea[0] = 7;
  scratch->~FixedScratchBuffers();
  EXPECT_EQ(scratch->count, 0u);
  EXPECT_EQ(scratch->firstArea[0], 7) << "the areas are not wiped";
}

}  // namespace
