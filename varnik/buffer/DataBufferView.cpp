#include "varnik/buffer/DataBufferView.h"

#include "varnik/services/logging/LogBase.h"
#include "varnik/simd/ReplaceByte.h"

namespace {

// How many dead bytes a buffer of `size` bytes may hold before they are dropped.
u32 deadBytesKept(u32 size) {
  if (size > 2'000'000) return 1'990'000;
  if (size > 200'000) return 199'000;
  return size > 20'000 ? 19'900 : size;
}

}  // namespace

DataBufferView::~DataBufferView() {
  CritSecExitor lock(*this);
}

bool DataBufferView::append(const void* data, u32 n) {
  if (!data || n == 0) return true;
  CritSecExitor lock(*this);
  return buffer_.append(data, n);
}

bool DataBufferView::append(const DataBuffer& bytes) {
  CritSecExitor lock(*this);
  return buffer_.append(bytes);
}

u8* DataBufferView::getViewData() {
  CritSecExitor lock(*this);
  return buffer_.getDataAt2(offset_);
}

u32 DataBufferView::getViewSize() {
  CritSecExitor lock(*this);
  return contentSize();
}

bool DataBufferView::takeBytes(u32 n, DataBuffer& out) {
  CritSecExitor lock(*this);
  const u8* content = buffer_.getDataAt2(offset_);
  if (!content || n > contentSize() || !out.append(content, n)) return false;
  advance(n);
  return true;
}

bool DataBufferView::takeBytes(u32 n, u8* out) {
  CritSecExitor lock(*this);
  const u8* content = buffer_.getDataAt2(offset_);
  if (!content || n > contentSize() || !out) return false;
  vk_memcpy(out, content, n);
  advance(n);
  return true;
}

bool DataBufferView::consume(u32 n) {
  CritSecExitor lock(*this);
  advance(n);
  return true;
}

bool DataBufferView::compact() {
  CritSecExitor lock(*this);
  advance(0);
  return true;
}

// Moves the offset past `n` content bytes, then drops the dead bytes if they are many enough. REQUIRES: the lock.
void DataBufferView::advance(u32 n) {
  if (n >= contentSize()) return reset();
  offset_ += n;
  if (offset_ <= deadBytesKept(buffer_.size())) return;
  LogNull log;
  buffer_.slideTailToFront(contentSize(), log);
  offset_ = 0;
}

void DataBufferView::clear() {
  CritSecExitor lock(*this);
  reset();
}

void DataBufferView::reset() {
  buffer_.clear();
  offset_ = 0;
}

void DataBufferView::takeView(DataBufferView& source) {
  if (&source == this) return;
  CritSecExitor lock(*this);
  offset_ = source.offset_;
  buffer_.takeData(source.buffer_);
  source.offset_ = 0;
}

void DataBufferView::replaceChar(char from, char to) {
  CritSecExitor lock(*this);
  u8* content = buffer_.getDataAt2(offset_);
  if (content) vk_simd::replaceByte(content, contentSize(), static_cast<u8>(from), static_cast<u8>(to));
}

void DataBufferView::logViewData(const char* tag, bool asHex, LogBase& log) {
  CritSecExitor lock(*this);
  const u8* content = buffer_.getDataAt2(offset_);
  if (!content) {
    log.LogDataStr(tag, "Databuffer view is empty.");
  } else if (asHex) {
    log.LogDataHex(tag, content, contentSize());
  } else {
    log.LogTextN(tag, reinterpret_cast<const char*>(content), contentSize());
  }
}

bool DataBuffer::appendView(DataBufferView& view) {
  const u32 n = view.getViewSize();
  return n == 0 || append(view.getViewData(), n);
}
