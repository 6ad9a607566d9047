// Unit conversion: a prepared ZmUnitConverter applied to an array of pressures next to the
// plain loop that multiplies each value by one precomputed factor (the baseline), the
// one-call ZmUnitSystem::ConvertValueFrom that prepares the conversion for every value, and
// reading a value with its symbol from text.
#include <benchmark/benchmark.h>
#include <zemcalc/ZmUnitManager.h>
#include <zemcalc/ZmUnitSystem.h>

#include <vector>

namespace {

constexpr int kValues = 1 << 16;

const ZmUnitSystem kMmTS(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
const ZmUnitSystem kMKgS(ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);

std::vector<float> Pressures() {
  std::vector<float> values(kValues);
  for (int i = 0; i < kValues; ++i) values[static_cast<std::size_t>(i)] = 1000.0f + static_cast<float>(i);
  return values;
}

void BM_BaselineMultiplyByFactor(benchmark::State& state) {
  std::vector<float> values = Pressures();
  const float factor = 1.0e-6f;
  for (auto _ : state) {
    for (float& v : values) v *= factor;
    benchmark::DoNotOptimize(values.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kValues);
}
BENCHMARK(BM_BaselineMultiplyByFactor);

void BM_ConverterConvertScalar(benchmark::State& state) {
  std::vector<float> values = Pressures();
  ZmUnitConverter converter;
  unsigned char needed = 0;
  converter.InitFromTo(kMKgS, kMmTS, needed, &ZmUnitDimPressure);
  for (auto _ : state) {
    for (float& v : values) converter.ConvertScalar(ZmUnitDimPressure, v);
    benchmark::DoNotOptimize(values.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kValues);
}
BENCHMARK(BM_ConverterConvertScalar);

void BM_SystemConvertValueFrom(benchmark::State& state) {
  std::vector<float> values = Pressures();
  for (auto _ : state) {
    for (float& v : values) v = kMmTS.ConvertValueFrom(v, kMKgS, ZmUnitDimPressure, nullptr);
    benchmark::DoNotOptimize(values.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kValues);
}
BENCHMARK(BM_SystemConvertValueFrom);

void BM_ReadValueWithSymbol(benchmark::State& state) {
  const WbString text(L"210000 MPa");
  float value = 0.0f;
  for (auto _ : state) {
    kMKgS.String2DimensionalValue(text, ZmUnitDimPressure, value);
    benchmark::DoNotOptimize(value);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ReadValueWithSymbol);

}  // namespace
