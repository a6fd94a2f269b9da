#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <new>
#include <type_traits>
#include <utility>

#include "tests/support/Allocations.h"
#include "tests/support/Bytes.h"

namespace {

// A buffer of `size` bytes in a block of just as many.
DataBuffer fullBuffer(u32 size) {
  DataBuffer b;
  b.ensureBuffer(size);
  b.setDataSize_CAUTION(size);
  return b;
}

TEST(Storage, StartsEmpty) {
  const DataBuffer b;
  EXPECT_TRUE(b.empty() && b.checkValidityDb());
  EXPECT_EQ(b.getData2(), nullptr);
  EXPECT_EQ(b.size() + b.getSize() + b.getBufSize() + b.byteAt(0) + b.firstByte() + b.lastByte() + b.heapUsage(), 0u);
  EXPECT_EQ(b.totalMemoryUsage(), sizeof(DataBuffer));
  EXPECT_EQ(b.secure, 0);
}

TEST(Storage, GrowsByTheStepOfItsSize) {
  constexpr struct {
    u32 size, added, capacity;
  } kCases[] = {
      {0, 10, 20'000},
      {0, 20'001, 20'001},
      {49'999, 1, 69'999},
      {50'000, 1, 100'000},
      {60'000, 10, 110'000},
      {99'999, 1, 149'999},
      {100'000, 1, 200'000},
      {999'999, 1, 1'099'999},
      {1'000'000, 1, 2'000'000},
      {1'999'999, 1, 2'999'999},
      {2'000'000, 1, 4'000'000},
      {3'000'000, 1, 6'000'000},
      {4'000'000, 1, 8'000'000},
      {5'000'000, 7'000'000, 12'000'000},
      {7'999'999, 1, 11'999'999},
      {8'000'000, 1, 16'000'000},
      {11'999'999, 1, 19'999'999},
      {12'000'000, 1, 24'000'000},
      {13'000'000, 1, 25'000'000},
  };
  for (const auto& c : kCases) {
    DataBuffer b = fullBuffer(c.size);
    EXPECT_TRUE(b.expandBuffer(c.added));
    EXPECT_EQ(b.getBufSize(), c.capacity) << c.size << " + " << c.added;
    EXPECT_EQ(b.size(), c.size);
  }
}

TEST(Storage, SecondAttemptAsksForTheNeedAnd400) {
  constexpr struct {
    u32 size, added;
    bool done;
    u32 capacity;
  } kCases[] = {
      {0, 10, true, 410},
      {100, 19'599, true, 20'099},
      {100, 19'600, false, 100},  // need and 400 are no less than the step: there is no second attempt
      {100, 50'000, false, 100},
  };
  for (const auto& c : kCases) {
    DataBuffer b = fullBuffer(c.size);
    const u8* block = b.getData2();
    {
      faults::FailAllocation first(1, false);
      EXPECT_EQ(b.expandBuffer(c.added), c.done);
    }
    EXPECT_EQ(b.getBufSize(), c.capacity) << c.added;
    EXPECT_EQ(b.getData2() == block, !c.done);
    faults::FailAllocation all(1, true);
    EXPECT_FALSE(b.expandBuffer(c.added));
    EXPECT_EQ(b.getBufSize(), c.capacity);
  }
}

TEST(Storage, ReservesExactly) {
  DataBuffer b;
  EXPECT_TRUE(b.ensureBuffer(0));
  EXPECT_FALSE(b.reallocate(0));
  EXPECT_EQ(b.getData2(), nullptr);
  EXPECT_TRUE(b.ensureBuffer(100) && b.ensureBuffer(99));
  EXPECT_EQ(b.getBufSize(), 100u);
  b.append("abcde", 5);
  EXPECT_TRUE(b.canAppendWithoutRealloc(95) && !b.canAppendWithoutRealloc(96));
  EXPECT_FALSE(b.canAppendWithoutRealloc(0xFFFFFFFF));

  const u32 reports = Psdk::numReports();
  EXPECT_FALSE(b.reallocate(4));  // below the size: a caller's error
  EXPECT_EQ(Psdk::numReports(), reports + 1);
  EXPECT_EQ(textOf(b), "abcde");
  EXPECT_EQ(b.getBufSize(), 100u);
  EXPECT_TRUE(b.reallocate(5));
  EXPECT_EQ(b.getBufSize(), 5u);
}

TEST(Storage, LetsAProducerWriteInPlace) {
  DataBuffer b;
  u8* p = b.getAppendPtr(10);
  ASSERT_NE(p, nullptr);
  EXPECT_EQ(b.getBufSize(), 11u);
  EXPECT_EQ(b.size(), 0u);
  b.addToSize(12);
  EXPECT_EQ(b.size(), 0u);
  b.addToSize(11);
  EXPECT_EQ(b.size(), 11u);
  const u32 reports = Psdk::numReports();
  EXPECT_EQ(b.getAppendPtr(0xFFFFFFFF), nullptr);
  EXPECT_EQ(b.getAppendPtr(0xFFFFFFFF - 11), nullptr);
  EXPECT_EQ(Psdk::numReports(), reports);
  b.setDataSize_CAUTION(100);
  EXPECT_EQ(b.size(), 11u);
}

TEST(Storage, GivesSpareMemoryBack) {
  const auto bufferOf10In = [](u32 capacity) {
    DataBuffer b;
    b.ensureBuffer(capacity);
    b.setDataSize_CAUTION(10);
    return b;
  };
  for (const auto& [capacity, left] : {std::pair{14u, 14u}, {15u, 14u}, {200u, 14u}}) {
    DataBuffer b = bufferOf10In(capacity);
    EXPECT_TRUE(b.minimizeMemoryUsage());
    EXPECT_EQ(b.getBufSize(), left);
  }
  for (const auto& [capacity, slack, left] :
       {std::tuple{100u, 100u, 100u}, {200u, 100u, 14u}, {110u, 100u, 110u}, {14u, 0u, 14u}, {15u, 4u, 14u}}) {
    DataBuffer b = bufferOf10In(capacity);
    EXPECT_TRUE(b.minimizeMemoryUsage2(slack));
    EXPECT_EQ(b.getBufSize(), left) << capacity << ' ' << slack;
  }
  DataBuffer b = bufferOf10In(200);
  faults::FailAllocation none(1, true);
  EXPECT_FALSE(b.minimizeMemoryUsage() || b.minimizeMemoryUsage2(0));
  EXPECT_EQ(b.getBufSize(), 200u);
}

TEST(Storage, AnswersNothingOutOfRange) {
  DataBuffer b = bufferOf("abcdefgh");
  EXPECT_EQ(b.byteAt(7), 'h');
  EXPECT_EQ(b.byteAt(8), 0);
  EXPECT_EQ(b.firstByte(), 'a');
  EXPECT_EQ(b.lastByte(), 'h');
  EXPECT_EQ(b.getDataAt2(7), b.getData2() + 7);
  EXPECT_EQ(b.getDataAt2(8), nullptr);
  EXPECT_EQ(b.getBufAt(8), b.getData2() + 8);
  EXPECT_EQ(b.getBufAt(20'000), nullptr);
  for (const auto& [start, len, available] :
       {std::tuple{5u, 0u, 3u}, {5u, 2u, 2u}, {5u, 10u, 3u}, {8u, 1u, 0u}, {0u, 0xFFFFFFFFu, 8u}})
    EXPECT_EQ(b.calcSegmentSize(start, len), available) << start << ' ' << len;
}

TEST(Storage, Clears) {
  DataBuffer b = bufferOf("abc");
  u8* block = b.getData2();
  b.clear();
  EXPECT_TRUE(b.empty());
  EXPECT_EQ(b.getData2(), block);
  EXPECT_EQ(b.getBufSize(), 20'000u);

  b.append("abcd", 4);
  b.shorten(1);
  b.secureClear();
  EXPECT_EQ(std::memcmp(block, "\0\0\0d", 4), 0);  // only the bytes in use
  EXPECT_EQ(b.getBufSize(), 20'000u);

  std::memset(block, 'x', 20'000);
  b.setDataSize_CAUTION(3);
  b.clearBuffer();
  EXPECT_EQ(b.size(), 3u);
  EXPECT_EQ(std::count(block, block + 20'000, 0), 20'000);

  b.clearWithDeallocate();
  EXPECT_EQ(b.getData2(), nullptr);
  EXPECT_EQ(b.size() + b.getBufSize(), 0u);
  b.clearBuffer();
  b.secureClear();

  u8 lent[4] = {1, 2, 3, 4};
  b.borrowData(lent, 4);
  EXPECT_EQ(b.heapUsage(), 0u);
  b.clear();
  EXPECT_EQ(b.getData2(), nullptr);
  EXPECT_EQ(lent[3], 4);
  b.borrowData(lent, 4);
  b.secureClear();
  EXPECT_EQ(b.getData2(), lent);
  EXPECT_EQ(b.getBufSize(), 4u);
  EXPECT_EQ(lent[3], 0);
  b.secureClearWithDeallocate();
  EXPECT_EQ(b.getData2(), nullptr);
}

TEST(Storage, WipesASecretBeforeItsBlockGoes) {
  const auto seenAtRelease = [](bool secure, auto let) {
    auto* b = DataBuffer::createNewObject();
    b->append("secret--", 8);
    b->shorten(2);
    b->secure = secure;
    const faults::WatchRelease watch(b->getData2(), 8);
    let(*b);
    delete b;
    EXPECT_TRUE(watch.released());
    return std::string(reinterpret_cast<const char*>(watch.bytes()), 8);
  };
  const std::string wiped("\0\0\0\0\0\0--", 8), kept = "secret--";
  EXPECT_EQ(seenAtRelease(true, [](DataBuffer&) {}), wiped);
  EXPECT_EQ(seenAtRelease(false, [](DataBuffer&) {}), kept);
  EXPECT_EQ(seenAtRelease(false, [](DataBuffer& b) { b.secureClearWithDeallocate(); }), wiped);
  EXPECT_EQ(seenAtRelease(true, [](DataBuffer& b) { b = DataBuffer(); }), wiped);
  EXPECT_EQ(seenAtRelease(true, [](DataBuffer& b) { b.reallocate(100); }), kept);  // growth does not wipe
  EXPECT_EQ(seenAtRelease(true, [](DataBuffer& b) { b.clearWithDeallocate(); }), kept);
}

TEST(Storage, IsARegularType) {
  static_assert(std::is_nothrow_move_constructible_v<DataBuffer> && std::is_nothrow_move_assignable_v<DataBuffer>);
  DataBuffer a = bufferOf("abcde");
  a.secure = 1;
  DataBuffer copy(a);
  EXPECT_EQ(textOf(copy), "abcde");
  EXPECT_EQ(copy.getBufSize(), 20'000u);
  EXPECT_NE(copy.getData2(), a.getData2());
  EXPECT_EQ(copy.secure, 1);

  u8 lent[] = {1, 2, 3};
  DataBuffer borrower;
  borrower.borrowData(lent, 3);
  copy = borrower;  // owns its copy
  EXPECT_EQ(copy.heapUsage(), 3u);
  EXPECT_EQ(copy.secure, 0);
  copy = *&copy;
  EXPECT_EQ(copy.size(), 3u);

  const u8* block = a.getData2();
  DataBuffer moved(std::move(a));
  EXPECT_EQ(moved.getData2(), block);
  EXPECT_EQ(moved.secure, 1);
  EXPECT_EQ(a.getData2(), nullptr);  // NOLINT(bugprone-use-after-move): a moved-from buffer is a valid empty one
  EXPECT_TRUE(a.append("x", 1));
  a = std::move(borrower);
  EXPECT_EQ(a.getData2(), lent);
  EXPECT_EQ(a.heapUsage(), 0u);

  faults::FailAllocation none(1, true);
  const DataBuffer failed(moved);
  EXPECT_TRUE(failed.empty());
  EXPECT_EQ(failed.getData2(), nullptr);
  EXPECT_EQ(failed.getBufSize(), 0u);
  EXPECT_EQ(DataBuffer::createNewObject(), nullptr);
}

// Every guarded operation on a destroyed object answers false, null or 0 and reports once.
TEST(Storage, RefusesADestroyedObject) {
  alignas(DataBuffer) unsigned char place[sizeof(DataBuffer)];
  auto* b = new (place) DataBuffer;
  b->append("abc", 3);
  unsigned char alive[sizeof place];
  std::memcpy(alive, place, sizeof place);
  b->~DataBuffer();
  bool wasMarkedDead = false;  // the validity byte, wherever the record has it, fell from 219 to 0
  for (u32 i = 0; i < sizeof place; ++i) wasMarkedDead |= alive[i] == 219 && place[i] == 0;
  EXPECT_TRUE(wasMarkedDead);
  DataBuffer other = bufferOf("xyz");
  StringBuffer text("text"), out;
  XString path;
  path.setFromUtf8("/dev/null");
  LogNull log;
  u8 byte = 0;
  const std::pair<const char*, std::function<bool()>> kCalls[] = {
      {"checkValidityDb", [&] { return b->checkValidityDb(); }},
      {"ensureBuffer", [&] { return b->ensureBuffer(1); }},
      {"canAppendWithoutRealloc", [&] { return b->canAppendWithoutRealloc(1); }},
      {"getAppendPtr", [&] { return b->getAppendPtr(1) != nullptr; }},
      {"clearWithDeallocate", [&] { return b->clearWithDeallocate(), false; }},
      {"clearBuffer", [&] { return b->clearBuffer(), false; }},
      {"takeData", [&] { return b->takeData(other), false; }},
      {"takeDataPtr", [&] { return b->takeDataPtr(&other), false; }},
      {"takeData_kb", [&] { return b->takeData_kb(other), false; }},
      {"takeData pointer", [&] { return b->takeData(&byte, 1), false; }},
      {"borrowData", [&] { return b->borrowData(&byte, 1), false; }},
      {"removeData", [&] { return b->removeData() != nullptr; }},
      {"getDataSafe4", [&] { return b->getDataSafe4() != nullptr; }},
      {"takeString", [&] { return b->takeString(text), false; }},
      {"copy", [&] { return b->copy(other), false; }},
      {"copyData", [&] { return b->copyData("abc", 3), false; }},
      {"append", [&] { return b->append("abc", 3); }},
      {"append nothing", [&] { return b->append(nullptr, 0); }},
      {"append buffer", [&] { return b->append(other); }},
      {"append string", [&] { return b->append(text); }},
      {"appendStr", [&] { return b->appendStr("abc"); }},
      {"appendRange", [&] { return b->appendRange(other, 0, 1); }},
      {"appendRange2", [&] { return b->appendRange2(other, 0, 1); }},
      {"appendReverse", [&] { return b->appendReverse("abc", 3, true); }},
      {"appendChar", [&] { return b->appendChar('x'); }},
      {"appendChar2", [&] { return b->appendChar2('x', 'y'); }},
      {"appendCharN", [&] { return b->appendCharN('x', 3); }},
      {"resize", [&] { return b->resize(3); }},
      {"appendRandomBytes", [&] { return b->appendRandomBytes(3); }},
      {"prepend", [&] { return b->prepend("abc", 3); }},
      {"insertAt", [&] { return b->insertAt(1, "abc", 3); }},
      {"removeHead", [&] { return b->removeHead(1), false; }},
      {"exclusiveOr", [&] { return b->exclusiveOr(other, other); }},
      {"processRawPopMime", [&] { return b->processRawPopMime(), false; }},
      {"stripTerminalColorCodes", [&] { return b->stripTerminalColorCodes(), false; }},
      {"containsBareCRLF", [&] { return b->containsBareCRLF(); }},
      {"hasLineLonger", [&] { return b->hasLineLonger(0); }},
      {"findByte", [&] { return b->findByte(1) != nullptr; }},
      {"containsChar", [&] { return b->containsChar('a'); }},
      {"replaceChar", [&] { return b->replaceChar('a', 'b'), false; }},
      {"drop_non_usascii", [&] { return b->drop_non_usascii(), false; }},
      {"appendSkipNulls", [&] { return b->appendSkipNulls(&byte, 1); }},
      {"appendSkipNulls of nothing", [&] { return b->appendSkipNulls(nullptr, 0); }},
      {"dropNullBytes", [&] { return b->dropNullBytes(), false; }},
      {"altBytesNull", [&] { return b->altBytesNull(); }},
      {"consumeUtf8CombiningMarks", [&] { return b->consumeUtf8CombiningMarks(), false; }},
      {"is7bit", [&] { return b->is7bit(0); }},
      {"detectObviousCodePage", [&] { return b->detectObviousCodePage() != -1; }},
      {"appendNullTerminatedUtf16_xe", [&] { return b->appendNullTerminatedUtf16_xe(nullptr); }},
      {"appendNullTerminatedUtf32_xe", [&] { return b->appendNullTerminatedUtf32_xe(nullptr); }},
      {"appendEncoded", [&] { return b->appendEncoded("414243", "hex"); }},
      {"toHexString", [&] { return b->toHexString(out), !out.isEmpty(); }},
      {"toHexLines", [&] { return b->toHexLines(out, 16), !out.isEmpty(); }},
      {"padForEncryption", [&] { return b->padForEncryption(0, 16, log) != 0; }},
      {"copyAndPadForEncryption", [&] { return b->copyAndPadForEncryption(other, 0, 16, log), false; }},
      {"unpadAfterDecryption", [&] { return b->unpadAfterDecryption(0, 16, log); }},
      {"verifyTlsPadding", [&] { return b->verifyTlsPadding(log); }},
      {"loadFileUtf8", [&] { return b->loadFileUtf8("/dev/null", &log); }},
      {"loadFileX", [&] { return b->loadFileX(path, log); }},
      {"db_saveToFileUtf8", [&] { return b->db_saveToFileUtf8("/dev/null", nullptr); }},
      {"loadFileWithHeaderUtf8", [&] { return b->loadFileWithHeaderUtf8("/dev/null", other, 9, log); }},
      {"loadCacheHeaderUtf8", [&] { return b->loadCacheHeaderUtf8("/dev/null", 9, log); }},
      {"loadFileChunk", [&] { return b->loadFileChunk("/dev/null", 0, 9, log); }},
  };
  for (const auto& [name, call] : kCalls) {
    const u32 reports = Psdk::numReports();
    EXPECT_FALSE(call()) << name;
    EXPECT_EQ(Psdk::numReports(), reports + 1) << name;
    EXPECT_TRUE(b->getData2() == nullptr && b->size() == 0 && b->getBufSize() == 0) << name;
  }
  EXPECT_EQ(textOf(other), "xyz");
  EXPECT_EQ(textOf(text), "text");

  const u32 reports = Psdk::numReports();
  EXPECT_TRUE(b->ensureBuffer(0) && b->canAppendWithoutRealloc(0) && b->appendCharN('x', 0) && b->appendStr(nullptr));
  EXPECT_TRUE(b->append(StringBuffer()));
  b->takeDataPtr(nullptr);
  b->removeByteValue('a'), b->reverseBytes(), b->removeCharOccurancesW('a'), b->replaceCharW('a', 'b');
  b->toUppercaseW(), b->toLowercaseW();
  EXPECT_FALSE(b->chopAtFirstCharW('a') || b->chopAtLastCharW('a'));
  EXPECT_EQ(Psdk::numReports(), reports);
  b->DataBuffer::~DataBuffer();
  EXPECT_EQ(Psdk::numReports(), reports + 1);
}

// A caller may adopt a size without a block: nothing is read there, and nothing comes out.
TEST(Storage, ReadsNothingWhereASizeHasNoBlock) {
  StringBuffer text;
  DataBuffer out;
  LogNull log;
  const std::function<bool(DataBuffer&)> kCalls[] = {
      [](DataBuffer& b) { return b.lastByte() != 0 || b.firstByte() != 0 || b.byteAt(1) != 0; },
      [&](DataBuffer& b) { return out.appendRange(b, 0, 2), out.appendRange2(b, 0, 2), !out.empty(); },
      [](DataBuffer& b) { return b.applyMask("x", 1), b.replaceChar('a', 'b'), b.drop_non_usascii(), false; },
      [](DataBuffer& b) { return b.equals2("abcde", 5); },
      [](DataBuffer& b) { return b.dropNullBytes(), b.processRawPopMime(), b.detectObviousCodePage() != -1; },
      [&](DataBuffer& b) { return b.cvUnicodeToUtf8(text), b.cvUnicodeToUtf8_db(out), b.toHexLines(text, 4), false; }};
  for (const auto& call : kCalls) {
    DataBuffer b;
    b.takeData2(nullptr, 5, 5);
    EXPECT_FALSE(call(b)) << &call - kCalls;
    b.dropData();
  }
  EXPECT_TRUE(text.isEmpty() && out.empty());
}

}  // namespace
