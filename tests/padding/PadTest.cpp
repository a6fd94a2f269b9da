#include "tests/support/Test.h"

namespace {

constexpr s32 kSchemes[] = {-2147483647 - 1, -1, 0, 1, 2, 3, 4, 5, 2147483647};

// What each scheme adds, said again the long way; '?' stands for a random byte.
std::string naivePad(s32 scheme, u32 length, u32 block) {
  std::string pad;
  while ((length + pad.size()) % block != 0) pad += scheme == 3 ? '\0' : scheme == 4 ? ' ' : '?';
  if (scheme > 1 || scheme < 0) return scheme > 1 && scheme < 5 ? pad : "";
  if (pad.empty()) pad.assign(block, '?');
  const char count = static_cast<char>(pad.size());
  if (scheme == 0) pad.assign(pad.size(), count);
  pad.back() = count;
  return pad;
}

// Whether `got` is the data and such a pad behind it.
bool isPadded(const DataBuffer& got, const std::string& data, const std::string& pad) {
  if (got.size() != data.size() + pad.size() || textOf(got).substr(0, data.size()) != data) return false;
  for (u32 i = 0; i < pad.size(); ++i)
    if (pad[i] != '?' && got.byteAt(countOf(data) + i) != static_cast<u8>(pad[i])) return false;
  return true;
}

TEST(Pad, AgreesWithItsNaiveTwin) {
  for (const s32 scheme : kSchemes)
    for (u32 length = 0; length <= 48; ++length)
      for (const s32 block : {-1, 0, 1, 2, 7, 8, 9, 15, 16, 17, 24, 32, 255, 256, 2147483647}) {
        const std::string data = randomBytes(length, length + 1), pad = naivePad(scheme, length, block == 8 ? 8 : 16);
        DataBuffer source = bufferOf(data), b = bufferOf("old");
        b.copyAndPadForEncryption(source, scheme, block, nowhere);
        if (scheme < 0 || scheme > 2 || block < 1 || block > 16) {
          EXPECT_EQ(stateOf(b), "old of 20000") << scheme << " " << block;
        } else {
          EXPECT_TRUE(isPadded(b, data, naivePad(scheme, length, static_cast<u32>(block))));
          EXPECT_TRUE(b.getBufSize() == b.size() && (b.getData2() || b.empty())) << scheme << " " << block;
        }
        EXPECT_EQ(source.padForEncryption(scheme, block, nowhere), pad.size()) << scheme << " " << block;
        EXPECT_TRUE(isPadded(source, data, pad)) << scheme << " " << length << " " << block;
      }
}

TEST(Pad, LeavesBorrowedStorageAndServesItself) {
  char lent[] = "lent";
  DataBuffer b = borrowing(lent, 4), huge = borrowing(lent, 0xFFFFFFFF);  // claimed, never read
  b.copyAndPadForEncryption(bufferOf("12345"), 0, 8, nowhere);
  EXPECT_EQ(stateOf(b), "12345\3\3\3 of 8");
  EXPECT_STREQ(lent, "lent");
  b.copyAndPadForEncryption(b, 0, 16, nowhere);
  EXPECT_EQ(stateOf(b), "12345\3\3\3\10\10\10\10\10\10\10\10 of 16");
  b.copyAndPadForEncryption(huge, 0, 16, nowhere);
  const faults::FailAllocation none(1, true);
  EXPECT_EQ(b.padForEncryption(0, 16, nowhere), 16u) << "the length is told all the same";
  EXPECT_EQ(b.size(), 16u);
}

// 16 bytes repeat by chance once in 2^112. They come from the generator, or from its second source a byte at a time
// where the generator or memory fails.
TEST(Pad, DrawsFreshRandomBytes) {
  std::set<std::string> pads;
  const u32 before = faults::openDescriptors();
  for (u32 i = 0; i < 30; ++i) {
    DataBuffer b = bufferOf("x"), full = bufferOf("old");
    const faults::FailCall armed(Call::kRandom, i % 3, i % 2 != 0, {Fault::kError, ENOSYS});
    EXPECT_EQ(b.padForEncryption(2, 16, nowhere), 15u);
    pads.insert(textOf(b).substr(1));
    const faults::FailAllocation refused(i % 3, false);
    full.copyAndPadForEncryption(b, 1, 16, nowhere);
    if (!full.empty()) pads.insert(textOf(full).substr(16, 15));
  }
  EXPECT_EQ(pads.size(), 50u);
  EXPECT_EQ(faults::openDescriptors(), before);

  const u64 draws = faults::calls(Call::kRandom);
  DataBuffer b = bufferOf("123456789012345");
  EXPECT_TRUE(b.padForEncryption(1, 16, nowhere) == 1 && b.lastByte() == 1);
  EXPECT_EQ(faults::calls(Call::kRandom), draws) << "a pad of one byte needs no random ones";
}

std::string naiveUnpad(const std::string& data, s32 scheme, s32 block) {
  if (data.empty() || (scheme != 0 && scheme != 1)) return data;
  const u32 n = static_cast<u8>(data.back());
  if (n == 0 || n > static_cast<u32>(block)) return data;
  if (scheme == 1) return data.substr(0, n < data.size() ? data.size() - n : 0);
  if (data.size() < n || data.substr(data.size() - n) != std::string(n, data.back())) return data;
  return data.substr(0, data.size() - n);
}

// Every last byte, behind runs of it of every length, in data that begins and ends at unreadable pages.
TEST(Unpad, AgreesWithItsNaiveTwin) {
  GuardedBytes area(4096);
  for (u32 last = 0; last < 256; ++last)
    for (const u32 length : {0u, 1u, 2u, 3u, 15u, 16u, 17u, 255u, 256u, 300u})
      for (const u32 run : {0u, 1u, last - 1, last, last + 1, length}) {
        std::string data = randomBytes(length, last + length);
        for (u32 i = 0; i < length && i < run; ++i) data[length - 1 - i] = static_cast<char>(last);
        for (const s32 block : {-1, 0, 1, 8, 16, 255, 256})
          for (const s32 scheme : kSchemes) {
            DataBuffer b = borrowing(area.starting(data), length);
            EXPECT_TRUE(b.unpadAfterDecryption(scheme, block, nowhere));
            EXPECT_TRUE(textOf(b) == naiveUnpad(data, scheme, block)) << last << " " << length << " " << run;
            EXPECT_EQ(b.getBufSize(), length);
          }
      }
}

TEST(TlsPadding, IsCheckedByteForByte) {
  const std::pair<const char*, std::vector<std::string>> kCases[] = {
      {"", {fromHex("00"), fromHex("020202"), fromHex("050101"), std::string(256, '\xFF')}},
      {"error: size is 0\n", {""}},
      {"error: incorrect padding byte value.\n", {fromHex("010202"), fromHex("02030303"), fromHex("0001")}},
      {"error: the padding is longer than the data\n", {fromHex("030303"), fromHex("01"), std::string(255, '\xFF')}},
  };
  GuardedBytes area(4096);
  for (const auto& [error, contents] : kCases)
    for (const std::string& data : contents) {
      DataBuffer b = borrowing(area.starting(data), data.size());
      LogText log;
      EXPECT_EQ(b.verifyTlsPadding(log), !*error) << data.size();
      EXPECT_STREQ(log.getText(), error);
      EXPECT_TRUE(textOf(b) == data);
    }
  DataBuffer adopted;
  adopted.takeData2(nullptr, 5, 5);
  LogText log;
  EXPECT_TRUE(!adopted.verifyTlsPadding(log) && adopted.unpadAfterDecryption(0, 16, log));
  EXPECT_STREQ(log.getText(), "error: data is null\n");
  adopted.dropData();
}

}  // namespace
