#include <gtest/gtest.h>

#include <QLoggingCategory>
#include <QVector>

#include <algorithm>
#include <memory>
#include <random>

#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdDataGrid.h"
#include "basic/data/NbdDataLines.h"
#include "basic/data/NbdDataPoints.h"
#include "basic/error/NbeMemoryError.h"
#include "basic/error/NbeUserError.h"
#include "geos/data/NgdBufferManagerGrid.h"
#include "geos/data/NgdBufferManagerLines.h"
#include "geos/data/NgdBufferManagerPoints.h"
#include "geos/data/NgdDataDoubleBuffer.h"
#include "geos/data/NgdDataSetGrid.h"
#include "geos/data/NgdDataSetLines.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/data/NgdIBufferIterator.h"
#include "support/Errors.h"
#include "support/TestData.h"

using testsupport::errorOf;
using testsupport::expectAssertion;

namespace {

const qint64 ample = qint64(1) << 50;

/// An open data set whose samples have a sample number only (8 bytes).
template <class DataSet, class Provider>
std::unique_ptr<DataSet> openDataSet(QSharedPointer<Provider> provider)
{
  auto dataSet = std::make_unique<DataSet>();
  dataSet->setMaxDimension(NgdADataSet::DIM_0);
  dataSet->setDataProvider(provider);
  dataSet->openAllVariables();
  return dataSet;
}

std::unique_ptr<NgdDataSetPoints> emptyPoints(qint64 n)
{
  return openDataSet<NgdDataSetPoints>(
      QSharedPointer<NbpMemoryProviderPointsW>::create(NbgEDimension::DIM_2D, n));
}

std::unique_ptr<NgdDataSetGrid> emptyGrid(int nx, int ny, int nz)
{
  return openDataSet<NgdDataSetGrid>(QSharedPointer<NbpMemoryProviderGridW>::create(
      testsupport::makeGridGeometry(nx, ny, nz, NbgVector3D::Unit)));
}

std::unique_ptr<NgdDataSetLines> emptyLines(const std::vector<int> &nSamplesPerLine)
{
  return openDataSet<NgdDataSetLines>(
      QSharedPointer<NbpMemoryProviderLineW>::create(NbgEDimension::DIM_3D, nSamplesPerLine));
}

/// How often an iterator hands out each sample number, per loop rank; checks the buffer count.
QMap<int, QVector<int>> countVisits(const NgdABufferManager &manager, qint64 nSamples)
{
  QMap<int, QVector<int>> visits;
  int nBuffers = 0;
  const std::unique_ptr<NgdIBufferIterator> buffers(manager.createBufferIterator());
  for (int pass = 0; pass < 2; ++pass) {
    visits.clear();
    for (nBuffers = 0; buffers->hasNext(); ++nBuffers) {
      const std::unique_ptr<NbdAData> buffer(buffers->next());
      QVector<int> &counts = visits[buffer->getMacroRanks().first()];
      counts.resize(int(nSamples));
      for (int position = 0; position < buffer->getNSamples(); ++position)
        ++counts[int(buffer->getSampleNumber(position)) - 1];
    }
    buffers->toFront();
  }
  EXPECT_EQ(manager.getNBuffers(), nBuffers);
  return visits;
}

void expectEachOnce(NgdABufferManager &manager, qint64 nSamples)
{
  const QMap<int, QVector<int>> visits = countVisits(manager, nSamples);
  EXPECT_EQ(manager.getVisitedLoopRanks().getLength(), visits.size());
  for (auto counts = visits.begin(); counts != visits.end(); ++counts) {
    EXPECT_TRUE(manager.getVisitedLoopRanks().isIncluded(counts.key()));
    EXPECT_EQ(nSamples, std::count(counts->begin(), counts->end(), 1));
  }
}

void setLoop(NgdABufferManager &manager, int nIndices)
{
  manager.setIndicesLoopPolicy(Nbd::LOOP_ON_INDICES);
  manager.setLoopIndices(NbiIntervalIntSmall::fromLength(nIndices));
}

QStringList logged;

void keepMessage(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
  if (type == QtDebugMsg && qstrcmp(context.category, "tarnwick.geos.calc.manager") == 0)
    logged << text;
}

}  // namespace

