#include "wbcore/WbMem.h"

#include <cstdlib>

void* WbMemAlloc(std::size_t size) { return std::malloc(size); }
void* WbMemCalloc(std::size_t count, std::size_t size) { return std::calloc(count, size); }
void* WbMemRealloc(void* block, std::size_t size) { return std::realloc(block, size); }
void WbMemFree(void* block) { std::free(block); }
