#include "varnik/services/memory/Psdk.h"

#include <atomic>

namespace {
std::atomic<u32> reports{0};
}

void Psdk::badObjectFound(char*) {
  reports.fetch_add(1, std::memory_order_relaxed);
}
void Psdk::corruptObjectFound(char*) {
  reports.fetch_add(1, std::memory_order_relaxed);
}
u32 Psdk::numReports() {
  return reports.load(std::memory_order_relaxed);
}
