// Random numbers and samples, beside the recurrence in its defining form (two divisions per
// number). Counters: numbers (samples) per second.
//
// On one core of an AMD EPYC: 2.8 ns per number for constant sets 5 and 7 (limit 6; as defined 5.0
// and 11.2), 3.2 ns per uniform and 40 ns per Gaussian sample.

#include "geos/simu/NgmDistributionGamma.h"
#include "geos/simu/NgmDistributionGaussian.h"
#include "geos/simu/NgmDistributionTruncatedGaussian.h"
#include "geos/simu/NgmIndexedGaussianStream.h"

#include <benchmark/benchmark.h>

namespace {

constexpr quint64 SEED = 165426;

/// The shuffled generator as it is defined.
struct PlainGenerator
{
  explicit PlainGenerator(NgmRandomNumberGenerator::tSize size)
      : m(qint64(NgmRandomNumberGenerator::getSizeModulus(size))),
        a(qint64(NgmRandomNumberGenerator::getSizeMultiplier(size))),
        b(NgmRandomNumberGenerator::getSizeOffset(size)),
        x(SEED),
        scale(32. / double(m))
  {
    for (qint64 &entry : table)
      entry = step();
  }

  qint64 step()
  {
    const qint64 q = m / a, r = m % a;
    x = (x % q) * a - r * (x / q) + b;
    while (x < 0)
      x += m;
    return x;
  }

  qint64 next()
  {
    const qint64 y = step();
    qint64 &entry = table[int(double(y) * scale)];
    const qint64 result = entry;
    entry = y;
    return result;
  }

  qint64 m, a, b, x;
  double scale;
  qint64 table[32];
};

NgmRandomNumberGenerator::tSize sizeOf(const benchmark::State &state)
{
  return NgmRandomNumberGenerator::tSize(state.range(0));
}

void BM_nextNumberAsDefined(benchmark::State &state)
{
  PlainGenerator generator(sizeOf(state));
  NgmRandomNumberGenerator check(SEED, sizeOf(state));
  for (int i = 0; i < 1000; ++i)
    if (quint64(generator.next()) != check.nextNumber())
      state.SkipWithError("the defining form gives other numbers");
  for (auto _ : state)
    benchmark::DoNotOptimize(generator.next());
  state.SetItemsProcessed(state.iterations());
}

void BM_nextNumber(benchmark::State &state)
{
  NgmRandomNumberGenerator generator(SEED, sizeOf(state));
  for (auto _ : state)
    benchmark::DoNotOptimize(generator.nextNumber());
  state.SetItemsProcessed(state.iterations());
}

template <class Distribution>
void sample(benchmark::State &state, Distribution distribution)
{
  for (auto _ : state)
    benchmark::DoNotOptimize(distribution.nextR());
  state.SetItemsProcessed(state.iterations());
}

void BM_uniform(benchmark::State &state)
{
  sample(state, NgmDistributionUniformD(SEED));
}

void BM_gaussian(benchmark::State &state)
{
  sample(state, NgmDistributionGaussian(SEED));
}

void BM_gamma(benchmark::State &state)
{
  sample(state, NgmDistributionGamma(2.5, 1., SEED));
}

void BM_truncatedGaussian(benchmark::State &state)
{
  sample(state, NgmDistributionTruncatedGaussian(0.5, 3., SEED));
}

/// Items far apart within their block: about 500 are skipped each time.
void BM_indexedGaussianAtRandom(benchmark::State &state)
{
  NgmIndexedGaussianStream stream(1, 1, SEED, NgmRandomNumberGenerator::SIZE_5);
  qint64 item = 0;
  for (auto _ : state) {
    item = (item + 1499) % 100000;
    benchmark::DoNotOptimize(stream.value(false, item + 1));
  }
  state.SetItemsProcessed(state.iterations());
}

}  // namespace

BENCHMARK(BM_nextNumberAsDefined)->Arg(5)->Arg(7);
BENCHMARK(BM_nextNumber)->Arg(5)->Arg(7);
BENCHMARK(BM_uniform);
BENCHMARK(BM_gaussian);
BENCHMARK(BM_gamma);
BENCHMARK(BM_truncatedGaussian);
BENCHMARK(BM_indexedGaussianAtRandom);

BENCHMARK_MAIN();
