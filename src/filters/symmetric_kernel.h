#pragma once

#include <cstdint>

namespace zm {
namespace filter {

// Runs a symmetric kernel of n taps (h = n / 2, half kernel c: c[0..h-1] for the pairs, c[h]
// the centre when n is odd) over a padded buffer, in place: on return b[j] (j < count) holds
//     sum over k = 0 .. h-1 of (b[j+k] + b[j+n-1-k]) * c[k]   (+ b[j+h] * c[h] for odd n)
// summed from 0 in that order, as read from the buffer before the call. b holds at least
// count + n - 1 values. Output j only reads b[j..j+n-1], so each result can replace b[j] as
// soon as it is known. Runs in the kernel version chosen for the process (ZmKernelVersion.h),
// with the same bits in every version.
void ApplySymmetricKernel(double* b, std::uint64_t count, const double* c, int n);
void ApplySymmetricKernel(float* b, std::uint64_t count, const float* c, int n);

}  // namespace filter
}  // namespace zm
