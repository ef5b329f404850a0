#include "geos/interpol/NgcKriging.h"

#include "KrigingRun.h"
#include "basic/geom/NbgAngle.h"
#include "basic/geom/NbgBox.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "geos/interpol/NgmKrigingTestResult.h"
#include "support/CsvFile.h"
#include "support/Errors.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

using namespace krigingtest;

namespace {

constexpr double meuseRange = 897.;

/// Neighborhood of the `maximum` nearest samples, whatever their distance.
NgmNeighborhoodMoving nearest(int maximum)
{
  NgmNeighborhoodMoving neighborhood;
  neighborhood.setEllipseSize(NbgVector3D(1e5, 1e5, 1e5));
  neighborhood.setSectors(1, maximum, false);
  return neighborhood;
}

/// The Meuse samples and the mask of the Meuse grid inside a full grid of 40 m cells.
class Meuse
{
public:
  Meuse()
  {
    const testsupport::CsvFile csv("meuse/meuse.csv");
    std::vector<double> logZinc(csv["zinc"]);
    for (double &value : logZinc)
      value = std::log(value);
    points = samples(csv["x"], csv["y"], logZinc);

    const testsupport::CsvFile cells("meuse/meuse_grid.csv");
    x = cells["x"];
    y = cells["y"];
    geometry = testsupport::makeGridGeometry2D(nx, ny, 40., 40.);
    geometry.setOriginCentered(NbgVector3D(178460., 329620., 0.));
    grid = QSharedPointer<NbpMemoryProviderGridW>::create(geometry);
    std::vector<bool> mask(std::size_t(geometry.getGridSize()), false);
    for (std::size_t cell = 0; cell < x.size(); ++cell)
      mask[rank(cell)] = true;
    grid->setSelection(mask);
  }

  /// Rank in the grid of a row of the reference files.
  std::size_t rank(std::size_t row) const
  {
    const int i = int(std::lround((x[row] - 178460.) / 40.));
    const int j = int(std::lround((y[row] - 329620.) / 40.));
    return std::size_t(j + ny * i);
  }

  void krige(NgcKriging &kriging, const NgmVModel &model)
  {
    kriging.setInputDataSet(input(points));
    kriging.setOutputDataSet(output<NgdDataSetGrid>(grid));
    kriging.setVarioModel(model);
    ASSERT_EQ(kriging.execute(), NbcAProgress::COMPLETED) << qPrintable(kriging.getErrorMessage());
  }

