#pragma once

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/memory/VarnikCritSec.h"

class LogBase;

/// A byte queue that threads share: producers append at the end, a consumer reads at the front and consumes what it
/// read.
///
/// Consuming moves an offset; the dead bytes before it are dropped together once they are many enough, or when all is
/// consumed. Every operation on the content holds the view's lock, which is re-entrant, for its whole duration.
/// Not copyable.
class VARNIK_API DataBufferView : public VarnikCritSec {
 public:
  DataBufferView() = default;
  /// Waits for an operation in progress on another thread to finish first.
  ~DataBufferView() override;

  /// Appends bytes at the end. A null pointer or an `n` of 0 is true. False, unchanged, when the buffer cannot grow.
  bool append(const void* data, u32 n);
  bool append(const DataBuffer& bytes);
  /// Returns the first content byte, null when there is none. The pointer holds until the view changes: the caller
  /// keeps other threads away meanwhile, or uses `takeBytes`.
  u8* getViewData();
  /// Returns the count of content bytes.
  u32 getViewSize();
  /// Moves the first `n` content bytes to the end of `out`, to `n` bytes at `out`. False, nothing consumed, when there
  /// are fewer or none, or `out` cannot take them.
  bool takeBytes(u32 n, DataBuffer& out);
  bool takeBytes(u32 n, u8* out);
  /// Consumes the first `n` content bytes, all when there are fewer. Always true.
  bool consume(u32 n);
  /// Drops the dead bytes when they are many enough: above 19,900 of a buffer that holds more than 20,000 bytes,
  /// 199,000 of 200,000, 1,990,000 of 2,000,000. The block is kept. Always true.
  bool compact();
  /// Empties the view.
  void clear();
  /// Takes the content of `source`, which no other thread may use meanwhile; its dead bytes come along.
  void takeView(DataBufferView& source);
  /// Turns every content byte `from` into `to`; dead bytes are not touched.
  void replaceChar(char from, char to);
  /// Returns the bytes of heap memory held, read without the lock.
  u32 heapUsage() const { return buffer_.heapUsage(); }
  /// Logs the content under a tag, as hex or as text; an empty view is logged as the text "Databuffer view is empty.".
  void logViewData(const char* tag, bool asHex, LogBase& log);

 private:
  u32 contentSize() const { return buffer_.size() - offset_; }
  void advance(u32 n);
  void reset();

  DataBuffer buffer_;  // the dead bytes, then the content
  u32 offset_ = 0;     // how many bytes are dead; never above buffer_.size()
};
