#include "geos/vmodel/NgmPointToBlockVModel.h"

#include "geos/interpol/NgmBlock.h"
#include "geos/matrix/NgmMatrix.h"
#include "geos/stats/NgmVariogramExpData.h"
#include "geos/vmodel/NgmAVStruct.h"
#include "geos/vmodel/NgmCvvBuilder.h"
#include "geos/vmodel/NgmVModel.h"
#include "support/Errors.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using testsupport::errorOf;

constexpr auto VARIOGRAM = NgmEVarioExp::EValue::VARIOGRAM;

/// Exponential of scale 1, with a nugget that blocks do not have.
NgmVModel makeModel(int nDimensions)
{
  NgmVModel model(1);
  model.setContextNDim(nDimensions);
  model.setNugget(0, 0, 0.5);
  model.addStructure(QStringLiteral("Exponential"), 2.);
  model.setRangeIsotropic(0, 2.995732);
  return model;
}

NgmBlock makeBlock(const NbgVector3D &size, const NbgIntVector3D &numbers)
{
  NgmBlock block(true);
  block.setSize(size);
  block.setDiscretizationPointsNumber(numbers);
  return block;
}

TEST(NgmPointToBlockVModel, RegularizesOverASegment)
{
  // Blocks that are segments of length L on a line: with C(h) = exp(-h), C_v(0) = 2 (L - 1 +
  // exp(-L)) / L^2 and C_v(h) = exp(-h) (exp(L / 2) - exp(-L / 2))^2 / L^2 for h >= L.
  const double L = 0.8;
  NgmPointToBlockVModel regularization;
  regularization.setPointVarioModel(makeModel(1));
  regularization.setBlock(makeBlock(NbgVector3D(L, 1e-9, 1e-9), NbgIntVector3D(60, 1, 1)));
  regularization.setDiscretizationLags({0.4}, {10});
  ASSERT_EQ(regularization.execute(), NbcAProgress::COMPLETED)
      << qPrintable(regularization.getErrorMessage());
  EXPECT_EQ(regularization.getProgressMessageDetail(), QStringLiteral("Block Variogram Fitting"));
  const double c0 = 2. * 2. * (L - 1. + std::exp(-L)) / (L * L);
  EXPECT_NEAR(regularization.getBlockCovariance()(0, 0), c0, 2e-4);

  const NgmVariogramExpData &data = regularization.getBlockVarioExp();
  ASSERT_EQ(data.getNDirections(), 1);
  EXPECT_EQ(data.getNLags(0), 10);
  const QVector<double> distances = data.getDistances(0, false, 0, 0);
  const QVector<double> gammas = data.getVarioColumn(0, VARIOGRAM, 0, 0);
  EXPECT_FALSE(data.getMasked(0, false, 0, 0).contains(true));
  for (int k = 0; k < 10; ++k) {
    EXPECT_DOUBLE_EQ(distances[k], 0.4 * (k + 1));
    if (k == 0)
      continue;
    const double spread = (std::exp(L / 2.) - std::exp(-L / 2.)) / L;
    EXPECT_NEAR(gammas[k], c0 - 2. * std::exp(-distances[k]) * spread * spread, 5e-4);
  }
}

/// Mean of calcCova() between the points of a block and random points of its copy at h, over all
/// tries.
NgmMatrix meanOfPairs(const NgmVModel &model, const NgmBlock &block, const NbgVector3D &h)
{
  const int n = model.getNVariables();
  NgmMatrix mean(n, n, true), covas(n, n, true);
  QVector<NbgVector3D> points, jittered;
  block.getDiscretizationPoints(points);
  const QVector<qint64> seeds = NgmCvvBuilder().getSeeds();
  for (const qint64 seed : seeds) {
    block.getRandomPoints(seed, jittered, false);
    for (const NbgVector3D &p : points)
      for (const NbgVector3D &q : jittered) {
        model.calcCova(p - (q + h), covas);
        mean += covas;
      }
  }
  mean.scalarMultiply(1. / (double(points.size()) * points.size() * seeds.size()));
  return mean;
}

