// The first use of ICU and of OpenSSL makes what they keep for the life of the process: each allocation of it is
// refused in a process of its own. (This suite comes first in the program: nothing may have used them before.)

#include "tests/faults/Operations.h"

namespace faults {
namespace {

const u16* unitsAt(const char16_t* text) {
  return reinterpret_cast<const u16*>(text);
}

enum Exit { kAsPromised, kNotStruck, kBroken };

constexpr struct {
  const char* what;
  bool (*call)(Scene&);     // what is refused memory
  bool (*isRight)(Scene&);  // whether a call that said true has done what it should
} kCalls[] = {
    {"a legacy charset", [](Scene& s) { return s.buffer.appendEncoded("\xE6\x97\xA5", "Shift_JIS"); },
     [](Scene& s) { return textOf(s.buffer) == "\x93\xFA"; }},
    {"case folding",
     [](Scene&) { return vk_findUtf16NoCase(unitsAt(u"x\u00C9y"), 3, unitsAt(u"\u00E9"), 1) != nullptr; },
     [](Scene&) { return true; }},
    {"encryption",
     [](Scene& s) {
       return SymmetricCrypt::encryptBytes(256, nullptr, s.key, s.source.getData2(), 900, s.buffer, s.log);
     },
     [](Scene& s) { return s.buffer.size() == 928; }},
    {"decryption under a derived key",
     [](Scene& s) {
       s.key.shorten(1);
       DataBuffer hidden;
       return SymmetricCrypt::encryptBytes(256, nullptr, s.key, bytesOf("plain"), 5, hidden, s.log) &&
              SymmetricCrypt::decryptBytes(256, nullptr, s.key, hidden.getData2(), hidden.size(), s.buffer, s.log);
     },
     [](Scene& s) { return textOf(s.buffer) == "plain"; }},
};

template <class Call>
Exit tryIn(const Call& row, u32 k, bool forGood) {
  Scene scene;
  bool done, struck;
  {
    const FailAllocation refusal(k, forGood);
    done = row.call(scene);
    struck = refusal.struck();
  }
  if (done ? !row.isRight(scene) : !struck) return kBroken;
  if (!done && !scene.buffer.empty()) return kBroken;
  return struck ? kAsPromised : kNotStruck;
}

TEST(FirstUse, SurvivesEachRefusal) {
  u32 refusals = 0;
  for (const auto& row : kCalls)
    refusals += failEachAllocation([&](u32 i, bool forGood) {
      const u32 k = 1 + (i - 1) * (soaks() ? 1 : 13);
      const int said = inChild([&] { return tryIn(row, k, forGood); });
      EXPECT_TRUE(said == kAsPromised || said == kNotStruck)
          << said << ": " << row.what << ", allocation " << k << (forGood ? " and all after it" : "");
      return said == kAsPromised;
    });
  std::printf("%u refusals\n", refusals);
}

}  // namespace
}  // namespace faults
