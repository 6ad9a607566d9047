// ZmUnitSystem: values with their unit symbol as text, written and read back.
#include <charconv>
#include <cwctype>
#include <exception>
#include <string>
#include <system_error>

#include "foundation/build_info.h"
#include "foundation/out_of_memory.h"
#include "units/units_internal.h"
#include "zemcalc/ZmUnitManager.h"

ZM_BUILD_INFO(unit_value_text)

namespace {

constexpr const wchar_t* kBlanks = L" \t\r\n";

bool IsBlank(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\r' || c == L'\n'; }
bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

std::size_t SkipBlanks(const std::wstring& s, std::size_t i) {
  while (i < s.size() && IsBlank(s[i])) ++i;
  return i;
}

std::size_t SkipDigits(const std::wstring& s, std::size_t i) {
  while (i < s.size() && IsDigit(s[i])) ++i;
  return i;
}

// Length of the word at i when it equals word ignoring case, else 0.
std::size_t MatchWord(const std::wstring& s, std::size_t i, const wchar_t* word) {
  std::size_t n = 0;
  for (; word[n]; ++n) {
    if (i + n >= s.size() || std::towlower(static_cast<wint_t>(s[i + n])) != static_cast<wint_t>(word[n])) return 0;
  }
  return n;
}

// End of the number that starts at i (see the grammar in ZmUnitSystem.h), or i when there
// is none. An exponent marker without digits is not part of the number.
std::size_t ScanNumber(const std::wstring& s, std::size_t i) {
  const std::size_t start = i;
  if (i < s.size() && (s[i] == L'+' || s[i] == L'-')) ++i;
  for (const wchar_t* word : {L"infinity", L"inf", L"nan"}) {
    if (const std::size_t n = MatchWord(s, i, word)) return i + n;
  }
  const std::size_t intEnd = SkipDigits(s, i);
  std::size_t end = intEnd;
  std::size_t digits = intEnd - i;
  if (end < s.size() && s[end] == L'.') {
    const std::size_t fracEnd = SkipDigits(s, end + 1);
    digits += fracEnd - end - 1;
    end = fracEnd;
  }
  if (digits == 0) return start;
  if (end < s.size() && (s[end] == L'e' || s[end] == L'E')) {
    std::size_t e = end + 1;
    if (e < s.size() && (s[e] == L'+' || s[e] == L'-')) ++e;
    const std::size_t expEnd = SkipDigits(s, e);
    if (expEnd > e) end = expEnd;
  }
  return end;
}

// The number s[begin, end) in the precision T, rounded once from the decimal text. Fails
// when it does not fit T.
template <class T>
bool ToNumber(const std::wstring& s, std::size_t begin, std::size_t end, T& value) {
  if (s[begin] == L'+') ++begin;
  char narrow[64];
  if (end - begin >= sizeof(narrow)) {
    // More digits than any value needs; still read them, through a longer buffer.
    std::string longText(s.begin() + static_cast<std::ptrdiff_t>(begin), s.begin() + static_cast<std::ptrdiff_t>(end));
    const std::from_chars_result r = std::from_chars(longText.data(), longText.data() + longText.size(), value);
    return r.ec == std::errc() && r.ptr == longText.data() + longText.size();
  }
  for (std::size_t i = begin; i < end; ++i) narrow[i - begin] = static_cast<char>(s[i]);  // ASCII only
  const std::size_t length = end - begin;
  const std::from_chars_result r = std::from_chars(narrow, narrow + length, value);
  return r.ec == std::errc() && r.ptr == narrow + length;
}

// Reads "number (blanks symbol)?" or, when list is set, "number (; number)* (blanks symbol)?"
// with blanks around; the numbers are appended to numbers, the symbol (possibly empty)
// stored in symbol.
template <class T>
bool ParseValues(const WbString& text, bool list, WbArrayTempl<T>& numbers, WbString& symbol) {
  const std::wstring& s = text.Std();
  std::size_t i = SkipBlanks(s, 0);
  for (;;) {
    const std::size_t end = ScanNumber(s, i);
    T value = 0;
    if (end == i || !ToNumber(s, i, end, value)) return false;
    numbers.Add(value);
    const std::size_t next = SkipBlanks(s, end);
    if (next == s.size()) return true;
    if (list && s[next] == L';') {
      i = SkipBlanks(s, next + 1);
      continue;
    }
    if (next == end) return false;  // the symbol must be separated from the number
    symbol = WbString(s.substr(next));
    symbol.TrimRight(kBlanks);
    return true;
  }
}

// Converts numbers written in symbol's system into target. The symbol that target itself
// writes for dim needs no search; no symbol means the numbers are in target already.
template <class T>
bool ConvertFromSymbol(const ZmUnitSystem& target, const ZmUnitDim& dim, const WbString& symbol,
                       WbArrayTempl<T>& numbers) {
  ZmUnitSystem source = target;
  if (!symbol.IsEmpty() && symbol != dim.GetShortName(target, 1.0f, 1) && dim.GetSystemFromShortName(symbol, source)) {
    return false;
  }
  ZmUnitConverter converter;
  unsigned char needed = 0;
  if (converter.InitFromTo(source, target, needed, &dim)) return false;
  const T invalid = zm::Invalid<T>();
  for (T& value : numbers) {
    if (value == invalid) return false;  // the "no value" marker is not a value
    converter.ConvertScalar(dim, value);
    if (value == invalid) return false;
  }
  return true;
}

template <class T>
unsigned char ReadValue(const ZmUnitSystem& target, const WbString& text, const ZmUnitDim& dim, T& value) {
  value = zm::Invalid<T>();
  WbArrayTempl<T> numbers;
  WbString symbol;
  if (!ParseValues(text, false, numbers, symbol) || !ConvertFromSymbol(target, dim, symbol, numbers)) return 0;
  value = numbers[0];
  return 1;
}

}  // namespace

unsigned char ZmUnitSystem::FormatDimensionalValue(float value, const ZmUnitDim& dim, WbString& text) const try {
  const zm::BoundaryCall boundary;
  text.Empty();
  if (value == zm::kInvalid) return 0;
  text.FormatFloat(value, 16);
  if (!dim.IsNeutral()) text += WbString(L" ") + dim.GetShortName(*this, 1.0f, 1);
  return text.IsEmpty() ? 0 : 1;
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  text.Empty();
  return 0;
}

unsigned char ZmUnitSystem::FormatDimensionalValues(const WbArrayTempl<float>& values, const ZmUnitDim& dim,
                                                    WbString& text) const try {
  const zm::BoundaryCall boundary;
  text.Empty();
  WbString number;
  for (const float value : values) {
    if (value == zm::kInvalid) {
      text.Empty();
      return 0;
    }
    number.FormatFloat(value, 16);
    if (!text.IsEmpty()) text += L"; ";
    text += number;
  }
  if (!text.IsEmpty() && !dim.IsNeutral()) text += WbString(L" ") + dim.GetShortName(*this, 1.0f, 1);
  return text.IsEmpty() ? 0 : 1;
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  text.Empty();
  return 0;
}

unsigned char ZmUnitSystem::String2DimensionalValue(const WbString& text, const ZmUnitDim& dim, float& value) const
    try {
  const zm::BoundaryCall boundary;
  return ReadValue(*this, text, dim, value);
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  value = zm::kInvalid;
  return 0;
}

unsigned char ZmUnitSystem::String2DimensionalValue(const WbString& text, const ZmUnitDim& dim, double& value) const
    try {
  const zm::BoundaryCall boundary;
  return ReadValue(*this, text, dim, value);
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  value = zm::Invalid<double>();
  return 0;
}

unsigned char ZmUnitSystem::String2DimensionalValues(const WbString& text, const ZmUnitDim& dim,
                                                     WbArrayTempl<float>& values) const try {
  const zm::BoundaryCall boundary;
  values.RemoveAll();
  WbArrayTempl<float> numbers;
  WbString symbol;
  if (!ParseValues(text, true, numbers, symbol) || !ConvertFromSymbol(*this, dim, symbol, numbers)) return 0;
  values = numbers;
  return 1;
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  values.RemoveAll();
  return 0;
}
