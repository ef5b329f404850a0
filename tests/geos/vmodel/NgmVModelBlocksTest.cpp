#include "basic/error/NbeUserError.h"
#include "basic/geom/NbgIntVector3D.h"
#include "geos/interpol/NgmBlock.h"
#include "geos/interpol/NgmTarget.h"
#include "geos/vmodel/NgmAVStruct.h"
#include "geos/vmodel/NgmCvvBuilder.h"
#include "geos/vmodel/NgmVModel.h"
#include "support/Errors.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace {

NgmMatrix matrix2(double a, double b, double c)
{
  NgmMatrix matrix(2, 2, true);
  matrix.setElement(0, 0, a);
  matrix.setElement(0, 1, b);
  matrix.setElement(1, 1, c);
  return matrix;
}

/// An isotropic structure behind an anisotropic one, which calcCova() evaluates in its own way.
NgmVModel makeModel()
{
  NgmVModel model(2);
  model.setNuggetMatrix(matrix2(0.1, 0.02, 0.2));
  model.addStructure(QStringLiteral("Exponential"), matrix2(0.3, 0.1, 0.4));
  model.setRangeIsotropic(0, 70.);
  model.addStructure(QStringLiteral("Spherical"), matrix2(1., 0.5, 2.));
  model.setRanges(1, NbgVector3D(100., 50., 20.));
  model.addStructure(QStringLiteral("Gaussian"), matrix2(0.7, -0.3, 0.4));
  model.setRangeIsotropic(2, 80.);
  model.setRotation(1, NbgRotation(35., 10., 5.));
  return model;
}

NgmBlock makeBlock(const NbgIntVector3D &numbers)
{
  NgmBlock block(true);
  block.setSize(NbgVector3D(40., 30., 10.));
  block.setRotation(NbgRotation(20., 0., 0.));
  block.setDiscretizationPointsNumber(numbers);
  return block;
}

/// The mean of calcCova() over all pairs, one by one.
NgmMatrix meanOfPairs(const NgmVModel &model, const QVector<NbgVector3D> &a,
                      const QVector<NbgVector3D> &b)
{
  const int n = model.getNVariables();
  NgmMatrix mean(n, n, true), covas(n, n, true);
  for (const NbgVector3D &p : a)
    for (const NbgVector3D &q : b) {
      model.calcCova(p - q, covas);
      mean += covas;
    }
  mean.scalarMultiply(1. / (double(a.size()) * b.size()));
  mean.setPrecision(1e-14);
  return mean;
}

TEST(NgmVModelBlocks, CvvIsBetweenRegularAndJitteredPoints)
{
  const NgmVModel model = makeModel();
  const NgmBlock block = makeBlock(NbgIntVector3D(4, 3, 2));
  QVector<NbgVector3D> points, jittered;
  block.getDiscretizationPoints(points);
  block.getRandomPoints(99, jittered, false);
  NgmMatrix cvv(false), again(false);
  model.calcCvv(block, 99, cvv);
  EXPECT_EQ(meanOfPairs(model, points, jittered), cvv);
  EXPECT_EQ(cvv(0, 1), cvv(1, 0));
  model.calcCvv(block, 99, again);
  EXPECT_EQ(std::memcmp(cvv.constElements(), again.constElements(), 4 * sizeof(double)), 0);
  model.calcCvv(block, 100, again);
  EXPECT_NE(cvv(0, 0), again(0, 0));

  // One point: the covariance between the centre and a random point, not C00.
  const NgmBlock single = makeBlock(NbgIntVector3D(1, 1, 1));
  single.getRandomPoints(99, jittered, false);
  model.calcCvv(single, 99, cvv);
  NgmMatrix pair(2, 2, true);
  model.calcCova(-jittered[0], pair);
  pair.setPrecision(1e-15);
  EXPECT_EQ(pair, cvv);
}

