#include "NbpIProviderConformance.h"

#include "basic/data/NbdEVarRole.h"
#include "basic/data/NbdEnumCatalog.h"
#include "basic/data/NbdMacroIndexInfo.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/data/NbdVariablePoint3D.h"
#include "basic/data/NbdVariableSelection.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/geom/NbgBox.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "basic/provider/NbpMemoryProviderGridR.h"
#include "basic/provider/NbpMemoryProviderGridW.h"
#include "basic/provider/NbpMemoryProviderLineCoreW.h"
#include "basic/provider/NbpMemoryProviderLinePointW.h"
#include "basic/provider/NbpMemoryProviderLineW.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "support/TestData.h"

#include <algorithm>
#include <limits>

namespace {

template <class Provider>
QSharedPointer<NbpIProviderR> fill(QSharedPointer<Provider> provider, const FileContent &content)
{
  provider->addVariable(QStringLiteral("number"), content.number);
  provider->addVariable(QStringLiteral("count"), content.count);
  provider->addVariable(QStringLiteral("text"), content.text);
  provider->addVariable(QStringLiteral("flag"), content.flag);
  const QString macro =
      provider->addMacro(QStringLiteral("macro"), Nbd::TYPE_FLOAT, NbdMacroIndexInfo());
  provider->addRealization(macro, NbdMacroIndex(3), content.realization[0]);
  provider->addRealization(macro, NbdMacroIndex(1), content.realization[1]);
  return provider;
}

template <class Provider>
void addCoordinates(Provider &provider, const FileContent &content)
{
  provider.addXVariable(content.x);
  provider.addYVariable(content.y);
  provider.addZVariable(content.z);
}

class PointsCase : public ProviderCase
{
public:
  std::string name() const override { return "MemoryPointsW"; }
  QSharedPointer<NbpIProviderR> create(const FileContent &content) const override
  {
    auto points =
        QSharedPointer<NbpMemoryProviderPointsW>::create(NbgEDimension::DIM_3D, FileContent::N);
    addCoordinates(*points, content);
    return fill(points, content);
  }
};

template <class Grid>
class GridCase : public ProviderCase
{
public:
  explicit GridCase(std::string name) : _name(std::move(name)) {}
  std::string name() const override { return _name; }
  QSharedPointer<NbpIProviderR> create(const FileContent &content) const override
  {
    return fill(QSharedPointer<Grid>::create(content.geometry), content);
  }

private:
  std::string _name;
};

template <class Lines>
class LineCase : public ProviderCase
{
public:
  explicit LineCase(std::string name) : _name(std::move(name)) {}
  std::string name() const override { return _name; }
  QSharedPointer<NbpIProviderR> create(const FileContent &content) const override
  {
    auto lines = QSharedPointer<Lines>::create(NbgEDimension::DIM_3D, content.nSamplesPerLine);
    addCoordinates(*lines, content);
    return fill(lines, content);
  }

private:
  std::string _name;
};

const PointsCase POINTS;
const GridCase<NbpMemoryProviderGridR> GRID_R("MemoryGridR");
const GridCase<NbpMemoryProviderGridW> GRID_W("MemoryGridW");
const LineCase<NbpMemoryProviderLineW> LINES("MemoryLineW");
const LineCase<NbpMemoryProviderLinePointW> POINT_LINES("MemoryLinePointW");
const LineCase<NbpMemoryProviderLineCoreW> CORES("MemoryLineCoreW");

INSTANTIATE_TEST_SUITE_P(Memory, ProviderConformance,
                         testing::Values<const ProviderCase *>(&POINTS, &GRID_R, &GRID_W, &LINES,
                                                               &POINT_LINES, &CORES),
                         nameOfCase);
INSTANTIATE_TEST_SUITE_P(Memory, WriterConformance,
                         testing::Values<const ProviderCase *>(&POINTS, &GRID_W, &LINES,
                                                               &POINT_LINES, &CORES),
                         nameOfCase);
INSTANTIATE_TEST_SUITE_P(Memory, GridConformance,
                         testing::Values<const ProviderCase *>(&GRID_R, &GRID_W), nameOfCase);
INSTANTIATE_TEST_SUITE_P(Memory, LineConformance,
                         testing::Values<const ProviderCase *>(&LINES, &POINT_LINES, &CORES),
                         nameOfCase);

}  // namespace

