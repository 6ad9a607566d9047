#pragma once

#include <cstddef>

#include "wbcore/WbExport.h"
#include "wbcore/WbString.h"

// An error record: the formatted message of a failure.
//
// The text lives inside the record (kCapacity characters with the terminating null), so that
// recording an error never needs memory that may not be there: a failure to allocate can
// itself be reported. A longer message is cut to kCapacity - 4 characters followed by "...".
// The record has no destructor, so a thread's record costs nothing at thread exit either.
class WBCORE_API WbErrObj {
public:
  static constexpr std::size_t kCapacity = 1024;

  WbErrObj() = default;
  explicit WbErrObj(const wchar_t* message) noexcept { SetMessage(message); }
  explicit WbErrObj(const WbString& message) noexcept { SetMessage(message.GetString()); }
  const wchar_t* GetMessage() const { return m_text; }
  // Copies message (null gives the empty text), cut as above.
  void SetMessage(const wchar_t* message) noexcept;

private:
  wchar_t m_text[kCapacity] = {};
};

namespace wbcore_detail {
WBCORE_API const WbErrObj* SetErrorVarArgs(const wchar_t* format, ...) noexcept;
}
// Records an error with a printf-style format (wide-format convention: "%s" takes a wide
// string) and returns it. The record belongs to the calling thread and stays valid until
// that thread records its next error. Never throws and never fails: the message is formatted
// into the thread's record; only a message that does not fit there is formatted in full on the
// heap first, and if that memory is missing the record reads "Not enough memory".
template <class... Args>
const WbErrObj* WbSetError(const wchar_t* format, const Args&... args) noexcept {
  return wbcore_detail::SetErrorVarArgs(format, wbcore_detail::FormatArg(args)...);
}
// The last error recorded on this thread, or null when none was.
WBCORE_API const WbErrObj* WbGetLastError();
