// What the allocation-failure loop runs: a table of operations, each on a scene of fresh objects.
#pragma once

#include "tests/support/Test.h"

namespace faults {

/// The objects that an operation may change (the targets, empty or filled alike) and may read (the rest).
struct Scene {
  DataBuffer buffer;
  StringBuffer text;
  XString wide;
  DataBufferView view;

  LogNull log;
  DataBuffer source = bufferOf(randomBytes(5000)), key = bufferOf("0123456789abcdef0123456789ABCDEF");
};

/// What a failure leaves of the targets' content.
enum class Leaves {
  kUnchanged,  // as it was
  kEarlier,    // what was there, and perhaps a part of what was to come
  kEmptied,    // nothing, or as it was
  kAnything,   // some valid state
};

struct Operation {
  std::string name;
  Leaves leaves = Leaves::kUnchanged;
  bool answersTruly = true;  // true means done in full: not so for the forms documented as always true
  bool isRepeatable = true;  // the same call gives the same bytes
  std::function<bool(Scene&)> run;
};

/// A row of the table: `call` gets the scene and returns a bool; or nothing, which says no more than true for ever.
template <class Call>
Operation row(std::string name, Leaves leaves, Call call) {
  if constexpr (std::is_void_v<std::invoke_result_t<Call, Scene&>>)
    return {std::move(name), leaves, false, true, [call](Scene& s) { return call(s), true; }};
  else
    return {std::move(name), leaves, true, true, call};
}
template <class Call>
Operation op(std::string name, Call call) {
  return row(std::move(name), Leaves::kUnchanged, std::move(call));
}
template <class Call>
Operation extending(std::string name, Call call) {
  return row(std::move(name), Leaves::kEarlier, std::move(call));
}
template <class Call>
Operation emptying(std::string name, Call call) {
  return row(std::move(name), Leaves::kEmptied, std::move(call));
}
/// Reads 900 bytes of `source` at a cursor by `parse(s, cursor)`: it moves only when they are read.
template <class Parse>
Operation parsing(std::string name, Parse parse) {
  return op(std::move(name), [parse](Scene& s) {
    u32 cursor = 10;
    const bool done = parse(s, cursor);
    return cursor == (done ? 910u : 10u) && done;
  });
}
/// Another call gives other bytes (it is compared by size then).
inline Operation random(Operation op) {
  op.isRepeatable = false;
  return op;
}
/// Is documented to answer true whatever the memory.
inline Operation alwaysTrue(Operation op) {
  op.answersTruly = false;
  return op;
}

std::vector<Operation> bufferOperations();
std::vector<Operation> stringOperations();
std::vector<Operation> encodingOperations();
std::vector<Operation> charsetOperations();
std::vector<Operation> secretOperations();
std::vector<Operation> textOperations();
std::vector<Operation> fileOperations();

}  // namespace faults
