#pragma once

// One place chooses the version of every vectorised kernel (see ZmKernelVersion.h); kernels ask
// ChosenKernelVersion() at each call and run the widest version they have that does not exceed it.
//
// A kernel with an AVX2 version is written as a struct with an always-inline static Run, and
// called through RunKernel<Body>(args...): Run is then built twice, once inside a function
// compiled for AVX2 and once for the baseline, and the choice is a plain branch (no function
// resolved by the loader, so sanitizers that start with the program see nothing run before
// them). Helpers that Run calls must be inline, so that they are built into both versions.

#if defined(ZEMCALC_KERNEL_VERSIONS) && defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#define ZM_HAS_KERNEL_VERSIONS 1
#define ZM_TARGET_AVX2 __attribute__((target("avx2")))
#define ZM_TARGET_AVX512 __attribute__((target("avx512f")))
#else
#define ZM_HAS_KERNEL_VERSIONS 0
#define ZM_TARGET_AVX2
#define ZM_TARGET_AVX512
#endif

#include <utility>

#define ZM_KERNEL_BODY static inline __attribute__((always_inline))

namespace zm {

enum class KernelVersion { kDefault = 0, kAvx2 = 1, kAvx512 = 2 };

// The version chosen for this process (chosen at the first call, thread-safe).
KernelVersion ChosenKernelVersion();

#if ZM_HAS_KERNEL_VERSIONS
template <class Body, class... Args>
ZM_TARGET_AVX2 void RunKernelAvx2(Args&&... args) {
  Body::Run(std::forward<Args>(args)...);
}
#endif

template <class Body, class... Args>
void RunKernelDefault(Args&&... args) {
  Body::Run(std::forward<Args>(args)...);
}

// Body::Run(args...) in the widest version allowed: AVX2 or the baseline.
template <class Body, class... Args>
inline void RunKernel(Args&&... args) {
#if ZM_HAS_KERNEL_VERSIONS
  if (ChosenKernelVersion() >= KernelVersion::kAvx2) return RunKernelAvx2<Body>(std::forward<Args>(args)...);
#endif
  RunKernelDefault<Body>(std::forward<Args>(args)...);
}

}  // namespace zm
