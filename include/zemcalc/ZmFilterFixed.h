#pragma once

// Ready-made symmetric FIR filters with fixed coefficient tables, run by the symmetric-kernel
// machinery of ZmFilterMAd (ZmFilter.h: kernel layout, padding, time-step messages). The tables
// are single-precision values; the double classes hold them widened, the float classes as they
// are. Point reflection at the ends.
//
// The channel-frequency-class filters CFC 600, CFC 180 and CFC 60 are designed for signals
// sampled at 10 kHz: they accept only time steps from 5e-5 s to 1.5e-4 s (1e-4 s +/- 50 %),
// expressed in the time unit given to the constructor (seconds by default and for objects made
// by name). Their tables are scaled so that the kernel sums to its size (17.00001, 33.00007 and
// 81.00072); the first filtering divides them by the kernel sum, so a constant signal comes
// out unchanged.
//
// | class                   | taps | stored | normalised | time-step limits |
// | ZmFilterCFC600_10kHzd/f |  17  |   9    | yes        | yes              |
// | ZmFilterCFC180_10kHzd/f |  33  |  17    | yes        | yes              |
// | ZmFilterCFC60_10kHzd/f  |  81  |  41    | yes        | yes              |
// | ZmFilterFIRF16d/f       |  50  |  25    | no         | none             |
//
// ZmFilterFIRF16d is a 50-tap low-pass whose window spans in[j-25] .. in[j+24] (even kernel,
// half a sample early). Its table is used as stored: the kernel sums to 0.9974511, so a
// constant signal c comes out as 0.9974511 * c; it accepts any time step.
//
// Against the J211/1 corridor (read as in ZmFilterCFC.h: +/-0.5 dB up to the class frequency
// F_H, -1 dB at F_H, -4 dB at 5/3 F_H, +0.5 dB then -9 dB/octave to -30 dB above), measured on
// the normalised kernels' zero-phase response at 10 kHz:
//   CFC 60:  -3 dB at 115.5 Hz; the passband droops to -0.75 dB at 60 Hz, 0.25 dB below the
//            -0.5 dB limit from 49 to 60 Hz; inside elsewhere (within -1 dB at F_H).
//   CFC 180: -3 dB at 358.5 Hz; -0.55 dB at 180 Hz, 0.05 dB below the limit from 172 to 180 Hz.
//   CFC 600: -3 dB at 1111 Hz; ripple +0.035 / -0.20 dB; inside the corridor everywhere.
// The 2-pole Butterworth class of ZmFilterCFC.h is -3 dB at 100.0, 300.5 and 1018.2 Hz there.
//
// A curve with fewer points than half the kernel fails with "Not enough points to filter":
// fewer than 8, 16, 40 and 25 points respectively.
#include "zemcalc/ZmFilter.h"

namespace zm {
// The coefficient tables of the fixed kernels. The enumeration is a template argument of
// exported classes, and Clang gives a class no more visibility than its template arguments:
// it is declared visible.
#pragma GCC visibility push(default)
enum class FilterTable { kCFC600, kCFC180, kCFC60 };
#pragma GCC visibility pop
}  // namespace zm

// A CFC filter: normalise 1, point reflection, the time-step limits in unit, the table's kernel.
template <class Base, zm::FilterTable table>
class ZMCALC_API ZmFilterCFCT : public Base {
 public:
  explicit ZmFilterCFCT(_ZmUnitTime unit = ZmUnitSecond);
};

// The FIRF16 filter: normalise 0, point reflection, no time-step limits.
template <class Base>
class ZMCALC_API ZmFilterFIRF16T : public Base {
 public:
  ZmFilterFIRF16T();
};

extern template class ZmFilterCFCT<ZmFilterMAd, zm::FilterTable::kCFC600>;
extern template class ZmFilterCFCT<ZmFilterMAf, zm::FilterTable::kCFC600>;
extern template class ZmFilterCFCT<ZmFilterMAd, zm::FilterTable::kCFC180>;
extern template class ZmFilterCFCT<ZmFilterMAf, zm::FilterTable::kCFC180>;
extern template class ZmFilterCFCT<ZmFilterMAd, zm::FilterTable::kCFC60>;
extern template class ZmFilterCFCT<ZmFilterMAf, zm::FilterTable::kCFC60>;
extern template class ZmFilterFIRF16T<ZmFilterMAd>;
extern template class ZmFilterFIRF16T<ZmFilterMAf>;

ZM_FILTER_CLASS(ZmFilterCFC600_10kHzd, ZmFilterCFCT<ZmFilterMAd, zm::FilterTable::kCFC600>)
ZM_FILTER_CLASS(ZmFilterCFC600_10kHzf, ZmFilterCFCT<ZmFilterMAf, zm::FilterTable::kCFC600>)
ZM_FILTER_CLASS(ZmFilterCFC180_10kHzd, ZmFilterCFCT<ZmFilterMAd, zm::FilterTable::kCFC180>)
ZM_FILTER_CLASS(ZmFilterCFC180_10kHzf, ZmFilterCFCT<ZmFilterMAf, zm::FilterTable::kCFC180>)
ZM_FILTER_CLASS(ZmFilterCFC60_10kHzd, ZmFilterCFCT<ZmFilterMAd, zm::FilterTable::kCFC60>)
ZM_FILTER_CLASS(ZmFilterCFC60_10kHzf, ZmFilterCFCT<ZmFilterMAf, zm::FilterTable::kCFC60>)
ZM_FILTER_CLASS(ZmFilterFIRF16d, ZmFilterFIRF16T<ZmFilterMAd>)
ZM_FILTER_CLASS(ZmFilterFIRF16f, ZmFilterFIRF16T<ZmFilterMAf>)