TEST(NgdBufferManagerPoints, TuningKeepsItsBounds)
{
  std::mt19937 random(5);
  for (qint64 n : {1, 2, 999, 1000, 1001, 8000, 123456, 1000000}) {
    const auto dataSet = emptyPoints(n);
    NgdBufferManagerPoints manager(*dataSet);
    for (int trial = 0; trial < 40; ++trial) {
      const qint64 nThreads = 1 + random() % 16, nPreferred = 1 + random() % 200;
      manager.tuneBufferSize(ample, int(nThreads), int(nPreferred));
      const qint64 size = manager.getNSamplesPerBuffer();
      const auto partOf = [&](qint64 count) { return (n + count - 1) / count; };
      EXPECT_GE(size, std::min<qint64>(1000, n));
      EXPECT_LE(size, std::max<qint64>(1000, partOf(nThreads)));
      EXPECT_EQ((n + size - 1) / size, manager.getNBuffers());
      if (partOf(nPreferred) >= 1000) {
        EXPECT_EQ(std::max<qint64>(std::min(partOf(nPreferred), partOf(nThreads)), 1000), size);
      }
    }
  }
}

TEST(NgdBufferManagerPoints, SizesOfKnownCases)
{
  struct Case
  {
    qint64 nSamples, memory;
    int nThreads, nPreferred, size, nBuffers;
  };
  for (const Case &c : {Case{500, ample, 8, 100, 500, 1},          //
                        Case{1000000, ample, 8, 100, 10000, 100},  //
                        Case{1000000, 80000, 8, 100, 10000, 100},  // a hundredth just fits
                        Case{1000000, 79999, 8, 100, 1250, 800},   // 79999 / 64 + 1
                        Case{1000000, 10, 8, 100, 1, 1000000}}) {
    const auto dataSet = emptyPoints(c.nSamples);
    NgdBufferManagerPoints manager(*dataSet);
    manager.tuneBufferSize(c.memory, c.nThreads, c.nPreferred);
    EXPECT_EQ(c.size, manager.getNSamplesPerBuffer());
    EXPECT_EQ(c.nBuffers, manager.getNBuffers());
    setLoop(manager, 5);
    manager.tuneBufferSize(c.memory, c.nThreads, c.nPreferred);
    EXPECT_EQ(5 * c.nBuffers, manager.getNBuffers());
  }

  const auto dataSet = emptyPoints(1000);
  NgdBufferManagerPoints manager(*dataSet);
  manager.setBufferSize(8 * 300 + 7);
  EXPECT_EQ(300, manager.getNSamplesPerBuffer());
  EXPECT_EQ(4, manager.getNBuffers());
  manager.setBufferSize(3);
  EXPECT_EQ(1, manager.getNSamplesPerBuffer());
}

TEST(NgdBufferManagerPoints, EveryCutCoversEverySampleOnce)
{
  for (int n : {1, 7, 100}) {
    const auto dataSet = emptyPoints(n);
    NgdBufferManagerPoints manager(*dataSet);
    setLoop(manager, 3);
    for (int size : {1, 3, 7, 50, 200}) {
      manager.setNSamplesPerBuffer(size);
      expectEachOnce(manager, n);
    }
  }
}

TEST(NgdBufferManagerPoints, SkippingAdvancesWithoutLoading)
{
  const auto dataSet = emptyPoints(10);
  NgdBufferManagerPoints manager(*dataSet);
  manager.setNSamplesPerBuffer(4);
  const std::unique_ptr<NgdIBufferIterator> buffers(manager.createBufferIterator());
  buffers->skipNext();
  buffers->skipNext();
  const std::unique_ptr<NbdAData> last(buffers->next());
  EXPECT_EQ(2, last->getNSamples());
  EXPECT_EQ(9, last->getSampleNumber(0));
  EXPECT_FALSE(buffers->hasNext());
  EXPECT_NE(errorOf([&] { buffers->next(); }), QStringLiteral("nothing thrown"));
}

