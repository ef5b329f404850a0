#include "interpol/private/NgcInterpolExtMig.h"

#include "basic/data/NbdVariableDouble.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "geos/data/NgdDataSetGrid.h"
#include "geos/data/NgdDataSetPoints.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

namespace {

using GridProvider = QSharedPointer<NbpMemoryProviderGridW>;

NgdDataSetGrid external(const GridProvider &provider, const QStringList &names)
{
  NgdDataSetGrid grid;
  grid.setDataProvider(provider);
  for (const QString &name : names)
    grid.assignVariable(Nbd::Role::EXTDRIFT, provider->getIdFromName(name));
  return grid;
}

template <class DataSet, class Provider>
DataSet target(const QSharedPointer<Provider> &provider, const QStringList &names)
{
  DataSet dataSet;
  dataSet.setDataProvider(provider);
  for (const QString &name : names)
    dataSet.assignVariable(Nbd::Role::EXTDRIFT,
                           provider->addEmptyVariableSimple(name, Nbd::TYPE_DOUBLE));
  return dataSet;
}

template <class Provider>
std::vector<double> valuesOf(const Provider &provider, const QString &name)
{
  NbdVariableDouble values;
  const auto ranks = NbiIntervalIntLarge::fromLength(provider.getSampleCount());
  values.resizeAndFill(int(ranks.getLength()));
  provider.readVariable(provider.getIdFromName(name), ranks, values, 0);
  return std::vector<double>(values.getArrayConst(), values.getArrayConst() + values.getNValues());
}

/// A function that linear interpolation reproduces.
double trilinear(const NbgVector3D &p)
{
  return 2. + 0.01 * p.x() - 0.02 * p.y() + 0.05 * p.z() + 1e-5 * p.x() * p.y() * p.z();
}

GridProvider makeTrilinearGrid()
{
  const GridProvider provider = testsupport::makeGrid(101, 41, 11);
  const NbgGeomGrid &geometry = provider->getGridGeometry();
  std::vector<double> values(std::size_t(geometry.getGridSize()));
  for (std::size_t rank = 0; rank < values.size(); ++rank)
    values[rank] = trilinear(geometry.getCellCenter(qint64(rank)));
  provider->addVariable(QStringLiteral("t"), values);
  return provider;
}

}  // namespace

TEST(NgcInterpolExtMig, InterpolatesLinearlyBetweenCentres)
{
  const GridProvider grid = makeTrilinearGrid();
  const auto points = testsupport::makePoints(3000, NbgEDimension::DIM_3D);
  const NbgGeomGrid &geometry = grid->getGridGeometry();
  std::vector<double> reference;
  // The second budget forces many slabs of the grid and several buffers of samples.
  for (const qint64 budget : {qint64(1) << 30, qint64(60000)}) {
    const QString name = QStringLiteral("t%1").arg(budget);
    NgcInterpolExtMig migration;
    migration.setAvailableMemBytes(budget);
    migration.addExternalGrid({Nbd::Role::EXTDRIFT}, external(grid, {QStringLiteral("t")}));
    migration.setDataSet(target<NgdDataSetPoints>(points, {name}));
    ASSERT_EQ(migration.execute(), NbcAProgress::COMPLETED)
        << qPrintable(migration.getErrorMessage());
    const std::vector<double> result = valuesOf(*points, name);
    if (!reference.empty()) {
      EXPECT_EQ(result, reference);
      continue;
    }
    reference = result;
    const std::vector<double> x = valuesOf(*points, QStringLiteral("X"));
    const std::vector<double> y = valuesOf(*points, QStringLiteral("Y"));
    const std::vector<double> z = valuesOf(*points, QStringLiteral("Z"));
    int nInside = 0, nOutside = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
      const NbgVector3D location(x[i], y[i], z[i]);
      if (!geometry.isInside(location)) {
        EXPECT_FALSE(NbbGlobal::isDefined(result[i]));
        ++nOutside;
        continue;
      }
      // Beyond the outermost centres the nearest count.
      const NbgVector3D lower = geometry.getCellCenter(0, 0, 0);
      const NbgVector3D upper = geometry.getCellCenter(geometry.getGridSize() - 1);
      const NbgVector3D clamped(std::clamp(x[i], lower.x(), upper.x()),
                                std::clamp(y[i], lower.y(), upper.y()),
                                std::clamp(z[i], lower.z(), upper.z()));
      EXPECT_NEAR(result[i], trilinear(clamped), 1e-11) << location.toString().toStdString();
      ++nInside;
    }
    EXPECT_GT(nInside, 100);
    EXPECT_GT(nOutside, 100);
  }
}

TEST(NgcInterpolExtMig, ServesGridsAndLeavesGapsUndefined)
{
  const GridProvider coarse = testsupport::makeGrid2D(20, 20);
  const GridProvider fine =
      testsupport::makeGrid(testsupport::makeGridGeometry2D(80, 80, 2.5, 2.5));
  const NbgGeomGrid &geometry = coarse->getGridGeometry();
  std::vector<double> holed = valuesOf(*coarse, QStringLiteral("Z1"));
  holed[std::size_t(geometry.getRankFromIJK(5, 5, 0))] = NbbGlobal::D_FFFF;
  coarse->addVariable(QStringLiteral("holed"), holed);
  std::vector<bool> selection(400, true);
  selection[std::size_t(geometry.getRankFromIJK(15, 15, 0))] = false;
  coarse->setSelection(selection);

  NgcInterpolExtMig migration;
  migration.addExternalGrid({Nbd::Role::EXTDRIFT}, external(coarse, {QStringLiteral("holed")}));
  migration.addExternalGrid({Nbd::Role::EXTDRIFT}, external(fine, {QStringLiteral("Z2")}));
  migration.setDataSet(
      target<NgdDataSetGrid>(fine, {QStringLiteral("first"), QStringLiteral("second")}));
  ASSERT_EQ(migration.execute(), NbcAProgress::COMPLETED)
      << qPrintable(migration.getErrorMessage());

  const std::vector<double> first = valuesOf(*fine, QStringLiteral("first"));
  EXPECT_EQ(valuesOf(*fine, QStringLiteral("second")), valuesOf(*fine, QStringLiteral("Z2")));
  const NbgVector3D gaps[] = {geometry.getCellCenter(5, 5, 0), geometry.getCellCenter(15, 15, 0)};
  for (std::size_t rank = 0; rank < first.size(); ++rank) {
    const NbgVector3D location = fine->getGridGeometry().getCellCenter(qint64(rank));
    bool isNear = false;
    for (const NbgVector3D &gap : gaps)
      isNear = isNear ||
               (std::fabs(location.x() - gap.x()) < 10. && std::fabs(location.y() - gap.y()) < 10.);
    EXPECT_EQ(NbbGlobal::isDefined(first[rank]), !isNear) << location.toString().toStdString();
  }
}

TEST(NgcInterpolExtMig, WantsOneVariablePerExternalOne)
{
  const GridProvider grid = testsupport::makeGrid2D(5, 5);
  const auto points = testsupport::makePoints(10);
  NgcInterpolExtMig migration;
  migration.addExternalGrid({Nbd::Role::EXTDRIFT},
                            external(grid, {QStringLiteral("Z1"), QStringLiteral("Z2")}));
  migration.setDataSet(target<NgdDataSetPoints>(points, {QStringLiteral("only one")}));
  EXPECT_EQ(migration.execute(), NbcAProgress::FAILED);
  EXPECT_TRUE(migration.getErrorMessage().contains(QStringLiteral("Expected number = [2,2]")));
}
