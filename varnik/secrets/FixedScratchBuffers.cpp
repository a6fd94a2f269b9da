#include "varnik/secrets/FixedScratchBuffers.h"

#include "varnik/services/memory/Memory.h"

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the areas are filled below
FixedScratchBuffers::FixedScratchBuffers() : count(0) {
  vk_memset(firstArea, 0, sizeof firstArea);
  vk_memset(secondArea, 0, sizeof secondArea);
}

// The object's lifetime ends here, so that a compiler may drop a plain store.
FixedScratchBuffers::~FixedScratchBuffers() {
  const_cast<volatile u32&>(count) = 0;
}
