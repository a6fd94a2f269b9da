// Every allocation of encoding and decoding refused in turn, once and for good, under every name.
#include <gtest/gtest.h>

#include "tests/support/Allocations.h"
#include "tests/support/Bytes.h"
#include "varnik/services/codecs/internal/EncodingTable.h"

namespace {

const std::string kBytes = [] {
  std::string text = "\x01";
  for (u32 i = 0; i < 300; ++i) text += static_cast<char>(1 + i % 120);
  return text;
}();

struct Outcome {
  bool ok = false, struck = false;
};

template <class Call>
Outcome failing(u32 k, bool forGood, Call call) {
  const faults::FailAllocation armed(k, forGood);
  Outcome outcome;
  outcome.ok = call();
  outcome.struck = armed.struck();
  return outcome;
}

// What was there before stays, and where the answer is true without a refusal the text is whole.
TEST(EncodingFailures, LeaveTheStringAsPromised) {
  for (const auto& row : vk_codec::encodingNames()) {
    const std::string name(row.name);
    StringBuffer whole("held");
    ASSERT_TRUE(bufferOf(kBytes).encodeDB(name.c_str(), whole)) << name;
    for (const bool filled : {false, true}) {
      const s64 before = faults::liveBlocks();
      faults::failEachAllocation([&](u32 k, bool forGood) {
        StringBuffer out(filled ? "held" : nullptr);
        const Outcome outcome = failing(
            k, forGood, [&] { return DataBuffer::encodeDB2(name.c_str(), bytesOf(kBytes), countOf(kBytes), out); });
        const std::string want = textOf(whole).substr(filled ? 0 : 4);
        EXPECT_EQ(want.compare(0, out.getSize(), textOf(out)), 0) << name << ", allocation " << k;
        EXPECT_TRUE(!filled || out.getSize() >= 4) << name << ", allocation " << k;
        EXPECT_TRUE(outcome.struck || (outcome.ok && textOf(out) == want)) << name << ", allocation " << k;
        return outcome.struck;
      });
      EXPECT_EQ(faults::liveBlocks(), before) << name;
    }
  }
}

TEST(EncodingFailures, LeaveTheBufferAsPromised) {
  for (const auto& row : vk_codec::encodingNames()) {
    const std::string name(row.name);
    StringBuffer text;
    ASSERT_TRUE(bufferOf(kBytes).encodeDB(name.c_str(), text)) << name;
    for (const bool filled : {false, true}) {
      const s64 before = faults::liveBlocks();
      faults::failEachAllocation([&](u32 k, bool forGood) {
        DataBuffer out;
        if (filled) out.copyData("held", 4);
        const Outcome outcome = failing(k, forGood, [&] { return out.appendEncoded(text.getString(), name.c_str()); });
        EXPECT_TRUE(out.checkValidityDb()) << name;
        EXPECT_LE(out.getSize(), out.getBufSize()) << name;
        EXPECT_EQ(textOf(out).substr(0, 4), filled ? "held" : textOf(out).substr(0, 4)) << name << ", allocation " << k;
        EXPECT_TRUE(outcome.struck || (outcome.ok && textOf(out).substr(filled ? 4 : 0) == kBytes)) << name;
        return outcome.struck;
      });
      EXPECT_EQ(faults::liveBlocks(), before) << name;
    }
  }
}

TEST(EncodingFailures, TellAboutCharsetsAndAliases) {
  faults::failEachAllocation([&](u32 k, bool forGood) {
    DataBuffer out;
    const Outcome outcome = failing(k, forGood, [&] { return out.appendEncoded("\xC3\xA9", "iso-8859-1"); });
    EXPECT_EQ(textOf(out), outcome.ok ? "\xE9" : "");
    return outcome.struck;
  });
  faults::failEachAllocation([&](u32 k, bool forGood) {
    StringBuffer out("AB");
    const Outcome outcome =
        failing(k, forGood, [&] { return DataBuffer::encodeDB2("hex", bytesOf(out.getString()), 2, out); });
    EXPECT_TRUE(textOf(out) == "AB4142" || (outcome.struck && textOf(out) == "AB"));
    return outcome.struck;
  });
}

}  // namespace
