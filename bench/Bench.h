// What the benchmarks share. A case is named operation/count/peer, "varnik" being ours: scripts/bench compares the
// peers of one operation and count.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace bench {

/// `n` random bytes, the same in every run.
inline std::vector<std::uint8_t> randomBytes(std::size_t n) {
  std::mt19937 next(1);
  std::vector<std::uint8_t> bytes(n);
  for (auto& b : bytes) b = static_cast<std::uint8_t>(next());
  return bytes;
}

/// Adds a case that runs `work` over and over and counts `n` bytes for each run. What `work` returns is kept alive for
/// the optimiser.
template <class Work>
void add(const std::string& operation, std::size_t n, const std::string& peer, Work work) {
  const std::string name = operation + "/" + std::to_string(n) + "/" + peer;
  benchmark::RegisterBenchmark(name.c_str(), [work, n](benchmark::State& state) mutable {
    for (auto _ : state) {
      auto&& result = work();
      benchmark::DoNotOptimize(result);
      benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * n));
  });
}

/// Runs what was added, by the command line's options.
inline int run(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}

}  // namespace bench