TEST(NgmPointToBlockVModel, AveragesOverAllPairsOfPoints)
{
  NgmVModel model(2);
  NgmMatrix sills(2, 2, true);
  sills.setElement(0, 0, 1.);
  sills.setElement(0, 1, -0.4);
  sills.setElement(1, 1, 3.);
  model.setNuggetMatrix(sills);
  model.addStructure(QStringLiteral("Spherical"), sills);
  model.setRanges(0, NbgVector3D(100., 50., 20.));
  model.addStructure(QStringLiteral("Gaussian"), 0.5);
  model.setRangeIsotropic(1, 80.);
  model.setGlobalRotation(NbgRotation(30., 10., 0.));
  NgmBlock block = makeBlock(NbgVector3D(30., 20., 5.), NbgIntVector3D(3, 2, 2));
  block.setRotation(NbgRotation(70., 0., 0.));

  NgmPointToBlockVModel regularization;
  regularization.setPointVarioModel(model);
  regularization.setBlock(block);
  regularization.setDiscretizationLags({25., 15., 4.}, {2, 1, 3});
  ASSERT_EQ(regularization.execute(), NbcAProgress::COMPLETED);
  const NgmVariogramExpData &data = regularization.getBlockVarioExp();
  const NgmMatrix atOrigin = meanOfPairs(model, block, NbgVector3D::Null);
  for (int dir = 0; dir < 3; ++dir)
    for (int lag = 0; lag < data.getNLags(dir); ++lag) {
      const double distance = data.getDistances(dir, false, 0, 0)[lag];
      const NgmMatrix covas = meanOfPairs(model, block, distance * data.getDirectionVector(dir));
      for (int i = 0; i < 2; ++i)
        for (int j = i; j < 2; ++j) {
          // Sums in another order.
          EXPECT_NEAR(regularization.getBlockCovariance()(i, j), atOrigin(i, j), 1e-14);
          EXPECT_NEAR(data.getVarioColumn(dir, VARIOGRAM, i, j)[lag], atOrigin(i, j) - covas(i, j),
                      1e-14);
        }
    }
}

TEST(NgmPointToBlockVModel, VariancesAddUpOverBlocksInAPanel)
{
  // The covariance inside a panel of n blocks is the mean of the covariances between the blocks:
  // C_V = sum over i, j of C_v(x_i - x_j) / n^2, and C_v(h) = C_v(0) - gamma_v(h). So the variance
  // of points in the panel is that of points in a block and that of blocks in the panel together.
  const int n = 5;
  const double L = 0.3;
  NgmPointToBlockVModel regularization;
  regularization.setPointVarioModel(makeModel(1));
  regularization.setBlock(makeBlock(NbgVector3D(L, 1e-9, 1e-9), NbgIntVector3D(40, 1, 1)));
  regularization.setDiscretizationLags({L}, {n - 1});
  ASSERT_EQ(regularization.execute(), NbcAProgress::COMPLETED);
  const QVector<double> gammas =
      regularization.getBlockVarioExp().getVarioColumn(0, VARIOGRAM, 0, 0);
  const double cv = regularization.getBlockCovariance()(0, 0);
  double blocksInPanel = 0.;
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j)
      blocksInPanel += i == j ? 0. : gammas[std::abs(i - j) - 1] / (n * n);
  const auto meanCovariance = [](double length) {  // of 2 exp(-h) over a segment
    return 4. * (length - 1. + std::exp(-length)) / (length * length);
  };
  // The random points leave an error of some 1e-4.
  EXPECT_NEAR(2. - meanCovariance(n * L), (2. - cv) + blocksInPanel, 5e-4);
  EXPECT_GT(blocksInPanel, 0.3);
}

