#pragma once

#include <mutex>

#include "varnik/services/memory/Api.h"

/// A re-entrant lock: the thread that holds it may enter again and must leave as often. Not copyable.
class VARNIK_API VarnikCritSec {
 public:
  VarnikCritSec() = default;
  VarnikCritSec(const VarnikCritSec&) = delete;
  VarnikCritSec& operator=(const VarnikCritSec&) = delete;
  virtual ~VarnikCritSec();

  /// Waits until no other thread holds the lock, then holds it.
  void enterCriticalSection() { mutex_.lock(); }
  /// REQUIRES: the calling thread holds the lock.
  void leaveCriticalSection() { mutex_.unlock(); }

 private:
  std::recursive_mutex mutex_;
};

/// Holds a lock for as long as the object lives.
class CritSecExitor {
 public:
  explicit CritSecExitor(VarnikCritSec& lock) : lock_(lock) { lock_.enterCriticalSection(); }
  ~CritSecExitor() { lock_.leaveCriticalSection(); }
  CritSecExitor(const CritSecExitor&) = delete;
  CritSecExitor& operator=(const CritSecExitor&) = delete;

 private:
  VarnikCritSec& lock_;
};
