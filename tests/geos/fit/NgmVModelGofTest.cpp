#include "geos/fit/NgmVModelGof.h"

#include <gtest/gtest.h>

#include "geos/vmodel/NgmVModel.h"
#include "support/Errors.h"
#include "support/FitCases.h"

using namespace fitcases;
using testsupport::errorOf;

namespace {

NgmVModel modelOf(int nVariables)
{
  NgmVModel model = emptyModel(nVariables);
  model.addStructure(QStringLiteral("Spherical"), randomSills(nVariables, 4));
  model.setRangeIsotropic(0, 60.);
  return model;
}

QList<NbdVariableDetails> detailsOf(int n)
{
  QList<NbdVariableDetails> details;
  for (int i = 0; i < n; ++i)
    details << NbdVariableDetails(QStringLiteral("v%1").arg(i));
  return details;
}

/// Covariances become twice as large.
class Doubled : public NgmICovaTransformation
{
public:
  std::unique_ptr<NgmICovaTransformation> clone() const override
  {
    return std::make_unique<Doubled>();
  }
  double transformCova(int, int, double covariance) const override { return 2. * covariance; }
};

}  // namespace

TEST(NgmVModelGof, WeightsAreSharesOfACurve)
{
  NgmVModelGof gof;
  const QVector<double> distances{1., 2., NbbGlobal::D_FFFF, 0., -1.};
  const QVector<double> nPairs{100., 25., 50., 50., 50.};
  const double near = std::sqrt(100.), far = std::sqrt(12.5);
  QVector<double> weights = gof.getWeights(distances, nPairs);
  EXPECT_NEAR(weights[0], near / (near + far), 1e-15);
  EXPECT_NEAR(weights[1], far / (near + far), 1e-15);
  EXPECT_EQ(weights.mid(2), QVector<double>(3, 0.));

  gof.setUseDeprecatedWeightingFunction(false);
  gof.setNPairsExponent(1.);
  weights = gof.getWeights(distances, nPairs);
  EXPECT_NEAR(weights[0], 100. / 112.5, 1e-15);
  EXPECT_NEAR(weights[1], 12.5 / 112.5, 1e-15);
  gof.setNPairsMinimum(26);
  EXPECT_EQ(gof.getWeights(distances, nPairs)[0], 1.);
  gof.setNPairsMinimum(101);
  EXPECT_EQ(gof.getWeights(distances, nPairs), QVector<double>(5, 1.));
}

TEST(NgmVModelGof, IsTheSumOfSquaredWeightedErrors)
{
  const NgmVModel truth = modelOf(2);
  const Layout layout = inPlane(2, 6);
  NgmVariogramExpData data = dataOf(truth, layout);
  NgmVModelGof gof;
  gof.setVarioExp(data, NgmEVarioExp::VARIOGRAM);
  gof.setVariableDetails(detailsOf(2));
  gof.setVarioModel(truth);
  EXPECT_LT(gof.evaluateGof(), 1e-28);

  NgmVModel wrong(truth);
  wrong.setRangeIsotropic(0, 45.);
  gof.setVarioModel(wrong);
  double sum = 0.;
  for (int d = 0; d < 2; ++d) {
    for (int i = 0; i < 2; ++i) {
      for (int j = 0; j <= i; ++j) {
        const QVector<double> weights = gof.getWeights(d, i, j);
        const double scale = std::sqrt(wrong.getC0IJ(i, i) * wrong.getC0IJ(j, j));
        for (int k = 0; k < layout.nLags; ++k) {
          const NbgVector3D h((k + 1) * layout.lag, 0., 0.);  // isotropic
          const double error = truth.calcVarioIJ(i, j, h) - wrong.calcVarioIJ(i, j, h);
          sum += std::pow(weights[k] * error / scale, 2);
        }
      }
    }
  }
  EXPECT_GT(sum, 1e-6);
  EXPECT_NEAR(gof.evaluateGof(), sum, 1e-12 * sum);

  // In units of the experimental variances when they are known.
  data.setC00(truth.getC00Matrix() * 4.);
  gof.setVarioExp(data, NgmEVarioExp::VARIOGRAM);
  EXPECT_NEAR(gof.evaluateGof(), sum / 16., 1e-12 * sum);
}

TEST(NgmVModelGof, ComparesTransformedCovariances)
{
  const NgmVModel truth = modelOf(1);
  NgmVModel half(truth);
  half.setCoregionalisationMatrix(0, truth.getCoregionalisationMatrix(0) * 0.5);
  NgmVariogramExpData data;
  data.setNVariables(1);
  data.addDirectionVector(NbgVector3D::X, 2, QStringLiteral("D"));
  data.createTables({}, {NgmECovaExp::COVARIANCE}, false);
  const double distances[] = {-40., -20., 0., 20., 40.};
  const long long counts[] = {9, 10, 20, 10, 9};
  double values[5];
  for (int k = 0; k < 5; ++k)
    values[k] = truth.calcCovaIJ(0, 0, NbgVector3D(distances[k], 0., 0.));
  data.setDistances(0, true, 0, 0, 5, distances);
  data.setNumberOfPairs(0, true, 0, 0, 5, counts);
  data.setCovaValues(0, NgmECovaExp::EValue::COVARIANCE, 0, 0, 5, values);

  NgmVModelGof gof;
  gof.setVarioExp(data, NgmECovaExp::COVARIANCE);
  gof.setVariableDetails(detailsOf(1));
  gof.setVarioModel(truth);
  EXPECT_LT(gof.evaluateGof(), 1e-28);
  gof.setVarioModel(half);
  EXPECT_GT(gof.evaluateGof(), 1e-3);
  gof.setCovarianceTransformation(Doubled());
  EXPECT_LT(gof.evaluateGof(), 1e-28);
}

TEST(NgmVModelGof, RefusesWhatDoesNotFit)
{
  const NgmVModel truth = modelOf(2);
  NgmVModelGof gof;
  gof.setVarioModel(truth);
  gof.setVarioExp(dataOf(truth, inPlane(2, 4)), NgmEVarioExp::VARIOGRAM);
  EXPECT_THROW(gof.setNPairsExponent(2.5), NbeError);
  EXPECT_THROW(gof.setNPairsExponent(0.05), NbeError);
  EXPECT_NO_THROW(gof.setNPairsExponent(2.));
  EXPECT_EQ(errorOf([&] { gof.setNPairsMinimum(-1); }),
            QStringLiteral("Invalid minimum number of pairs provided"));
  EXPECT_EQ(errorOf([&] {
              gof.getWeights({1., 2.}, {1.});
            }),
            QStringLiteral("Inconsistent sizes of vectors (dist vs npairs)."));
  EXPECT_EQ(errorOf([&] { gof.getWeights(2, 0, 0); }),
            QStringLiteral("Invalid direction index provided."));
  EXPECT_EQ(errorOf([&] { gof.getWeights(0, 0, 2); }),
            QStringLiteral("Invalid variable index provided."));
  gof.setVariableDetails(detailsOf(1));
  EXPECT_EQ(errorOf([&] { gof.evaluateGof(); }),
            QStringLiteral("Inconsistent variable details regarding model number of variables"));
  gof.setVariableDetails(detailsOf(2));
  gof.setFittedCurve(NgmEVarioExp::MADOGRAM);
  EXPECT_EQ(errorOf([&] { gof.evaluateGof(); }),
            QStringLiteral("Unexisting variogram/covariance experimental curve"));
}
