// WbString: the wide-format convention of the formatter, FormatFloat, trimming, splitting and
// the comparison and search helpers.
#include <gtest/gtest.h>
#include <wbcore/WbArray.h>
#include <wbcore/WbString.h>

#include <string>

#include "wbcore/wb_print.h"

namespace {

TEST(WbStringFormat, PercentSTakesAWideStringWithWidthPrecisionAndFlags) {
  const WbString unit(L"mm");
  WbString text;
  text.Format(L"Unsupported length unit '%s'. Possible values are : %s", unit, L"m, mm");
  EXPECT_EQ(text, L"Unsupported length unit 'mm'. Possible values are : m, mm");

  EXPECT_EQ(WbString::Formatted(L"[%-8s]", L"abc"), L"[abc     ]");
  EXPECT_EQ(WbString::Formatted(L"[%8s]", L"abc"), L"[     abc]");
  EXPECT_EQ(WbString::Formatted(L"[%.3s]", L"abcdef"), L"[abc]");
  EXPECT_EQ(WbString::Formatted(L"[%-6.2s]", L"abcdef"), L"[ab    ]");
  EXPECT_EQ(WbString::Formatted(L"[%*s]", 5, L"ab"), L"[   ab]");
  // Characters outside ASCII pass through unchanged (translations are not ASCII).
  EXPECT_EQ(WbString::Formatted(L"%s|%c", L"\u00e9t\u00e9", L'\u00b0'), L"\u00e9t\u00e9|\u00b0");
  // An explicit "%ls" keeps its wide meaning; "%hs" and "%hc" are the narrow forms.
  EXPECT_EQ(WbString::Formatted(L"%ls+%hs+%hc", L"wide", "narrow", 'n'), L"wide+narrow+n");
  EXPECT_EQ(WbString::Formatted(L"%c%c", L'o', L'k'), L"ok");
  EXPECT_EQ(WbString::Formatted(L"100%% of %d%%", 5), L"100% of 5%");
  // Length modifiers of numbers survive the rewriting.
  EXPECT_EQ(WbString::Formatted(L"%llu %ld %5.2f %g", 18446744073709551615ull, -7L, 3.14159, 0.5),
            L"18446744073709551615 -7  3.14 0.5");
  EXPECT_EQ(WbString::Formatted(nullptr), L"");
}

TEST(WbStringFormat, OutputsLongerThanTheFirstBufferAreComplete) {
  const std::wstring block(5000, L'x');
  const WbString text = WbString::Formatted(L"<%s>", block.c_str());
  ASSERT_EQ(text.GetLength(), 5002u);
  EXPECT_EQ(text.GetAt(0), L'<');
  EXPECT_EQ(text.GetAt(5001), L'>');
  EXPECT_EQ(text.Mid(1, 5000), WbString(block));
  // Width padding alone can exceed the buffer too.
  const WbString padded = WbString::Formatted(L"%1000d", 42);
  ASSERT_EQ(padded.GetLength(), 1000u);
  EXPECT_EQ(padded.Mid(998), L"42");
  EXPECT_EQ(padded.Find(L'4'), 998);
}

TEST(WbStringFormat, WorkIsBoundedAndARefusedFormatComesBackAsItsText) {
  // Each of these once ran for seconds to minutes in vswprintf and returned an empty string.
  // Widths and number precisions above 65536, from digits or '*', are refused at once.
  struct Case {
    WbString got;
    const wchar_t* expected;
  } cases[] = {
      {WbString::Formatted(L"%999999999d", 1), L"%999999999d"},
      {WbString::Formatted(L"[%.999999999f]", 1.0), L"[%.999999999f]"},
      {WbString::Formatted(L"%*d", 2000000000, 1), L"%*d"},
      {WbString::Formatted(L"%65537x", 1u), L"%65537x"},
      {WbString::Formatted(L"%1$*2$d", 5, 3), L"%1$*2$d"},  // '*' with positional arguments
      {WbString::Formatted(L"%m"), L"%m"},                  // no argument walk for it
      {WbString::Formatted(L"%hs", "\xff\xfe"), L"%hs"},    // not text in the C locale
      // Accepted: the limits themselves, a negative '*' width (left-justified) and precision
      // (omitted), a long string precision that only cuts the string, positional arguments.
      {WbString::Formatted(L"%*d|%.*f", -3, 7, -1, 0.5), L"7  |0.500000"},
      {WbString::Formatted(L"%.999999999s", L"abc"), L"abc"},
      {WbString::Formatted(L"%2$s %1$d", 5, L"ab"), L"ab 5"},
  };
  for (const Case& c : cases) EXPECT_EQ(c.got, WbString(c.expected));
  EXPECT_EQ(WbString::Formatted(L"%65536d", 1).GetLength(), 65536u);
  // %.65536f of 1e308: its 309 integer digits, the point and 65536 decimals.
  EXPECT_EQ(WbString::Formatted(L"%.65536f", 1e308).GetLength(), 309u + 1u + 65536u);
  // The largest long double has 4933 integer digits; %Lf adds the point and 6 decimals.
  EXPECT_EQ(WbString::Formatted(L"%Lf", 1.18973149535723176502e+4932L).GetLength(), 4933u + 7u);
}

TEST(WbStringFormat, FormatFloatUsesSixteenSignificantDigitsAtMost) {
  // Python: '%.16g' % 0.1 -> '0.1'; '%.16g' % 1e32 -> '1e+32';
  // '%.16g' % -1.0000000331813535e32 -> '-1.000000033181354e+32' (the widened invalid marker).
  WbString text;
  text.FormatFloat(0.1, 16);
  EXPECT_EQ(text, L"0.1");
  text.FormatFloat(1e32, 16);
  EXPECT_EQ(text, L"1e+32");
  text.FormatFloat(-1.0000000331813535e32, 16);
  EXPECT_EQ(text, L"-1.000000033181354e+32");
  text.FormatFloat(1.0 / 3.0, 16);
  EXPECT_EQ(text, L"0.3333333333333333");
  text.FormatFloat(200000.0, 16);
  EXPECT_EQ(text, L"200000");
}

TEST(WbStringEdit, TrimmingRemovesTheGivenCharactersFromTheEnds) {
  WbString text(L" \t value  x \r\n");
  EXPECT_EQ(WbString(text).TrimLeft(), L"value  x \r\n");
  EXPECT_EQ(WbString(text).TrimRight(), L" \t value  x");
  EXPECT_EQ(text.Trim(), L"value  x");  // inner blanks stay
  EXPECT_EQ(WbString(L"--a-b--").Trim(L"-"), L"a-b");
  EXPECT_EQ(WbString(L" \t\r\n ").Trim(), L"");
  EXPECT_EQ(WbString(L"").Trim(), L"");
  EXPECT_EQ(WbString(L"abc").Trim(L""), L"abc");
}

std::wstring Join(const WbObjectArrayTempl<WbString>& words) {
  std::wstring joined;
  for (std::uint64_t i = 0; i < words.GetSize(); ++i) joined += L"<" + words[i]->Std() + L">";
  return joined;
}

TEST(WbStringEdit, SplitWordsSkipsRunsOfSeparatorsUnlessEmptyWordsAreKept) {
  WbObjectArrayTempl<WbString> words;
  // Leading, trailing and mixed runs of blanks and tabs separate without empty words.
  EXPECT_EQ(WbString(L"  UNIT\tmm  T \ts ").SplitWords(words), 4u);
  EXPECT_EQ(Join(words), L"<UNIT><mm><T><s>");
  words.RemoveAll();

  EXPECT_EQ(WbString(L"a  b\tc").SplitWords(words), 3u);
  EXPECT_EQ(Join(words), L"<a><b><c>");
  words.RemoveAll();
  // Kept empty words: one between each pair of adjacent separators and at either end.
  EXPECT_EQ(WbString(L" a  b").SplitWords(words, L" \t", 1), 4u);
  EXPECT_EQ(Join(words), L"<><a><><b>");
  words.RemoveAll();

  EXPECT_EQ(WbString(L"a b c").SplitWords(words), 3u);
  // Words are appended to what the array already holds.
  EXPECT_EQ(WbString(L"d").SplitWords(words), 1u);
  EXPECT_EQ(Join(words), L"<a><b><c><d>");
  words.RemoveAll();

  EXPECT_EQ(WbString(L"a,,b,").SplitWords(words, L",", 1), 4u);
  EXPECT_EQ(Join(words), L"<a><><b><>");
  words.RemoveAll();
  EXPECT_EQ(WbString(L"x;y z").SplitWords(words, L"; "), 3u);
  EXPECT_EQ(Join(words), L"<x><y><z>");
  words.RemoveAll();
  EXPECT_EQ(WbString(L"").SplitWords(words), 0u);
  EXPECT_EQ(WbString(L" \t ").SplitWords(words), 0u);
  EXPECT_EQ(words.GetSize(), 0u);
}

TEST(WbStringCompare, EqualityAndCaseInsensitiveOrdering) {
  EXPECT_TRUE(WbString(L"Length") == L"Length");
  EXPECT_TRUE(WbString(L"Length") != WbString(L"length"));
  EXPECT_TRUE(WbString(nullptr) == L"");
  EXPECT_TRUE(WbString(nullptr).IsEmpty());
  EXPECT_EQ(WbString(L"Hello").CompareNoCase(L"hELLO"), 0);
  EXPECT_EQ(WbString(L"abc").CompareNoCase(L"ABD"), -1);
  EXPECT_EQ(WbString(L"ABCD").CompareNoCase(L"abc"), 1);  // a longer string after its prefix
  EXPECT_EQ(WbString(L"").CompareNoCase(nullptr), 0);
  // 'a' (97) sorts after 'B' (66) by code, before it without case.
  EXPECT_EQ(WbString(L"a").Compare(L"B"), 1);
  EXPECT_EQ(WbString(L"a").CompareNoCase(L"B"), -1);
}

TEST(WbStringSearch, FindMidAndLeftAtTheEdges) {
  const WbString text(L"mm/ms/mm");
  EXPECT_EQ(text.Find(L"mm"), 0);
  EXPECT_EQ(text.Find(L"mm", 1), 6);
  EXPECT_EQ(text.Find(L'/', 3), 5);
  EXPECT_EQ(text.Find(L"kg"), -1);
  EXPECT_EQ(text.Find(L"mm", 7), -1);
  EXPECT_EQ(text.Find(L'm', 100), -1);
  EXPECT_EQ(text.Mid(3), L"ms/mm");
  EXPECT_EQ(text.Mid(3, 2), L"ms");
  EXPECT_EQ(text.Mid(6, 100), L"mm");
  EXPECT_EQ(text.Mid(8), L"");
  EXPECT_EQ(text.Mid(50, 2), L"");
  EXPECT_EQ(text.Left(0), L"");
  EXPECT_EQ(text.Left(2), L"mm");
  EXPECT_EQ(text.Left(99), text);
  EXPECT_EQ(WbString(L"Kg").MakeUpper(), L"KG");
}

}  // namespace