TEST(NgmVModelBlocks, PointsOfTwoBlocksThatMeetHaveTheNugget)
{
  const NgmVModel model = makeModel();
  const NgmBlock block = makeBlock(NbgIntVector3D(4, 3, 2));
  QVector<NbgVector3D> points;
  block.getDiscretizationPoints(points);
  for (const NbgVector3D &shift : {NbgVector3D::Null, NbgVector3D(25., -13., 4.)}) {
    QVector<NbgVector3D> shifted;
    for (const NbgVector3D &point : points)
      shifted << point + shift;
    NgmMatrix covas(false);
    model.calcCovBlockBlock(block, shift, covas);
    EXPECT_EQ(meanOfPairs(model, points, shifted), covas);
  }
  NgmMatrix with(false), without(false);
  model.calcCovBlockBlock(block, NbgVector3D::Null, with);
  model.buildFilteredModel(true, {}).calcCovBlockBlock(block, NbgVector3D::Null, without);
  EXPECT_NEAR(with(0, 1) - without(0, 1), 0.02 / 24., 1e-15);
}

TEST(NgmVModelBlocks, CvvOfASegmentComesNearItsIntegral)
{
  // Exponential of scale 1 over a segment of length L: 2 (L - 1 + exp(-L)) / L^2.
  NgmVModel model(1);
  model.addStructure(QStringLiteral("Exponential"), 1.);
  model.setRangeIsotropic(0, 2.995732);
  NgmBlock block(true);
  block.setSize(NbgVector3D(4., 1e-9, 1e-9));
  block.setDiscretizationPointsNumber(NbgIntVector3D(400, 1, 1));
  NgmMatrix cvv(false);
  model.calcCvv(block, 5, cvv);
  EXPECT_NEAR(cvv(0, 0), 2. * (3. + std::exp(-4.)) / 16., 1e-4);
  // The coinciding points of the plain discretization count too much.
  model.calcCovBlockBlock(block, NbgVector3D::Null, cvv);
  EXPECT_NEAR(cvv(0, 0), 2. * (3. + std::exp(-4.)) / 16., 1e-4);
}

/// Gives fewer random points than it should.
class ShortBlock : public NgmBlock
{
public:
  using NgmBlock::NgmBlock;
  void getRandomPoints(qint64, QVector<NbgVector3D> &points, bool) const override
  {
    points.resize(1);
  }
};

TEST(NgmVModelBlocks, CvvNeedsAsManyRandomPoints)
{
  ShortBlock block(true);
  block.setSize(NbgVector3D(1., 1., 1.));
  block.setDiscretizationPointsNumber(NbgIntVector3D(2, 1, 1));
  NgmMatrix cvv(false);
  EXPECT_EQ(testsupport::errorOf([&] { makeModel().calcCvv(block, 1, cvv); }),
            QStringLiteral("NgmVModel::calcCvv: invalid number of disc. points"));
}

TEST(NgmVModelBlocks, BestDiscretizationStopsAtItsTolerance)
{
  NgmVModel model(1);
  model.setNugget(0, 0, 5.);
  model.addStructure(QStringLiteral("Spherical"), 1.);
  model.setRangeIsotropic(0, 50.);
  NgmBlock block(true);
  block.setSize(NbgVector3D(40., 40., 10.));
  block.setDiscretizationStepsSize(NbgVector3D(1., 1., 1.));
  QVector<double> history(3, 7.);
  const NbgIntVector3D loose = model.findBestDiscretization(block, 2.5, 0.01, &history);
  EXPECT_EQ(loose.z(), 4);
  EXPECT_EQ(loose.x(), loose.y());
  ASSERT_EQ(history.size(), loose.x() - 1);
  for (int k = 1; k < history.size(); ++k)
    EXPECT_EQ(std::abs(history[0] - history[k]) / history[0] < 0.01, k == history.size() - 1);
  // The reference is that of 14 x 14 x 4 points, without nugget.
  QVector<NbgVector3D> points;
  block.setDiscretizationStepsSize(NbgVector3D::Null);
  block.setDiscretizationPointsNumber(NbgIntVector3D(14, 14, 4));
  block.getDiscretizationPoints(points);
  double mean = 0.;
  for (const NbgVector3D &point : points)
    mean += model.calcCovaIJ(0, 0, point) / points.size();
  EXPECT_NEAR(history[0], mean, 1e-14);

  EXPECT_EQ(model.findBestDiscretization(block, 2.5, 0., nullptr), NbgIntVector3D(12, 12, 4));
  EXPECT_EQ(model.findBestDiscretization(block, 2.5, 1e9, nullptr), NbgIntVector3D(3, 3, 4));
}

