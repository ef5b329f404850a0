// Reading and writing ranges of a memory provider, against a plain copy of the same values.

#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableFloat.h"
#include "basic/geom/NbgEDimension.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"

#include <benchmark/benchmark.h>

#include <cstring>

namespace {

constexpr int N = 1 << 20;

/// Which samples are selected: all, without a selection; runs of 64; every second; 60 % at random.
enum Selection { NONE, RUNS, ALTERNATE, RANDOM };

class File
{
public:
  explicit File(int selection) : provider(NbgEDimension::DIM_1D, N)
  {
    std::vector<double> values(N);
    std::vector<bool> flags(N);
    quint32 state = 1;
    for (int rank = 0; rank < N; ++rank) {
      state = state * 1664525u + 1013904223u;
      values[rank] = double(rank);
      flags[rank] = selection == RUNS        ? (rank / 64) % 2 == 0
                    : selection == ALTERNATE ? rank % 2 == 0
                                             : state < 0.6 * 4294967296.;
    }
    id = provider.addVariable(QStringLiteral("v"), std::move(values));
    if (selection != NONE)
      provider.setSelection(flags);
    provider.openVariable(id, Nbd::ACCESS_READ_WRITE);
  }

  NbpMemoryProviderPointsW provider;
  QString id;
};

const NbiIntervalIntLarge ALL(0, N - 1);

void perSample(benchmark::State &state)
{
  state.SetItemsProcessed(state.iterations() * N);
}

void plainCopy(benchmark::State &state)
{
  const std::vector<double> in(N, 1.);
  std::vector<double> out(N);
  for (auto _ : state) {
    std::memcpy(out.data(), in.data(), N * sizeof(double));
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  perSample(state);
}

template <class Variable>
void read(benchmark::State &state)
{
  const File file(int(state.range(0)));
  Variable values;
  values.resizeAndFill(N);
  for (auto _ : state)
    if (!file.provider.readVariable(file.id, ALL, values, 0))
      state.SkipWithError("read failed");
  perSample(state);
}

void write(benchmark::State &state)
{
  File file(int(state.range(0)));
  NbdVariableDouble values;
  values.resizeAndFill(N, 1.);
  for (auto _ : state)
    if (!file.provider.writeVariable(file.id, ALL, values, 0))
      state.SkipWithError("write failed");
  perSample(state);
}

void countSelected(benchmark::State &state)
{
  const File file(RANDOM);
  qint64 first = 0;
  for (auto _ : state) {
    first = (first + 7919) % (N / 2);
    benchmark::DoNotOptimize(
        file.provider.getSelectedSampleCount(NbiIntervalIntLarge(first, first + N / 3)));
  }
}

}  // namespace

BENCHMARK(plainCopy);
BENCHMARK_TEMPLATE(read, NbdVariableDouble)->DenseRange(NONE, RANDOM);
BENCHMARK_TEMPLATE(read, NbdVariableFloat)->DenseRange(NONE, RANDOM);
BENCHMARK(write)->DenseRange(NONE, RANDOM);
BENCHMARK(countSelected);
BENCHMARK_MAIN();
