// The buffer and the string beside the standard library: views of their bytes, ranges, and appending from views.
//
// All are free functions and nothing converts by itself: a view is made where its call stands in the code. A view holds
// until what it views changes, as every pointer into a buffer does; a view of a temporary does not compile. With the
// iterators, which `begin` and `end` give by argument-dependent lookup, range-for and the algorithms of `std::ranges`
// take a buffer or a string as it is.
#pragma once

#include <compare>
#include <cstddef>
#include <iterator>
#include <span>
#include <string_view>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/strings/StringBuffer.h"

/// Returns the bytes in use.
inline std::span<u8> vk_span(DataBuffer& b) {
  return {b.getData2(), b.size()};
}
inline std::span<const u8> vk_span(const DataBuffer& b) {
  return {b.getData2(), b.size()};
}
std::span<const u8> vk_span(const DataBuffer&&) = delete;

/// Returns the characters of a string, the bytes in use of a buffer as characters.
inline std::string_view vk_view(const StringBuffer& s) {
  return {s.getString(), s.getSize()};
}
inline std::string_view vk_view(const DataBuffer& b) {
  return {reinterpret_cast<const char*>(b.getData2()), b.size()};
}
std::string_view vk_view(const StringBuffer&&) = delete;
std::string_view vk_view(const DataBuffer&&) = delete;

/// Appends the bytes of a view, which may lie in the buffer's own storage. False, the buffer unchanged, when there are
/// 4 GiB or more of them, when memory runs out, and on a destroyed object.
inline bool vk_append(DataBuffer& b, std::span<const u8> bytes) {
  return !vk64::TooBigForUnsigned32(static_cast<s64>(bytes.size())) &&
         b.append(bytes.data(), static_cast<u32>(bytes.size()));
}
inline bool vk_append(DataBuffer& b, std::span<const std::byte> bytes) {
  return vk_append(b, std::span(reinterpret_cast<const u8*>(bytes.data()), bytes.size()));
}
inline bool vk_append(DataBuffer& b, std::string_view text) {
  return vk_append(b, std::span(reinterpret_cast<const u8*>(text.data()), text.size()));
}
/// Appends the characters of a view to a string; fails as above.
inline bool vk_append(StringBuffer& s, std::string_view text) {
  return !vk64::TooBigForUnsigned32(static_cast<s64>(text.size())) &&
         s.appendN(text.data(), static_cast<u32>(text.size()));
}

/// What `begin` and `end` return: a random-access iterator. It is no plain pointer and does not claim that the bytes
/// lie side by side (they do), because `std::span` takes a range that does without being asked: an implicit conversion.
/// Where the contiguous bytes are wanted, `vk_span` and `vk_view` give them.
template <class T>
class VkByteIterator {
 public:
  /// What an iterator names.
  using iterator_concept = std::random_access_iterator_tag;
  using iterator_category = std::random_access_iterator_tag;
  using value_type = std::remove_const_t<T>;
  using difference_type = std::ptrdiff_t;
  using pointer = T*;
  using reference = T&;

  VkByteIterator() = default;

  /// An iterator at a byte.
  explicit VkByteIterator(T* at) : at_(at) {}

  /// As for a pointer.
  T& operator*() const { return *at_; }
  T* operator->() const { return at_; }
  T& operator[](difference_type n) const { return at_[n]; }

  /// As for a pointer.
  VkByteIterator& operator+=(difference_type n) {
    at_ += n;
    return *this;
  }
  VkByteIterator& operator-=(difference_type n) { return *this += -n; }
  VkByteIterator& operator++() { return *this += 1; }
  VkByteIterator& operator--() { return *this -= 1; }
  VkByteIterator operator++(int) { return VkByteIterator(at_++); }
  VkByteIterator operator--(int) { return VkByteIterator(at_--); }

  friend VkByteIterator operator+(VkByteIterator i, difference_type n) { return i += n; }
  friend VkByteIterator operator+(difference_type n, VkByteIterator i) { return i += n; }
  friend VkByteIterator operator-(VkByteIterator i, difference_type n) { return i -= n; }
  friend difference_type operator-(VkByteIterator a, VkByteIterator b) { return a.at_ - b.at_; }
  friend bool operator==(VkByteIterator a, VkByteIterator b) { return a.at_ == b.at_; }
  friend std::strong_ordering operator<=>(VkByteIterator a, VkByteIterator b) { return a.at_ <=> b.at_; }

 private:
  T* at_ = nullptr;
};

/// The bytes in use of a buffer, the characters of a string, as a range.
inline VkByteIterator<u8> begin(DataBuffer& b) {
  return VkByteIterator<u8>(b.getData2());
}
inline VkByteIterator<u8> end(DataBuffer& b) {
  return begin(b) + b.size();
}
inline VkByteIterator<const u8> begin(const DataBuffer& b) {
  return VkByteIterator<const u8>(b.getData2());
}
inline VkByteIterator<const u8> end(const DataBuffer& b) {
  return begin(b) + b.size();
}
inline VkByteIterator<const char> begin(const StringBuffer& s) {
  return VkByteIterator<const char>(s.getString());
}
inline VkByteIterator<const char> end(const StringBuffer& s) {
  return begin(s) + s.getSize();
}
