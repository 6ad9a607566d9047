// The one place where printf-style wide formats are interpreted.
//
// Messages of the suite are written with "%s" meaning a wide string, as in the wide printf
// of other platforms. glibc's vswprintf reads "%s" as a narrow string, so every conversion
// specifier is rewritten before formatting: "%s"/"%c" without a length modifier become
// "%ls"/"%lc", and the explicit narrow forms "%hs"/"%hc" become "%s"/"%c".
#include "WbFormat.h"

#include <cwchar>
#include <vector>

#include "wbcore/WbString.h"

namespace {

// Formats longer than this are converted on the heap only.
constexpr std::size_t kStackFormatCapacity = 1024;

bool IsFlag(wchar_t c) { return c == L'-' || c == L'+' || c == L' ' || c == L'#' || c == L'0' || c == L'\''; }
bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }
bool IsLengthChar(wchar_t c) {
  return c == L'h' || c == L'l' || c == L'L' || c == L'q' || c == L'j' || c == L'z' || c == L't';
}

// Writes the platform form of format through put(c), which returns false when it can take no
// more; returns false then.
template <class Put>
bool ToPlatformFormat(const wchar_t* format, Put put) {
  for (const wchar_t* p = format; *p;) {
    if (*p != L'%') {
      if (!put(*p++)) return false;
      continue;
    }
    if (!put(*p++)) return false;
    if (*p == L'%') {
      if (!put(*p++)) return false;
      continue;
    }
    while (*p && (IsFlag(*p) || IsDigit(*p) || *p == L'.' || *p == L'*' || *p == L'$')) {
      if (!put(*p++)) return false;
    }
    const wchar_t* length = p;
    while (*p && IsLengthChar(*p)) ++p;
    const std::size_t lengthSize = static_cast<std::size_t>(p - length);
    const wchar_t conversion = *p;
    const bool text = (conversion == L's' || conversion == L'c');
    bool ok = true;
    if (text && lengthSize == 0) {
      ok = put(L'l');
    } else if (!(text && lengthSize == 1 && *length == L'h')) {
      for (std::size_t i = 0; ok && i < lengthSize; ++i) ok = put(length[i]);  // "%hs" keeps its narrow meaning
    }
    if (!ok) return false;
    if (!conversion) break;
    if (!put(*p++)) return false;
  }
  return true;
}

}  // namespace

bool wbcore_detail::FormatInto(wchar_t* out, std::size_t capacity, const wchar_t* format, va_list args) noexcept {
  if (capacity == 0) return false;
  out[0] = L'\0';
  if (!format) return true;
  wchar_t platformFormat[kStackFormatCapacity];
  std::size_t used = 0;
  const bool converted = ToPlatformFormat(format, [&](wchar_t c) {
    if (used + 1 >= kStackFormatCapacity) return false;
    platformFormat[used++] = c;
    return true;
  });
  if (!converted) return false;
  platformFormat[used] = L'\0';
  va_list copy;
  va_copy(copy, args);
  const int written = std::vswprintf(out, capacity, platformFormat, copy);
  va_end(copy);
  if (written >= 0 && static_cast<std::size_t>(written) < capacity) return true;
  out[0] = L'\0';
  return false;
}

std::wstring WbFormatV(const wchar_t* format, va_list args) {
  if (!format) return std::wstring();
  std::wstring platformFormat;
  ToPlatformFormat(format, [&](wchar_t c) {
    platformFormat += c;
    return true;
  });
  std::vector<wchar_t> buffer(256);
  for (;;) {
    va_list copy;
    va_copy(copy, args);
    const int written = std::vswprintf(buffer.data(), buffer.size(), platformFormat.c_str(), copy);
    va_end(copy);
    if (written >= 0 && static_cast<std::size_t>(written) < buffer.size()) {
      return std::wstring(buffer.data(), static_cast<std::size_t>(written));
    }
    // vswprintf reports truncation and encoding errors alike with -1; grow up to a sane
    // bound and give up on a format that cannot be rendered.
    if (buffer.size() >= (std::size_t(1) << 24)) return std::wstring();
    buffer.resize(buffer.size() * 4);
  }
}
