#pragma once

#include <cstddef>

#include "wbcore/WbExport.h"

// Raw memory of the suite. Every block from these functions is released with WbMemFree;
// a request that cannot be met returns null, never throws.
WBCORE_API void* WbMemAlloc(std::size_t size);
WBCORE_API void* WbMemCalloc(std::size_t count, std::size_t size);
WBCORE_API void* WbMemRealloc(void* block, std::size_t size);
WBCORE_API void WbMemFree(void* block);