  static constexpr int nx = 78;
  static constexpr int ny = 104;
  QSharedPointer<NbpMemoryProviderPointsW> points;
  QSharedPointer<NbpMemoryProviderGridW> grid;
  NbgGeomGrid geometry;
  std::vector<double> x;
  std::vector<double> y;
};

void expectReference(const Meuse &meuse, const std::string &file, bool skipTies)
{
  const testsupport::CsvFile reference("meuse/" + file);
  const std::vector<double> estimates = gridValues(*meuse.grid, QStringLiteral("estimate"));
  const std::vector<double> variances = gridValues(*meuse.grid, QStringLiteral("variance"));
  const std::vector<double> deviations = gridValues(*meuse.grid, QStringLiteral("stdev"));
  const std::size_t n = reference["x"].size();
  ASSERT_EQ(n, 3103u);
  for (std::size_t row = 0; row < n; ++row) {
    if (skipTies && reference["tie"][row] != 0.)
      continue;
    const std::size_t rank = meuse.rank(row);
    const double estimate = reference["estimate"][row];
    const double variance = reference["variance"][row];
    // The promise on the reference is 1e-9 relative; the files are printed with 15 digits.
    ASSERT_NEAR(estimates[rank], estimate, 1e-9 * estimate) << "row " << row;
    ASSERT_NEAR(variances[rank], variance, 1e-9 * variance) << "row " << row;
    ASSERT_NEAR(deviations[rank], std::sqrt(variance), 1e-9) << "row " << row;
  }
}

/// What a kriging of `nSamples` random samples writes on a grid, for one way to run it.
struct Way
{
  int nThreads;
  int samplesPerBuffer;
};

std::vector<double> krigeRotatedGrid(bool moving, const Way &way, int &nBuffers)
{
  const auto points = testsupport::makePoints(300);
  NbgGeomGrid geometry;
  geometry.setNodesNumber2D(40, 25);
  geometry.setCellSize(NbgVector3D(19., 31., 1.));
  geometry.setRotation(NbgRotation(30., 0., 0.));
  geometry.setOriginCentered(NbgVector3D(301.7, 12.9, 0.));
  const auto grid = QSharedPointer<NbpMemoryProviderGridW>::create(geometry);
  std::vector<bool> mask(1000);
  for (std::size_t rank = 0; rank < mask.size(); ++rank)
    mask[rank] = rank % 7 != 3;
  grid->setSelection(mask);

  NgdDataSetPoints in;
  in.setDataProvider(points);
  in.assignVariable(Nbd::Role::V, points->getIdFromName(QStringLiteral("Z1")));
  SizedKriging kriging(way.samplesPerBuffer);
  kriging.setInputDataSet(in);
  kriging.setOutputDataSet(output<NgdDataSetGrid>(grid));
  kriging.setVarioModel(
      sphericalModel(0.1, 0.9, NbgVector3D(300., 120., 1.), NbgRotation(25., 0., 0.)));
  NgmNeighborhoodMoving neighborhood = nearest(16);
  neighborhood.setEllipseSize(NbgVector3D(250., 150., 1.));
  neighborhood.setRuleAnisotropicDistances(true);
  if (moving)
    kriging.setUsingMovingNeighborhood(neighborhood);
  else
    kriging.setUsingUniqueNeighborhood();
  kriging.setNThread(way.nThreads);
  EXPECT_EQ(kriging.execute(), NbcAProgress::COMPLETED) << qPrintable(kriging.getErrorMessage());
  nBuffers = kriging.getNBuffers();

  std::vector<double> all;
  for (const char *name : {"estimate", "variance", "stdev"}) {
    const std::vector<double> values = gridValues(*grid, QString::fromLatin1(name));
    for (std::size_t rank = 0; rank < values.size(); ++rank)
      EXPECT_TRUE(mask[rank] || values[rank] == NbbGlobal::D_FFFF);
    all.insert(all.end(), values.begin(), values.end());
  }
  return all;
}

}  // namespace

TEST(NgcKriging, EqualsReferenceWithAllSamples)
{
  Meuse meuse;
  NgcKriging kriging(QStringLiteral("KRIGING"));
  kriging.setUsingUniqueNeighborhood();
  meuse.krige(kriging, sphericalModel(0.05, 0.59, NbgVector3D(meuseRange, meuseRange, meuseRange)));
  expectReference(meuse, "krige_ok_global.csv", false);
}

TEST(NgcKriging, EqualsReferenceWithNearestSamples)
{
  Meuse meuse;
  NgcKriging kriging(QStringLiteral("KRIGING"));
  kriging.setUsingMovingNeighborhood(nearest(16));
  meuse.krige(kriging, sphericalModel(0.05, 0.59, NbgVector3D(meuseRange, meuseRange, meuseRange)));
  expectReference(meuse, "krige_ok_nmax16.csv", true);
}

TEST(NgcKriging, EqualsReferenceWithRotatedAnisotropy)
{
  // Azimuth 30 clockwise from north is 60 degrees counter-clockwise from X.
  const NgmVModel model =
      sphericalModel(0.05, 0.59, NbgVector3D(1200., 480., 480.), NbgRotation(60., 0., 0.));
  Meuse meuse;
  NgcKriging unique(QStringLiteral("KRIGING"));
  unique.setUsingUniqueNeighborhood();
  meuse.krige(unique, model);
  expectReference(meuse, "krige_ok_aniso_global.csv", false);

  NgcKriging moving(QStringLiteral("KRIGING"));
  moving.setUsingMovingNeighborhood(nearest(155));
  meuse.krige(moving, model);
  expectReference(meuse, "krige_ok_aniso_global.csv", false);
}

