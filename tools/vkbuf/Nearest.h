#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Returns the (at most) three names that are fewest edits away from `typed`, nearest first, as "a, b, c".
std::string nearestNames(std::string_view typed, const std::vector<std::string>& names);
