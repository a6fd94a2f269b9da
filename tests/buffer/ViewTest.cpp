#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "tests/support/Bytes.h"

namespace {

std::string contentOf(DataBufferView& view) {
  DataBuffer b;
  EXPECT_TRUE(b.appendView(view));
  return textOf(b);
}

void fill(DataBufferView& view, u32 n) {
  const std::string bytes = randomBytes(n);
  view.append(bytes.data(), n);
}

TEST(View, IsAQueue) {
  DataBufferView view;
  EXPECT_TRUE(view.append(nullptr, 5) && view.append("x", 0) && view.getViewSize() == 0 && !view.getViewData());
  EXPECT_EQ(contentOf(view), "");
  EXPECT_TRUE(view.append("012345", 6) && view.append(bufferOf("6789")));
  DataBuffer out = bufferOf(">");
  EXPECT_TRUE(view.takeBytes(4, out));
  EXPECT_EQ(textOf(out), ">0123");
  EXPECT_EQ(view.getViewSize(), 6u);
  EXPECT_EQ(*view.getViewData(), '4');
  EXPECT_FALSE(view.takeBytes(7, out));
  EXPECT_EQ(textOf(out), ">0123");
  u8 area[3] = {};
  EXPECT_FALSE(view.takeBytes(1, nullptr));
  EXPECT_TRUE(view.takeBytes(2, area));
  EXPECT_EQ(area[1], '5');
  EXPECT_EQ(contentOf(view), "6789");
  EXPECT_TRUE(view.consume(0xFFFFFFFF));
  EXPECT_TRUE(view.getViewSize() == 0 && !view.getViewData() && view.heapUsage() == 20'000);
  EXPECT_FALSE(view.takeBytes(0, out) || view.takeBytes(0, area));
}

// Where the content begins in its block tells whether the dead bytes were dropped.
TEST(View, DropsDeadBytesAtTheThresholds) {
  constexpr struct {
    u32 held, kept;
  } kCases[] = {{15'000, 14'999},  {20'000, 19'999},   {20'001, 19'900},     {30'000, 19'900},
                {200'000, 19'900}, {200'001, 199'000}, {2'000'000, 199'000}, {2'000'001, 1'990'000}};
  for (const auto& c : kCases) {
    DataBufferView view;
    fill(view, c.held);
    const u8* block = view.getViewData();
    const u32 memory = view.heapUsage();
    EXPECT_TRUE(view.consume(c.kept));
    EXPECT_EQ(view.getViewData(), block + c.kept) << c.held;
    if (c.held - c.kept == 1) continue;
    const u8 next = block[c.kept + 1];
    EXPECT_TRUE(view.consume(1));
    EXPECT_EQ(view.getViewData(), block) << c.held;
    EXPECT_EQ(*block, next);
    EXPECT_EQ(view.getViewSize(), c.held - c.kept - 1);
    EXPECT_EQ(view.heapUsage(), memory);  // never a new block
  }
}

TEST(View, MovesToAnother) {
  DataBufferView a, b;
  a.append("0123456789ab", 12);
  a.consume(5);
  const u8* content = a.getViewData();
  b.append("old", 3);
  b.takeView(a);
  EXPECT_EQ(b.getViewData(), content);
  EXPECT_EQ(contentOf(b), "56789ab");
  EXPECT_EQ(a.getViewSize(), 0u);
  a.append("new", 3);
  EXPECT_EQ(contentOf(a), "new");
  b.takeView(b);
  EXPECT_EQ(contentOf(b), "56789ab");
  b.clear();
  EXPECT_EQ(b.getViewSize(), 0u);
}

TEST(View, ReplacesOnlyTheContent) {
  DataBufferView view;
  view.append("aabbaa\xE4", 7);
  view.consume(1);
  const u8* dead = view.getViewData() - 1;
  view.replaceChar('a', 'x');
  view.replaceChar('\xE4', 'y');
  EXPECT_EQ(contentOf(view), "xbbxxy");
  EXPECT_EQ(*dead, 'a');
}

TEST(View, Logs) {
  DataBufferView view;
  LogText log;
  view.logViewData("tag", true, log);
  EXPECT_STREQ(log.getText(), "tag: Databuffer view is empty.\n");
  log.clear();
  view.append("xabc", 4);
  view.consume(1);
  view.logViewData("text", false, log);
  EXPECT_STREQ(log.getText(), "text: abc\n");
  EXPECT_EQ(log.numErrors(), 0u);
}

// Several producers append records of one byte value each, of that many bytes; a consumer takes whole records.
TEST(View, TearsNoRecordBetweenThreads) {
  constexpr u32 kProducers = 4, kRecords = 20'000;
  DataBufferView view;
  std::vector<std::thread> producers;
  for (u32 p = 0; p < kProducers; ++p)
    producers.emplace_back([&view, p] {
      for (u32 i = 0; i < kRecords; ++i) {
        const u32 n = 1 + (i * 7 + p) % 100;
        u8 record[100];
        vk_memset(record, static_cast<int>(n), n);
        view.append(record, n);
      }
    });
  u32 taken = 0, torn = 0;
  while (taken < kProducers * kRecords) {
    u8 first = 0;
    if (!view.takeBytes(1, &first)) {
      std::this_thread::yield();
      continue;
    }
    u8 rest[100] = {};
    if (first > 1 && !view.takeBytes(first - 1u, rest)) ++torn;  // a record arrives whole
    for (u32 i = 0; i + 1 < first; ++i) torn += rest[i] != first;
    ++taken;
  }
  for (std::thread& p : producers) p.join();
  EXPECT_EQ(torn, 0u);
  EXPECT_EQ(view.getViewSize(), 0u);
}

}  // namespace