TEST(NgmVModelBlocks, VerticalNumberIsAtMostTen)
{
  NgmVModel model(1);
  model.addStructure(QStringLiteral("Spherical"), 1.);
  model.setRangeIsotropic(0, 50.);
  NgmBlock block(true);
  const auto vertical = [&](double size, double step) {
    block.setSize(NbgVector3D(10., 10., size));
    block.setDiscretizationPointsNumber(NbgIntVector3D(1, 1, 1));
    return model.findBestDiscretization(block, step, 1e9, nullptr).z();
  };
  EXPECT_EQ(vertical(10., 1.), 10);
  EXPECT_EQ(vertical(11., 1.), 5);  // 11 / 2
  EXPECT_EQ(vertical(100., 1.), 10);
  EXPECT_EQ(vertical(105., 1.), 10);
  EXPECT_EQ(vertical(0.3, 0.1), 3) << "rounding";
  EXPECT_EQ(vertical(1., 3.), 1);
  EXPECT_EQ(vertical(1., 0.), 1);
  EXPECT_EQ(vertical(1e10, 1e-300), 10);
  for (int size = 1; size < 500; ++size) {
    int i = 1;
    while (size / i > 10)
      ++i;
    ASSERT_EQ(vertical(size, 1.), size / i) << size;
  }
  NgmBlock flat(false);
  flat.setSize(NbgVector3D(10., 10., 0.));
  EXPECT_EQ(model.findBestDiscretization(flat, 1., 1e9, nullptr), NbgIntVector3D(3, 3, 1));
}

TEST(NgmCvvBuilder, AveragesOverRandomDiscretizations)
{
  const NgmVModel model = makeModel();
  const NgmBlock block = makeBlock(NbgIntVector3D(3, 3, 2));
  NgmCvvBuilder builder;
  EXPECT_EQ(builder.getProgressMessage(), QStringLiteral("Compute Block Covariance"));
  builder.setVModel(model);
  builder.setBlockDefinition(block);
  builder.setNTries(4);
  builder.setSeed(12);
  ASSERT_EQ(builder.execute(), NbcAProgress::COMPLETED) << qPrintable(builder.getErrorMessage());
  const QList<NgmMatrix> cvv = builder.getCvv();
  ASSERT_EQ(cvv.size(), 4);
  NgmMatrix mean(2, 2, false);
  for (const NgmMatrix &matrix : cvv) {
    mean += matrix;
    EXPECT_NEAR(matrix(0, 0), cvv[0](0, 0), 0.1);
  }
  EXPECT_NE(cvv[0](0, 0), cvv[1](0, 0));
  mean.scalarMultiply(0.25);
  EXPECT_EQ(builder.getMeanCvv(), mean);
  builder.start();
  builder.wait();
  EXPECT_EQ(builder.getMeanCvv(), mean) << "the same seed";

  const NgmMatrix computed = model.computeMeanCvv(block);
  EXPECT_NEAR(computed(0, 0), mean(0, 0), 0.05);
}

TEST(NgmCvvBuilder, NeedsAModelAndABlock)
{
  const QString path = QStringLiteral("vmodel\\NgmCvvBuilder");
  const auto expectFailure = [&](NgmCvvBuilder &builder, const char *condition) {
    EXPECT_EQ(builder.execute(), NbcAProgress::FAILED);
    EXPECT_TRUE(builder.getErrorMessage().endsWith(
        QStringLiteral("in file '%1' failed:\n\n%2").arg(path, QString::fromLatin1(condition))))
        << qPrintable(builder.getErrorMessage());
  };
  NgmCvvBuilder builder;
  expectFailure(builder, "invalid block discretization (< 1 point).");
  builder.setBlockDefinition(NgmBlock(true));
  expectFailure(builder, "invalid block discretization (< 1 point).");
  builder.setBlockDefinition(makeBlock(NbgIntVector3D(2, 2, 2)));
  expectFailure(builder, "invalid model.");
  builder.setVModel(NgmVModel(1));
  expectFailure(builder, "invalid model.");
  EXPECT_TRUE(builder.getCvv().isEmpty());
  EXPECT_EQ(builder.getMeanCvv().getNElements(), 0);
  EXPECT_EQ(testsupport::errorOf([] { makeModel().computeMeanCvv(NgmBlock(true)); }),
            QStringLiteral("Block Covariance matrix calculation failed"));
}

}  // namespace
