#pragma once

#include <cstdarg>
#include <cstdint>
#include <string>
#include <type_traits>

#include "wbcore/WbExport.h"

template <class T>
class WbObjectArrayTempl;
class WbString;

// The printf-style functions of the base library are variadic templates that pass each argument
// through FormatArg before the C variadic call: a WbString travels as its text, because a class
// with a destructor cannot pass through "..." as a pointer (the Itanium ABI hands over a hidden
// reference to a copy). Anything else that is not trivially copyable is rejected at compile time.
namespace wbcore_detail {
template <class A>
constexpr const A& FormatArg(const A& value) {
  static_assert(std::is_trivially_copyable<A>::value, "format arguments are numbers, pointers or WbString");
  return value;
}
inline const wchar_t* FormatArg(const WbString& text);
}  // namespace wbcore_detail

// A wide-character string with value semantics.
//
// Formatting follows the wide-format convention on every platform: in a format string
// "%s" takes a wide string (a const wchar_t* or a WbString) and "%c" a wide
// character; "%hs" and "%hc" take narrow ones; a format that cannot be rendered gives the
// empty text. Like std::wstring, whose text it holds, a WbString reports a lack of memory
// with std::bad_alloc (formatting included); the error record (WbSetError) never does.
class WBCORE_API WbString {
public:
  WbString() = default;
  WbString(const wchar_t* text);  // null gives the empty string
  WbString(const wchar_t* text, std::uint64_t count);
  WbString(const std::wstring& text);

  std::uint64_t GetLength() const { return m_text.size(); }
  unsigned char IsEmpty() const { return m_text.empty() ? 1 : 0; }
  void Empty() { m_text.clear(); }
  const wchar_t* GetString() const { return m_text.c_str(); }
  operator const wchar_t*() const { return m_text.c_str(); }
  const std::wstring& Std() const { return m_text; }
  wchar_t GetAt(std::uint64_t i) const { return m_text[i]; }

  WbString& operator=(const wchar_t* text);
  WbString& operator+=(const WbString& other);
  WbString& operator+=(const wchar_t* text);
  WbString& operator+=(wchar_t c);
  friend WBCORE_API WbString operator+(const WbString& a, const WbString& b);

  friend bool operator==(const WbString& a, const WbString& b) { return a.m_text == b.m_text; }
  friend bool operator!=(const WbString& a, const WbString& b) { return a.m_text != b.m_text; }
  friend WBCORE_API bool operator==(const WbString& a, const wchar_t* b);
  friend bool operator!=(const WbString& a, const wchar_t* b) { return !(a == b); }
  friend bool operator==(const wchar_t* a, const WbString& b) { return b == a; }
  friend bool operator!=(const wchar_t* a, const WbString& b) { return !(b == a); }
  friend bool operator<(const WbString& a, const WbString& b) { return a.m_text < b.m_text; }

  // -1/0/1 comparisons; the NoCase form folds with towlower.
  int Compare(const wchar_t* other) const;
  int CompareNoCase(const wchar_t* other) const;

  // printf-style formatting into this string (wide-format convention, see above; the bounds
  // and the result of a refused format are those of WbFormatV below).
  template <class... Args>
  void Format(const wchar_t* format, const Args&... args) {
    FormatVarArgs(format, wbcore_detail::FormatArg(args)...);
  }
  void FormatV(const wchar_t* format, va_list args);
  template <class... Args>
  static WbString Formatted(const wchar_t* format, const Args&... args) {
    WbString text;
    text.FormatVarArgs(format, wbcore_detail::FormatArg(args)...);
    return text;
  }

  // Shortest general notation of a value with at most `precision` significant digits
  // ("%.*g"): 0.1 with precision 16 gives "0.1", 1e32 gives "1e+32".
  void FormatFloat(double value, int precision = 16);

  // Trimming removes the given characters (white space by default) from one or both ends.
  WbString& TrimLeft(const wchar_t* chars = L" \t\r\n");
  WbString& TrimRight(const wchar_t* chars = L" \t\r\n");
  WbString& Trim(const wchar_t* chars = L" \t\r\n");

  WbString Left(std::uint64_t count) const;
  WbString Mid(std::uint64_t first, std::uint64_t count = UINT64_MAX) const;
  // Index of the first occurrence, or -1.
  std::int64_t Find(const wchar_t* what, std::uint64_t from = 0) const;
  std::int64_t Find(wchar_t c, std::uint64_t from = 0) const;
  WbString& MakeUpper();
  WbString& MakeLower();

  // Splits at any of the separator characters. Runs of separators give no empty words
  // unless keepEmpty is set. Returns the number of words appended.
  std::uint64_t SplitWords(WbObjectArrayTempl<WbString>& words, const wchar_t* separators = L" \t",
                           unsigned char keepEmpty = 0) const;

private:
  void FormatVarArgs(const wchar_t* format, ...);

  std::wstring m_text;
};

inline const wchar_t* wbcore_detail::FormatArg(const WbString& text) { return text.GetString(); }

// vswprintf with the wide-format convention on every platform; returns the formatted text.
// The work is bounded before anything is rendered. A format is refused, and the result is the
// format text itself, unformatted, when: a field width, or the precision of a number,
// exceeds 65536 (digits or '*'; a string's precision only cuts it short and is not limited); the result could exceed 2^24 characters (estimated from the widths, the lengths of
// the string arguments and 8192 characters per number); a conversion is not one of
// d i o u x X e E f F g G a A c s p n (with their length modifiers); or '*' is used together
// with positional ("%1$d") arguments. A format that vswprintf cannot render (a narrow string
// that is not valid in the current locale, say) gives the format text too. A null format
// gives the empty string. Each call renders at most once (positional formats, whose strings
// are not measured beforehand, may retry with larger buffers up to 2^24 characters).
WBCORE_API std::wstring WbFormatV(const wchar_t* format, va_list args);