TEST(NgmPointToBlockVModel, VariogramComesDownToZero)
{
  NgmPointToBlockVModel regularization;
  regularization.setPointVarioModel(makeModel(3));
  regularization.setBlock(makeBlock(NbgVector3D(1., 0.5, 2.), NbgIntVector3D(2, 2, 2)));
  regularization.setDiscretizationLags({1e-7, 1e-7, 1e-7}, {1, 2, 3});
  ASSERT_EQ(regularization.execute(), NbcAProgress::COMPLETED);
  const NgmVariogramExpData &data = regularization.getBlockVarioExp();
  for (int dir = 0; dir < 3; ++dir) {
    EXPECT_EQ(data.getNLags(dir), dir + 1);
    EXPECT_NEAR(data.getVarioColumn(dir, VARIOGRAM, 0, 0)[dir], 0., 1e-6);
  }
}

TEST(NgmPointToBlockVModel, FollowsTheAxesOfTheModelOrThoseGiven)
{
  NgmVModel model(2);
  NgmMatrix sills(2, 2, true);
  sills.setElement(0, 0, 1.);
  sills.setElement(0, 1, 0.4);
  sills.setElement(1, 1, 3.);
  model.addStructure(QStringLiteral("Spherical"), sills);
  model.setRanges(0, NbgVector3D(100., 50., 20.));
  const NbgRotation rotation(30., 0., 0.);
  model.setGlobalRotation(rotation);
  const NgmBlock block = makeBlock(NbgVector3D(10., 10., 5.), NbgIntVector3D(3, 3, 2));

  QVector<double> lags;
  QVector<int> counts;
  NgmPointToBlockVModel::calcDiscretizationLags(model, block, lags, counts);
  ASSERT_EQ(lags.size(), 3);
  EXPECT_NEAR(lags[0] * counts[0], 135., 1e-10);
  EXPECT_NEAR(lags[1] * counts[1], 72.5, 1e-10);
  EXPECT_NEAR(lags[2] * counts[2], 30., 1e-10);

  NgmPointToBlockVModel regularization;
  regularization.setPointVarioModel(model);
  regularization.setBlock(block);
  ASSERT_EQ(regularization.execute(), NbcAProgress::COMPLETED);
  const NgmVariogramExpData first = regularization.getBlockVarioExp();
  EXPECT_NEAR(first.getDirectionVector(1) * rotation.localToWorld(NbgVector3D::Y), 1., 1e-14);
  EXPECT_DOUBLE_EQ(first.getDistances(2, false, 0, 1)[19], 30.);
  // Proportional sills: so are the variograms, and the sill is reached beyond range and block.
  const QVector<double> direct = first.getVarioColumn(0, VARIOGRAM, 0, 0);
  const QVector<double> cross = first.getVarioColumn(0, VARIOGRAM, 0, 1);
  for (int k = 0; k < direct.size(); ++k)
    EXPECT_NEAR(cross[k], 0.4 * direct[k], 1e-14);
  EXPECT_NEAR(direct.last(), regularization.getBlockCovariance()(0, 0), 1e-14);

  regularization.setRotation(true, NbgRotation());
  regularization.start();
  regularization.wait();
  ASSERT_EQ(regularization.getState(), NbcAProgress::COMPLETED);
  EXPECT_NEAR(regularization.getBlockVarioExp().getDirectionVector(0).x(), 1., 1e-15);
  EXPECT_NE(regularization.getBlockVarioExp().getVarioColumn(0, VARIOGRAM, 0, 0), direct);
}

