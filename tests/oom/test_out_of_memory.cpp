// Each entry point of the table with its n-th allocation refused (once, and from then on), for
// every n: nothing thrown, the full result or the documented failure result, nothing leaked.
// operator new and the base library's memory functions are replaced: a program of its own.
#include <gtest/gtest.h>
#include <wbcore/WbMem.h>
#include <zemcalc/zemcalc.h>

#include <cstdlib>
#include <functional>
#include <limits>
#include <memory>
#include <new>
#include <sstream>
#include <tuple>

namespace hook {
bool armed = false, persistent = false;
std::uint64_t seen = 0, failAt = 0;
std::int64_t live = 0;  // blocks handed out and not yet given back

// Out of line, so that the compiler does not pair the replaced new and delete with malloc/free.
[[gnu::noinline]] void* Take(std::size_t size) {
  if (armed && (++seen == failAt || (persistent && seen > failAt))) return nullptr;
  void* block = std::calloc(1, size ? size : 1);
  live += block ? 1 : 0;
  return block;
}
[[gnu::noinline]] void Give(void* block) {
  live -= block ? 1 : 0;
  std::free(block);
}
}  // namespace hook

void* operator new(std::size_t size) {
  if (void* block = hook::Take(size)) return block;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void operator delete(void* block) noexcept { hook::Give(block); }
void operator delete[](void* block) noexcept { hook::Give(block); }
void operator delete(void* block, std::size_t) noexcept { hook::Give(block); }
void operator delete[](void* block, std::size_t) noexcept { hook::Give(block); }
void* WbMemAlloc(std::size_t size) { return hook::Take(size); }
void* WbMemCalloc(std::size_t count, std::size_t size) { return hook::Take(count * size); }
void WbMemFree(void* block) { hook::Give(block); }

// What a call gave back, as text.
std::ostream& operator<<(std::ostream& out, const wchar_t* text) {
  for (; text && *text; ++text) out << static_cast<char>(*text);
  return out;
}
std::ostream& operator<<(std::ostream& out, const WbString& text) { return out << '\'' << text.GetString() << '\''; }
std::ostream& operator<<(std::ostream& out, const WbErrObj* error) {
  return out << (error ? error->GetMessage() : L"ok");
}
std::ostream& operator<<(std::ostream& out, const WbObject&) { return out << "filter"; }
std::ostream& operator<<(std::ostream& out, const ZmUnitDim& dim) { return out << dim.GetDimName(nullptr); }
template <class T>
std::ostream& operator<<(std::ostream& out, const ZmPoint2T<T>& p) {
  return out << p.x << ',' << p.y;
}
template <class T>
std::ostream& operator<<(std::ostream& out, const WbArrayTempl<T>& array) {
  out << array.GetSize() << '[';
  for (const T& item : array) out << item << ' ';
  return out << ']';
}
template <class T>
std::ostream& operator<<(std::ostream& out, const WbObjectArrayTempl<T>& list) {
  return out << list.GetSize() << " objects";
}

namespace {

template <class... Items>
std::string Describe(const Items&... items) {
  std::ostringstream out;
  out.precision(std::numeric_limits<double>::max_digits10);
  ((out << items << " | "), ...);
  return out.str();
}

template <class T>
using Curve = WbArrayTempl<ZmPoint2T<T>>;
template <class T, class D, class F>
using TwinOf = std::conditional_t<std::is_same<T, double>::value, D, F>;

// A two-tone signal of n samples at step 1e-4 (every filter accepts it).
template <class T>
Curve<T> Signal(int n) {
  Curve<T> curve;
  for (int i = 0; i < n; ++i) curve.Add(ZmPoint2T<T>(T(i * 1e-4), T(std::sin(i * 0.09) + 0.3 * std::cos(i * 0.5))));
  return curve;
}

// An entry point: make() gives its inputs, call(inputs...) calls it (refusals count only there);
// run() describes the result and every input after the call. failure is the start of that
// description when memory ran out.
struct EntryPoint {
  std::string name;
  std::function<std::string()> run;
  std::string failure;
};
template <class Make, class Call>
EntryPoint Entry(const std::string& name, const std::string& failure, Make make, Call call) {
  return {name,
          [make, call] {
            auto inputs = make();
            hook::armed = true;
            const auto result = std::apply(call, inputs);
            hook::armed = false;
            return Describe(result) + std::apply([](const auto&... items) { return Describe(items...); }, inputs);
          },
          failure};
}

template <class T>
std::vector<EntryPoint> NumericRows(const std::string& twin) {
  using P = ZmPoint2T<T>;
  const T absent = zm::Invalid<T>();
  // A curve and an output array holding stale points; a signal to filter.
  const auto curveOut = [] { return std::make_tuple(Signal<T>(200), Signal<T>(2), WbArrayTempl<int>()); };
  const std::string emptied = Describe(0, Signal<T>(200), Curve<T>(), WbArrayTempl<int>());
  const auto filtering = [](auto filter) {
    return [=] { return std::make_tuple(filter, Signal<T>(300), Curve<T>()); };
  };
  const auto filter = [](auto& f, auto& in, auto& out) { return f.Compute(in, out); };
  const std::string filterFailure = "Not enough memory to filter";
  // A failed transmissibility keeps its lists in step (with the stages made before) and result untouched.
  const auto stages = [] {
    return std::make_tuple(Signal<T>(400), WbObjectArrayTempl<Curve<T>>(), WbObjectArrayTempl<WbString>(), Curve<T>());
  };
  const auto transmissibility = [absent](int method) {
    return [absent, method](auto& in, auto& curves, auto& titles, auto& result) {
      const WbErrObj* error = ZmMathTransmissibilityT<T>::ComputeTransmissibility(
          in, in, T(0), absent, T(2e-4), absent, method, absent, absent, absent, 0, result, &curves, &titles, nullptr);
      return error ? (curves.GetSize() == titles.GetSize() && result.IsEmpty() ? "in step" : "out of step") : "done";
    };
  };
  const int window[2] = {0, 199};
  return {
      Entry("EvaluateConvexShape" + twin, emptied, curveOut,
            [](auto& in, auto& out, auto& i) { return P::EvaluateConvexShape(in, out, &i); }),
      Entry(
          "ExtractXRange" + twin, Describe(0, Signal<T>(200)), [] { return std::make_tuple(Signal<T>(200)); },
          [](auto& c) { return P::ExtractXRange(c, T(0.00305), T(0.0101), T(0)); }),
      Entry("ComputeFFT" + twin,
            Describe(L"Not enough memory to compute an FFT of 256 points", Signal<T>(200), Curve<T>()), curveOut,
            [window](auto& in, auto& out, auto&) {
              return ZmMathSpectrumT<T>::ComputeFFT(in, window, 1, 256, out, 1, nullptr);
            }),
      Entry("ComputeTransmissibility direct" + twin, "in step", stages, transmissibility(1)),
      Entry("ComputeTransmissibility correlation" + twin, "in step", stages, transmissibility(2)),
      Entry("ZmFilterMVA" + twin, filterFailure,
            filtering(TwinOf<T, ZmFilterMVAd, ZmFilterMVAf>(9, ZmExtrapolationReflection)), filter),
      Entry("ZmFilterSWA" + twin, filterFailure, filtering(TwinOf<T, ZmFilterSWAd, ZmFilterSWAf>(T(0.002), T(0.5))),
            filter),
  };
}

// The units and the base library. Texts are made before the call: only the library's own
// allocations are refused.
std::vector<EntryPoint> UnitAndBaseRows() {
  const ZmUnitSystem mm(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
  static ZmUnitSystem system;  // written by the calls, never read
  const auto given = [](const wchar_t* text) { return [=] { return std::make_tuple(WbString(text)); }; };
  const auto noMemory = [](const wchar_t* text) { return Describe(L"Not enough memory", WbString(text)); };
  return {
      Entry("CSMSolverStringToSystem", noMemory(L"UNIT MM TON S KELVIN"), given(L"UNIT MM TON S KELVIN"),
            [](auto& t) { return ZmUnitMgr.CSMSolverStringToSystem(t, system, 1); }),
      Entry("GetSystemFromShortName", noMemory(L"N/mm"), given(L"N/mm"),
            [](auto& t) { return ZmUnitDimForcePerLength.GetSystemFromShortName(t, system); }),
      Entry("FormatDimensionalValue", Describe(0, WbString()), given(L"stale"),
            [=](auto& t) { return int(mm.FormatDimensionalValue(2e5f, ZmUnitDimForcePerLength, t)); }),
      Entry("String2DimensionalValue", Describe(-double(zm::kInvalid)), given(L"2.5 GPa"),
            [=](auto& t) {
              double value = 0;
              return mm.String2DimensionalValue(t, ZmUnitDimPressure, value) ? value : -value;
            }),
      Entry(
          "GetCompatibleEquivUnits", Describe(0, WbObjectArrayTempl<WbString>(), WbArrayTempl<float>(), -1),
          [] { return std::make_tuple(WbObjectArrayTempl<WbString>(), WbArrayTempl<float>{7.0f}, 7); },
          [=](auto& names, auto& factors, int& index) {
            return mm.GetCompatibleEquivUnits(ZmUnitDimPressure, names, factors, 1.0f, &index);
          }),
      Entry(
          "WbRuntimeClass::CreateObject", Describe(L"null"), [] { return std::make_tuple(); },
          [] {
            const std::unique_ptr<WbObject> made(WbRuntimeClass::CreateObject(L"ZmFilterCFC60_10kHzd"));
            return made ? made->GetRuntimeClass()->GetClassName() : L"null";
          }),
      // Copies of a dimension report a lack of memory as a standard container does.
      Entry(
          "ZmUnitDim quotient", "threw std::bad_alloc", [] { return std::make_tuple(); },
          [] { return ZmUnitDim(ZmUnitDimForce, ZmUnitDimLength); }),
      Entry(
          "ZmUnitDim::operator=", "threw std::bad_alloc", [] { return std::make_tuple(ZmUnitDim(ZmUnitDimMass)); },
          [](auto& dim) { return dim = ZmUnitDimForcePerLength, 0; }),
      // A message longer than the record is formatted on the heap first.
      Entry(
          "WbSetError", Describe(L"Not enough memory"),
          [] { return std::make_tuple(WbString(std::wstring(3000, L'u'))); },
          [](auto& unit) { return WbSetError(L"Unsupported unit '%s'", unit)->GetMessage(); }),
  };
}

TEST(OutOfMemory, EveryEntryPointKeepsItsPromiseWhateverAllocationFails) {
  static_assert(std::is_trivially_destructible<WbErrObj>::value, "a thread's error record needs no destructor");
  std::vector<EntryPoint> rows;
  for (const auto& family : {NumericRows<double>("d"), NumericRows<float>("f"), UnitAndBaseRows()}) {
    rows.insert(rows.end(), family.begin(), family.end());
  }
  std::uint64_t runs = 0, failures = 0;
  for (const EntryPoint& row : rows) {
    hook::seen = hook::failAt = 0, hook::persistent = false;
    const std::string full = row.run();
    const std::uint64_t allocations = hook::seen;
    ASSERT_GT(allocations, 0u) << row.name << " allocates nothing: the row tests nothing";
    ASSERT_NE(full.compare(0, row.failure.size(), row.failure), 0) << row.name << ": full result " << full;
    for (const bool persistent : {false, true}) {
      for (std::uint64_t n = 1; n <= allocations; ++n, ++runs) {
        hook::seen = 0, hook::failAt = n, hook::persistent = persistent;
        const std::int64_t before = hook::live;
        {
          std::string outcome;
          try {
            outcome = row.run();
          } catch (const std::exception& e) {
            hook::armed = false;
            outcome = std::string("threw ") + e.what();  // only copies of values may throw
          }
          failures += outcome != full ? 1 : 0;
          EXPECT_TRUE(outcome == full || outcome.compare(0, row.failure.size(), row.failure) == 0)
              << row.name << ", allocation " << n << (persistent ? " and on" : " once") << ":\n  " << outcome
              << "\n  expected " << full << "\n  or " << row.failure;
        }
        EXPECT_EQ(hook::live, before) << row.name << " leaked at allocation " << n;
      }
    }
  }
  std::printf("%zu entry points, %llu runs with an allocation refused, %llu of them failed as documented\n",
              rows.size(), static_cast<unsigned long long>(runs), static_cast<unsigned long long>(failures));
}

}  // namespace