TEST(NgdBufferManager, DataSetWithoutSelectedSampleHasNoBuffer)
{
  const auto provider = testsupport::makePoints(50);
  provider->deselect(NbiIntervalIntLarge(0, 49));
  const auto dataSet = openDataSet<NgdDataSetPoints>(provider);
  NgdBufferManagerPoints manager(*dataSet);
  manager.tuneBufferSize(ample, 2, 100);
  EXPECT_EQ(0, manager.getNBuffers());
  EXPECT_FALSE(std::unique_ptr<NgdIBufferIterator>(manager.createBufferIterator())->hasNext());

  const auto grid = testsupport::makeGrid(3, 3, 2);
  grid->deselect(NbiIntervalIntLarge(0, 17));
  const auto gridDataSet = openDataSet<NgdDataSetGrid>(grid);
  NgdBufferManagerGrid gridManager(*gridDataSet);
  gridManager.tuneBufferSize(ample, 2, 100);
  EXPECT_EQ(0, gridManager.getNBuffers());
  EXPECT_FALSE(std::unique_ptr<NgdIBufferIterator>(gridManager.createBufferIterator())->hasNext());
}

TEST(NgdBufferManagerLines, SizesOfKnownCases)
{
  const std::vector<int> lines(5000, 20);
  const auto dataSet = emptyLines(lines);
  NgdBufferManagerLines manager(*dataSet);
  struct Case
  {
    qint64 memory;
    int nThreads, nPreferred, size;
  };
  for (const Case &c : {Case{1, 8, 1, 5000},                 // everything in one buffer
                        Case{ample, 8, 100, 1000},           // at most 1000 lines
                        Case{8 * 160 * 50, 8, 100, 50},      // 50 lines of 20 samples a thread
                        Case{8 * 160 * 51 - 1, 8, 100, 50},  //
                        Case{8 * 160, 8, 100, 8},            // one fits: one line a thread
                        Case{64 * 160, 64, 100, 10}}) {
    manager.tuneBufferSize(c.memory, c.nThreads, c.nPreferred);
    EXPECT_EQ(c.size, manager.getNLinesPerBuffer());
    EXPECT_EQ((5000 + c.size - 1) / c.size, manager.getNBuffers());
    EXPECT_EQ(20, manager.getMaxSamplesPerLine());
  }
  manager.setBufferSize(160 * 30 + 159);
  EXPECT_EQ(30, manager.getNLinesPerBuffer());

  const QString path = QStringLiteral("data\\private\\NgdBufferManagerLines");
  expectAssertion(path, QStringLiteral("maximum memory too small."),
                  [&] { manager.tuneBufferSize(8 * 160 - 1, 8, 100); });
  expectAssertion(path, QStringLiteral("bufferSize too small."),
                  [&] { manager.setBufferSize(159); });
  expectAssertion(path, QStringLiteral("Should not be called"),
                  [&] { manager.setNSamplesPerBuffer(10); });
}

TEST(NgdBufferManagerLines, EveryCutCoversEveryLineOnce)
{
  const auto dataSet = emptyLines({3, 0, 5, 1, 0, 2, 4});
  NgdBufferManagerLines manager(*dataSet);
  setLoop(manager, 2);
  for (int nLines : {1, 2, 3, 7}) {
    manager.setBufferSize(8 * 5 * nLines);
    expectEachOnce(manager, 15);
  }
}

