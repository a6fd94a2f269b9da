// The first use of ICU and of OpenSSL makes what they keep for the life of the process: each allocation of it is
// refused in a process of its own. (This suite comes first in the program: nothing may have used them before.)

#include "tests/faults/Operations.h"

namespace faults {
namespace {

enum Exit { kAsPromised, kNotStruck, kBroken };

// What is refused memory, and whether a call that said true has done what it should.
const Operation kCalls[] = {
    op("a legacy charset",
       [](Scene& s) { return s.buffer.appendEncoded("\xE6\x97\xA5", "Shift_JIS") && textOf(s.buffer) == "\x93\xFA"; }),
    op("case folding",
       [text = u"x\u00C9y\u00E9"](Scene&) {
         const u16* const units = reinterpret_cast<const u16*>(text);
         return vk_findUtf16NoCase(units, 3, units + 3, 1) != nullptr;
       }),
    op("encryption",
       [](Scene& s) {
         return SymmetricCrypt::encryptBytes(256, nullptr, s.key, s.source.getData2(), 900, s.buffer, s.log) &&
                s.buffer.size() == 928;
       }),
    op("decryption under a derived key",
       [](Scene& s) {
         DataBuffer hidden;
         s.key.shorten(1);
         return SymmetricCrypt::encryptBytes(256, nullptr, s.key, bytesOf("plain"), 5, hidden, s.log) &&
                SymmetricCrypt::decryptBytes(256, nullptr, s.key, hidden.getData2(), hidden.size(), s.buffer, s.log) &&
                textOf(s.buffer) == "plain";
       }),
};

Exit tryIn(const Operation& op, u32 k, bool forGood) {
  Scene scene;
  const FailAllocation refusal(k, forGood);
  const bool done = op.run(scene);
  if (!done && (!refusal.struck() || !scene.buffer.empty())) return kBroken;
  return refusal.struck() ? kAsPromised : kNotStruck;
}

TEST(FirstUse, SurvivesEachRefusal) {
  u32 refusals = 0;
  for (const Operation& each : kCalls)
    refusals += failEachAllocation([&](u32 i, bool forGood) {
      const u32 k = 1 + (i - 1) * (soaks() ? 1 : 13);
      const int said = inChild([&] { return tryIn(each, k, forGood); });
      EXPECT_TRUE(said == kAsPromised || said == kNotStruck)
          << said << ": " << each.name << ", allocation " << k << (forGood ? " and all after it" : "");
      return said == kAsPromised;
    });
  std::printf("%u refusals\n", refusals);
}

}  // namespace
}  // namespace faults
