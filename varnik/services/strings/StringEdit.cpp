// Removing, rewriting and comparing: the operations of StringBuffer that never grow, and replacement.
#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

#include "varnik/services/memory/Text.h"
#include "varnik/services/strings/StringBuffer.h"
#include "varnik/simd/GatherText.h"

namespace {

using std::string_view;

char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool sameIgnoringCase(string_view a, string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lower(x) == lower(y); });
}

string_view viewOf(const char* text) {
  return text ? string_view(text, vk_strlen(text)) : string_view();
}

string_view viewOf(const StringBuffer& s) {
  return {s.getString(), s.getSize()};
}

}  // namespace

// ---- Removing ----

void StringBuffer::shorten(u32 n) {
  if (data_) setEnd(size_ - std::min(n, size_));
}

void StringBuffer::trim2() {
  if (!data_) return;
  u32 first = 0, end = size_;
  while (first < end && vk_simd::isWhiteSpace(data_[first])) ++first;
  while (end > first && vk_simd::isWhiteSpace(data_[end - 1])) --end;
  std::memmove(data_, data_ + first, end - first);
  setEnd(end - first);
}

void StringBuffer::removeCharOccurances(char c) {
  if (data_) setEnd(static_cast<u32>(std::remove(data_, data_ + size_, c) - data_));
}

// ---- Rewriting ----

void StringBuffer::toLowerCase() {
  std::transform(data_, data_ + size_, data_, lower);
}

bool StringBuffer::replaceAllOccurances(const char* find, const char* with) {
  const string_view pattern = viewOf(find), replacement = viewOf(with), text = viewOf(*this);
  std::size_t at = pattern.empty() ? string_view::npos : text.find(pattern);
  if (at == string_view::npos) return true;
  StringBuffer result;
  result.secure_ = secure_;
  std::size_t from = 0;
  bool done = true;
  const auto add = [&](string_view part) { return result.appendN(part.data(), static_cast<u32>(part.size())); };
  for (; at != string_view::npos; at = text.find(pattern, from)) {
    done &= add(text.substr(from, at - from));
    done &= add(replacement);
    from = at + pattern.size();
  }
  done &= add(text.substr(from));
  if (!done) return false;
  *this = std::move(result);
  return true;
}

void StringBuffer::replaceModBase64Chars() {
  std::replace(data_, data_ + size_, '-', '+');
  std::replace(data_, data_ + size_, '_', '/');
}

// ---- Comparing ----

bool StringBuffer::equals(const char* text) const {
  return viewOf(*this) == viewOf(text);
}

bool StringBuffer::equalsIgnoreCase(const char* text) const {
  return sameIgnoringCase(viewOf(*this), viewOf(text));
}

bool StringBuffer::equalsIgnoreCase2(const char* text, u32 n) const {
  return size_ == n && sameIgnoringCase(viewOf(*this), string_view(text, text ? n : 0));
}

bool StringBuffer::beginsWith(const char* text) const {
  return viewOf(*this).starts_with(viewOf(text));
}

bool StringBuffer::beginsWithIgnoreCase(const char* text) const {
  const string_view prefix = viewOf(text);
  return prefix.size() <= size_ && sameIgnoringCase(viewOf(*this).substr(0, prefix.size()), prefix);
}
