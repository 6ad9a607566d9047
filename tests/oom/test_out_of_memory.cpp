// Every exported entry point that allocates, run with its n-th allocation refused (once, and
// from then on) for n = 1, 2, ... until the call completes: nothing may be thrown, the outcome
// must be the full result or the documented failure result, and nothing may leak. This test
// replaces the global operator new and the base library's memory functions, so it has a
// program of its own.
#include <gtest/gtest.h>
#include <wbcore/WbMem.h>
#include <zemcalc/zemcalc.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <new>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace hook {
bool armed = false, persistent = false;
std::uint64_t seen = 0, failAt = 0, refused = 0;
std::int64_t live = 0;  // blocks handed out and not yet given back

bool Refuse() {
  if (!armed) return false;
  ++seen;
  const bool refuse = seen == failAt || (persistent && seen > failAt);
  refused += refuse ? 1 : 0;
  return refuse;
}
void* Counted(void* block) {
  live += block ? 1 : 0;
  return block;
}
// Out of line, so that the compiler does not pair the replaced new and delete with malloc/free.
[[gnu::noinline]] void* Take(std::size_t size) { return Refuse() ? nullptr : Counted(std::malloc(size ? size : 1)); }
[[gnu::noinline]] void Give(void* block) {
  live -= block ? 1 : 0;
  std::free(block);
}
// Refusals count only inside the library call (the loop disarms when something escapes).
template <class Call>
auto Armed(Call call) {
  armed = true;
  auto result = call();
  armed = false;
  return result;
}
}  // namespace hook

