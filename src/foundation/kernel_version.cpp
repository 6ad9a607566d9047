#include "foundation/kernel_version.h"

#include <cstdlib>
#include <cstring>

#include "foundation/build_info.h"
#include "zemcalc/ZmKernelVersion.h"

ZM_BUILD_INFO(kernel_version)

namespace zm {
namespace {

const char* const kVersionNames[] = {"default", "avx2", "avx512"};

// The widest version the processor runs (and the operating system saves the registers of).
KernelVersion WidestSupported() {
#if ZM_HAS_KERNEL_VERSIONS
  __builtin_cpu_init();
  if (__builtin_cpu_supports("avx512f")) return KernelVersion::kAvx512;
  if (__builtin_cpu_supports("avx2")) return KernelVersion::kAvx2;
#endif
  return KernelVersion::kDefault;
}

// The version named by the environment when the processor runs it, else the widest it runs
// (a name beyond the processor, or no name, or an unknown one).
KernelVersion Choose() {
  const KernelVersion widest = WidestSupported();
  const char* forced = std::getenv("ZEMCALC_KERNEL_VERSION");
  for (int v = 0; forced && v < static_cast<int>(widest); ++v) {
    if (std::strcmp(forced, kVersionNames[v]) == 0) return static_cast<KernelVersion>(v);
  }
  return widest;
}

}  // namespace

KernelVersion ChosenKernelVersion() {
  static const KernelVersion chosen = Choose();
  return chosen;
}

}  // namespace zm

const char* ZmKernelVersion() { return zm::kVersionNames[static_cast<int>(zm::ChosenKernelVersion())]; }
