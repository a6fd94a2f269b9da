// Memory that runs out. Not every operation of the library can answer that it did, so the tool notes it at the source.
#pragma once

/// From now on it is noted when an allocation finds no memory. Replaces the program's new-handler.
void watchMemory();
/// True when an allocation found none since `watchMemory`.
bool memoryRanOut();
/// Throws std::bad_alloc when memory ran out since: what was made may lack something, so it is not to be written.
void checkMemory();