TEST(NgdBufferManagerGrid, TuningFollowsMemoryAndThreads)
{
  struct Case
  {
    int nx, ny, nz;
    qint64 memory;
    int nThreads, nPreferred, blockX, blockY, nSamples, nBuffers;
  };
  for (const Case &c : {Case{30, 20, 10, ample, 4, 1, 30, 20, 6000, 1},
                        Case{30, 20, 10, ample, 4, 100, 1, 20, 200, 30},
                        Case{250, 20, 10, ample, 4, 100, 3, 20, 600, 84},
                        Case{200, 20, 10, ample, 4, 100, 2, 20, 400, 100},
                        // fewer planes than threads: columns of a quarter of the rows
                        Case{3, 20, 10, ample, 4, 100, 1, 5, 50, 12},
                        // a plane (1600 bytes) exceeds a thread's share: 3 rows fit
                        Case{30, 20, 10, 1000, 4, 100, 1, 3, 30, 210},
                        Case{30, 20, 10, 320, 4, 100, 1, 1, 10, 600}}) {
    const auto dataSet = emptyGrid(c.nx, c.ny, c.nz);
    NgdBufferManagerGrid manager(*dataSet);
    for (int nLoops : {1, 5}) {
      setLoop(manager, nLoops);
      manager.tuneBufferSize(c.memory, c.nThreads, c.nPreferred);
      EXPECT_EQ(c.blockX, manager.getNplanesPerBuffer());
      EXPECT_EQ(c.blockY, manager.getNRowsPerBuffer());
      EXPECT_EQ(c.nSamples, manager.getNSamplesPerBuffer());
      EXPECT_EQ(nLoops * c.nBuffers, manager.getNBuffers());
    }
  }
}

TEST(NgdBufferManagerGrid, BlockSearchTakesTheLastBlockBelowTheSize)
{
  for (const NbgIntVector3D &n : {NbgIntVector3D(6, 5, 4), NbgIntVector3D(1, 7, 2),
                                  NbgIntVector3D(9, 1, 3), NbgIntVector3D(4, 4, 1)}) {
    const auto dataSet = emptyGrid(n.x(), n.y(), n.z());
    NgdBufferManagerGrid manager(*dataSet);
    // Blocks in the order in which they grow: whole rows first, then planes.
    QVector<QPair<int, int>> blocks;
    for (int b = 1; b <= n.y(); ++b)
      blocks << qMakePair(1, b);
    for (int a = 2; a < n.x(); ++a)
      blocks << qMakePair(a, n.y());
    for (int size = n.z(); size < n.product(); ++size) {
      QPair<int, int> expected(1, 1);
      for (const auto &block : blocks) {
        if (n.x() > 1 && block.first * block.second * n.z() < size)
          expected = block;
      }
      for (int mode = 0; mode < 2; ++mode) {
        mode == 0 ? manager.setNSamplesPerBuffer(size) : manager.setBufferSize(8 * size + 7);
        EXPECT_EQ(expected.first, manager.getNplanesPerBuffer());
        EXPECT_EQ(expected.second, manager.getNRowsPerBuffer());
        EXPECT_EQ(expected.first * expected.second, manager.getNSamplesPerBuffer());
      }
    }
    manager.setNSamplesPerBuffer(int(n.product()));
    EXPECT_EQ(1, manager.getNBuffers());
    EXPECT_EQ(n.product(), manager.getNSamplesPerBuffer());
  }
}