TEST(NbpMemoryProviderPointsW, RefusesColumnsThatDoNotFit)
{
  NbpMemoryProviderPointsW points(NbgEDimension::DIM_2D, 3);
  EXPECT_TRUE(points.addVariable<double>(QStringLiteral("v"), {1., 2.}).isEmpty());
  EXPECT_TRUE(points.getLastError().contains(QStringLiteral("v")));
  EXPECT_FALSE(points.setSelection(std::vector<bool>(4)));
  EXPECT_FALSE(points.getLastError().isEmpty());

  const QString macro =
      points.addMacro(QStringLiteral("m"), Nbd::TYPE_MULTI_FLOAT, NbdMacroIndexInfo());
  const NbdMacroIndex one(1);
  EXPECT_TRUE(points.addRealization<float>(macro, one, {1.f}).isEmpty());
  EXPECT_TRUE(points.addRealization<double>(macro, one, {1., 2., 3.}).isEmpty());
  EXPECT_FALSE(points.addRealization<float>(macro, one, {1.f, 2.f, 3.f}).isEmpty());
  EXPECT_TRUE(points.addRealization<float>(macro, one, {1.f, 2.f, 3.f}).isEmpty());

  EXPECT_FALSE(points.addXVariable({1., 2., 3.}).isEmpty());
  EXPECT_TRUE(points.addXVariable({1., 2., 3.}, QStringLiteral("another")).isEmpty());
  EXPECT_TRUE(points.getIdFromName(QStringLiteral("another")).isEmpty());
  EXPECT_THROW(NbpMemoryProviderPointsW(NbgEDimension::DIM_2D, -1), NbeProgrammingError);
}

TEST(NbpMemoryProviderPointsW, CoordinatesBeyondTheDimensionAreZero)
{
  NbpMemoryProviderPointsW points(NbgEDimension::DIM_2D, 2);
  NbdVariableDouble x, y, z;
  for (NbdVariableDouble *column : {&x, &y, &z})
    column->resizeAndFill(2, -1.);
  const NbiIntervalIntLarge all(0, 1);
  EXPECT_FALSE(points.readCoordinates(all, &x, &y, &z, 0));  // there are none yet
  EXPECT_EQ(z.getValue(0), -1.);
  points.addXVariable({1., 2.});
  points.addYVariable({3., NbbGlobal::D_FFFF});
  points.addZVariable({5., 6.});
  EXPECT_TRUE(points.readCoordinates(all, &x, &y, &z, 0));
  EXPECT_EQ(x.getValue(1), 2.);
  EXPECT_EQ(y.getValue(0), 3.);
  EXPECT_EQ(z.getValue(0), 0.);
  NbgBox box;
  EXPECT_TRUE(points.updateBoundingBox(box));
  EXPECT_EQ(box.getUpperRightCorner(), NbgVector3D(1., 3., 0.));  // the other one is undefined
}

TEST(NbpMemoryProviderPointsW, CountsLongSelectionsExactly)
{
  constexpr int N = 20000;
  NbpMemoryProviderPointsW points(NbgEDimension::DIM_1D, N);
  std::vector<bool> selected(N);
  std::vector<int> before(N + 1, 0);
  for (int rank = 0; rank < N; ++rank) {
    selected[rank] = testsupport::uniform(11, rank) < 0.7;
    before[rank + 1] = before[rank] + (selected[rank] ? 1 : 0);
  }
  ASSERT_TRUE(points.setSelection(selected));
  for (int trial = 0; trial < 500; ++trial) {
    const int first = testsupport::uniformInt(12, 2 * trial, N);
    const int last = first + testsupport::uniformInt(12, 2 * trial + 1, N - first);
    ASSERT_EQ(points.getSelectedSampleCount({first, last}), before[last + 1] - before[first]);
  }
  points.deselect({5000, 9999});
  EXPECT_EQ(points.getSelectedSampleCount({0, N - 1}), before[N] - before[10000] + before[5000]);
}

TEST(NbpMemoryProviderPointsW, KeepsPointsAndCategories)
{
  NbpMemoryProviderPointsW points(NbgEDimension::DIM_1D, 2);
  const QString place = points.addVariable<NbgVector3D>(
      QStringLiteral("place"), {NbgVector3D(1., 2., 3.), NbgVector3D::Undefined});
  NbdVariablePoint3D read;
  read.resizeAndFill(2);
  EXPECT_TRUE(points.readVariable(place, {0, 1}, read, 0));
  EXPECT_EQ(read.getValueAsType(0), NbgVector3D(1., 2., 3.));
  EXPECT_TRUE(read.isUndefined(1));
  NbdVariableDouble numbers;
  numbers.resizeAndFill(2);
  EXPECT_FALSE(points.readVariable(place, {0, 1}, numbers, 0));

  NbdEnumCatalog catalog;
  catalog.setCategory(2, QStringLiteral("sand"));
  const QString rock = points.addVariableEnum(QStringLiteral("rock"), {2, -7}, catalog);
  EXPECT_TRUE(points.readVariable(rock, {0, 1}, numbers, 0));
  EXPECT_EQ(numbers.getValue(1), -7.);
}