TEST(NgcKriging, GivesSameBitsWithAnyThreadsAndBuffers)
{
  for (const bool moving : {true, false}) {
    int nBuffers = 0;
    const std::vector<double> expected = krigeRotatedGrid(moving, {1, 1000}, nBuffers);
    EXPECT_EQ(nBuffers, 1);
    for (const Way &way : {Way{1, 100}, Way{2, 100}, Way{8, 100}, Way{1, 1}, Way{2, 1}, Way{8, 1},
                           Way{2, 1000}, Way{8, 0}}) {
      const std::vector<double> values = krigeRotatedGrid(moving, way, nBuffers);
      EXPECT_TRUE(way.samplesPerBuffer != 1 || nBuffers >= 900);
      EXPECT_EQ(values, expected) << (moving ? "moving, " : "unique, ") << way.nThreads
                                  << " threads, " << nBuffers << " buffers";
    }
  }
}

TEST(NgcKriging, LeavesTargetsWithoutNeighborsUndefined)
{
  const auto points = samples({10., 20., 30.}, {10., 25., 10.}, {1., 2., 3.});
  const auto grid = testsupport::makeGrid2D(20, 20);
  NgmNeighborhoodMoving neighborhood = nearest(16);
  neighborhood.setEllipseSize(NbgVector3D(50., 50., 50.));
  neighborhood.setRuleMinimumNumber(true, 2);

  NgcKriging kriging(QStringLiteral("KRIGING"));
  kriging.setInputDataSet(input(points));
  kriging.setOutputDataSet(output<NgdDataSetGrid>(grid));
  kriging.setVarioModel(sphericalModel(0.1, 0.9, NbgVector3D(100., 100., 100.)));
  kriging.setUsingMovingNeighborhood(neighborhood);
  ASSERT_EQ(kriging.execute(), NbcAProgress::COMPLETED);
  EXPECT_EQ(kriging.getNumberOfInterpolErrors(), 0);

  const std::vector<double> estimates = gridValues(*grid, QStringLiteral("estimate"));
  const std::vector<double> deviations = gridValues(*grid, QStringLiteral("stdev"));
  const NbgGeomGrid &geometry = grid->getGridGeometry();
  int nDefined = 0;
  for (std::size_t rank = 0; rank < estimates.size(); ++rank) {
    const NbgVector3D center = geometry.getCellCenter(qint64(rank));
    int inside = 0;
    for (const auto &[x, y] : {std::pair(10., 10.), std::pair(20., 25.), std::pair(30., 10.)})
      inside += std::hypot(center.x() - x, center.y() - y) < 50.;
    EXPECT_EQ(NbbGlobal::isDefined(estimates[rank]), inside >= 2) << rank;
    EXPECT_EQ(NbbGlobal::isDefined(deviations[rank]), inside >= 2) << rank;
    nDefined += inside >= 2;
  }
  EXPECT_GT(nDefined, 0);
}

TEST(NgcKriging, TakesASampleInProximityAsItIs)
{
  const auto points = samples({12., 20., 32.}, {10., 25., 10.}, {1., 2., 3.});
  const auto grid = testsupport::makeGrid2D(20, 20);
  NgmNeighborhoodMoving neighborhood = nearest(16);
  neighborhood.setRuleProximity(true, NbgVector3D(3.5, 5., 0.));

  NgcKriging kriging(QStringLiteral("KRIGING"));
  kriging.setInputDataSet(input(points));
  kriging.setOutputDataSet(output<NgdDataSetGrid>(grid));
  kriging.setVarioModel(sphericalModel(0.1, 0.9, NbgVector3D(100., 100., 100.)));
  kriging.setUsingMovingNeighborhood(neighborhood);
  ASSERT_EQ(kriging.execute(), NbcAProgress::COMPLETED);

  const std::vector<double> estimates = gridValues(*grid, QStringLiteral("estimate"));
  const std::vector<double> deviations = gridValues(*grid, QStringLiteral("stdev"));
  int nProxy = 0;
  for (std::size_t rank = 0; rank < estimates.size(); ++rank) {
    const NbgVector3D center = grid->getGridGeometry().getCellCenter(qint64(rank));
    double expected = 0.;
    for (const auto &[x, y, z] :
         {std::tuple(32., 10., 3.), std::tuple(20., 25., 2.), std::tuple(12., 10., 1.)}) {
      if (std::abs(center.x() - x) <= 3.5 && std::abs(center.y() - y) <= 5.)
        expected = z;
    }
    EXPECT_EQ(deviations[rank] == 0., expected > 0.) << rank;
    EXPECT_TRUE(expected == 0. || estimates[rank] == expected) << rank;
    nProxy += expected > 0.;
  }
  EXPECT_GE(nProxy, 3);

  // The test of such a target tells the same.
  const qint64 rank =
      qint64(std::find(deviations.begin(), deviations.end(), 0.) - deviations.begin());
  NgmKrigingTestResult result;
  kriging.test(rank + 1, result);
  ASSERT_TRUE(result.hasResults());
  EXPECT_EQ(result.getKrigingResults(0).estimation, estimates[std::size_t(rank)]);
  EXPECT_EQ(result.getKrigingResults(0).standardDeviation, 0.);
}