TEST(NgdBufferManagerGrid, OptimalBlocksGiveUpPlanesThenThreads)
{
  const auto dataSet = emptyGrid(40, 10, 5);
  NgdBufferManagerGrid manager(*dataSet);
  const NbgIntVector3D border(2, 1, 1);
  // One plane with its border has 12 x 7 nodes of 8 bytes; 4 more planes around a buffer.
  const qint64 plane = 12 * 7 * 8;
  struct Case
  {
    qint64 memory;
    int nThreads, planes, kept;
  };
  for (const Case &c :
       {Case{ample, 4, 10, 4}, Case{4 * 14 * plane, 4, 10, 4}, Case{4 * 14 * plane - 1, 4, 9, 4},
        Case{4 * 6 * plane, 4, 2, 4}, Case{4 * 6 * plane - 1, 4, 2, 3}, Case{6 * plane, 4, 2, 1}}) {
    EXPECT_EQ(c.kept, manager.setOptimalBlockSize(c.memory, border, c.nThreads));
    EXPECT_EQ(c.planes, manager.getNplanesPerBuffer());
    EXPECT_EQ(10, manager.getNRowsPerBuffer());
    EXPECT_EQ(50 * c.planes, manager.getNSamplesPerBuffer());
    EXPECT_EQ((40 + c.planes - 1) / c.planes, manager.getNBuffers());
  }
  EXPECT_EQ(QStringLiteral("There is not enough memory to handle a buffer containing a grid with "
                           "6x12x7 nodes"),
            errorOf([&] { manager.setOptimalBlockSize(6 * plane - 1, border, 4); }));
}

TEST(NgdBufferManagerGrid, EveryCutCoversEveryNodeOnce)
{
  std::mt19937 random(17);
  for (int trial = 0; trial < 30; ++trial) {
    const int nx = 1 + random() % 7, ny = 1 + random() % 7, nz = 1 + random() % 7;
    const auto dataSet = emptyGrid(nx, ny, nz);
    NgdBufferManagerGrid manager(*dataSet);
    setLoop(manager, 1 + random() % 3);
    manager.setNSamplesPerBuffer(nz + int(random() % (nx * ny * nz)));
    expectEachOnce(manager, nx * ny * nz);
    manager.setSlicesPerBuffer(1 + int(random() % 3));
    expectEachOnce(manager, nx * ny * nz);
    manager.tuneBufferSize(ample, 1 + int(random() % 4), 1 + int(random() % 4));
    expectEachOnce(manager, nx * ny * nz);
    manager.splitInPlane(1 + trial % 2);
    EXPECT_EQ((trial % 2 ? nz : nx) * manager.getVisitedLoopRanks().getLength(),
              manager.getNBuffers());
    EXPECT_EQ(ny * (trial % 2 ? nx : nz), manager.getNSamplesPerBuffer());
    expectEachOnce(manager, nx * ny * nz);
  }
}

TEST(NgdBufferManagerGrid, SubGridIsVisitedAtItsPlace)
{
  const auto dataSet = emptyGrid(6, 5, 4);
  NgdBufferManagerGrid manager(*dataSet);
  manager.setTargetSubGrid(NbgIntVector3D(3, 2, 2), NbgIntVector3D(2, 3, 1));
  manager.setNSamplesPerBuffer(4);
  const QMap<int, QVector<int>> visits = countVisits(manager, 120);
  int rank = 0;
  for (int i = 0; i < 6; ++i)
    for (int j = 0; j < 5; ++j)
      for (int k = 0; k < 4; ++k)
        EXPECT_EQ(i >= 2 && i < 5 && j >= 3 && k >= 1 && k < 3 ? 1 : 0, visits[0][rank++]);
}

