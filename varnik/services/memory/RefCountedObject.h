#pragma once

#include <atomic>

#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

/// The base of objects that several owners share. A new object has one reference; the last owner's `decRefCount`
/// deletes it, so an object that is shared must come from `new`. Counting is safe from any thread. Not copyable.
class VARNIK_API RefCountedObject {
 public:
  RefCountedObject() = default;
  RefCountedObject(const RefCountedObject&) = delete;
  RefCountedObject& operator=(const RefCountedObject&) = delete;
  virtual ~RefCountedObject();

  /// Adds an owner.
  void incRefCount() { count_.fetch_add(1, std::memory_order_relaxed); }
  /// Removes an owner, and deletes the object when it was the last.
  void decRefCount();
  /// Returns the number of owners.
  u32 getRefCount() const { return count_.load(std::memory_order_relaxed); }

 private:
  std::atomic<u32> count_{1};
};