TEST(NgcKriging, IgnoresUndefinedAndUnselectedSamples)
{
  const std::vector<double> x = {10., 40., 70., 100., 130.};
  const std::vector<double> y = {15., 35., 5., 45., 25.};
  const auto krige = [](const QSharedPointer<NbpMemoryProviderPointsW> &points, bool moving) {
    const auto grid = testsupport::makeGrid2D(15, 6);
    NgcKriging kriging(QStringLiteral("KRIGING"));
    kriging.setInputDataSet(input(points));
    kriging.setOutputDataSet(output<NgdDataSetGrid>(grid));
    kriging.setVarioModel(sphericalModel(0.1, 0.9, NbgVector3D(100., 100., 100.)));
    if (moving)
      kriging.setUsingMovingNeighborhood(nearest(4));
    else
      kriging.setUsingUniqueNeighborhood();
    EXPECT_EQ(kriging.execute(), NbcAProgress::COMPLETED) << qPrintable(kriging.getErrorMessage());
    return gridValues(*grid, QStringLiteral("estimate"));
  };

  const auto kept = samples({10., 70., 130.}, {15., 5., 25.}, {1., 3., 5.});
  const auto holed = samples(x, y, {1., NbbGlobal::D_FFFF, 3., NbbGlobal::D_FFFF, 5.});
  const auto selected = samples(x, y, {1., 20., 3., 40., 5.});
  selected->setSelection(std::vector<bool>{true, false, true, false, true});
  for (const bool moving : {true, false}) {
    const std::vector<double> expected = krige(kept, moving);
    EXPECT_EQ(krige(selected, moving), expected);
    const std::vector<double> values = krige(holed, moving);
    for (std::size_t rank = 0; rank < expected.size(); ++rank)
      EXPECT_NEAR(values[rank], expected[rank], 1e-13 * 5.) << rank;  // another order of sums
  }
}