TEST(NgdBufferManagerGrid, RefusesWhatDoesNotFit)
{
  const QString path = QStringLiteral("data\\private\\NgdBufferManagerGrid");
  const auto dataSet = emptyGrid(8, 6, 4);
  NgdBufferManagerGrid manager(*dataSet);
  EXPECT_EQ(QStringLiteral("There is not enough memory to handle a buffer containing a 192 samples "
                           "(size of a sample = 8 bytes)"),
            errorOf([&] { manager.tuneBufferSize(8 * 192 - 1, 1, 1); }));
  const QString part = QStringLiteral(
      "There is not enough memory to handle a buffer containing a 4 samples "
      "(size needed for one sample = 8 bytes)");
  EXPECT_EQ(part, errorOf([&] { manager.tuneBufferSize(31, 1, 100); }));
  EXPECT_EQ(part + QStringLiteral("\nYou may try to reduce number of threads to reduce needed "
                                  "memory (one thread would need at least 32 bytes)"),
            errorOf([&] { manager.tuneBufferSize(63, 2, 100); }));
  EXPECT_THROW(manager.tuneBufferSize(63, 2, 100), NbeMemoryError);

  EXPECT_EQ(QStringLiteral("There is not enough memory to handle the grid."),
            errorOf([&] { manager.setBufferSize(31); }));
  EXPECT_THROW(manager.setBufferSize(31), NbeUserError);
  expectAssertion(path, QStringLiteral("Too many Z levels."),
                  [&] { manager.setNSamplesPerBuffer(3); });
  for (int order : {0, 3})
    expectAssertion(path, QStringLiteral("wrong order"), [&] { manager.splitInPlane(order); });

  manager.setOrder(1);
  const QString wrongOrder = QStringLiteral("wrong order");
  expectAssertion(path, wrongOrder, [&] { manager.tuneBufferSize(ample, 1, 100); });
  expectAssertion(path, wrongOrder, [&] { manager.setBufferSize(ample); });
  expectAssertion(path, wrongOrder, [&] { manager.setNSamplesPerBuffer(10); });

  const auto large = emptyGrid(2000, 2000, 2000);
  NgdBufferManagerGrid largeManager(*large);
  expectAssertion(path, QStringLiteral("n_samples too large"),
                  [&] { largeManager.tuneBufferSize(ample, 1, 1); });
  expectAssertion(path, QStringLiteral("bufferSize too large."),
                  [&] { largeManager.setBufferSize(ample); });
  largeManager.tuneBufferSize(ample, 8, 100);
  EXPECT_EQ(80000000, largeManager.getNSamplesPerBuffer());
}

TEST(NgdABufferManager, WritesItsSizesToTheLog)
{
  const auto dataSet = emptyPoints(2000);
  NgdBufferManagerPoints manager(*dataSet);
  const QtMessageHandler before = qInstallMessageHandler(keepMessage);
  manager.tuneBufferSize(8000, 2, 100);
  EXPECT_TRUE(logged.isEmpty());
  QLoggingCategory::setFilterRules(QStringLiteral("tarnwick.geos.calc.manager.debug=true"));
  manager.tuneBufferSize(16384, 2, 100);
  manager.setNSamplesPerBuffer(500);
  QLoggingCategory::setFilterRules(QString());
  qInstallMessageHandler(before);

  ASSERT_EQ(2, logged.size());
  const QStringList tuning = logged[0].split('\n'), setting = logged[1].split('\n');
  EXPECT_TRUE(tuning[0].startsWith(QStringLiteral("Statistics for buffer manager after ")));
  EXPECT_TRUE(tuning[0].contains(QStringLiteral("NgdABufferManager::tuneBufferSize(qint64, int")) ||
              tuning[0].contains(QStringLiteral("NgdABufferManager::tuneBufferSize(long long")));
  for (const auto &line : {QStringLiteral("Max memory: 16.0 KB / N threads: 2 / N Preferred: 100"),
                           QStringLiteral("Number of buffers: 2"),
                           QStringLiteral("Number of samples per buffer: 1000"),
                           QStringLiteral("Size of a buffer: 7.8 KB"),
                           QStringLiteral("Number of indices per buffer: 1")})
    EXPECT_EQ(1, tuning.filter(line).size()) << qPrintable(line) << qPrintable(logged[0]);
  EXPECT_EQ(1, setting.filter(QStringLiteral("Number of samples per buffer 500")).size());
}

TEST(NgdDataDoubleBuffer, OwnsBothBuffers)
{
  // Leaks and double deletions are found by the sanitizer.
  const auto *same = new NbdDataPoints;
  EXPECT_TRUE(NgdDataDoubleBuffer(same, same, true).areSameData());
  const NgdDataDoubleBuffer pair(new NbdDataPoints, new NbdDataPoints, false);
  EXPECT_NE(pair.getBuffer1(), pair.getBuffer2());
}
