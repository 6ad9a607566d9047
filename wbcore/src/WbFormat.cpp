// The one place where printf-style wide formats are interpreted.
//
// Messages of the suite are written with "%s" meaning a wide string, as in the wide printf
// of other platforms. glibc's vswprintf reads "%s" as a narrow string, so every conversion
// specifier is rewritten before formatting: "%s"/"%c" without a length modifier become
// "%ls"/"%lc", and the explicit narrow forms "%hs"/"%hc" become "%s"/"%c".
#include <cwchar>
#include <vector>

#include "wbcore/WbString.h"

namespace {

bool IsFlag(wchar_t c) { return c == L'-' || c == L'+' || c == L' ' || c == L'#' || c == L'0' || c == L'\''; }
bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }
bool IsLengthChar(wchar_t c) {
  return c == L'h' || c == L'l' || c == L'L' || c == L'q' || c == L'j' || c == L'z' || c == L't';
}

std::wstring ToPlatformFormat(const wchar_t* format) {
  std::wstring out;
  for (const wchar_t* p = format; *p;) {
    if (*p != L'%') {
      out += *p++;
      continue;
    }
    out += *p++;
    if (*p == L'%') {
      out += *p++;
      continue;
    }
    while (*p && (IsFlag(*p) || IsDigit(*p) || *p == L'.' || *p == L'*' || *p == L'$')) out += *p++;
    std::wstring length;
    while (*p && IsLengthChar(*p)) length += *p++;
    if (!*p) {
      out += length;
      break;
    }
    const wchar_t conversion = *p++;
    const bool text = (conversion == L's' || conversion == L'c');
    if (text && length.empty()) {
      out += L'l';
    } else if (!(text && length == L"h")) {
      out += length;  // "%hs" keeps its narrow meaning: the modifier is dropped
    }
    out += conversion;
  }
  return out;
}

}  // namespace

std::wstring WbFormatV(const wchar_t* format, va_list args) {
  if (!format) return std::wstring();
  const std::wstring platformFormat = ToPlatformFormat(format);
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
