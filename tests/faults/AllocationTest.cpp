// Every operation with every allocation refused in turn, once and for good: nothing crashes, nothing leaks, and what is
// left is what the operation promises.
#include <openssl/crypto.h>

#include "tests/faults/Operations.h"

namespace faults {
namespace {

constexpr u32 kMostAllocations = 3000;  // of one call: beyond that something does not end

/// What a call left in the targets, and what it said.
struct Outcome {
  std::string content[4];
  Answer said = Answer::kNothing;
};

void prepare(Scene& s, bool filled) {
  if (!filled) return;
  s.buffer.copyData("held before", 11);  // without spare room
  s.text.append("<held before>");
  s.wide.setFromUtf8("held");
  s.view.append("queued", 6);
}

Outcome lookAt(Scene& s, Answer said) {
  const auto* const queue = reinterpret_cast<const char*>(s.view.getViewData());
  return {{textOf(s.buffer), textOf(s.text), textOf(s.wide.getUtf8Sb_rw()),
           queue ? std::string(queue, s.view.getViewSize()) : std::string()},
          said};
}

bool isSound(const DataBuffer& b) {
  return b.checkValidityDb() && b.size() <= b.getBufSize() && (b.getData2() || b.getBufSize() == 0);
}

bool isAsPromised(Leaves leaves, const Outcome& before, const Outcome& now) {
  for (u32 i = 0; i < std::size(now.content); ++i) {
    const std::string &held = before.content[i], &left = now.content[i];
    if (left == held || leaves == Leaves::kAnything) continue;
    if (leaves == Leaves::kEarlier && left.compare(0, held.size(), held) == 0) continue;
    if (leaves == Leaves::kEmptied && left.empty()) continue;
    return false;
  }
  return true;
}

/// Compares what a refusal led to with the untouched call, `whole`.
void check(const Operation& op, const Outcome& before, const Outcome& whole, const Outcome& now) {
  bool isDone = true;
  for (u32 i = 0; i < std::size(now.content); ++i)
    isDone = isDone &&
             (op.isRepeatable ? now.content[i] == whole.content[i] : now.content[i].size() == whole.content[i].size());
  if (isDone && now.said == whole.said) return;
  EXPECT_TRUE(isDone || !op.answersTruly || now.said != Answer::kYes) << "true, but not done";
  EXPECT_TRUE(isAsPromised(op.leaves, before, now))
      << "buffer: " << now.content[0].substr(0, 60) << ", text: " << now.content[1].substr(0, 60);
}

/// Runs an operation on a fresh scene with the k-th allocation refused. Returns whether there was one.
bool runRefused(const Operation& op, bool filled, u32 k, bool forGood, const Outcome& whole) {
  const s64 blocks = tally.live;
  bool struck = false;
  {
    Scene scene;
    prepare(scene, filled);
    const Outcome before = lookAt(scene, Answer::kNothing);
    Answer said;
    {
      const FailAllocation refusal(k, forGood);
      said = op.run(scene);
      struck = refusal.struck();
    }
    EXPECT_TRUE(isSound(scene.buffer) && isSound(scene.source) && isSound(scene.key));
    check(op, before, whole, lookAt(scene, said));
  }
  OPENSSL_thread_stop();  // lets its list of errors go
  EXPECT_TRUE(tally.live == blocks || ::testing::Test::HasFailure()) << tally.live - blocks << " blocks left";
  return struck;
}

u32 refuseEach(const Operation& op, bool filled) {
  Outcome whole;
  for (u32 i = 0; i < 2; ++i) {  // the services make what they keep for later calls
    Scene scene;
    prepare(scene, filled);
    const Answer said = op.run(scene);
    whole = lookAt(scene, said);
    OPENSSL_thread_stop();
  }
  return failEachAllocation([&](u32 k, bool forGood) {
    SCOPED_TRACE(::testing::Message() << op.name << (filled ? ", filled" : ", empty") << ", allocation " << k
                                      << (forGood ? " and all after it" : ""));
    if (k > kMostAllocations) ADD_FAILURE() << "no end";
    return runRefused(op, filled, k, forGood, whole) && !::testing::Test::HasFailure();
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
