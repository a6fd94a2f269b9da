#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <set>

#include "tests/support/Allocations.h"
#include "tests/support/Bytes.h"
#include "tests/support/GuardedBytes.h"
#include "tests/support/SystemCalls.h"

namespace {

using faults::Call;
using faults::Fault;

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
    if (pad[i] != '?' && got.byteAt(static_cast<u32>(data.size()) + i) != static_cast<u8>(pad[i])) return false;
  return true;
}

TEST(Pad, AgreesWithItsNaiveTwin) {
  LogText log;
  for (const s32 scheme : kSchemes)
    for (u32 length = 0; length <= 48; ++length) {
      const std::string data = randomBytes(length, length + 1);
      for (const s32 block : {-1, 0, 1, 7, 8, 9, 15, 16, 17, 24, 32, 64, 2147483647}) {
        DataBuffer b = bufferOf(data);
        const std::string pad = naivePad(scheme, length, block == 8 ? 8 : 16);
        EXPECT_EQ(b.padForEncryption(scheme, block, log), pad.size()) << scheme << " " << length << " " << block;
        EXPECT_TRUE(isPadded(b, data, pad)) << scheme << " " << length << " " << block;
      }
    }
  EXPECT_STREQ(log.getText(), "");
}

TEST(Pad, CopiesWithoutSpareCapacity) {
  LogText log;
  for (const s32 scheme : kSchemes)
    for (u32 length = 0; length <= 48; ++length) {
      const std::string data = randomBytes(length, length + 1);
      const DataBuffer source = bufferOf(data);
      for (s32 block = -1; block <= 300; ++block) {
        DataBuffer b = bufferOf("old");
        b.copyAndPadForEncryption(source, scheme, block, log);
        if (scheme < 0 || scheme > 2 || block < 1 || block > 16) {
          EXPECT_TRUE(textOf(b) == "old" && b.getBufSize() == 20'000);
        } else {
          const std::string pad = naivePad(scheme, length, static_cast<u32>(block));
          EXPECT_TRUE(isPadded(b, data, pad)) << scheme << " " << length << " " << block;
          EXPECT_EQ(b.getBufSize(), b.size());
          EXPECT_EQ(b.getData2() == nullptr, b.empty());
        }
        if (block == 18) block = 255;
      }
    }
  EXPECT_STREQ(log.getText(), "");
}

TEST(Pad, LeavesBorrowedStorageAndServesItself) {
  char lent[] = "lent";
  DataBuffer b;
  b.borrowData(lent, 4);
  LogNull log;
  b.copyAndPadForEncryption(bufferOf("12345"), 0, 8, log);
  EXPECT_EQ(textOf(b), "12345\3\3\3");
  EXPECT_EQ(b.heapUsage(), 8u);
  EXPECT_STREQ(lent, "lent");
  b.copyAndPadForEncryption(b, 0, 16, log);
  EXPECT_EQ(textOf(b), "12345\3\3\3\10\10\10\10\10\10\10\10");
}

// 16 bytes repeat by chance once in 2^112.
TEST(Pad, DrawsFreshRandomBytes) {
  std::set<std::string> pads;
  LogNull log;
  for (u32 i = 0; i < 100; ++i) {
    DataBuffer b = bufferOf("x"), full;
    b.padForEncryption(2, 16, log);
    full.padForEncryption(1, 16, log);
    pads.insert(textOf(b).substr(1));
    pads.insert(textOf(full).substr(0, 15));
  }
  EXPECT_EQ(pads.size(), 200u);
}

TEST(Pad, DrawsByteByByteWhereTheGeneratorOrMemoryFails) {
  std::set<std::string> pads;
  LogNull log;
  const u32 before = faults::openDescriptors();
  for (u32 i = 0; i < 8; ++i)
    for (const bool forGood : {false, true}) {
      DataBuffer b = bufferOf("x");
      const faults::FailCall armed(Call::kRandom, 1, forGood, {Fault::kError, ENOSYS});
      EXPECT_EQ(b.padForEncryption(2, 16, log), 15u);
      pads.insert(textOf(b).substr(1));
      DataBuffer copy = bufferOf("old");
      const faults::FailAllocation refused(1, false);
      copy.copyAndPadForEncryption(b, 1, 16, log);
      pads.insert(textOf(copy).substr(16, 15));
    }
  EXPECT_EQ(pads.size(), 32u);
  EXPECT_EQ(faults::openDescriptors(), before);

  const u64 draws = faults::calls(Call::kRandom);
  DataBuffer b = bufferOf("123456789012345");
  EXPECT_EQ(b.padForEncryption(1, 16, log), 1u);
  EXPECT_EQ(b.lastByte(), 1);
  EXPECT_EQ(faults::calls(Call::kRandom), draws) << "a pad of one byte needs no random ones";
}

TEST(Pad, RunsOutOfMemoryAsPromised) {
  LogNull log;
  for (s32 scheme = 0; scheme <= 2; ++scheme) {
    const DataBuffer source = bufferOf("12345");
    const u32 refusals = faults::failEachAllocation([&](u32 k, bool forGood) {
      DataBuffer b = bufferOf("old"), full;
      full.copyData("12345", 5);
      const faults::FailAllocation refused(k, forGood);
      b.copyAndPadForEncryption(source, scheme, 8, log);
      const bool isEmpty = b.getData2() == nullptr && b.size() == 0 && b.getBufSize() == 0;
      EXPECT_TRUE(isEmpty || (b.size() == 8 && b.getBufSize() == 8)) << scheme << " " << k;
      EXPECT_EQ(full.padForEncryption(scheme, 8, log), 3u) << "the length is told all the same";
      EXPECT_TRUE(full.size() == 5 || full.size() == 8);
      return refused.struck();
    });
    EXPECT_GE(refusals, 4u);
  }
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
  LogText log;
  for (u32 last = 0; last < 256; ++last)
    for (const u32 length : {0u, 1u, 2u, 3u, 8u, 15u, 16u, 17u, 40u, 255u, 256u, 257u, 300u})
      for (const u32 run : {0u, 1u, last - 1, last, last + 1, length}) {
        std::string data = randomBytes(length, last + length);
        for (u32 i = 0; i < length; ++i)
          if (i < run) data[length - 1 - i] = static_cast<char>(last);
        for (const s32 block : {-1, 0, 1, 8, 16, 255, 256})
          for (const s32 scheme : kSchemes) {
            DataBuffer b;
            b.borrowData(area.starting(data), length);
            EXPECT_TRUE(b.unpadAfterDecryption(scheme, block, log));
            EXPECT_TRUE(textOf(b) == naiveUnpad(data, scheme, block)) << last << " " << length << " " << run;
            EXPECT_EQ(b.getBufSize(), length);
          }
      }
  EXPECT_STREQ(log.getText(), "");
}

TEST(TlsPadding, IsCheckedByteForByte) {
  const struct {
    std::string data;
    bool result;
    const char* error;
  } kCases[] = {
      {fromHex("00"), true, ""},
      {fromHex("020202"), true, ""},
      {fromHex("05 0101"), true, ""},
      {std::string(256, '\xFF'), true, ""},
      {std::string("x") + std::string(256, '\xFF'), true, ""},
      {"", false, "error: size is 0\n"},
      {fromHex("01 0202"), false, "error: incorrect padding byte value.\n"},
      {fromHex("0203 0303"), false, "error: incorrect padding byte value.\n"},
      {fromHex("0001"), false, "error: incorrect padding byte value.\n"},
      {fromHex("030303"), false, nullptr},
      {fromHex("01"), false, nullptr},
      {std::string(255, '\xFF'), false, nullptr},
  };
  GuardedBytes area(4096);
  for (const auto& c : kCases) {
    DataBuffer b;
    b.borrowData(area.starting(c.data), countOf(c.data));
    LogText log;
    EXPECT_EQ(b.verifyTlsPadding(log), c.result) << c.data.size();
    EXPECT_EQ(log.numErrors(), c.result ? 0u : 1u);
    if (c.error) {
      EXPECT_STREQ(log.getText(), c.error);
    }
    EXPECT_TRUE(textOf(b) == c.data);
  }
  DataBuffer adopted;
  adopted.takeData2(nullptr, 5, 5);
  LogText log;
  EXPECT_FALSE(adopted.verifyTlsPadding(log));
  EXPECT_STREQ(log.getText(), "error: data is null\n");
  EXPECT_TRUE(adopted.unpadAfterDecryption(0, 16, log));
  adopted.dropData();
}

// AES-128-CBC of OpenSSL, with its own padding on or off.
std::string aesCbc(bool encrypts, bool pads, std::string_view in) {
  const std::string key(16, 'k'), iv(16, 'i');
  std::string out(in.size() + 32, '\0');
  int count = 0, last = 0;
  EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
  EVP_CipherInit_ex2(context, EVP_aes_128_cbc(), bytesOf(key), bytesOf(iv), encrypts ? 1 : 0, nullptr);
  EVP_CIPHER_CTX_set_padding(context, pads ? 1 : 0);
  auto* to = reinterpret_cast<u8*>(out.data());
  bool done = EVP_CipherUpdate(context, to, &count, bytesOf(in), static_cast<int>(in.size())) == 1;
  done = done && EVP_CipherFinal_ex(context, to + count, &last) == 1;
  EVP_CIPHER_CTX_free(context);
  return done ? out.substr(0, static_cast<std::size_t>(count + last)) : "(failed)";
}

TEST(Pad, InteroperatesWithOpenSsl) {
  LogNull log;
  for (u32 length = 0; length <= 64; ++length) {
    const std::string data = randomBytes(length, length + 1);
    DataBuffer b = bufferOf(data);
    b.padForEncryption(0, 16, log);
    EXPECT_TRUE(aesCbc(false, true, aesCbc(true, false, textOf(b))) == data) << length;
    DataBuffer c = bufferOf(aesCbc(false, false, aesCbc(true, true, data)));
    EXPECT_TRUE(c.unpadAfterDecryption(0, 16, log));
    EXPECT_TRUE(textOf(c) == data) << length;
  }
}

}  // namespace
