// The sample output of a kriging.

#include "KrigingStudy.h"
#include "geos/data/NgdSampout.h"
#include "geos/interpol/NgcKriging.h"
#include "support/SampoutFile.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <map>

using namespace krigingtest;
using testsupport::SampoutFile;

namespace {

constexpr int nData = 60;
constexpr int nTargets = 50;
constexpr double range = 80.;
constexpr double radius = 30.;

/// Some targets have no neighbor.
Places targetPlaces()
{
  Places places = randomPlaces(82, nTargets, 100.);
  places.x[3] = 1000.;
  places.x[40] = -500.;
  return places;
}

Study makeStudy()
{
  Study study(randomPlaces(81, nData, 100.), targetPlaces());
  study.addData(Nbd::Role::V, QStringLiteral("z"), randomValues(83, nData));
  study.addData(Nbd::Role::STDEV_MEAS_ERR, QStringLiteral("error"),
                testsupport::uniformValues(84, nData, 0.1, 0.5));
  study.addOutputs({Nbd::Role::V, Nbd::Role::VARIANCE, Nbd::Role::NEIGH_NUMBER});
  return study;
}

void configure(NgcKriging &kriging)
{
  NgmNeighborhoodMoving neighborhood;
  neighborhood.setEllipseSize(NbgVector3D(radius, radius, radius));
  neighborhood.setSectors(1, 12, false);
  kriging.setUsingMovingNeighborhood(neighborhood);
  kriging.setVarioModel(sphericalModel(0., 2., NbgVector3D(range, range, range)));
  kriging.setKrigingMode(NgcEKrigingMode::SIMPLE_KRIGING);
  kriging.setStDevMeasError(0, QStringLiteral("error"));
}

double covariance(double distance)
{
  const double h = distance / range;
  return h < 1. ? 2. * (1. - 1.5 * h + 0.5 * h * h * h) : 0.;
}

}  // namespace

TEST(NgcKrigingSampout, RowsGiveBackTheEstimateAndItsVariance)
{
  const Study study = makeStudy();
  SampoutFile file;
  file.add(NgdSampout::getRoleRhs(), "rhs");
  file.add(NgdSampout::getRoleAuxiliary(), "I_error");
  NgcKriging kriging(QStringLiteral("KRIGING"));
  configure(kriging);
  study.configure(kriging);
  kriging.setNThread(2);
  kriging.setSampoutDataSet(file.dataSet);
  ASSERT_EQ(kriging.execute(), NbcAProgress::COMPLETED) << qPrintable(kriging.getErrorMessage());

  const Values x = file.values("cx"), y = file.values("cy");
  const Values value = file.values("value"), weight = file.values("weight");
  const Values rhs = file.values("rhs"), euclid = file.values("euclid");
  const Values aniso = file.values("aniso"), error = file.values("I_error");
  std::map<std::pair<double, double>, std::array<double, 3>> targets;  // count, estimate, gain
  for (std::size_t row = 0; row < x.size(); ++row) {
    EXPECT_NEAR(rhs[row], covariance(euclid[row]), 1e-12);
    EXPECT_NEAR(aniso[row], euclid[row] / radius, 1e-12);
    EXPECT_GE(error[row], 0.1);
    EXPECT_LE(error[row], 0.5);
    std::array<double, 3> &sums = targets[{x[row], y[row]}];
    sums[0] += 1.;
    sums[1] += weight[row] * value[row];
    sums[2] += weight[row] * rhs[row];
  }
  const Places places = targetPlaces();
  const Values estimates = study.get(Nbd::Role::V), variances = study.get(Nbd::Role::VARIANCE);
  const Values counts = study.get(Nbd::Role::NEIGH_NUMBER);
  std::size_t nEstimated = 0;
  for (std::size_t t = 0; t < places.size(); ++t) {
    const auto sums = targets.find({places.x[t], places.y[t]});
    ASSERT_EQ(sums != targets.end(), NbbGlobal::isDefined(estimates[t])) << t;
    if (sums == targets.end())
      continue;
    ++nEstimated;
    EXPECT_EQ(sums->second[0], counts[t]);
    EXPECT_NEAR(sums->second[1], estimates[t], 1e-12);
    EXPECT_NEAR(2. - sums->second[2], variances[t], 1e-12);
  }
  EXPECT_EQ(nEstimated, targets.size());
  EXPECT_EQ(nEstimated, std::size_t(nTargets - 2));
}

TEST(NgcKrigingSampout, TellsEveryVariableOfACokriging)
{
  Study study(randomPlaces(81, nData, 100.), randomPlaces(82, 5, 100.));
  for (const int variable : {1, 2}) {
    study.addData(Nbd::Role::V, QStringLiteral("z%1").arg(variable),
                  randomValues(84 + std::uint64_t(variable), nData));
    study.addOutput(Nbd::Role::V, QStringLiteral("V%1").arg(variable));
  }
  SampoutFile file;
  NgcKriging kriging(QStringLiteral("KRIGING"));
  kriging.setVarioModel(bivariateModel({0.1, 0.05, 0.2}, {1., 0.6, 0.8}, 40.));
  kriging.setUsingMovingNeighborhood(nearestSamples(7));
  kriging.setSampoutDataSet(file.dataSet);
  study.krige(kriging);

  // Each variable's own weights sum to one for its own estimate.
  const std::vector<std::string> names = file.texts("name");
  const Values weights = file.values("weight");
  ASSERT_EQ(file.getNRows(), 5 * 2 * 7);
  for (std::size_t first = 0; first < names.size(); first += 7) {
    double sum = 0.;
    for (std::size_t row = first; row < first + 7; ++row) {
      EXPECT_EQ(names[row], first / 7 % 2 == 0 ? "z1" : "z2");
      sum += weights[row];
    }
    EXPECT_NEAR(sum, 1., 1e-12);
  }
}

TEST(NgcKrigingSampout, RefusesARightHandSideThatIsNotWanted)
{
  const Study study = makeStudy();
  SampoutFile file;
  file.add(NgdSampout::getRoleRhs(), "rhs");
  NgcKriging kriging(QStringLiteral("KRIGING"));
  configure(kriging);
  study.configure(kriging);
  kriging.setSampoutDataSet(file.dataSet);
  kriging.getSampout()->setHasRhs(false);
  EXPECT_EQ(kriging.execute(), NbcAProgress::FAILED);
  EXPECT_TRUE(kriging.getErrorMessage().contains(
      QStringLiteral("In the dataset 'DS_SAMPOUT' the number of variables associated to role "
                     "'ROLE_RHS' is invalid.")))
      << qPrintable(kriging.getErrorMessage());

  kriging.setUsingUniqueNeighborhood();
  EXPECT_EQ(kriging.execute(), NbcAProgress::FAILED);
  EXPECT_TRUE(kriging.getErrorMessage().contains(
      QStringLiteral("Sampout available only for moving neighborhood.")));
}
