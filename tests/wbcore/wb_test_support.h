// What the base-library suites share: readable failure messages for wide strings, and arrays
// seen as standard vectors or joined words.
#pragma once

#include <gtest/gtest.h>
#include <wbcore/WbArray.h>
#include <wbcore/WbString.h>

#include <ostream>
#include <string>
#include <vector>

inline void PrintTo(const WbString& text, std::ostream* os) { *os << ::testing::PrintToString(text.Std()); }

template <class T>
std::vector<T> Items(const WbArrayTempl<T>& array) {
  return std::vector<T>(array.begin(), array.end());
}

// "<a><b>" for the words a and b: empty words stay visible.
inline std::wstring Join(const WbObjectArrayTempl<WbString>& words) {
  std::wstring joined;
  for (std::uint64_t i = 0; i < words.GetSize(); ++i) joined += L"<" + words[i]->Std() + L">";
  return joined;
}
