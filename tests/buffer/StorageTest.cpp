#include "tests/support/Test.h"

namespace {

// A buffer of `size` bytes in a block of `capacity`, of just as many.
DataBuffer buffer(u32 size, u32 capacity) {
  DataBuffer b;
  b.ensureBuffer(capacity);
  b.setDataSize_CAUTION(size);
  return b;
}
DataBuffer fullBuffer(u32 size) {
  return buffer(size, size);
}

TEST(Storage, StartsEmptyAndAnswersNothingOutOfRange) {
  const DataBuffer none;
  EXPECT_EQ(stateOf(none), " of 0, no block");
  EXPECT_TRUE(none.empty() && none.checkValidityDb() && none.totalMemoryUsage() == sizeof none);
  const DataBuffer b = bufferOf("abcdefgh"), empty = fullBuffer(0), reserved = buffer(0, 5);
  for (const auto* each : {&none, &empty, &reserved})
    EXPECT_EQ(each->size() + each->getSize() + each->byteAt(0) + each->firstByte() + each->lastByte(), 0u);
  EXPECT_TRUE(b.byteAt(7) == 'h' && b.byteAt(8) == 0 && b.firstByte() == 'a' && b.lastByte() == 'h');
  EXPECT_TRUE(b.getDataAt2(7) == b.getData2() + 7 && !b.getDataAt2(8));
  EXPECT_TRUE(b.getBufAt(8) == b.getData2() + 8 && !b.getBufAt(20'000));
  for (const auto& [start, len, available] :
       {std::tuple{5u, 0u, 3u}, {5u, 2u, 2u}, {5u, 10u, 3u}, {8u, 1u, 0u}, {0u, 0xFFFFFFFFu, 8u}})
    EXPECT_EQ(b.calcSegmentSize(start, len), available) << start << ' ' << len;
}

TEST(Storage, GrowsByTheStepOfItsSize) {
  const auto capacityAfter = [](u32 size, u32 added) {
    DataBuffer b = fullBuffer(size);
    EXPECT_TRUE(b.expandBuffer(added) && b.size() == size);
    return b.getBufSize();
  };
  u32 last = 20'000;
  for (const u32 step : {50'000u, 100'000u, 1'000'000u, 2'000'000u, 3'000'000u, 4'000'000u, 8'000'000u, 12'000'000u}) {
    EXPECT_EQ(capacityAfter(step - 1, 1), step - 1 + std::exchange(last, step));
    EXPECT_EQ(capacityAfter(step, 1), 2 * step);
  }
  EXPECT_TRUE(capacityAfter(0, 10) == 20'000 && capacityAfter(0, 20'001) == 20'001);
}

TEST(Storage, SecondAttemptAsksForTheNeedAnd400) {
  // Where need and 400 are no less than the step there is no second attempt.
  for (const auto& [size, added, capacity] :
       {std::tuple{0u, 10u, 410u}, {100u, 19'599u, 20'099u}, {100u, 19'600u, 100u}, {100u, 50'000u, 100u}})
    for (const bool forGood : {false, true}) {
      DataBuffer b = fullBuffer(size);
      const u8* block = b.getData2();
      const faults::FailAllocation first(1, forGood);
      const bool isDone = b.expandBuffer(added);
      EXPECT_EQ(isDone, !forGood && capacity != 100) << added;
      EXPECT_EQ(b.getBufSize(), isDone ? capacity : size) << added;
      EXPECT_EQ(b.getData2() == block, !isDone);
    }
}

TEST(Storage, ReservesExactly) {
  DataBuffer b;
  EXPECT_TRUE(b.ensureBuffer(0) && !b.reallocate(0) && !b.getData2());
  EXPECT_TRUE(b.ensureBuffer(100) && b.ensureBuffer(99) && b.append("abcde", 5));
  EXPECT_TRUE(b.canAppendWithoutRealloc(95) && !b.canAppendWithoutRealloc(96));
  EXPECT_FALSE(b.canAppendWithoutRealloc(0xFFFFFFFF));
  const u32 reports = Psdk::numReports();
  EXPECT_FALSE(b.reallocate(4));  // below the size: a caller's error
  EXPECT_EQ(stateOf(b), "abcde of 100");
  EXPECT_TRUE(b.reallocate(5));
  EXPECT_EQ(stateOf(b), "abcde of 5");

  const u8* p = b.getAppendPtr(10);  // for a producer that writes in place
  EXPECT_TRUE(p && p == b.getBufAt(5) && b.getBufSize() == 16);
  EXPECT_EQ((b.addToSize(12), b.size()), 5u);
  EXPECT_EQ((b.addToSize(11), b.size()), 16u);
  EXPECT_FALSE(b.getAppendPtr(0xFFFFFFFF) || b.getAppendPtr(0xFFFFFFFF - 16));
  EXPECT_EQ((b.setDataSize_CAUTION(100), b.size()), 16u);
  EXPECT_EQ(Psdk::numReports(), reports + 1);
}

TEST(Storage, GivesSpareMemoryBack) {
  for (const auto& [capacity, slack, left] :
       {std::tuple{14u, 0u, 14u}, {15u, 0u, 14u}, {200u, 0u, 14u}, {15u, 4u, 14u}, {110u, 100u, 110u}}) {
    DataBuffer b = buffer(10, capacity);
    EXPECT_TRUE(slack == 0 ? b.minimizeMemoryUsage() : b.minimizeMemoryUsage2(slack));
    EXPECT_EQ(b.getBufSize(), left) << capacity << ' ' << slack;
  }
}

TEST(Storage, Clears) {
  DataBuffer b = bufferOf("abc");
  u8* block = b.getData2();
  b.clear();
  EXPECT_EQ(stateOf(b), " of 20000");
  b.append("abcd", 4);
  b.shorten(1), b.secureClear();
  EXPECT_EQ(stringAt(block, 4), "\0\0\0d"s) << "only the bytes in use";
  EXPECT_TRUE(b.empty() && b.getData2() == block);
  std::memset(block, 'x', 20'000);
  b.setDataSize_CAUTION(3);
  b.clearBuffer();
  EXPECT_TRUE(b.size() == 3 && stringAt(block, 20'000) == std::string(20'000, '\0'));
  b.clearWithDeallocate(), b.clearBuffer(), b.secureClear();
  EXPECT_EQ(stateOf(b), " of 0, no block");

  std::string lent = "lent";
  b.borrowData(lent.data(), 4);
  b.clear();
  EXPECT_EQ(stateOf(b) + lent, " of 0, no blocklent");
  b.borrowData(lent.data(), 4);
  b.secureClear();
  EXPECT_EQ(stateOf(b) + lent, " of 4, lent\0\0\0\0"s);
  b.secureClearWithDeallocate();
  EXPECT_EQ(stateOf(b), " of 0, no block");
}

TEST(Storage, WipesASecretBeforeItsBlockGoes) {
  const std::tuple<bool, std::string, void (*)(DataBuffer&)> kCases[] = {
      {true, "\0\0\0\0\0\0--"s, [](DataBuffer&) {}},
      {false, "secret--", [](DataBuffer&) {}},
      {false, "\0\0\0\0\0\0--"s, [](DataBuffer& b) { b.secureClearWithDeallocate(); }},
      {true, "\0\0\0\0\0\0--"s, [](DataBuffer& b) { b = DataBuffer(); }},
      {true, "secret--", [](DataBuffer& b) { b.reallocate(100); }},  // growth does not wipe
      {true, "secret--", [](DataBuffer& b) { b.clearWithDeallocate(); }},
  };
  for (const auto& [secure, seen, let] : kCases) {
    auto* b = DataBuffer::createNewObject();
    b->append("secret--", 8);
    b->shorten(2);
    b->secure = secure;
    EXPECT_EQ(seenAtRelease(b->getData2(), 8, [&, let = let] { let(*b), delete b; }), seen);
  }
}

TEST(Storage, IsARegularType) {
  static_assert(std::is_nothrow_move_constructible_v<DataBuffer> && std::is_nothrow_move_assignable_v<DataBuffer>);
  DataBuffer a = bufferOf("abcde");
  a.secure = 1;
  DataBuffer copy(a);
  EXPECT_EQ(stateOf(copy), "abcde of 20000, secure");
  EXPECT_NE(copy.getData2(), a.getData2());

  u8 lent[] = {'1', '2', '3'};
  DataBuffer borrower = borrowing(lent, 3);
  copy = borrower;
  copy = *&copy;
  EXPECT_EQ(stateOf(copy), "123 of 3");  // its own

  const u8* block = a.getData2();
  DataBuffer moved(std::move(a));
  EXPECT_EQ(moved.getData2(), block);
  EXPECT_EQ(stateOf(moved), "abcde of 20000, secure");
  EXPECT_EQ(stateOf(a), " of 0, no block");  // NOLINT(bugprone-use-after-move): it is a valid empty one
  EXPECT_TRUE(a.append("x", 1));
  a = std::move(borrower);
  EXPECT_EQ(stateOf(a), "123 of 3, lent");
}

// Every guarded operation on a destroyed object answers false, null or 0 and reports once.
TEST(Storage, RefusesADestroyedObject) {
  alignas(DataBuffer) unsigned char place[sizeof(DataBuffer)];
  auto* b = new (place) DataBuffer(bufferOf("abc"));
  unsigned char alive[sizeof place];
  std::memcpy(alive, place, sizeof place);
  b->~DataBuffer();
  u32 at = 0;  // the validity byte, wherever the record has it, fell from 219 to 0
  while (at < sizeof place && !(alive[at] == 219 && place[at] == 0)) ++at;
  ASSERT_LT(at, sizeof place);
  DataBuffer other = bufferOf("xyz");
  StringBuffer text("text"), out;
  XString path = wideOf("/dev/null");
  u8 byte = 0;
  const std::pair<u32, std::function<bool()>> kCalls[] = {
      // how many calls, and the calls
      {3, [&] { return b->checkValidityDb() || b->ensureBuffer(1) || b->canAppendWithoutRealloc(0); }},
      {3, [&] { return b->getAppendPtr(1) || b->getDataSafe4() || b->removeData(); }},
      {3, [&] { return b->clearWithDeallocate(), b->clearBuffer(), b->removeHead(1), false; }},
      {3, [&] { return b->takeData(other), b->takeData_kb(other), b->takeData2(&byte, 1, 1), false; }},
      {3, [&] { return b->borrowData(&byte, 1), b->takeString(text), b->copy(other), false; }},
      {3, [&] { return b->copyData("abc", 3), b->append("abc", 3) || b->appendReverse("abc", 3, true); }},
      {3, [&] { return b->appendChar('x') || b->appendChar2('x', 'y') || b->appendCharN('x', 3); }},
      {3, [&] { return b->appendRandomBytes(3) || b->prepend("abc", 3) || b->insertAt(1, "abc", 3); }},
      {3, [&] { return b->exclusiveOr(other, other) || b->containsBareCRLF() || b->hasLineLonger(0); }},
      {3, [&] { return b->processRawPopMime(), b->stripTerminalColorCodes(), b->findByte(1) != nullptr; }},
      {3, [&] { return b->replaceChar('a', 'b'), b->drop_non_usascii(), b->containsChar('a'); }},
      {3, [&] { return b->dropNullBytes(), b->appendSkipNulls(&byte, 1) || b->altBytesNull(); }},
      {3, [&] { return b->consumeUtf8CombiningMarks(), b->is7bit(0) || b->detectObviousCodePage() != -1; }},
      {2, [&] { return b->appendNullTerminatedUtf16_xe(nullptr) || b->appendNullTerminatedUtf32_xe(nullptr); }},
      {2, [&] { return b->appendEncodedById("41", 3) || b->appendEncoded("414243", "hex"); }},
      {3, [&] { return b->toHexString(out), b->toHexLines(out, 16), b->appendEncoded("abc", "iso-8859-1"); }},
      {2, [&] { return b->padForEncryption(0, 16, nowhere) || b->unpadAfterDecryption(0, 16, nowhere); }},
      {2, [&] { return b->copyAndPadForEncryption(other, 0, 16, nowhere), b->verifyTlsPadding(nowhere); }},
      {2, [&] { return b->loadFileUtf8("/dev/null", &nowhere) || b->loadFileX(path, nowhere); }},
      {2, [&] { return b->db_saveToFileUtf8("/dev/null", nullptr) || b->loadFileChunk("/dev/null", 0, 9, nowhere); }},
      {1, [&] { return b->loadFileWithHeaderUtf8("/dev/null", other, 9, nowhere); }},
      {1, [&] { return b->loadCacheHeaderUtf8("/dev/null", 9, nowhere); }},
      // Where there is nothing to do there is nothing to report.
      {0, [&] { return !b->ensureBuffer(0) || !b->appendCharN('x', 0) || !b->appendStr(nullptr); }},
      {0, [&] { return b->takeDataPtr(nullptr), b->removeByteValue('a'), !b->append(StringBuffer()); }},
      {0, [&] { return b->reverseBytes(), b->removeCharOccurancesW('a'), b->replaceCharW('a', 'b'), false; }},
      {0, [&] { return b->toUppercaseW(), b->toLowercaseW(), b->chopAtFirstCharW('a') || b->chopAtLastCharW('a'); }},
  };
  for (const auto& call : kCalls) {
    const u32 reports = Psdk::numReports();
    EXPECT_FALSE(call.second()) << &call - kCalls;
    EXPECT_EQ(Psdk::numReports(), reports + call.first) << &call - kCalls;
    EXPECT_TRUE(b->getData2() == nullptr && b->size() == 0 && b->getBufSize() == 0) << &call - kCalls;
  }
  EXPECT_TRUE(out.isEmpty());
  EXPECT_EQ(textOf(other), "xyz");
  EXPECT_EQ(textOf(text), "text");

  const u32 reports = Psdk::numReports();
  b->DataBuffer::~DataBuffer();
  new (place) DataBuffer;
  b->borrowData(&byte, 1);
  place[at] = 1;
  b->~DataBuffer();  // not released, as it was lent
  EXPECT_EQ(Psdk::numReports(), reports + 2);
}

// A caller may adopt a size without a block: nothing is read or written there, and nothing comes out.
TEST(Storage, TouchesNothingWhereASizeHasNoBlock) {
  StringBuffer text;
  DataBuffer out;
  u32 at = 1;
  const std::function<bool(DataBuffer&)> kCalls[] = {
      [](DataBuffer& b) { return b.append("x", 1) || b.appendChar('x') || b.appendCharN('x', 2); },
      [](DataBuffer& b) { return b.prepend("x", 1) || b.insertAt(2, "x", 1) || b.prepForSbTake(); },
      [](DataBuffer& b) { return b.getAppendPtr(2) || b.getDataAt2(1) || b.getBufAt(1); },
      [](DataBuffer& b) { return b.appendEncoded("41", "hex") || b.appendEncoded("a", "iso-8859-1"); },
      [](DataBuffer& b) { return b.appendRandomBytes(2) || b.isReallyUtf8(1252) || b.numPartialTrailingUtf8Bytes(); },
      [](DataBuffer& b) { return b.exclusiveOr(bufferOf("abc"), bufferOf("def")) || b.size() != 3; },
      [](DataBuffer& b) {
        return bufferOf("x").exclusiveOr(b, bufferOf("abcde")) || bufferOf("x").exclusiveOr(bufferOf("abcde"), b) ||
               !b.removeChunk(1, 2);
      },
      [](DataBuffer& b) { return b.lastByte() != 0 || b.firstByte() != 0 || b.byteAt(1) != 0; },
      [&](DataBuffer& b) { return out.appendRange(b, 1, 2), out.appendRange2(b, 1, 2), !out.empty(); },
      [](DataBuffer& b) {
        return b.applyMask("x", 1), b.replaceChar('a', 'b'), b.drop_non_usascii(), b.hasLineLonger(2);
      },
      [&](DataBuffer& b) { return b.slideTailToFront(2, nowhere), b.equals2("abcde", 5) || b.endsWithStr("de"); },
      [](DataBuffer& b) { return b.dropNullBytes(), b.processRawPopMime(), b.detectObviousCodePage() != -1; },
      [&](DataBuffer& b) { return !b.encodeDB("base64", text) || b.parseDataEnc(at, 2, "hex", text) || at != 1; },
      [&](DataBuffer& b) { return b.cvUnicodeToUtf8(text), b.cvUnicodeToUtf8_db(out), b.toHexLines(text, 4), false; }};
  for (const auto& call : kCalls) {
    DataBuffer b;
    b.takeData2(nullptr, 5, 9);
    EXPECT_FALSE(call(b)) << &call - kCalls;
    b.dropData();
  }
  EXPECT_TRUE(text.isEmpty() && out.empty());
}

}  // namespace
