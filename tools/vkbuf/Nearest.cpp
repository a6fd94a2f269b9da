#include "tools/vkbuf/Nearest.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <utility>

namespace {

bool sameLetter(char a, char b) {
  return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

// Levenshtein's distance, letter case ignored, one row of the table at a time.
std::size_t distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (sameLetter(a[i], b[j]) ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

}  // namespace

std::string nearestNames(std::string_view typed, const std::vector<std::string>& names) {
  std::vector<std::pair<std::size_t, std::string_view>> byDistance;
  byDistance.reserve(names.size());
  for (const auto& name : names) byDistance.emplace_back(distance(typed, name), name);
  std::stable_sort(byDistance.begin(), byDistance.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });

  std::string list;
  for (std::size_t i = 0; i < std::min<std::size_t>(3, byDistance.size()); ++i) {
    if (i != 0) list += ", ";
    list += byDistance[i].second;
  }
  return list;
}