TEST(NgmPointToBlockVModel, TakesTheVariancesOfThePoints)
{
  NgmVModel model(2);
  NgmMatrix sills(2, 2, true), points(2, 2, true);
  sills.setElement(0, 0, 1.);
  sills.setElement(0, 1, 0.4);
  sills.setElement(1, 1, 3.);
  model.addStructure(QStringLiteral("Spherical"), sills);
  model.setRangeIsotropic(0, 5.);
  model.setNugget(0, 0, 1.);
  points.setElement(0, 0, 8.);  // four times that of the model, nugget included
  points.setElement(1, 1, 27.);
  NgmPointToBlockVModel regularization;
  regularization.setPointVarioModel(model);
  regularization.setBlock(makeBlock(NbgVector3D(1., 1., 1.), NbgIntVector3D(2, 2, 2)));
  const auto results = [&] {
    EXPECT_EQ(regularization.execute(), NbcAProgress::COMPLETED);
    const NgmVariogramExpData &data = regularization.getBlockVarioExp();
    return QVector<double>{
        regularization.getBlockCovariance()(0, 0), regularization.getBlockCovariance()(0, 1),
        data.getVarioColumn(2, VARIOGRAM, 1, 1)[3], data.getVarioColumn(2, VARIOGRAM, 0, 1)[3]};
  };
  const QVector<double> plain = results();
  regularization.setPointCovariance(points);
  const QVector<double> rescaled = results();
  const double factors[] = {4., 6., 9., 6.};
  for (int k = 0; k < 4; ++k)
    EXPECT_NEAR(rescaled[k], factors[k] * plain[k], 1e-13);
  EXPECT_EQ(regularization.getPointVarioModel().getC0IJ(0, 0), 2.) << "as it was set";
  regularization.setPointCovariance(NgmMatrix(0, 0, false));
  EXPECT_EQ(results(), plain);

  points.setElement(1, 1, 0.);
  for (const NgmMatrix &wrong : {points, NgmMatrix(1, 1, true)}) {
    regularization.setPointCovariance(wrong);
    EXPECT_EQ(regularization.execute(), NbcAProgress::FAILED);
  }
}

TEST(NgmPointToBlockVModel, SaysWhatIsWrong)
{
  NgmPointToBlockVModel regularization;
  EXPECT_EQ(errorOf([&] { regularization.getBlockCovariance(); }),
            QStringLiteral("NgmPointToBlockVModel::getBlockCovariance: Result not yet computed"));
  EXPECT_EQ(errorOf([&] { regularization.getBlockVarioExp(); }),
            QStringLiteral("NgmPointToBlockVModel::getBlockVarioExp: Result not yet computed"));
  EXPECT_THROW(regularization.getPointVarioModel(), NbeError);
  EXPECT_EQ(regularization.execute(), NbcAProgress::FAILED);
  const QString prefix = QStringLiteral("NgmPointToBlockVModel::computeBlockVarioModel: ");
  const auto expectFailure = [&](const char *what) {
    EXPECT_EQ(regularization.execute(), NbcAProgress::FAILED);
    EXPECT_EQ(regularization.getErrorMessage(), prefix + QString::fromLatin1(what));
  };

  regularization.setPointVarioModel(makeModel(2));
  EXPECT_EQ(regularization.getPointVarioModel().getContext().getNDimensions(), 2);
  regularization.setBlock(makeBlock(NbgVector3D(1., 1., 1.), NbgIntVector3D(1, 1, 1)));
  const struct
  {
    QVector<double> lags;
    QVector<int> counts;
    const char *what;
  } cases[] = {{{1., 0.}, {1, 1}, "invalid lag"},
               {{1., 1.}, {1, 0}, "invalid number of lags"},
               {{1., 1., 1.}, {1, 1, 1}, "invalid number of space dimensions"},
               {{1., 1.}, {1}, "invalid number of space dimensions"}};
  for (const auto &test : cases) {
    regularization.setDiscretizationLags(test.lags, test.counts);
    expectFailure(test.what);
  }

  // Nothing to take default lags from: no dimension, or no extension and no range along W.
  regularization.setDiscretizationLags({}, {});
  regularization.setPointVarioModel(makeModel(4));
  expectFailure("invalid number of space dimensions");
  NgmVModel nugget(1);
  nugget.setNugget(0, 0, 1.);
  regularization.setPointVarioModel(nugget);
  NgmBlock flat(false);
  flat.setSize(NbgVector3D(1., 1., 0.));
  flat.setDiscretizationPointsNumber(NbgIntVector3D(2, 2, 1));
  regularization.setBlock(flat);
  expectFailure("invalid lag");
}

