#include <atomic>

#include "tests/support/Test.h"

namespace {

std::string contentOf(DataBufferView& view) {
  DataBuffer b;
  EXPECT_TRUE(b.appendView(view));
  return textOf(b);
}

TEST(View, IsAQueue) {
  DataBufferView view;
  EXPECT_TRUE(view.append(nullptr, 5) && view.append("x", 0) && view.getViewSize() == 0 && !view.getViewData());
  EXPECT_EQ(contentOf(view), "");
  EXPECT_TRUE(view.append("012345", 6) && view.append(bufferOf("6789")));
  DataBuffer out = bufferOf(">");
  EXPECT_TRUE(view.takeBytes(4, out) && !view.takeBytes(7, out));
  EXPECT_EQ(textOf(out), ">0123");
  EXPECT_EQ(view.getViewSize(), 6u);
  EXPECT_EQ(*view.getViewData(), '4');
  u8 area[3] = {};
  EXPECT_FALSE(view.takeBytes(1, nullptr) || view.takeBytes(7, area));
  EXPECT_TRUE(view.takeBytes(2, area) && area[1] == '5');
  EXPECT_EQ(contentOf(view), "6789");
  EXPECT_TRUE(view.consume(0xFFFFFFFF));
  EXPECT_TRUE(view.getViewSize() == 0 && !view.getViewData() && view.heapUsage() == 20'000);
  EXPECT_FALSE(view.takeBytes(0, out) || view.takeBytes(0, area));
}

// Where the content begins in its block tells whether the dead bytes were dropped.
TEST(View, DropsDeadBytesAtTheThresholds) {
  constexpr std::pair<u32, u32> kThresholds[] = {{15'000u, 14'999u},      {20'000u, 19'999u},   {20'001u, 19'900u},
                                                 {200'000u, 19'900u},     {200'001u, 199'000u}, {2'000'000u, 199'000u},
                                                 {2'000'001u, 1'990'000u}};
  for (const auto& [held, kept] : kThresholds) {
    DataBufferView view;
    view.append(randomBytes(held).data(), held);
    const u8* block = view.getViewData();
    const u32 memory = view.heapUsage();
    EXPECT_TRUE(view.consume(kept));
    EXPECT_TRUE(view.compact());
    EXPECT_EQ(view.getViewData(), block + kept) << held;
    if (held - kept == 1) continue;
    const u8 next = block[kept + 1];
    EXPECT_TRUE(view.consume(1));
    EXPECT_EQ(view.getViewData(), block) << held;
    EXPECT_EQ(*block, next);
    EXPECT_EQ(view.getViewSize(), held - kept - 1);
    EXPECT_EQ(view.heapUsage(), memory);  // never a new block
  }
}

TEST(View, MovesReplacesAndLogsOnlyTheContent) {
  DataBufferView a, b;
  LogText log;
  a.logViewData("tag", true, log);
  a.append("0123aabb\xE4", 9);
  a.consume(5);
  const u8* content = a.getViewData();
  b.append("old", 3);
  b.takeView(a);
  b.takeView(b);
  EXPECT_EQ(b.getViewData(), content);
  EXPECT_EQ(contentOf(b), "abb\xE4");
  EXPECT_TRUE(a.getViewSize() == 0 && a.append("new", 3));
  EXPECT_EQ(contentOf(a), "new");
  b.replaceChar('a', 'x');
  b.replaceChar('\xE4', 'y');
  EXPECT_EQ(contentOf(b) + static_cast<char>(content[-1]), "xbbya");
  b.logViewData("text", false, log);
  EXPECT_STREQ(log.getText(), "tag: Databuffer view is empty.\ntext: xbby\n");
  b.clear();
  b.replaceChar('a', 'b');
  EXPECT_EQ(b.getViewSize(), 0u);
}

// Producers append records of one byte value each; consumers take whole records, which must not be torn, and none may
// be lost or come twice.
TEST(View, TearsNoRecordBetweenThreads) {
  constexpr u32 kLength = 50;
  const u32 numThreads = soaks() ? 8 : 3, each = soaks() ? 250'000 : 20'000;
  DataBufferView view;
  std::atomic<u32> torn = 0, left = numThreads * each, taken[256] = {};
  std::vector<std::jthread> threads;
  for (u32 t = 0; t < numThreads; ++t) {
    threads.emplace_back([&] {
      for (u32 i = 0; i < each; ++i) view.append(std::string(kLength, static_cast<char>(i)).data(), kLength);
    });
    threads.emplace_back([&] {
      for (u8 record[kLength]; left != 0;) {
        if (!view.takeBytes(kLength, record)) {
          std::this_thread::yield();
          continue;
        }
        --left;
        ++taken[record[0]];
        for (const u8 byte : record) torn += byte != record[0];
      }
    });
  }
  threads.clear();  // when all have ended
  EXPECT_EQ(torn, 0u);
  for (u32 value = 0; value < 256; ++value) EXPECT_EQ(taken[value], numThreads * ((each - value + 255) / 256)) << value;
  EXPECT_EQ(view.getViewSize(), 0u);
}

}  // namespace
