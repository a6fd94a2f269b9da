#include "tools/vkbuf/Memory.h"

#include <atomic>
#include <new>

namespace {

std::atomic<bool> ranOut = false;

// The forms of `new` that answer null come here too; they take the exception for themselves.
void noteAndRefuse() {
  ranOut = true;
  throw std::bad_alloc();
}

}  // namespace

void watchMemory() {
  ranOut = false;
  std::set_new_handler(noteAndRefuse);
}

bool memoryRanOut() {
  return ranOut;
}

void checkMemory() {
  if (ranOut) throw std::bad_alloc();
}
