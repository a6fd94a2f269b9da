// What most tests need: GoogleTest, the library, and everything that the tests share.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/Allocations.h"
#include "tests/support/Bytes.h"
#include "tests/support/GuardedBytes.h"
#include "tests/support/Soak.h"
#include "tests/support/SystemCalls.h"
#include "tests/support/TempFolder.h"

/// Runs `body` in a process of its own, and returns what it returns; 255 where it does not end by itself.
template <class Body>
int inChild(Body body) {
  const pid_t child = fork();
  if (child == 0) _exit(body());
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 255;
}

/// Runs `body` in so many threads at once.
template <class Body>
void together(u32 numThreads, Body body) {
  std::vector<std::jthread> threads;
  while (threads.size() < numThreads) threads.emplace_back(body);
}

using faults::Call, faults::Fault, faults::seenAtRelease;
using namespace std::literals;