TEST(NgcKriging, CountsSingularSystemsAndReportsTheFirstTen)
{
  // Two samples at one place and no nugget: every system that holds both is singular.
  const auto points = samples({55., 55., 95.}, {55., 55., 55.}, {1., 2., 3.});
  const auto grid = testsupport::makeGrid2D(20, 10);
  NgmNeighborhoodMoving neighborhood = nearest(16);
  neighborhood.setEllipseSize(NbgVector3D(40., 40., 40.));

  QString firstMessage;
  for (const int nThreads : {1, 2, 8}) {
    SizedKriging kriging(10);
    kriging.setInputDataSet(input(points));
    kriging.setOutputDataSet(output<NgdDataSetGrid>(grid));
    kriging.setVarioModel(sphericalModel(0., 1., NbgVector3D(100., 100., 100.)));
    kriging.setUsingMovingNeighborhood(neighborhood);
    kriging.setNThread(nThreads);
    ASSERT_EQ(kriging.execute(), NbcAProgress::COMPLETED) << qPrintable(kriging.getErrorMessage());
    EXPECT_GT(kriging.getNumberOfInterpolErrors(), 10);
    EXPECT_TRUE(kriging.hasInterpolError(Ngc::INTERPOL_ERROR_SYSTEM));

    const QString message = kriging.getInterpolErrorsMessage();
    EXPECT_TRUE(message.startsWith("The interpolation process encountered errors:"));
    EXPECT_TRUE(message.contains("Error #10"));
    EXPECT_FALSE(message.contains("Error #11"));
    EXPECT_TRUE(
        message.contains("Kriging system resolution error.\nTarget location: X = 25, Y = "));
    EXPECT_TRUE(message.endsWith("Only 10 first errors are reported..."));
    if (firstMessage.isEmpty())
      firstMessage = message;
    EXPECT_EQ(message, firstMessage);

    // Targets that see the lone sample only are estimated.
    const std::vector<double> estimates = gridValues(*grid, QStringLiteral("estimate"));
    EXPECT_EQ(estimates[5 + 10 * 12], 3.);
    EXPECT_EQ(estimates[5 + 10 * 5], NbbGlobal::D_FFFF);
  }

  NgcKriging stopping(QStringLiteral("KRIGING"));
  stopping.setInputDataSet(input(points));
  stopping.setOutputDataSet(output<NgdDataSetGrid>(grid));
  stopping.setVarioModel(sphericalModel(0., 1., NbgVector3D(100., 100., 100.)));
  stopping.setUsingMovingNeighborhood(neighborhood);
  stopping.setOnErrorBehavior(Ngc::ON_ERROR_STOP);
  EXPECT_EQ(stopping.execute(), NbcAProgress::FAILED);
  EXPECT_TRUE(stopping.getErrorMessage().contains(
      "The interpolation process has been stopped due to the following error:\n"
      "Kriging system resolution error."));
}

TEST(NgcKriging, RefusesWrongConfigurations)
{
  const auto points = samples({10., 20.}, {10., 20.}, {1., 2.});
  const auto grid = testsupport::makeGrid2D(3, 3);
  const auto grid3D = testsupport::makeGrid(2, 2, 2);
  const NgmVModel model = sphericalModel(0., 1., NbgVector3D(100., 100., 100.));

  struct Case
  {
    const char *message;
    std::function<void(NgcKriging &)> configure;
  };
  const auto configured = [&](NgcKriging &kriging) {
    kriging.setInputDataSet(input(points));
    kriging.setOutputDataSet(output<NgdDataSetGrid>(grid));
    kriging.setVarioModel(model);
    kriging.setUsingMovingNeighborhood(nearest(16));
  };
  const Case cases[] = {
      {"No input dataset defined!",
       [&](NgcKriging &kriging) { kriging.setOutputDataSet(output<NgdDataSetGrid>(grid)); }},
      {"No output dataset defined!",
       [&](NgcKriging &kriging) { kriging.setInputDataSet(input(points)); }},
      {"No moving neighborhood defined.",
       [&](NgcKriging &kriging) {
         kriging.setInputDataSet(input(points));
         kriging.setOutputDataSet(output<NgdDataSetGrid>(grid));
       }},
      {"In data (ndim=2) and out data (ndim=3) do not have the same space dimension!",
       [&](NgcKriging &kriging) {
         configured(kriging);
         kriging.setOutputDataSet(output<NgdDataSetGrid>(grid3D));
       }},
      {"No output variable to be estimated!",
       [&](NgcKriging &kriging) {
         configured(kriging);
         NgdDataSetGrid nothing;
         nothing.setDataProvider(grid);
         kriging.setOutputDataSet(nothing);
       }},
      {"In the dataset 'INPUT' the number of variables associated to role 'V' is invalid.",
       [&](NgcKriging &kriging) {
         configured(kriging);
         NgdDataSetPoints nothing;
         nothing.setDataProvider(points);
         kriging.setInputDataSet(nothing);
       }},
      {"Wrong neighborhood parameters:\n- Maximum number of samples per sector cannot be negative",
       [&](NgcKriging &kriging) {
         configured(kriging);
         kriging.setUsingMovingNeighborhood(nearest(0));
       }},
      {"No defined sample in the input file",
       [&](NgcKriging &kriging) {
         configured(kriging);
         kriging.setInputDataSet(
             input(samples({1., 2.}, {1., 2.}, {NbbGlobal::D_FFFF, NbbGlobal::D_FFFF})));
       }},
      {"There is not enough available memory to perform the interpolation.\nAvailable memory : ",
       [&](NgcKriging &kriging) {
         configured(kriging);
         kriging.setAvailableMemBytes(40);
       }},
      {"There is no valid data. Unable to build the kriging system.",
       [&](NgcKriging &kriging) {
         configured(kriging);
         kriging.setUsingUniqueNeighborhood();
         kriging.setInputDataSet(
             input(samples({1., 2.}, {1., 2.}, {NbbGlobal::D_FFFF, NbbGlobal::D_FFFF})));
       }},
      {"Inversion errors have been encountered",
       [&](NgcKriging &kriging) {
         configured(kriging);
         kriging.setUsingUniqueNeighborhood();
         kriging.setInputDataSet(input(samples({1., 1.}, {2., 2.}, {1., 2.})));
       }},
  };
  for (const Case &wrong : cases) {
    NgcKriging kriging(QStringLiteral("KRIGING"));
    wrong.configure(kriging);
    EXPECT_EQ(kriging.execute(), NbcAProgress::FAILED) << wrong.message;
    EXPECT_TRUE(kriging.getErrorMessage().contains(QString::fromLatin1(wrong.message)))
        << wrong.message << " / " << qPrintable(kriging.getErrorMessage());
  }
}

