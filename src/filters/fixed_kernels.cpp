#include "foundation/build_info.h"
#include "zemcalc/ZmFilterFixed.h"

ZM_BUILD_INFO(fixed_kernels)

namespace {

// Half kernels, outermost pair first, the centre last; single-precision values in both twins.
// The CFC tables sum (pairs counted twice) to about their kernel size and are normalised at
// the first filtering.
constexpr float kCFC600[] = {-0.03039485f, -0.05765256f, -0.1836764f, -0.3456453f, -0.1976632f,
                             0.6855329f,   2.308616f,    3.975888f,   4.69f};
constexpr float kCFC180[] = {-0.1798959f, -0.1781332f, -0.1697561f, -0.1456399f, -0.09356785f, 2.671033e-06f,
                             0.1476574f,  0.3584331f,  0.6352806f,  0.9730306f,  1.357338f,    1.764996f,
                             2.165815f,   2.525941f,   2.812142f,   2.996394f,   3.06f};
constexpr float kCFC60[] = {
    -0.139593f,   -0.1363283f,  -0.1297337f,  -0.1196782f,  -0.105973f, -0.08837478f, -0.06659711f,
    -0.04032801f, -0.009227486f, 0.02704436f, 0.06881879f,  0.1164061f, 0.1700688f,   0.2300157f,
    0.2963936f,   0.3692688f,   0.4485992f,   0.5342599f,   0.6259945f, 0.723458f,    0.8261465f,
    0.9334888f,   1.044765f,    1.159146f,    1.275743f,    1.393509f,  1.511388f,    1.628229f,
    1.742837f,    1.854019f,    1.960551f,    2.061238f,    2.154909f,  2.240475f,    2.316902f,
    2.38326f,     2.438724f,    2.482607f,    2.514358f,    2.53357f,   2.540001f};
// 50 taps, pairs only; the kernel sums to 0.9974511 and is used as it is.
constexpr float kFIRF16[] = {0.00209983f,  0.00129339f, 0.00065168f,  -0.00085462f, -0.00290368f,
                             -0.0047466f,  -0.00539656f, -0.00400504f, -0.00031044f, 0.00502427f,
                             0.0103673f,   0.0134779f,  0.012237f,    0.00555978f,  -0.00587902f,
                             -0.019247f,   -0.0300166f, -0.0329821f,  -0.0237764f,  -0.00039844f,
                             0.0357488f,   0.0797111f,  0.123853f,    0.159608f,    0.17961f};

struct Table {
  int size;  // taps of the full kernel
  const float* values;
};

constexpr Table TableOf(zm::FilterTable table) {
  switch (table) {
    case zm::FilterTable::kCFC600:
      return {17, kCFC600};
    case zm::FilterTable::kCFC180:
      return {33, kCFC180};
    case zm::FilterTable::kCFC60:
      break;
  }
  return {81, kCFC60};
}

static_assert(sizeof(kCFC600) / sizeof(float) == (17 + 1) / 2, "CFC 600: 8 pairs and the centre");
static_assert(sizeof(kCFC180) / sizeof(float) == (33 + 1) / 2, "CFC 180: 16 pairs and the centre");
static_assert(sizeof(kCFC60) / sizeof(float) == (81 + 1) / 2, "CFC 60: 40 pairs and the centre");
static_assert(sizeof(kFIRF16) / sizeof(float) == 50 / 2, "FIRF16: 25 pairs");

}  // namespace

template <class Base, zm::FilterTable table>
ZmFilterCFCT<Base, table>::ZmFilterCFCT(_ZmUnitTime unit) : Base(1, ZmExtrapolationReflection) {
  this->SetLimitDT(unit);
  const Table t = TableOf(table);
  this->SetKernelTable(t.size, t.values);
}

template <class Base>
ZmFilterFIRF16T<Base>::ZmFilterFIRF16T() : Base(0, ZmExtrapolationReflection) {
  this->SetKernelTable(50, kFIRF16);
}

template class ZmFilterCFCT<ZmFilterMAd, zm::FilterTable::kCFC600>;
template class ZmFilterCFCT<ZmFilterMAf, zm::FilterTable::kCFC600>;
template class ZmFilterCFCT<ZmFilterMAd, zm::FilterTable::kCFC180>;
template class ZmFilterCFCT<ZmFilterMAf, zm::FilterTable::kCFC180>;
template class ZmFilterCFCT<ZmFilterMAd, zm::FilterTable::kCFC60>;
template class ZmFilterCFCT<ZmFilterMAf, zm::FilterTable::kCFC60>;
template class ZmFilterFIRF16T<ZmFilterMAd>;
template class ZmFilterFIRF16T<ZmFilterMAf>;

WB_IMPLEMENT_DYNAMIC(ZmFilterCFC600_10kHzd, ZmFilterMAd, new ZmFilterCFC600_10kHzd)
WB_IMPLEMENT_DYNAMIC(ZmFilterCFC600_10kHzf, ZmFilterMAf, new ZmFilterCFC600_10kHzf)
WB_IMPLEMENT_DYNAMIC(ZmFilterCFC180_10kHzd, ZmFilterMAd, new ZmFilterCFC180_10kHzd)
WB_IMPLEMENT_DYNAMIC(ZmFilterCFC180_10kHzf, ZmFilterMAf, new ZmFilterCFC180_10kHzf)
WB_IMPLEMENT_DYNAMIC(ZmFilterCFC60_10kHzd, ZmFilterMAd, new ZmFilterCFC60_10kHzd)
WB_IMPLEMENT_DYNAMIC(ZmFilterCFC60_10kHzf, ZmFilterMAf, new ZmFilterCFC60_10kHzf)
WB_IMPLEMENT_DYNAMIC(ZmFilterFIRF16d, ZmFilterMAd, new ZmFilterFIRF16d)
WB_IMPLEMENT_DYNAMIC(ZmFilterFIRF16f, ZmFilterMAf, new ZmFilterFIRF16f)