void* operator new(std::size_t size) {
  if (void* block = hook::Take(size)) return block;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return hook::Take(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return hook::Take(size); }
void operator delete(void* block) noexcept { hook::Give(block); }
void operator delete[](void* block) noexcept { hook::Give(block); }
void operator delete(void* block, std::size_t) noexcept { hook::Give(block); }
void operator delete[](void* block, std::size_t) noexcept { hook::Give(block); }
void* WbMemAlloc(std::size_t size) { return hook::Take(size); }
void* WbMemCalloc(std::size_t count, std::size_t size) {
  return hook::Refuse() ? nullptr : hook::Counted(std::calloc(count ? count : 1, size ? size : 1));
}
void* WbMemRealloc(void* block, std::size_t size) {
  if (!block) return WbMemAlloc(size);
  return hook::Refuse() ? nullptr : std::realloc(block, size ? size : 1);
}
void WbMemFree(void* block) { hook::Give(block); }

namespace {

template <class T>
using Curve = WbArrayTempl<ZmPoint2T<T>>;
// The class of precision T among a double and a float class.
template <class T, class D, class F>
using TwinOf = std::conditional_t<std::is_same<T, double>::value, D, F>;

std::string Text(const wchar_t* text) {
  std::string narrow;
  for (; text && *text; ++text) narrow += static_cast<char>(*text);
  return narrow;
}
std::string Outcome(const WbErrObj* error) { return error ? "error: " + Text(error->GetMessage()) : "ok"; }
template <class T>
std::string Outcome(const Curve<T>& curve) {
  double sum = 0;
  for (const auto& p : curve) sum += double(p.x) + 3 * double(p.y);
  char text[64];
  std::snprintf(text, sizeof text, " %llu points (%.9g)", static_cast<unsigned long long>(curve.GetSize()), sum);
  return text;
}
std::string Outcome(std::uint64_t count) { return std::to_string(count); }
std::string Outcome(const WbString& text) { return "'" + Text(text) + "'"; }
template <class T>
std::string Outcome(const WbArrayTempl<T>& values) {
  std::string text = std::to_string(values.GetSize()) + " [";
  for (const T& v : values) text += std::to_string(v) + " ";
  return text + "]";
}
template <class T>
std::string Outcome(const WbObjectArrayTempl<T>& list) {
  std::string text = std::to_string(list.GetSize()) + " {";
  for (std::uint64_t i = 0; i < list.GetSize(); ++i) text += Outcome(*list[i]) + " ";
  return text + "}";
}
template <class A, class B, class... More>
std::string Outcome(const A& a, const B& b, const More&... more) {
  return Outcome(a) + " | " + Outcome(b, more...);
}

// A damped two-tone signal of n samples at step 1e-4 (every filter accepts it).
template <class T>
Curve<T> Signal(int n) {
  Curve<T> curve;
  for (int i = 0; i < n; ++i) {
    const double t = i * 1.0e-4;
    curve.Add(ZmPoint2T<T>(T(t), T(std::sin(900 * t) + 0.3 * std::cos(5000 * t) + 0.01 * (i % 7))));
  }
  return curve;
}

// One entry point: run() makes its inputs, calls it armed and describes what came out;
// failure is the documented outcome when memory runs out ("error" matches any error).
struct EntryPoint {
  std::string name;
  std::function<std::string()> run;
  std::string failure;
};

// A filter made afresh for each run: its state does not carry over from one run to the next.
template <class T, class Filter, class... Args>
EntryPoint FilterRow(const std::string& name, Args... args) {
  return {name,
          [=] {
            Filter filter(args...);
            const Curve<T> in = Signal<T>(300);
            Curve<T> out;
            const WbErrObj* error = hook::Armed([&] { return filter.Compute(in, out); });
            return Outcome(error) + Outcome(out);
          },
          "error: Not enough memory to filter"};
}

// The transmissibility's outcome on failure: an error, the lists in step, result untouched.
template <class T>
std::string Transmissibility(int method) {
  const Curve<T> in = Signal<T>(400);
  Curve<T> out = Signal<T>(400), result = Signal<T>(3), phase;
  for (auto& p : out) p.y = p.y * T(2) + T(1);
  WbObjectArrayTempl<Curve<T>> curves;
  WbObjectArrayTempl<WbString> titles;
  const T absent = zm::Invalid<T>();
  const WbErrObj* error = hook::Armed([&] {
    return ZmMathTransmissibilityT<T>::ComputeTransmissibility(in, out, T(0), absent, T(2e-4), absent, method, absent,
                                                               absent, absent, 0, result, &curves, &titles, &phase);
  });
  if (error) {
    const bool kept = Outcome(result) == Outcome(Signal<T>(3));
    return std::string("error") + (curves.GetSize() == titles.GetSize() ? ", lists in step" : ", lists out of step") +
           (kept ? ", result kept" : ", result changed");
  }
  return Outcome(result, titles) + Outcome(phase) + std::to_string(curves.GetSize());
}

template <class T>
std::vector<EntryPoint> NumericRows(const std::string& twin) {
  const auto curveCall = [](auto call) {
    return [call] {
      const Curve<T> in = Signal<T>(200);
      Curve<T> out = Signal<T>(2);
      WbArrayTempl<int> indices;
      std::uint64_t count = hook::Armed([&] { return call(in, out, indices); });
      return Outcome(count, out, indices);
    };
  };
  const std::string emptied = Outcome(std::uint64_t(0), Curve<T>(), WbArrayTempl<int>());
  return {
      {"EvaluateConvexShape" + twin, curveCall([](const Curve<T>& in, Curve<T>& out, WbArrayTempl<int>& indices) {
         return ZmPoint2T<T>::EvaluateConvexShape(in, out, &indices);
       }),
       emptied},
      {"EvaluateSinusoidEnvelop" + twin, curveCall([](const Curve<T>& in, Curve<T>& out, WbArrayTempl<int>& indices) {
         return ZmPoint2T<T>::EvaluateSinusoidEnvelop(in, 1, out, &indices);
       }),
       emptied},
      {"EvaluateEnvelop" + twin, curveCall([](const Curve<T>& in, Curve<T>& out, WbArrayTempl<int>&) {
         return ZmPoint2T<T>::EvaluateEnvelop(in, 1, out, T(0.002));
       }),
       emptied},
      {"SampleX" + twin, curveCall([](const Curve<T>& in, Curve<T>& out, WbArrayTempl<int>&) {
         return ZmPoint2T<T>::SampleX(in.GetData(), in.GetSize(), T(3e-4), out, zm::Invalid<T>());
       }),
       emptied},
      {"ExtractXRange" + twin,
       [] {
         Curve<T> curve = Signal<T>(200);
         const std::uint64_t count =
             hook::Armed([&] { return ZmPoint2T<T>::ExtractXRange(curve, T(0.00305), T(0.0101), T(0)); });
         return Outcome(count, curve);
       },
       Outcome(std::uint64_t(0), Signal<T>(200))},
      {"InterpolateOnYn" + twin,
       [] {
         const Curve<T> in = Signal<T>(200);
         WbArrayTempl<T> xs;
         const std::uint64_t count =
             hook::Armed([&] { return ZmPoint2T<T>::InterpolateOnYn(in.GetData(), in.GetSize(), T(0.5), xs); });
         return Outcome(count, xs);
       },
       Outcome(std::uint64_t(0), WbArrayTempl<T>())},
      {"ComputeFFT" + twin,
       [] {
         const Curve<T> in = Signal<T>(200);
         Curve<T> amplitude, phase;
         const int window[2] = {0, 199};
         const WbErrObj* error =
             hook::Armed([&] { return ZmMathSpectrumT<T>::ComputeFFT(in, window, 1, 256, amplitude, 1, &phase); });
         return Outcome(error) + Outcome(amplitude) + Outcome(phase);
       },
       "error: Not enough memory to compute an FFT of 256 points" + Outcome(Curve<T>()) + Outcome(Curve<T>())},
      {"ComputeCorrelation" + twin,
       [] {
         const Curve<T> in = Signal<T>(200);
         Curve<T> out;
         hook::Armed([&] {
           ZmMathSpectrumT<T>::ComputeCorrelation(in, in, 1, out);
           return 0;
         });
         return Outcome(out);
       },
       Outcome(Curve<T>())},
      {"ComputeTransmissibility direct" + twin, [] { return Transmissibility<T>(1); },
       "error, lists in step, result kept"},
      {"ComputeTransmissibility correlation" + twin, [] { return Transmissibility<T>(2); },
       "error, lists in step, result kept"},
      FilterRow<T, TwinOf<T, ZmFilterMVAd, ZmFilterMVAf>>("ZmFilterMVA" + twin, 9, ZmExtrapolationReflection),
      FilterRow<T, TwinOf<T, ZmFilterCFC180_10kHzd, ZmFilterCFC180_10kHzf>>("ZmFilterCFC180_10kHz" + twin,
                                                                            ZmUnitSecond),
      FilterRow<T, TwinOf<T, ZmFilterSWAd, ZmFilterSWAf>>("ZmFilterSWA" + twin, T(0.002), T(0.5)),
  };
}

// The unit family works on float values and the shared catalogue.
std::vector<EntryPoint> UnitRows() {
  const ZmUnitSystem mmTonS(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
  const auto text = [mmTonS](auto call) {
    return [mmTonS, call] {
      WbString out(L"previous");
      unsigned char done = hook::Armed([&] { return call(mmTonS, out); });
      return std::to_string(done) + Outcome(out);
    };
  };
  const std::string noText = "0" + Outcome(WbString());
  return {
      {"CSMSolverStringToSystem",
       [] {
         ZmUnitSystem system;
         const WbString line(L"UNIT MM TON S KELVIN");
         return Outcome(hook::Armed([&] { return ZmUnitMgr.CSMSolverStringToSystem(line, system, 1); }));
       },
       "error: Not enough memory"},
      {"ShortUnitStringsToSystem (unknown symbol)",
       [] {
         ZmUnitSystem system;
         const WbString mm(L"mm"), t(L"t"), s(L"s"), k(L"K?");
         return Outcome(hook::Armed([&] { return ZmUnitMgr.ShortUnitStringsToSystem(mm, t, s, k, system, 1); }));
       },
       "error: Not enough memory"},
      {"GetSystemFromShortName",
       [] {
         ZmUnitSystem system;
         const WbString name(L"N/mm");
         return Outcome(hook::Armed([&] { return ZmUnitDimForcePerLength.GetSystemFromShortName(name, system); }));
       },
       "error: Not enough memory"},
      {"FormatCSMSolverString", text([](const ZmUnitSystem& system, WbString& out) -> unsigned char {
         return ZmUnitMgr.FormatCSMSolverString(system, out, 1) ? 0 : 1;
       }),
       "0'previous'"},
      {"FormatDimensionalValue", text([](const ZmUnitSystem& system, WbString& out) {
         return system.FormatDimensionalValue(210000.0f, ZmUnitDimPressure, out);
       }),
       noText},
      {"GetDimName", text([](const ZmUnitSystem& system, WbString& out) -> unsigned char {
         out = ZmUnitDimForcePerLength.GetDimName(&system);
         return 1;
       }),
       "1" + Outcome(WbString())},
      {"String2DimensionalValue",
       [mmTonS] {
         const WbString written(L"2.5 GPa");
         double value = 0;
         unsigned char done =
             hook::Armed([&] { return mmTonS.String2DimensionalValue(written, ZmUnitDimPressure, value); });
         return std::to_string(done) + " " + std::to_string(value);
       },
       "0 " + std::to_string(double(zm::kInvalid))},
      {"GetCompatibleEquivUnits",
       [mmTonS] {
         WbObjectArrayTempl<WbString> names;
         WbArrayTempl<float> factors;
         int index = 7;
         std::uint64_t count = hook::Armed(
             [&] { return mmTonS.GetCompatibleEquivUnits(ZmUnitDimPressure, names, factors, 1.0f, &index); });
         return Outcome(count, names, factors) + std::to_string(index);
       },
       Outcome(std::uint64_t(0), WbObjectArrayTempl<WbString>(), WbArrayTempl<float>()) + "-1"},
  };
}

std::vector<EntryPoint> BaseRows() {
  return {
      {"WbRuntimeClass::CreateObject",
       [] {
         WbObject* object = hook::Armed([&] { return WbRuntimeClass::CreateObject(L"ZmFilterCFC60_10kHzd"); });
         const std::string outcome = object ? Text(object->GetRuntimeClass()->GetClassName()) : "null";
         WbObject::DeleteDynamicObject(object);
         return outcome;
       },
       "null"},
      {"WbSetError (long message)",
       [] {
         const std::wstring unit(3000, L'u');
         const WbErrObj* error = hook::Armed([&] { return WbSetError(L"Unsupported length unit '%s'", unit.c_str()); });
         return Outcome(error).substr(0, 40);
       },
       "error: Not enough memory"},
  };
}

TEST(OutOfMemory, EveryEntryPointKeepsItsPromiseWhateverAllocationFails) {
  std::vector<EntryPoint> rows = NumericRows<double>("d"), more = NumericRows<float>("f");
  rows.insert(rows.end(), more.begin(), more.end());
  for (auto* family : {UnitRows, BaseRows}) {
    more = family();
    rows.insert(rows.end(), more.begin(), more.end());
  }
  std::uint64_t runs = 0, failures = 0;
  for (const EntryPoint& row : rows) {
    hook::seen = 0;
    hook::failAt = 0;
    hook::persistent = false;
    const std::string full = row.run();
    ASSERT_NE(full, row.failure) << row.name << ": the full result must differ from the failure";
    const std::uint64_t allocations = hook::seen;
    ASSERT_GT(allocations, 0u) << row.name << " allocates nothing: the row tests nothing";
    for (const bool persistent : {false, true}) {
      for (std::uint64_t n = 1; n <= allocations; ++n) {
        hook::seen = hook::refused = 0;
        hook::failAt = n;
        hook::persistent = persistent;
        const std::int64_t before = hook::live;
        {
          std::string outcome;
          try {
            outcome = row.run();
          } catch (const std::exception& e) {
            hook::armed = false;
            ADD_FAILURE() << row.name << " let " << e.what() << " escape at allocation " << n;
          }
          const bool failed = outcome != full;
          failures += failed ? 1 : 0;
          EXPECT_TRUE(!failed || outcome.compare(0, row.failure.size(), row.failure) == 0)
              << row.name << ", allocation " << n << (persistent ? " and on" : " once") << ":\n  " << outcome
              << "\n  expected " << full << "\n  or " << row.failure;
        }
        EXPECT_EQ(hook::live, before) << row.name << " leaked at allocation " << n;
        ++runs;
      }
    }
    hook::seen = 0;
  }
  std::printf("%zu entry points, %llu runs with an allocation refused, %llu of them failed as documented\n",
              rows.size(), static_cast<unsigned long long>(runs), static_cast<unsigned long long>(failures));
}

// A thread's first error needs no memory: the record has nothing to destroy at thread exit.
TEST(OutOfMemory, FirstErrorOfAThreadNeedsNoMemory) {
  static_assert(std::is_trivially_destructible<WbErrObj>::value, "the per-thread record must need no destructor");
  std::string message;
  hook::seen = hook::refused = 0;
  std::thread worker([&] {
    hook::failAt = 1;
    hook::persistent = true;
    const WbErrObj* error = hook::Armed([] { return WbSetError(L"Not enough points to filter (%d)", 3); });
    message = Text(error->GetMessage());
  });
  worker.join();
  EXPECT_EQ(message, "Not enough points to filter (3)");
  EXPECT_EQ(hook::refused, 0u);
}

}  // namespace