TEST(NgcKriging, WarnsOfAUniqueNeighborhoodWithoutData)
{
  const auto points = samples({10., 20.}, {10., 20.}, {1., 2.});
  points->setSelection({false, false});
  const auto grid = testsupport::makeGrid2D(4, 3);
  NbgBox box;
  grid->updateBoundingBox(box);
  NgcKriging kriging(QStringLiteral("KRIGING"));
  kriging.setInputDataSet(input(points));
  kriging.setOutputDataSet(output<NgdDataSetGrid>(grid));
  kriging.setVarioModel(sphericalModel(0., 1., NbgVector3D(100., 100., 100.)));
  kriging.setUsingUniqueNeighborhood();
  const testsupport::PrintedMessages messages;
  ASSERT_EQ(kriging.execute(), NbcAProgress::FAILED);

  const auto corner = [](const NbgVector3D &location) {
    return QStringLiteral("%1, %2").arg(location.x()).arg(location.y());
  };
  const QString warning =
      QStringLiteral(
          "No data available when building kriging system for unique neighborhood.\n"
          "If you use the parcelling, please increase the extension in order to get some "
          "input samples in each parcelling box.<br>"
          "Parcelling Lower Left Corner: %1<br>Parcelling Upper Right Corner: %2<br>")
          .arg(corner(box.getLowerLeftCorner()), corner(box.getUpperRightCorner()));
  ASSERT_EQ(messages.texts.size(), 1);
  EXPECT_EQ(messages.texts.first(), warning);
  EXPECT_TRUE(
      kriging.getErrorMessage().contains(QStringLiteral("No defined sample in the input file")))
      << qPrintable(kriging.getErrorMessage());
  EXPECT_EQ(kriging.getKrigingSystemDual(), nullptr);
}

