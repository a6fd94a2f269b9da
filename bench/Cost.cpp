// How the cost of an operation grows: its time for n bytes, 2n, 4n and so on. Where a row stays level the cost is
// linear.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>

#include "bench/Bench.h"
#include "varnik/buffer/DataBuffer.h"
#include "varnik/buffer/DataBufferView.h"
#include "varnik/services/charset/EncodingConvert.h"
#include "varnik/services/strings/StringBuffer.h"

namespace {

struct Family {
  const char* name;
  u32 first, last;  // bytes; each count is twice the one before it
  std::function<std::function<void()>(u32 n)> prepare;
};

using Bytes = std::vector<std::uint8_t>;

std::function<void()> encoding(const char* name, u32 n) {
  return [=, bytes = bench::randomBytes(n)] {
    StringBuffer text;
    DataBuffer::encodeDB2(name, bytes.data(), n, text);
  };
}

std::function<void()> decoding(const char* name, u32 n) {
  StringBuffer text;
  DataBuffer::encodeDB2(name, bench::randomBytes(n).data(), n, text);
  return [=] {
    DataBuffer bytes;
    bytes.appendEncoded(text.getString(), name);
  };
}

std::function<void()> onText(u32 n, void (*operation)(DataBuffer&)) {
  DataBuffer bytes;
  for (u32 i = 0; bytes.size() < n; ++i) bytes.appendStr(i % 16 == 0 ? "a mark\r\n" : "of text ");
  return [=] {
    DataBuffer work(bytes);
    operation(work);
  };
}

std::function<void()> filling(u32 n, u32 piece) {
  return [=, bytes = bench::randomBytes(piece)] {
    DataBuffer out;
    for (u32 i = 0; i < n; i += piece) out.append(bytes.data(), piece);
  };
}

std::function<void()> fillingByByte(u32 n) {
  return [=] {
    DataBuffer out;
    for (u32 i = 0; i < n; ++i) out.appendChar(static_cast<u8>(i));
  };
}

void replaceMarks(DataBuffer& b) {
  const auto* const from = reinterpret_cast<const u8*>("mark");
  const auto* const to = reinterpret_cast<const u8*>("longer mark");
  b.replaceAllOccurances(from, 4, to, 11);
}

void toUtf16(DataBuffer& b) {
  DataBuffer out;
  LogNull log;
  _vkEncodingConvert().EncConvert(65001, 1200, b.getData2(), b.size(), out, log);
}

constexpr u32 kMiB = 1 << 20, kMost = 64 * kMiB;

const Family kFamilies[] = {
    {"hex encode", kMiB, kMost, [](u32 n) { return encoding("hex", n); }},
    {"hex decode", kMiB, kMost, [](u32 n) { return decoding("hex", n); }},
    {"base64 encode", kMiB, kMost, [](u32 n) { return encoding("base64", n); }},
    {"base64 decode", kMiB, kMost, [](u32 n) { return decoding("base64", n); }},
    {"base32 encode", kMiB, kMost, [](u32 n) { return encoding("base32", n); }},
    {"quoted-printable encode", kMiB, kMost, [](u32 n) { return encoding("qp", n); }},
    {"quoted-printable decode", kMiB, kMost, [](u32 n) { return decoding("qp", n); }},
    {"percent encode", kMiB, kMost, [](u32 n) { return encoding("url", n); }},
    {"UTF-8 to UTF-16", kMiB, kMost, [](u32 n) { return onText(n, toUtf16); }},
    {"replace", kMiB, kMost, [](u32 n) { return onText(n, replaceMarks); }},
    {"remove a byte", kMiB, kMost, [](u32 n) { return onText(n, [](DataBuffer& b) { b.removeByteValue('t'); }); }},
    {"reverse", kMiB, kMost, [](u32 n) { return onText(n, [](DataBuffer& b) { b.reverseBytes(); }); }},
    {"append by 4 KiB", kMiB, kMost, [](u32 n) { return filling(n, 4096); }},
    {"append by 16 bytes", kMiB, kMost, [](u32 n) { return filling(n, 16); }},
    {"append by one byte", kMiB / 4, 16 * kMiB, fillingByByte},
    {"base58 encode", 1 << 10, 64 << 10, [](u32 n) { return encoding("base58", n); }},
    {"decimal encode", 1 << 10, 64 << 10, [](u32 n) { return encoding("decimal", n); }},
};

double nanoseconds(const std::function<void()>& work) {
  using Clock = std::chrono::steady_clock;
  constexpr int kRuns = 3;  // the least of them: what disturbs a run makes it longer
  double best = 1e18;
  for (int run = 0; run < kRuns; ++run) {
    const auto start = Clock::now();
    work();
    best = std::min(best, std::chrono::duration<double, std::nano>(Clock::now() - start).count());
  }
  return best;
}

}  // namespace

int main() {
  std::printf("Time for n bytes, 2n, 4n, ...: milliseconds, and in brackets the ratio to the time for half as many\n");
  for (const Family& family : kFamilies) {
    std::printf("%-24s n = %5u KiB:", family.name, family.first >> 10);
    double before = 0;
    for (u32 n = family.first; n <= family.last; n *= 2) {
      const double time = nanoseconds(family.prepare(n));
      std::printf(" %.3g", time / 1e6);
      if (before > 0) std::printf(" (%.1f)", time / before);
      before = time;
      std::fflush(stdout);
    }
    std::printf("\n");
  }
}
