#pragma once

// Which version of the vectorised kernels this process runs.
//
// The hot loops (the symmetric filter kernel, the FFT butterflies and bit reversal, the spectrum
// moduli and scaling, the correlation sums) are built in several versions, one per instruction
// set: "default" (the baseline of the build), "avx2" and "avx512" (x86-64 with GCC or Clang).
// Every version performs the same operations in the same order, so every version gives the same
// bits; only the speed differs. Loops that have no AVX-512 version run their AVX2 version there.
//
// The version is chosen once, at the first call that needs it (never while the library is being
// loaded), and then stays for the life of the process:
// - the widest version that the processor runs, unless
// - the environment variable ZEMCALC_KERNEL_VERSION names one ("default", "avx2" or "avx512",
//   exact lower case): then that version, or, if the processor cannot run it, the widest one it
//   can run below it. Any other value is ignored. Tests and benchmarks use it to run each version.
// A build configured with ZEMCALC_KERNEL_VERSIONS=OFF (or on another platform) has the default
// version only.
#include "zemcalc/ZmExport.h"

// The name of the version in use ("default", "avx2" or "avx512"); chooses it if no call has yet.
ZMCALC_API const char* ZmKernelVersion();
