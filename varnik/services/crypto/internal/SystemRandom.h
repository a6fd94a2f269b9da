#pragma once

#include <cstddef>

/// Fills `n` bytes from the operating system's generator; no state is kept in the process. False when it fails, with
/// errno telling why: the bytes are undefined then.
bool vk_fillRandom(void* to, std::size_t n);
