#include "tests/support/Test.h"

namespace {

bool set(SecretData& holder, DataBuffer& key, std::string_view secret) {
  return holder.setSecret(key, bytesOf(secret), countOf(secret), nowhere);
}

// The secret; "(refused)" when the answer is false, with nothing in the buffer.
std::string get(SecretData& holder, DataBuffer& key) {
  DataBuffer out = bufferOf("old content");
  const bool done = holder.getSecret(key, out, nowhere);
  EXPECT_TRUE(key.secure && out.secure && (done || out.empty()));
  return done ? textOf(out) : "(refused)";
}

TEST(SecretData, KeepsASecretUnderItsKey) {
  for (const u32 keySize : {0u, 1u, 32u, 100u})
    for (const u32 n : {0u, 1u, 16u, 1000u, 100'000u}) {
      SecretData holder;
      DataBuffer key = bufferOf(randomBytes(keySize)), none, wrong = bufferOf("wrong");
      const std::string secret = randomBytes(n, n);
      EXPECT_TRUE(holder.isEmpty() && set(holder, key, secret));
      EXPECT_TRUE(key.size() == (keySize == 0 ? 32u : keySize) && key.secure);
      EXPECT_EQ(holder.getEncryptedSize(), n == 0 ? 0 : n + 28);
      EXPECT_TRUE(holder.isEmpty() == (n == 0) && get(holder, key) == secret);
      const std::string keyBefore = textOf(key);
      EXPECT_TRUE(set(holder, key, "another"));
      EXPECT_EQ(textOf(key), keyBefore);
      EXPECT_EQ(get(holder, key) + get(holder, none) + get(holder, wrong), "another(refused)(refused)");
      EXPECT_EQ(none.size(), 0u);
      EXPECT_TRUE(holder.setSecret(key, nullptr, 5, nowhere) && holder.isEmpty());
      set(holder, key, "another");
      holder.secureClear();
      EXPECT_TRUE(holder.isEmpty() && get(holder, none).empty());
    }
}

TEST(SecretData, IsCopiedOnlyUnderAnotherKey) {
  SecretData from, to, empty;
  DataBuffer oldKey = bufferOf("old key"), newKey, none, wrong = bufferOf("wrong"), unused;
  set(from, oldKey, "secret");
  SecretData copy(from);  // NOLINT(performance-unnecessary-copy-initialization): what a copy holds is the question
  EXPECT_TRUE(copy.isEmpty());
  to.copySecretFrom(newKey, oldKey, from);
  EXPECT_EQ(newKey.size(), 32u);
  EXPECT_EQ(get(to, newKey) + get(to, oldKey) + get(from, oldKey), "secret(refused)secret");
  from.copySecretFrom(newKey, oldKey, from);
  EXPECT_EQ(get(from, newKey), "secret");
  const std::pair<DataBuffer*, SecretData*> kUseless[] = {{&none, &from}, {&wrong, &from}, {&unused, &empty}};
  for (const auto& [key, source] : kUseless) {
    set(to, newKey, "held before");
    to = *source;
    EXPECT_EQ(get(to, newKey), "held before");
    to.copySecretFrom(newKey, *key, *source);
    EXPECT_TRUE(to.isEmpty() && unused.empty());
  }
}

TEST(SecretData, KeepsItsSecretWhereNoKeyCanBeMade) {
  SecretData holder;
  DataBuffer key, fresh;
  LogText log;
  set(holder, key, "secret");
  {
    const faults::FailCall armed(Call::kRandom, 1, true, {Fault::kError, ENOSYS});
    EXPECT_FALSE(holder.setSecret(fresh, bytesOf("new"), 3, log) || holder.setSecretFromBuffer(fresh, key));
  }
  EXPECT_TRUE(fresh.empty() && log.numErrors() == 1);
  EXPECT_EQ(get(holder, key), "secret");
}

TEST(SecretData, GoesOnWithDamagedBuffersAfterReportingEach) {
  SecretData holder;
  DataBuffer key, out;
  set(holder, key, "secret");
  alignas(DataBuffer) unsigned char place[sizeof(DataBuffer)];
  auto* damaged = new (place) DataBuffer;
  damaged->~DataBuffer();
  const u32 before = Psdk::numReports();
  EXPECT_FALSE(holder.getSecret(*damaged, out, nowhere)) << "it is an empty key";
  EXPECT_TRUE(holder.getSecret(key, *damaged, nowhere));
  EXPECT_EQ(Psdk::numReports(), before + 2);
  EXPECT_EQ(textOf(*damaged), "secret");
  damaged->swapData(out);
}

TEST(SecretData, WipesTheCiphertextBeforeItGoes) {
  DataBuffer key;
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
    const auto& encrypted = *reinterpret_cast<const DataBuffer*>(reinterpret_cast<const u8*>(holder.get()) + 8);
    EXPECT_EQ(seenAtRelease(encrypted.getData2(), encrypted.size(),
                            [&, let = way] { let(*holder, key, empty), holder.reset(); }),
              std::string(34, '\0'))
        << name;
  }
}

TEST(SecretData, WipesWhatWasHandedOutBefore) {
  SecretData holder;
  DataBuffer key, out, wrong = bufferOf("wrong");
  for (DataBuffer* second : {&key, &wrong}) {
    set(holder, key, "the first secret");
    ASSERT_TRUE(holder.getSecret(key, out, nowhere));
    set(holder, key, "the second one is longer");
    const auto let = [&] { holder.getSecret(*second, out, nowhere), out.clearWithDeallocate(); };
    EXPECT_EQ(seenAtRelease(out.getData2(), out.size(), let), std::string(16, '\0'));
  }
}

TEST(SecretString, HandsOutWhatItHolds) {
  const std::string secret = "s\u00E9cret";
  SecretString holder;
  DataBuffer key, none;
  LogText log;
  EXPECT_TRUE(holder.setSecString(key, secret.c_str(), log));
  EXPECT_EQ(holder.getEncryptedSize(), 7u + 28);
  const auto getAll = [&](DataBuffer& with) {  // what the three forms answer, and what they leave
    StringBuffer text("old");
    XString unicode = wideOf("old");
    DataBuffer data = bufferOf("old");
    std::string got;
    for (const bool done : {holder.getSecString(with, text, log), holder.getSecStringX(with, unicode, log),
                            holder.getSecData(with, data, log)})
      got += done ? "yes " : "no ";
    EXPECT_TRUE(unicode.isSecure() && data.secure && with.secure);
    return got + textOf(text) + "|" + unicode.getUtf8() + "|" + textOf(data);
  };
  EXPECT_EQ(getAll(key), "yes yes yes " + secret + "|" + secret + "|" + secret);
  EXPECT_EQ(getAll(none), "no no no ||");
  holder.secureClear();
  EXPECT_EQ(getAll(none), "yes yes yes ||");
  EXPECT_TRUE(holder.setSecString(key, nullptr, log) && holder.isEmpty());
  EXPECT_STREQ(log.getText(), "");
}

TEST(FixedScratchBuffers, StartEmpty) {
  alignas(FixedScratchBuffers) unsigned char place[sizeof(FixedScratchBuffers)];
  std::memset(place, 0xFF, sizeof place);
  auto* scratch = new (place) FixedScratchBuffers;
  EXPECT_EQ(scratch->count, 0u);
  EXPECT_EQ(std::count(scratch->firstArea, scratch->firstArea + 2048, 0), 2048);
  EXPECT_EQ(std::count(scratch->secondArea, scratch->secondArea + 1024, 0), 1024);
  scratch->count = scratch->firstArea[0] = 7;
  scratch->~FixedScratchBuffers();
  EXPECT_TRUE(scratch->count == 0 && scratch->firstArea[0] == 7) << "the areas are not wiped";
}

}  // namespace