TEST(NbpMemoryProviderGridW, ServesARotatedPlane)
{
  NbgGeomGrid geometry = testsupport::makeGridGeometry2D(7, 5, 10., 20.);
  NbgRotation rotation;
  rotation.setAngle1(30.);
  geometry.setRotation(rotation);
  geometry.setOriginCentered(NbgVector3D(1000., 2000., 50.));
  const auto grid = testsupport::makeGrid(geometry);
  EXPECT_EQ(grid->getDimension(), NbgEDimension::DIM_2D);
  EXPECT_TRUE(grid->getStructuralRoleId(NbdEVarRole::Z).isEmpty());

  const int n = int(grid->getSampleCount());
  NbdVariableDouble x, y, z;
  for (NbdVariableDouble *column : {&x, &y, &z})
    column->resizeAndFill(n, -1.);
  ASSERT_TRUE(grid->readCoordinates({0, n - 1}, &x, &y, &z, 0));
  NbgBox expected;
  for (int rank = 0; rank < n; ++rank) {
    const NbgVector3D center = geometry.getCellCenter(qint64(rank));
    EXPECT_EQ(x.getValue(rank), center.x());
    EXPECT_EQ(y.getValue(rank), center.y());
    EXPECT_EQ(z.getValue(rank), 0.);
    expected.extendWith(NbgVector3D(center.x(), center.y(), 0.));
  }
  NbgBox box;
  ASSERT_TRUE(grid->updateBoundingBox(box));
  EXPECT_EQ(box, expected);
}

TEST(NbpMemoryProviderLineCoreW, GivesTheRolesOfItsIntervals)
{
  const auto cores = testsupport::makeCores({2, 3});
  EXPECT_TRUE(cores->isSupportCore());
  NbdVariableDouble to;
  to.resizeAndFill(5);
  ASSERT_TRUE(cores->readVariable(cores->getStructuralRoleId(NbdEVarRole::S_TO), {0, 4}, to, 0));
  EXPECT_EQ(to.getVector(), (std::vector<double>{1., 2., 1., 2., 3.}));
  EXPECT_TRUE(cores->getStructuralRoleId(NbdEVarRole::S).isEmpty());
  EXPECT_FALSE(cores->getStructuralRoleId(NbdEVarRole::S_FROM).isEmpty());

  NbpMemoryProviderLinePointW points(NbgEDimension::DIM_3D, {2});
  const QString s = points.addSVariable({0.5, 1.5});
  EXPECT_EQ(points.getStructuralRoleId(NbdEVarRole::S), s);
  EXPECT_FALSE(points.isSupportCore());
}

TEST(NbpMemoryProviderPointsW, RefusesMoreSamplesThanItCanCount)
{
  NbpMemoryProviderPointsW provider(NbgEDimension::DIM_1D, 2);
  EXPECT_FALSE(provider.appendSamples(std::numeric_limits<qint64>::max()));
  EXPECT_EQ(provider.getSampleCount(), 2);
}

TEST(NbpMemoryProviderPointsW, CountsTheSelectionAfterEveryChange)
{
  const qint64 n = 20000;  // several blocks of counts
  NbpMemoryProviderPointsW provider(NbgEDimension::DIM_1D, n);
  std::vector<bool> expected(n, true);
  for (std::uint64_t change = 0; change < 60; ++change) {
    const qint64 first = qint64(testsupport::uniform(7, 3 * change, 0., n));
    const qint64 last = qint64(testsupport::uniform(7, 3 * change + 1, double(first), n));
    const bool isSelected = change % 3 == 0;
    const NbiIntervalIntLarge ranks(first, last);
    EXPECT_TRUE(isSelected ? provider.select(ranks) : provider.deselect(ranks));
    std::fill(expected.begin() + first, expected.begin() + last + 1, isSelected);
    const qint64 from = qint64(testsupport::uniform(7, 3 * change + 2, 0., n));
    EXPECT_EQ(provider.getSelectedSampleCount(NbiIntervalIntLarge(from, n - 1)),
              std::count(expected.begin() + from, expected.end(), true));
  }
}
