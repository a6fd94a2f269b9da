// Every operation with every allocation refused in turn, once and for good: nothing crashes, nothing leaks, and what is
// left is what the operation promises.
#include <openssl/crypto.h>

#include <array>

#include "tests/faults/Operations.h"

namespace faults {
namespace {

constexpr u32 kMostAllocations = 3000;  // of one call: beyond that something does not end

/// What the targets hold.
using Contents = std::array<std::string, 4>;
Contents contentsOf(Scene& s) {
  return {textOf(s.buffer), textOf(s.text), textOf(s.wide.getUtf8Sb_rw()),
          stringAt(s.view.getViewData(), s.view.getViewSize())};
}

/// What a call left in the targets, and what it said.
struct Outcome {
  Contents left;
  bool said;
};

void fill(Scene& s) {
  s.buffer.copyData("held before", 11);  // without spare room
  s.text.append("<held before>");
  s.wide.setFromUtf8("held");
  s.view.append("queued", 6);
}

bool isSound(const DataBuffer& b) {
  return b.checkValidityDb() && b.size() <= b.getBufSize() && (b.getData2() || b.getBufSize() == 0);
}

bool isAsPromised(Leaves leaves, const std::string& held, const std::string& left) {
  return left == held || leaves == Leaves::kAnything || (leaves == Leaves::kEarlier && left.starts_with(held)) ||
         (leaves == Leaves::kEmptied && left.empty());
}

/// Compares what a refusal led to with the untouched call, `whole`.
void check(const Operation& op, const Contents& before, const Outcome& whole, const Outcome& now) {
  const bool isDone = std::equal(
      now.left.begin(), now.left.end(), whole.left.begin(),
      [&](const auto& is, const auto& should) { return op.isRepeatable ? is == should : is.size() == should.size(); });
  if (isDone && now.said == whole.said) return;
  EXPECT_TRUE(isDone || !op.answersTruly || !now.said) << "true, but not done";
  for (u32 i = 0; i < before.size(); ++i)
    EXPECT_TRUE(isAsPromised(op.leaves, before[i], now.left[i])) << i << ": " << now.left[i].substr(0, 60);
}

/// Runs an operation on a fresh scene with the k-th allocation refused. Returns whether there was one. With none
/// refused, for k = 0, the outcome becomes `whole`.
bool run(const Operation& op, bool filled, u32 k, bool forGood, Outcome& whole) {
  const s64 blocks = tally.live;
  bool said = false, struck = false;
  {
    Scene scene;
    if (filled) fill(scene);
    const Contents before = contentsOf(scene);
    {
      const FailAllocation refusal(k, forGood);
      said = op.run(scene);
      struck = refusal.struck();
    }
    EXPECT_TRUE(isSound(scene.buffer) && isSound(scene.source) && isSound(scene.key));
    const Outcome now = {contentsOf(scene), said};
    k == 0 ? void(whole = now) : check(op, before, whole, now);
  }
  OPENSSL_thread_stop();  // lets its list of errors go
  EXPECT_TRUE(k == 0 || tally.live == blocks || ::testing::Test::HasFailure()) << tally.live - blocks << " blocks left";
  return struck;
}

u32 refuseEach(const Operation& op, bool filled) {
  Outcome whole;
  for (u32 i = 0; i < 2; ++i) run(op, filled, 0, false, whole);  // the services make what they keep for later calls
  return failEachAllocation([&](u32 k, bool forGood) {
    SCOPED_TRACE(::testing::Message() << op.name << (filled ? ", filled" : ", empty") << ", allocation " << k
                                      << (forGood ? " and all after it" : ""));
    if (k > kMostAllocations) ADD_FAILURE() << "no end";
    return run(op, filled, k, forGood, whole) && !::testing::Test::HasFailure();
  });
}

class AllocationFailures : public ::testing::TestWithParam<std::vector<Operation> (*)()> {};

TEST_P(AllocationFailures, LeaveWhatIsPromised) {
  u32 refusals = 0;
  const std::vector<Operation> operations = GetParam()();
  for (const Operation& op : operations)
    for (const bool filled : {false, true}) refusals += refuseEach(op, filled);
  std::printf("%zu operations, %u refusals\n", operations.size(), refusals);
}
INSTANTIATE_TEST_SUITE_P(All, AllocationFailures,
                         ::testing::Values(bufferOperations, stringOperations, encodingOperations, charsetOperations,
                                           textOperations, secretOperations, fileOperations));

}  // namespace
}  // namespace faults
