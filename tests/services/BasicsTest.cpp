// Memory, text helpers, logging, the lock and reference counts.
#include "tests/support/Test.h"

TEST(Memory, Helpers) {
  u8* none = allocByteArray(0);
  EXPECT_NE(none, nullptr);
  delete[] none;
  {
    const faults::FailAllocation all(1, true);
    EXPECT_EQ(allocByteArray(1), nullptr);
  }
  vk_memcpy(nullptr, nullptr, 0);
  vk_memset(nullptr, 0, 0);
  EXPECT_EQ(vk_memcmp(nullptr, nullptr, 0), 0);
  EXPECT_LT(vk_memcmp("a\x7F", "a\x80", 2), 0);
  u8 area[4];
  vk_memset(area, 0x1FF, 4);
  EXPECT_EQ(area[3], 0xFF);
  class Plain : public VarnikObject {
  } plain;
  EXPECT_EQ(plain.heapUsage(), 0u);
  EXPECT_TRUE(vk64::TooBigForUnsigned32(0x100000000) && vk64::TooBigForUnsigned32(-1));
  EXPECT_FALSE(vk64::TooBigForUnsigned32(0xFFFFFFFF) || vk64::TooBigForUnsigned32(0));
  u32 low = 0, high = 0;
  vk64::Int64ToDwords(-2, low, high);
  EXPECT_TRUE(low == 0xFFFFFFFE && high == 0xFFFFFFFF);
}

TEST(Text, Helpers) {
  EXPECT_EQ(vk_strlen(nullptr) + vk_strlen(""), 0u);
  EXPECT_EQ(vk_strncmp("abc", "abd", 2), 0);
  EXPECT_LT(vk_strncmp("ab\x7F", "ab\x80", 3), 0);
  EXPECT_EQ(vk_strncmp("a", "b", 0) + vk_strncmp("a", "b", -1), 0);
  const char* text = "an encoding";
  EXPECT_EQ(vk_strstr(text, "enc"), text + 3);
  EXPECT_EQ(vk_strchr(text, 'c'), text + 5);
  EXPECT_TRUE(!vk_strstr(text, "Enc") && !vk_strchr(text, 'z') && !vk_strstr(nullptr, "x") &&
              !vk_strstr("x", nullptr) && !vk_strchr(nullptr, 'x'));
  for (const u32 value : {0u, 7u, 10u, 255u, 4294967295u}) {
    char area[10];
    EXPECT_EQ(std::string(area, vk_uintToDecimal(value, area)), std::to_string(value));
  }
  for (const auto& [given, value, taken] : {std::tuple{"12:", 12u, 2u},
                                            {"", 0u, 0u},
                                            {"-1", 0u, 0u},
                                            {"/1", 0u, 0u},
                                            {"4294967295", 4294967295u, 10u},
                                            {"4294967297", 4294967295u, 10u},
                                            {"00000000000000000000000000000000000000000012,", 12u, 44u},
                                            {static_cast<const char*>(nullptr), 0u, 0u}}) {
    u32 consumed = 99;
    EXPECT_EQ(vk_parseDecimal(given, consumed), value) << given;
    EXPECT_EQ(consumed, taken) << given;
  }
}

TEST(Logging, KeepsWhatItIsToldIndentedByContext) {
  LogText log;
  EXPECT_FALSE(log.verbose());
  log.setVerbose(true);
  XString x = wideOf("Zoë");
  EXPECT_TRUE(log.verbose());
  {
    const LogContextExitor outer(log, "outer");
    log.LogError("size is 0");
    {
      const LogContextExitor inner(log, "inner");
      log.LogError_lcr("again");
      log.LogDataInt64("offset", -5'000'000'000);
      log.LogDataUint32("length", 4'294'967'295);
      log.LogDataLong("long", -1);
    }
    log.LogDataX("name", x);
    log.LogDataSb("text", StringBuffer("abc"));
    log.LogDataHex("bytes", bytesOf("\x01\xAB"), 2);
  }
  log.LogDataStr("tag", "end");
  EXPECT_STREQ(log.getText(),
               "outer:\n"
               "  error: size is 0\n"
               "  inner:\n"
               "    error: again\n"
               "    offset: -5000000000\n"
               "    length: 4294967295\n"
               "    long: -1\n"
               "  name: Zoë\n"
               "  text: abc\n"
               "  bytes: 01AB\n"
               "tag: end\n");
  EXPECT_EQ(log.numErrors(), 2u);
  log.clear();
  EXPECT_STREQ(log.getText(), "");
  EXPECT_EQ(log.numErrors(), 0u);
  nowhere.LogError("x");
  nowhere.LogDataHex("tag", nullptr, 0);
}

TEST(Lock, MayBeEnteredAgainByItsThreadOnly) {
  VarnikCritSec lock;
  u32 count = 0;
  together(2, [&] {
    for (u32 i = 0; i < 20'000; ++i) {
      const CritSecExitor outer(lock), again(lock);
      ++count;
    }
  });
  EXPECT_EQ(count, 40'000u);
}

TEST(RefCount, DeletesWithTheLastOwner) {
  auto* shared = new RefCountedDataBuffer;
  EXPECT_EQ(stateOf(shared->buffer), " of 0, no block");
  shared->buffer.append("x", 1);
  shared->incRefCount();
  shared->decRefCount();
  EXPECT_EQ(textOf(shared->buffer) + std::to_string(shared->getRefCount()), "x1");
  const s64 held = faults::tally.live;
  shared->decRefCount();
  EXPECT_EQ(faults::tally.live, held - 2);
}
