#include "wbcore/WbCoord.h"

WbString wbcore_detail::FormatComponents(const double* values, int count, const wchar_t* numberFormat,
                                         const wchar_t* separator) {
  WbString text;
  for (int i = 0; i < count; ++i) {
    if (i > 0) text += separator;
    text += WbString::Formatted(numberFormat ? numberFormat : L"%g", values[i]);
  }
  return text;
}
