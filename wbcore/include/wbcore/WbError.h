#pragma once

#include "wbcore/WbExport.h"
#include "wbcore/WbString.h"

// An error record: the formatted message of a failure.
class WBCORE_API WbErrObj {
public:
  WbErrObj() = default;
  explicit WbErrObj(const WbString& message) : m_message(message) {}
  const wchar_t* GetMessage() const { return m_message; }

private:
  WbString m_message;
};

namespace wbcore_detail {
WBCORE_API const WbErrObj* SetErrorVarArgs(const wchar_t* format, ...);
}
// Records an error with a printf-style format (wide-format convention: "%s" takes a wide
// string) and returns it. The record belongs to the calling thread and stays valid until
// that thread records its next error.
template <class... Args>
const WbErrObj* WbSetError(const wchar_t* format, const Args&... args) {
  return wbcore_detail::SetErrorVarArgs(format, wbcore_detail::FormatArg(args)...);
}
// The last error recorded on this thread, or null when none was.
WBCORE_API const WbErrObj* WbGetLastError();
