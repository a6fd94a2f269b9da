#pragma once

/// Marks the names that a shared build of the library exports; all others stay hidden.
#define VARNIK_API __attribute__((visibility("default")))