TEST(NgmPointToBlockVModel, StopsAndGivesTheSameAgain)
{
  NgmPointToBlockVModel regularization;
  regularization.setPointVarioModel(makeModel(2));
  regularization.setBlock(makeBlock(NbgVector3D(1., 2., 1.), NbgIntVector3D(3, 3, 1)));
  ASSERT_EQ(regularization.execute(), NbcAProgress::COMPLETED);
  const QVector<double> gammas =
      regularization.getBlockVarioExp().getVarioColumn(1, VARIOGRAM, 0, 0);

  regularization.setBlock(makeBlock(NbgVector3D(1., 2., 1.), NbgIntVector3D(40, 40, 1)));
  regularization.start();
  regularization.stop();
  regularization.wait();
  EXPECT_EQ(regularization.getState(), NbcAProgress::INTERRUPTED);
  EXPECT_THROW(regularization.getBlockVarioExp(), NbeError);

  regularization.setBlock(makeBlock(NbgVector3D(1., 2., 1.), NbgIntVector3D(3, 3, 1)));
  ASSERT_EQ(regularization.execute(), NbcAProgress::COMPLETED);
  EXPECT_EQ(regularization.getBlockVarioExp().getVarioColumn(1, VARIOGRAM, 0, 0), gammas);
}

// A model that has a nugget at the scale of points has none over blocks, less variance and a longer
// range; the fitted curve follows the regularized one.
TEST(NgmPointToBlockVModel, FitsAModelOfBlocks)
{
  NgmPointToBlockVModel regularization;
  regularization.setPointVarioModel(makeModel(2));
  regularization.setBlock(makeBlock(NbgVector3D(1., 0.5, 1e-9), NbgIntVector3D(6, 6, 1)));
  EXPECT_EQ(errorOf([&] { regularization.getBlockVarioModel(); }),
            QStringLiteral("NgmPointToBlockVModel::getBlockVarioModel: Result not yet computed"));
  regularization.setStructList({QStringLiteral("Cubic")});
  regularization.addStructList(QStringLiteral("Exponential"));
  regularization.setNormalization(false, true);
  ASSERT_EQ(regularization.execute(), NbcAProgress::COMPLETED)
      << qPrintable(regularization.getErrorMessage());
  const NgmVModel &model = regularization.getBlockVarioModel();
  const double c0 = regularization.getBlockCovariance()(0, 0);
  EXPECT_FALSE(model.hasNugget());
  EXPECT_NEAR(model.getC0IJ(0, 0), c0, 1e-10);
  const NgmVariogramExpData &data = regularization.getBlockVarioExp();
  for (int axis = 0; axis < 2; ++axis) {
    const QVector<double> distances = data.getDistances(axis, false, 0, 0);
    const QVector<double> gammas = data.getVarioColumn(axis, VARIOGRAM, 0, 0);
    for (int k = 0; k < gammas.size(); ++k)
      EXPECT_NEAR(model.calcVarioIJ(0, 0, distances[k] * data.getDirectionVector(axis)), gammas[k],
                  0.05 * c0);
  }
}

TEST(NgmPointToBlockVModel, DescribesItself)
{
  NgmPointToBlockVModel regularization;
  regularization.setPointVarioModel(makeModel(1));
  regularization.setBlock(makeBlock(NbgVector3D(1., 1., 1.), NbgIntVector3D(2, 2, 2)));
  QString text = regularization.debug(0);
  for (const char *part : {"NgmPointToBlockVModel:\n", "NgmABlock:\n",
                           "Rotation extracted from the variogram model\n", "Not yet computed\n"})
    EXPECT_TRUE(text.contains(QString::fromLatin1(part))) << part;
  regularization.setRotation(true, NbgRotation(10., 0., 0.));
  ASSERT_EQ(regularization.execute(), NbcAProgress::COMPLETED);
  text = regularization.debug(0);
  for (const char *part : {"Rotation is set:\n", "Result:\n"})
    EXPECT_TRUE(text.contains(QString::fromLatin1(part))) << part;
}

}  // namespace