TEST(NgcKriging, GivesGeneralizedCovariancesTheSizeOfTheField)
{
  const auto points = samples({-30., 20., 5.}, {10., 120., 40.}, {1., 2., 4.});
  const auto grid = testsupport::makeGrid2D(4, 3);
  NbgBox box(NbgVector3D(-30., 10., 0.), NbgVector3D(20., 120., 0.));
  grid->updateBoundingBox(box);
  NgmVModel linear(1);
  linear.setContextIrfDegree(0);
  linear.setRanges(linear.addStructure(QStringLiteral("Linear"), 1.),
                   NbgVector3D(100., 100., 100.));

  NgcKriging kriging(QStringLiteral("KRIGING"));
  kriging.setInputDataSet(input(points));
  kriging.setOutputDataSet(output<NgdDataSetGrid>(grid));
  kriging.setVarioModel(linear);
  kriging.setUsingUniqueNeighborhood();
  ASSERT_EQ(kriging.execute(), NbcAProgress::COMPLETED) << qPrintable(kriging.getErrorMessage());
  EXPECT_DOUBLE_EQ(kriging.getVarioModel().getContext().getFieldSize(), box.getDiagonalLength());
  const std::vector<double> unique = gridValues(*grid, QStringLiteral("estimate"));
  const std::vector<double> variances = gridValues(*grid, QStringLiteral("variance"));

  // The third radius lies beyond the dimension. Weights and variances do not depend on the constant
  // of the covariance.
  NgmNeighborhoodMoving all = nearest(3);
  all.setEllipseSize(NbgVector3D(400., 500., 9000.));
  kriging.setUsingMovingNeighborhood(all);
  ASSERT_EQ(kriging.execute(), NbcAProgress::COMPLETED) << qPrintable(kriging.getErrorMessage());
  EXPECT_EQ(kriging.getVarioModel().getContext().getFieldSize(), 1000.);
  const std::vector<double> moving = gridValues(*grid, QStringLiteral("estimate"));
  const std::vector<double> movingVariances = gridValues(*grid, QStringLiteral("variance"));
  for (std::size_t rank = 0; rank < unique.size(); ++rank) {
    EXPECT_NEAR(moving[rank], unique[rank], 1e-10);  // rounding of 3 by 3 systems
    EXPECT_NEAR(movingVariances[rank], variances[rank], 1e-10);
  }
}

TEST(NgcKriging, StopsAndCanBeRunAgain)
{
  const auto points = testsupport::makePoints(2000);
  const auto grid = testsupport::makeGrid2D(100, 100);
  NgdDataSetPoints in;
  in.setDataProvider(points);
  in.assignVariable(Nbd::Role::V, points->getIdFromName(QStringLiteral("Z1")));
  NgcKriging kriging(QStringLiteral("KRIGING"));
  kriging.setInputDataSet(in);
  kriging.setOutputDataSet(output<NgdDataSetGrid>(grid));
  kriging.setVarioModel(sphericalModel(0.1, 0.9, NbgVector3D(200., 200., 200.)));
  kriging.setUsingMovingNeighborhood(nearest(64));
  kriging.setNThread(2);
  kriging.start();
  kriging.stop();
  kriging.wait();
  EXPECT_EQ(kriging.getState(), NbcAProgress::INTERRUPTED);
  EXPECT_FALSE(grid->isVariableOpen(grid->getIdFromName(QStringLiteral("estimate"))));

  EXPECT_EQ(kriging.execute(), NbcAProgress::COMPLETED) << qPrintable(kriging.getErrorMessage());
  for (const double value : gridValues(*grid, QStringLiteral("estimate")))
    EXPECT_TRUE(NbbGlobal::isDefined(value));
}

TEST(NgcKriging, GathersStatisticsOfItsOutputs)
{
  const auto points = testsupport::makePoints(200);
  const auto grid = testsupport::makeGrid2D(50, 50);
  NgdDataSetPoints in;
  in.setDataProvider(points);
  in.assignVariable(Nbd::Role::V, points->getIdFromName(QStringLiteral("Z1")));
  SizedKriging kriging(100);
  kriging.setInputDataSet(in);
  kriging.setOutputDataSet(output<NgdDataSetGrid>(grid));
  kriging.setVarioModel(sphericalModel(0.1, 0.9, NbgVector3D(200., 200., 200.)));
  kriging.setUsingMovingNeighborhood(nearest(8));
  kriging.setPerformStatistics(Nbd::Role::V);
  kriging.setNThread(2);
  ASSERT_EQ(kriging.execute(), NbcAProgress::COMPLETED) << qPrintable(kriging.getErrorMessage());

  const std::vector<double> estimates = gridValues(*grid, QStringLiteral("estimate"));
  double sum = 0.;
  for (const double value : estimates)
    sum += value;
  const NbcStatBasic statistics = kriging.getStatistics(Nbd::Role::V, 0);
  EXPECT_EQ(statistics.getNTotal(), 2500);
  EXPECT_EQ(statistics.getNDefined(), 2500);
  EXPECT_EQ(statistics.getMinimum(), *std::min_element(estimates.begin(), estimates.end()));
  EXPECT_NEAR(statistics.getMean(), sum / 2500., 1e-12);  // another order of sums
}
