#pragma once

#include "wbcore/WbExport.h"
#include "wbcore/WbString.h"

// Translation hook of the host application: receives the English message and a context
// number and returns the text to use (which must stay valid for as long as the host keeps
// its translations). A null return means "no translation".
typedef const wchar_t* (*WbLocalizeHook)(const wchar_t* message, int context);

// Installs the hook (null restores the identity) and returns the previous one. Install it
// before other threads start formatting messages.
WBCORE_API WbLocalizeHook WbSetLocalizeHook(WbLocalizeHook hook);

// The text to use for an English message: the hook's translation, or the message itself.
WBCORE_API const wchar_t* WbLocalizeStringExW(const wchar_t* message, int context);

namespace wbcore_detail {
WBCORE_API WbString LocalizeStringVarArgsW(const wchar_t* format, ...);
}
// Localises a template and formats it with the given arguments (wide-format convention).
template <class... Args>
WbString WbLocalizeStringVW(const wchar_t* format, const Args&... args) {
  return wbcore_detail::LocalizeStringVarArgsW(format, wbcore_detail::FormatArg(args)...);
}
