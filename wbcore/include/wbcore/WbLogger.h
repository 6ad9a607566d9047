#pragma once

#include "wbcore/WbExport.h"
#include "wbcore/WbString.h"

// A minimal diagnostic channel. Messages go to the host's sink; with no sink installed they
// are discarded, so a library never writes to the console on its own.
class WBCORE_API WbLogger {
public:
  enum Level { LEVEL_DEBUG = 0, LEVEL_INFO = 1, LEVEL_WARNING = 2, LEVEL_ERROR = 3 };
  typedef void (*Sink)(int level, const wchar_t* message);

  // Installs the sink (null discards) and returns the previous one.
  static Sink SetSink(Sink sink);
  template <class... Args>
  static void Log(int level, const wchar_t* format, const Args&... args) {
    LogVarArgs(level, format, wbcore_detail::FormatArg(args)...);
  }

private:
  static void LogVarArgs(int level, const wchar_t* format, ...);
};
