// Points buffers of 8 double columns: loading and saving a whole file buffer by buffer, beside
// memcpy of the same bytes. Argument: samples per buffer. Counter: bytes per second.

#include "basic/data/NbdAVariable.h"
#include "basic/data/NbdDataPoints.h"
#include "basic/interval/NbiIntervalIntLargeDisjoint.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/data/NgdIBufferIterator.h"
#include "support/Random.h"

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <cstring>
#include <memory>
#include <vector>

namespace {

const int nColumns = 8;
const qint64 nSamples = 2000000;
const QString role = QStringLiteral("V");

enum Selection { ALL, RUNS };

struct File
{
  explicit File(Selection selection)
      : provider(QSharedPointer<NbpMemoryProviderPointsW>::create(NbgEDimension::DIM_2D, nSamples))
  {
    dataSet.setMaxDimension(NgdADataSet::DIM_0);
    dataSet.setDataProvider(provider);
    for (int column = 0; column < nColumns; ++column) {
      std::vector<double> values(nSamples);
      for (qint64 i = 0; i < nSamples; ++i)
        values[i] = testsupport::uniform(column, i, 0., 1.);
      dataSet.assignVariable(
          role, provider->addVariable(QStringLiteral("C%1").arg(column), std::move(values)));
    }
    // Runs of 300 selected samples and 100 that are not.
    for (qint64 first = 300; selection == RUNS && first + 100 <= nSamples; first += 400)
      provider->deselect(NbiIntervalIntLarge(first, first + 99));
    dataSet.setAccessType(role, Nbd::ACCESS_READ_WRITE);
    dataSet.openAllVariables();
    nSelected = dataSet.getSelectedSampleCount(
        NbiIntervalIntLargeDisjoint(NbiIntervalIntLarge::fromLength(nSamples)));
  }

  std::unique_ptr<NgdIBufferIterator> buffers(int nPerBuffer)
  {
    manager.reset(dataSet.createBufferManager());
    manager->setNeedCoordinates(false);
    manager->setNeedSampleNumber(false);
    manager->setNSamplesPerBuffer(nPerBuffer);
    return std::unique_ptr<NgdIBufferIterator>(manager->createBufferIterator());
  }

  qint64 bytes() const { return nSelected * nColumns * qint64(sizeof(double)); }

  QSharedPointer<NbpMemoryProviderPointsW> provider;
  NgdDataSetPoints dataSet;
  std::unique_ptr<NgdABufferManager> manager;
  qint64 nSelected = 0;
};

File &file(Selection selection)
{
  static File all(ALL), runs(RUNS);
  return selection == ALL ? all : runs;
}

void memoryCopy(benchmark::State &state)
{
  const int nPerBuffer = int(state.range(0));
  std::vector<std::vector<double>> columns(nColumns, std::vector<double>(nSamples, 1.));
  std::vector<std::vector<double>> buffer(nColumns, std::vector<double>(nPerBuffer, 1.));
  for (auto _ : state) {
    for (qint64 first = 0; first < nSamples; first += nPerBuffer) {
      for (int column = 0; column < nColumns; ++column)
        std::memcpy(buffer[column].data(), columns[column].data() + first,
                    sizeof(double) * std::min<qint64>(nPerBuffer, nSamples - first));
      benchmark::ClobberMemory();
    }
  }
  state.SetBytesProcessed(state.iterations() * nSamples * nColumns * qint64(sizeof(double)));
}

/// The same into memory of its own for every buffer, as buffers have it.
void memoryCopyToNew(benchmark::State &state)
{
  const int nPerBuffer = int(state.range(0));
  std::vector<std::vector<double>> columns(nColumns, std::vector<double>(nSamples, 1.));
  for (auto _ : state) {
    for (qint64 first = 0; first < nSamples; first += nPerBuffer) {
      const qint64 n = std::min<qint64>(nPerBuffer, nSamples - first);
      std::unique_ptr<double[]> buffer[nColumns];
      for (int column = 0; column < nColumns; ++column) {
        buffer[column].reset(new double[n]);
        std::memcpy(buffer[column].get(), columns[column].data() + first, sizeof(double) * n);
      }
      benchmark::ClobberMemory();
    }
  }
  state.SetBytesProcessed(state.iterations() * nSamples * nColumns * qint64(sizeof(double)));
}

/// From one memory per buffer back into the columns: what saving every buffer of a file copies.
void memoryCopyBack(benchmark::State &state)
{
  const qint64 nPerBuffer = state.range(0);
  std::vector<std::vector<double>> columns(nColumns, std::vector<double>(nSamples, 1.));
  const qint64 nBuffers = (nSamples + nPerBuffer - 1) / nPerBuffer;
  std::vector<std::vector<double>> buffers(nBuffers * nColumns,
                                           std::vector<double>(nPerBuffer, 1.));
  for (auto _ : state) {
    for (qint64 buffer = 0; buffer < nBuffers; ++buffer) {
      const qint64 first = buffer * nPerBuffer;
      for (int column = 0; column < nColumns; ++column)
        std::memcpy(columns[column].data() + first, buffers[buffer * nColumns + column].data(),
                    sizeof(double) * std::min<qint64>(nPerBuffer, nSamples - first));
    }
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * nSamples * nColumns * qint64(sizeof(double)));
}

void load(benchmark::State &state, Selection selection)
{
  File &data = file(selection);
  for (auto _ : state) {
    const auto buffers = data.buffers(int(state.range(0)));
    while (buffers->hasNext())
      benchmark::DoNotOptimize(std::unique_ptr<NbdAData>(buffers->next())->getNSamples());
  }
  state.SetBytesProcessed(state.iterations() * data.bytes());
}

void save(benchmark::State &state, Selection selection)
{
  File &data = file(selection);
  const auto buffers = data.buffers(int(state.range(0)));
  std::vector<std::unique_ptr<NbdAData>> loaded;
  while (buffers->hasNext())
    loaded.emplace_back(buffers->next());
  for (auto _ : state) {
    for (const auto &buffer : loaded)
      data.dataSet.saveFromBufferInParent(*buffer);
  }
  state.SetBytesProcessed(state.iterations() * data.bytes());
}

}  // namespace

BENCHMARK(memoryCopy)->Arg(1000)->Arg(20000)->Arg(500000)->Unit(benchmark::kMillisecond);
BENCHMARK(memoryCopyToNew)->Arg(1000)->Arg(20000)->Arg(500000)->Unit(benchmark::kMillisecond);
BENCHMARK(memoryCopyBack)->Arg(1000)->Arg(20000)->Arg(500000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(load, all, ALL)
    ->Arg(1000)
    ->Arg(20000)
    ->Arg(500000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(load, runs, RUNS)
    ->Arg(1000)
    ->Arg(20000)
    ->Arg(500000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(save, all, ALL)
    ->Arg(1000)
    ->Arg(20000)
    ->Arg(500000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(save, runs, RUNS)
    ->Arg(1000)
    ->Arg(20000)
    ->Arg(500000)
    ->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
  // As in the program: freed buffers stay with the process, or every large one is paid for in page
  // faults again.
  mallopt(M_MMAP_THRESHOLD, 1 << 30);
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
