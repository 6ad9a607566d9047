#pragma once

#include <cstdarg>
#include <cstddef>

namespace wbcore_detail {
// Formats into out (capacity characters with the terminating null) without taking memory;
// false, with out empty, when the text or the converted format does not fit or cannot be
// rendered.
bool FormatInto(wchar_t* out, std::size_t capacity, const wchar_t* format, va_list args) noexcept;
}  // namespace wbcore_detail
