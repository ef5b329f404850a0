// The outputs of kriging beside the estimate, and what is done to a buffer of results.

#include "KrigingStudy.h"
#include "geos/anam/NgmITransformation.h"
#include "geos/interpol/NgcAKrigingWorker.h"
#include "geos/interpol/NgcKriging.h"
#include "geos/interpol/NgmBlock.h"
#include "geos/interpol/NgmIKrigingPostPro.h"
#include "geos/interpol/NgmKrigingTestResult.h"
#include "geos/stats/NgmIMultivariateTransform.h"
#include "interpol/private/NgcKrigingVariance.h"
#include "support/Errors.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

using namespace krigingtest;

namespace {

constexpr int nData = 40;
constexpr int nTargets = 60;

QStringList statisticRoles(bool simple)
{
  QStringList roles = {Nbd::Role::V,
                       Nbd::Role::VARIANCE,
                       Nbd::Role::STDEV,
                       Nbd::Role::VAR_ESTIMATE,
                       Nbd::Role::COVAR_ZZSTAR,
                       Nbd::Role::CORREL_ZZSTAR,
                       Nbd::Role::SLOPE_ZZSTAR,
                       Nbd::Role::KRIG_EFFIC,
                       Nbd::Role::SUM_W,
                       Nbd::Role::SUM_POS_W,
                       Nbd::Role::WEIGHT_OF_MEAN};
  if (!simple)
    roles << Nbd::Role::LAGRANGE;
  return roles;
}

NgmVModel makeModel()
{
  return sphericalModel(0.2, 0.8, NbgVector3D(40., 40., 40.));
}

Study makeStudy(const QStringList &outputs, double mean = 0.)
{
  Study study(randomPlaces(41, nData, 100.), randomPlaces(42, nTargets, 100.));
  study.addData(Nbd::Role::V, QStringLiteral("z"), randomValues(43, nData, mean));
  study.addOutputs(outputs);
  return study;
}

using Configure = std::function<void(NgcKriging &)>;

void krige(
    const Study &study, bool moving, const Configure &configure = [](NgcKriging &) {})
{
  NgcKriging kriging(QStringLiteral("KRIGING"));
  kriging.setVarioModel(makeModel());
  if (moving)
    kriging.setUsingMovingNeighborhood(nearestSamples(nData));
  else
    kriging.setUsingUniqueNeighborhood();
  configure(kriging);
  study.krige(kriging);
  EXPECT_EQ(kriging.getNumberOfInterpolErrors(), 0)
      << qPrintable(kriging.getInterpolErrorsMessage());
}

void setSimple(NgcKriging &kriging)
{
  kriging.setKrigingMode(NgcEKrigingMode::SIMPLE_KRIGING);
}

}  // namespace

TEST(NgcKrigingOutputs, SimpleKrigingFulfilsItsIdentities)
{
  const double c0 = 1.;
  for (const bool moving : {true, false}) {
    const Study study = makeStudy(statisticRoles(true));
    krige(study, moving, setSimple);
    for (std::size_t t = 0; t < nTargets; ++t) {
      const double variance = study.get(Nbd::Role::VARIANCE)[t];
      const double ofEstimate = study.get(Nbd::Role::VAR_ESTIMATE)[t];
      EXPECT_NEAR(ofEstimate, c0 - variance, 1e-12);
      EXPECT_NEAR(study.get(Nbd::Role::COVAR_ZZSTAR)[t], ofEstimate, 1e-12);
      EXPECT_NEAR(study.get(Nbd::Role::SLOPE_ZZSTAR)[t], 1., 1e-10);
      EXPECT_NEAR(study.get(Nbd::Role::KRIG_EFFIC)[t], ofEstimate / c0, 1e-12);
      EXPECT_NEAR(std::pow(study.get(Nbd::Role::CORREL_ZZSTAR)[t], 2.), ofEstimate / c0, 1e-12);
      EXPECT_NEAR(study.get(Nbd::Role::SUM_W)[t] + study.get(Nbd::Role::WEIGHT_OF_MEAN)[t], 1.,
                  1e-12);
      EXPECT_GE(study.get(Nbd::Role::SUM_POS_W)[t], study.get(Nbd::Role::SUM_W)[t]);
      EXPECT_DOUBLE_EQ(study.get(Nbd::Role::STDEV)[t], std::sqrt(variance));
    }
  }
}

TEST(NgcKrigingOutputs, OrdinaryKrigingFulfilsItsIdentities)
{
  const double c0 = 1.;
  const Study simple = makeStudy(statisticRoles(true));
  krige(simple, true, setSimple);
  for (const bool moving : {true, false}) {
    const Study study = makeStudy(statisticRoles(false));
    krige(study, moving);
    expectEqual(study.get(Nbd::Role::SUM_W), Values(nTargets, 1.), 1e-12);
    expectEqual(study.get(Nbd::Role::WEIGHT_OF_MEAN), simple.get(Nbd::Role::WEIGHT_OF_MEAN), 1e-12);
    for (std::size_t t = 0; t < nTargets; ++t) {
      // Var(Z - Z*) = C(0) + Var(Z*) - 2 Cov(Z, Z*), and Var(Z*) = Cov(Z, Z*) - mu.
      const double ofEstimate = study.get(Nbd::Role::VAR_ESTIMATE)[t];
      const double covariance = study.get(Nbd::Role::COVAR_ZZSTAR)[t];
      EXPECT_NEAR(study.get(Nbd::Role::VARIANCE)[t], c0 + ofEstimate - 2. * covariance, 1e-12);
      EXPECT_NEAR(ofEstimate, covariance - study.get(Nbd::Role::LAGRANGE)[t], 1e-12);
      EXPECT_NEAR(study.get(Nbd::Role::SLOPE_ZZSTAR)[t], covariance / ofEstimate, 1e-12);
    }
  }
}

TEST(NgcKrigingOutputs, VarianceOfTheWeightsIsThatOfOptimalOnes)
{
  for (const bool moving : {true, false}) {
    const Study optimal = makeStudy({Nbd::Role::V, Nbd::Role::VARIANCE});
    krige(optimal, moving);
    const Study given = makeStudy({Nbd::Role::V, Nbd::Role::VARIANCE});
    krige(given, moving, [](NgcKriging &kriging) { kriging.setUseKrigingWeights(true); });
    expectEqual(given.get(Nbd::Role::VARIANCE), optimal.get(Nbd::Role::VARIANCE), 1e-12);
  }
}

TEST(NgcKrigingOutputs, MovingEqualsUniqueWithAllSamples)
{
  // Two variables with everything that both roads know, every output.
  const Places targets = randomPlaces(42, nTargets, 100.);
  const auto makeRich = [&] {
    Study study(randomPlaces(41, nData, 100.), targets);
    Values holed = randomValues(43, nData);
    holed[5] = NbbGlobal::D_FFFF;
    study.addData(Nbd::Role::V, QStringLiteral("z1"), holed);
    study.addData(Nbd::Role::V, QStringLiteral("z2"), randomValues(44, nData));
    study.addData(Nbd::Role::EXTDRIFT, QStringLiteral("f"), randomValues(45, nData));
    study.addTargetData(Nbd::Role::EXTDRIFT, QStringLiteral("f"), randomValues(46, nTargets));
    study.addData(Nbd::Role::STDEV_MEAS_ERR, QStringLiteral("error"), Values(nData, 0.3));
    study.addData(Nbd::Role::CODE, QStringLiteral("code"),
                  testsupport::uniformValues(47, nData, 0., 4.));
    QStringList roles = statisticRoles(false);
    roles << Nbd::Role::NEIGH_NUMBER << Nbd::Role::NEIGH_MEAN_DIST;
    for (const QString &role : roles) {
      study.addOutput(role, role + QLatin1String("1"));
      study.addOutput(role, role + QLatin1String("2"));
    }
    study.addOutput(Nbd::Role::COVAR_Z1STARZSTAR);
    return study;
  };
  const auto configure = [](NgcKriging &kriging) {
    kriging.setVarioModel(bivariateModel({0.1, 0.05, 0.2}, {1., 0.6, 0.8}, 40.));
    NgmDriftModel drift;
    drift.addDrifts(0, 1, true, true, false);
    drift.addDrifts(1, 1, true, true, false);
    NgmExtDriftModel external;
    external.addDrift(1, 0);
    kriging.setKrigingMode(NgcEKrigingMode::UNIVERSAL_KRIGING);
    kriging.setDriftModel(drift);
    kriging.setExtDriftModel(external);
    kriging.setStDevMeasError(1, QStringLiteral("error"));
    kriging.setFilterNugget(true);
  };
  const Study moving = makeRich();
  krige(moving, true, configure);
  const Study unique = makeRich();
  krige(unique, false, configure);
  for (const QString &role : statisticRoles(false)) {
    if (role == Nbd::Role::LAGRANGE)
      continue;  // the monomials, and so its share, are relative to another centre
    for (const char *variable : {"1", "2"}) {
      // Slopes and correlations divide by small numbers; the rest is rounding of order 86.
      const QString name = role + QLatin1String(variable);
      expectEqual(unique.get(name), moving.get(name), 1e-8, qPrintable(name));
    }
  }
  expectEqual(unique.get(Nbd::Role::COVAR_Z1STARZSTAR), moving.get(Nbd::Role::COVAR_Z1STARZSTAR),
              1e-10);
  EXPECT_EQ(unique.get(Nbd::Role::NEIGH_NUMBER + QLatin1String("2")), Values(nTargets, nData));
  expectEqual(unique.get(Nbd::Role::NEIGH_MEAN_DIST + QLatin1String("1")),
              moving.get(Nbd::Role::NEIGH_MEAN_DIST + QLatin1String("1")), 1e-11);
}

TEST(NgcKrigingOutputs, TellOfTheNeighbors)
{
  Study study({{0., 3., 0., 50.}, {0., 0., 4., 50.}}, {{0., 500.}, {0., 500.}});
  study.addData(Nbd::Role::V, QStringLiteral("z"), {1., 2., 3., 4.});
  study.addData(Nbd::Role::CODE, QStringLiteral("code"), {7., 7., 9., 9.});
  study.addOutputs({Nbd::Role::V, Nbd::Role::NEIGH_NUMBER, Nbd::Role::NEIGH_MEAN_DIST,
                    Nbd::Role::NEIGH_CODE_NUMBER, Nbd::Role::NEIGH_SEARCH_INDEX});
  NgcKriging kriging(QStringLiteral("KRIGING"));
  kriging.setVarioModel(makeModel());
  NgmNeighborhoodMoving neighborhood = nearestSamples(16);
  neighborhood.setEllipseSize(NbgVector3D(10., 10., 10.));
  kriging.setUsingMovingNeighborhood(neighborhood);
  study.krige(kriging);
  EXPECT_EQ(study.get(Nbd::Role::NEIGH_NUMBER), (Values{3., 0.}));
  EXPECT_EQ(study.get(Nbd::Role::NEIGH_MEAN_DIST), (Values{7. / 3., NbbGlobal::D_FFFF}));
  EXPECT_EQ(study.get(Nbd::Role::NEIGH_SEARCH_INDEX), (Values{1., 0.}));
  EXPECT_EQ(study.get(Nbd::Role::NEIGH_CODE_NUMBER), (Values{2., 0.}));
  EXPECT_EQ(study.get(Nbd::Role::V)[1], NbbGlobal::D_FFFF);

  kriging.setUsingUniqueNeighborhood();
  study.krige(kriging);
  EXPECT_EQ(study.get(Nbd::Role::NEIGH_NUMBER), (Values{4., 4.}));
  EXPECT_EQ(study.get(Nbd::Role::NEIGH_SEARCH_INDEX), (Values{1., 1.}));
  EXPECT_EQ(study.get(Nbd::Role::NEIGH_CODE_NUMBER), (Values{2., 2.}));
}

TEST(NgcKrigingOutputs, SamplesOfAFullBlockGiveTheirMean)
{
  Study study({{0., 2., -3., 300.}, {0., 1., 2., 300.}}, {{0.}, {0.}});
  study.addData(Nbd::Role::V, QStringLiteral("z"), {1., 2., 6., 100.});
  study.addOutputs({Nbd::Role::V, Nbd::Role::VARIANCE, Nbd::Role::STDEV});
  NgmNeighborhoodMoving neighborhood = nearestSamples(16);
  neighborhood.setRuleKeepAllInBlock(true);
  neighborhood.setRuleMaximumPerBlock(true, 3);
  NgmBlock block(false);
  block.setSize(NbgVector3D(10., 10., 0.));
  block.setDiscretizationPointsNumber(NbgIntVector3D(2, 2, 1));
  NgcKriging kriging(QStringLiteral("KRIGING"));
  kriging.setVarioModel(makeModel());
  kriging.setSupportBlock(block);
  kriging.setUsingMovingNeighborhood(neighborhood);
  study.krige(kriging);
  EXPECT_EQ(study.get(Nbd::Role::V)[0], 3.);
  EXPECT_EQ(study.get(Nbd::Role::VARIANCE)[0], NbbGlobal::D_FFFF);
  EXPECT_EQ(study.get(Nbd::Role::STDEV)[0], NbbGlobal::D_FFFF);
}

TEST(NgcKrigingOutputs, ASingularCompanionCostsOnlyTheWeightOfTheMean)
{
  // Without covariances one sample is an ordinary kriging, but no simple one.
  NgmVModel model = sphericalModel(0., 1., NbgVector3D(40., 40., 40.));
  model.setCoregionalisationMatElem(0, 0, 0, 0.);
  for (const bool moving : {true, false}) {
    Study study({{0.}, {0.}}, {{1.}, {2.}});
    study.addData(Nbd::Role::V, QStringLiteral("z"), {3.});
    study.addOutputs({Nbd::Role::V, Nbd::Role::WEIGHT_OF_MEAN});
    NgcKriging kriging(QStringLiteral("KRIGING"));
    kriging.setVarioModel(model);
    if (moving)
      kriging.setUsingMovingNeighborhood(nearestSamples(1));
    else
      kriging.setUsingUniqueNeighborhood();
    study.krige(kriging);
    EXPECT_EQ(study.get(Nbd::Role::V)[0], 3.);
    EXPECT_EQ(study.get(Nbd::Role::WEIGHT_OF_MEAN)[0], NbbGlobal::D_FFFF);
    EXPECT_EQ(kriging.getNumberOfInterpolErrors(), 1);
    EXPECT_TRUE(kriging.hasInterpolError(Ngc::INTERPOL_ERROR_SYSTEM));
    EXPECT_TRUE(kriging.getInterpolErrorsMessage().contains(QStringLiteral(
        "Simple Kriging system resolution error. The weight of meancan't be computed\n"
        "Target location: X = 1, Y = 2, Z = 0\nNote: The ordinary kriging succeed !")));
  }
}

// Conversion of the variances.

TEST(NgcKrigingOutputs, IndicatorTakesThePlaceOfVariances)
{
  const Study plain = makeStudy({Nbd::Role::V, Nbd::Role::VARIANCE});
  const Study study =
      makeStudy({Nbd::Role::V, Nbd::Role::VARINDICATOR, Nbd::Role::VARIANCE, Nbd::Role::STDEV});
  krige(plain, true);
  krige(study, true);
  for (std::size_t t = 0; t < nTargets; ++t)
    EXPECT_DOUBLE_EQ(study.get(Nbd::Role::VARINDICATOR)[t], plain.get(Nbd::Role::VARIANCE)[t] / 2.);
  EXPECT_EQ(study.get(Nbd::Role::VARIANCE), Values(nTargets, NbbGlobal::D_FFFF));
  EXPECT_EQ(study.get(Nbd::Role::STDEV), Values(nTargets, NbbGlobal::D_FFFF));
}

TEST(NgcKrigingOutputs, NegativeVariancesHaveNoRoot)
{
  const int positions[] = {0, 2, 3};
  const NgcKrigingVariance::Targets targets = {3, positions};
  NgmMatrix c0(1, 1, true);
  c0.setElement(0, 0, 2.);
  const Values variances = {-1e-12, -5., 9., NbbGlobal::D_FFFF};

  Values kept = variances;
  Values roots(4, 77.);
  NgcKrigingVariance::transform(targets, {true, true, false}, c0, {kept.data()}, {roots.data()});
  EXPECT_EQ(kept, variances);
  EXPECT_EQ(roots, (Values{0., 77., 3., NbbGlobal::D_FFFF}));

  Values alone = variances;
  NgcKrigingVariance::transform(targets, {true, false, false}, c0, {alone.data()}, {alone.data()});
  EXPECT_EQ(alone, (Values{0., -5., 3., NbbGlobal::D_FFFF}));

  Values indicators = variances;
  NgcKrigingVariance::transform(targets, {false, false, true}, c0, {indicators.data()}, {nullptr});
  EXPECT_EQ(indicators, (Values{0., -5., 2.25, NbbGlobal::D_FFFF}));

  for (const NgcKrigingVariance::Flags &wrong :
       {NgcKrigingVariance::Flags{true, false, true}, NgcKrigingVariance::Flags{false, true, true}})
    EXPECT_EQ(testsupport::errorOf([&] {
                NgcKrigingVariance::transform(targets, wrong, c0, {kept.data()}, {roots.data()});
              }),
              QStringLiteral("invalid arguments"));
}

// Transformations.

namespace {

/// y = z - shift.
class Shift : public NgmITransformation
{
public:
  explicit Shift(double shift) : _shift(shift) {}

  double transformValue(double value) const override { return value - _shift; }
  double invTransformValue(double value) const override { return value + _shift; }
  void transformValues(const NbdAVariableNumeric &in, NbdAVariableNumeric &out) const override
  {
    for (int i = 0; i < in.getNValues(); ++i)
      out.setValue(i, in.isUndefined(i) ? NbbGlobal::D_FFFF : transformValue(in.getValue(i)));
  }
  void invTransformValues(const NbdAVariableNumeric &in, NbdAVariableNumeric &out) const override
  {
    for (int i = 0; i < in.getNValues(); ++i)
      out.setValue(i, in.isUndefined(i) ? NbbGlobal::D_FFFF : invTransformValue(in.getValue(i)));
  }

protected:
  NgmITransformation *_clone() const override { return new Shift(*this); }

private:
  double _shift;
};

/// Writes twice the estimates under the role "TWICE".
class Twice : public NgmIMultivariateTransform
{
public:
  QStringList getAllRoles() const override { return {QStringLiteral("TWICE")}; }
  int getRoleMinimumNumber(const QString &) const override { return 1; }
  int getRoleMaximumNumber(const QString &) const override { return 1; }
  NbdMacroIndexInfo getMacroIndexInfo(const QString &) const override
  {
    return NbdMacroIndexInfo();
  }
  void setupVariableRules(NgdVariableRules &rules) const override
  {
    rules.registerRole(Nbd::Dataset::OUTPUT, QStringLiteral("TWICE"), Nbd::ACCESS_WRITE,
                       Nbd::TYPE_DOUBLE);
  }
  void transform(const NbdDataTable &table) const override
  {
    const NbdVariableDouble &estimates = table.getVarDoubleRef(Nbd::Role::V);
    NbdVariableDouble &twice = table.getVarDoubleRef(QStringLiteral("TWICE"));
    for (int i = 0; i < estimates.getNValues(); ++i)
      twice.setValue(i, 2. * estimates.getValue(i));
  }

protected:
  NgmIMultivariateTransform *_clone() const override { return new Twice(*this); }
};

/// Writes the sum of estimate and variance under the role "SUM".
class Sum : public NgmIKrigingPostPro
{
public:
  QStringList getStoreRoles() const override { return {QStringLiteral("SUM")}; }
  int getRoleMinimumNumber(const QString &) const override { return 1; }
  int getRoleMaximumNumber(const QString &) const override { return 1; }
  void process(NbdAData *data, const QList<NbdAVariableNumeric *> &estimates,
               const QList<NbdAVariableNumeric *> &deviations,
               bool isStandardDeviation) const override
  {
    EXPECT_FALSE(isStandardDeviation);
    NbdVariableDouble &sum = data->getDataTable().getVarDoubleRef(QStringLiteral("SUM"));
    for (const int position : data->getSelectedPositions())
      sum.setValue(position, estimates[0]->getValue(position) + deviations[0]->getValue(position));
  }

protected:
  NgmIKrigingPostPro *_clone() const override { return new Sum(*this); }
};

}  // namespace

TEST(NgcKrigingOutputs, EstimatesAreTransformedBackAndNotNegative)
{
  const Study plain = makeStudy({Nbd::Role::V});
  krige(plain, true);
  const Values raw = plain.get(Nbd::Role::V);
  EXPECT_LT(*std::min_element(raw.begin(), raw.end()), -0.3);

  struct Case
  {
    bool enabled;
    bool withTransformation;
    bool negative;
  };
  for (const Case &wanted : {Case{false, true, false}, Case{true, true, false},
                             Case{true, true, true}, Case{true, false, false}}) {
    const Study study = makeStudy({Nbd::Role::V});
    krige(study, true, [&wanted](NgcKriging &kriging) {
      if (wanted.withTransformation)
        kriging.setMonovariateTransformation(0, Shift(0.3));
      kriging.setEnableMonovariateTransformation(wanted.enabled);
      kriging.setEnableNegativeValues(wanted.negative);
    });
    Values expected(raw);
    for (double &value : expected) {
      if (wanted.enabled && wanted.withTransformation)
        value += 0.3;
      if (wanted.enabled && !wanted.negative)
        value = std::max(value, 0.);
    }
    EXPECT_EQ(study.get(Nbd::Role::V), expected);
  }
}

TEST(NgcKrigingOutputs, CollocatedValuesAreTransformedFirst)
{
  const auto cokrige = [](double shift, bool transform) {
    Study study(randomPlaces(41, nData, 100.), randomPlaces(42, nTargets, 100.));
    study.addData(Nbd::Role::V, QStringLiteral("z1"), randomValues(43, nData));
    study.addData(Nbd::Role::V, QStringLiteral("z2"), randomValues(44, nData));
    Values secondary = randomValues(45, nTargets);
    for (double &value : secondary)
      value += shift;
    study.addTargetData(Nbd::Role::COLLOCATED, QStringLiteral("secondary"), secondary);
    study.addOutput(Nbd::Role::V, QStringLiteral("V1"));
    study.addOutput(Nbd::Role::V, QStringLiteral("V2"));
    NgcKriging kriging(QStringLiteral("KRIGING"));
    kriging.setVarioModel(bivariateModel({0.1, 0.05, 0.2}, {1., 0.6, 0.8}, 40.));
    kriging.setUsingMovingNeighborhood(nearestSamples(8));
    kriging.setCollocated(1, QStringLiteral("secondary"));
    kriging.setMonovariateTransformation(1, Shift(shift));
    kriging.setCollocatedTransformation(transform);
    study.krige(kriging);
    return study;
  };
  const Study shifted = cokrige(5., true);
  expectEqual(shifted.get(QStringLiteral("V1")), cokrige(0., false).get(QStringLiteral("V1")),
              1e-12);
  // The variable of the targets is left as it was.
  EXPECT_NEAR(shifted.get(QStringLiteral("secondary"))[0], 5. + randomValues(45, 1)[0], 1e-15);
}

TEST(NgcKrigingOutputs, FurtherOutputsSeeEstimatesAndRawVariances)
{
  const Study plain = makeStudy({Nbd::Role::V, Nbd::Role::VARIANCE});
  krige(plain, true);
  // Neither the estimate nor the variance is kept in the first.
  const Study alone = makeStudy({QStringLiteral("SUM")});
  const Study study =
      makeStudy({Nbd::Role::V, Nbd::Role::STDEV, QStringLiteral("SUM"), QStringLiteral("TWICE")});
  krige(alone, true, [](NgcKriging &kriging) { kriging.setGaussianKrigingPostPro(Sum()); });
  krige(study, true, [](NgcKriging &kriging) {
    kriging.setGaussianKrigingPostPro(Sum());
    kriging.setMultivariateTransformation(Twice());
  });
  for (std::size_t t = 0; t < nTargets; ++t) {
    const double estimate = plain.get(Nbd::Role::V)[t];
    const double variance = plain.get(Nbd::Role::VARIANCE)[t];
    EXPECT_EQ(alone.get(QStringLiteral("SUM"))[t], estimate + variance);
    EXPECT_EQ(study.get(QStringLiteral("SUM"))[t], estimate + variance);
    EXPECT_EQ(study.get(QStringLiteral("TWICE"))[t], 2. * estimate);
    EXPECT_EQ(study.get(Nbd::Role::STDEV)[t], std::sqrt(variance));
  }
}

// Weights, single targets, derived workers.

TEST(NgcKrigingOutputs, WeightsAreKeptBySample)
{
  for (const bool moving : {true, false}) {
    Study study(randomPlaces(41, nData, 100.), {{10.}, {20.}});
    study.addData(Nbd::Role::V, QStringLiteral("z"), randomValues(43, nData));
    study.addOutput(Nbd::Role::V);
    NgdDataSetPoints weights;
    weights.setDataProvider(study.data());
    weights.assignVariable(Nbd::Role::WEIGHT, study.data()->addEmptyVariableSimple(
                                                  QStringLiteral("weight"), Nbd::TYPE_DOUBLE));
    NgcKriging kriging(QStringLiteral("KRIGING"));
    kriging.setVarioModel(makeModel());
    if (moving)
      kriging.setUsingMovingNeighborhood(nearestSamples(8));
    else
      kriging.setUsingUniqueNeighborhood();
    kriging.setWeightsDataset(weights);
    study.krige(kriging);

    // One target: they are its weights, which sum to one and give the estimate.
    NbdVariableDouble values;
    values.resizeAndFill(nData);
    study.data()->readVariable(study.data()->getIdFromName(QStringLiteral("weight")),
                               NbiIntervalIntLarge::fromLength(nData), values, 0);
    const Values data = randomValues(43, nData);
    double sum = 0.;
    double estimate = 0.;
    int nUsed = 0;
    for (int s = 0; s < nData; ++s) {
      sum += values.getValue(s);
      estimate += values.getValue(s) * data[std::size_t(s)];
      nUsed += values.getValue(s) != 0.;
    }
    EXPECT_NEAR(sum, 1., 1e-12);
    EXPECT_NEAR(estimate, study.get(Nbd::Role::V)[0], 1e-12);
    EXPECT_EQ(nUsed, moving ? 8 : nData);
  }
}

TEST(NgcKrigingOutputs, TestOfATargetTellsWhatTheRunWrites)
{
  for (const bool simple : {false, true}) {
    for (const bool moving : {true, false}) {
      const Study study = makeStudy(statisticRoles(simple));
      NgcKriging kriging(QStringLiteral("KRIGING"));
      kriging.setVarioModel(makeModel());
      if (simple)
        setSimple(kriging);
      if (moving)
        kriging.setUsingMovingNeighborhood(nearestSamples(8));
      else
        kriging.setUsingUniqueNeighborhood();
      study.krige(kriging);
      NgmKrigingTestResult result;
      kriging.test(8, result);
      ASSERT_TRUE(result.hasResults());
      const NgmKrigingTestResultMono &mono = result.getKrigingResults(0);
      const auto expected = [&study](const QString &role) { return study.get(role)[7]; };
      const double tolerance = 1e-11;
      EXPECT_NEAR(mono.estimation, expected(Nbd::Role::V), tolerance);
      EXPECT_NEAR(mono.standardDeviation, expected(Nbd::Role::STDEV), tolerance);
      EXPECT_NEAR(mono.varianceZStar, expected(Nbd::Role::VAR_ESTIMATE), tolerance);
      EXPECT_NEAR(mono.covarianceZZStar, expected(Nbd::Role::COVAR_ZZSTAR), tolerance);
      EXPECT_NEAR(mono.correlationZZStar, expected(Nbd::Role::CORREL_ZZSTAR), tolerance);
      EXPECT_NEAR(mono.slopeZZStar, expected(Nbd::Role::SLOPE_ZZSTAR), tolerance);
      EXPECT_NEAR(mono.krigingEfficiency, expected(Nbd::Role::KRIG_EFFIC), tolerance);
      EXPECT_NEAR(mono.sumOfWeights, expected(Nbd::Role::SUM_W), tolerance);
      EXPECT_NEAR(mono.getSumOfPositiveWeights(), expected(Nbd::Role::SUM_POS_W), tolerance);
      EXPECT_NEAR(mono.weightForMean, expected(Nbd::Role::WEIGHT_OF_MEAN), tolerance);
      if (!simple) {
        EXPECT_NEAR(mono.firstLagrange, expected(Nbd::Role::LAGRANGE), tolerance);
      }

      const int n = moving ? 8 : nData;
      EXPECT_EQ(mono.numberOfSamples, n);
      EXPECT_EQ(mono.numberOfEquations, simple ? n : n + 1);
      EXPECT_EQ(mono.leftHandSide.getNRows(), mono.numberOfEquations);
      EXPECT_EQ(result.getNeighbors().getNSamples(), n);
      const NbdDataTable &table = result.getNeighbors().getDataTableConst();
      const NbdAVariableNumeric &weights = table.getVarNumericRef(Nbd::Role::WEIGHT);
      const NbdAVariableNumeric &values = table.getVarNumericRef(Nbd::Role::V);
      double estimate = 0.;
      for (int s = 0; s < n; ++s)
        estimate += weights.getValue(s) * values.getValue(s);
      EXPECT_NEAR(estimate, mono.estimation, tolerance);
    }
  }
}

namespace {

/// Counts the targets that its workers tell of.
class Listening : public NgcKriging
{
public:
  Listening() : NgcKriging(QStringLiteral("KRIGING")) {}
  ~Listening() override { _finish(); }

  Values estimates = Values(nTargets, NbbGlobal::D_FFFF);
  Values variances = Values(nTargets, NbbGlobal::D_FFFF);
  qint64 stopsAt = 0;  ///< sample number; 0 for a run to the end

protected:
  class Listener : public NgcAKriging::Worker
  {
  public:
    Listener(NgwThreadPool *pool, Listening &calculator)
        : NgcAKriging::Worker(pool, calculator), _calculator(calculator)
    {
      _requireVariances();
    }

  protected:
    void _targetKriged(NbdAData &buffer, int position) override
    {
      const std::size_t target = std::size_t(buffer.getSampleNumber(position) - 1);
      _calculator.estimates[target] = _getEstimate(0);
      _calculator.variances[target] = _getVariance(0);
      if (buffer.getSampleNumber(position) == _calculator.stopsAt)
        _calculator.stop();
    }

  private:
    Listening &_calculator;
  };

  NgwAThread *_createComputingThread(NgwThreadPool *pool) override
  {
    return new Listener(pool, *this);
  }
};

}  // namespace

TEST(NgcKrigingOutputs, DerivedWorkersHearOfEveryTarget)
{
  for (const bool moving : {true, false}) {
    const Study expected = makeStudy({Nbd::Role::V, Nbd::Role::VARIANCE});
    krige(expected, moving);
    const Study study = makeStudy({Nbd::Role::V});
    Listening kriging;
    kriging.setVarioModel(makeModel());
    if (moving)
      kriging.setUsingMovingNeighborhood(nearestSamples(nData));
    else
      kriging.setUsingUniqueNeighborhood();
    study.krige(kriging);
    EXPECT_EQ(kriging.estimates, expected.get(Nbd::Role::V));
    EXPECT_EQ(kriging.variances, expected.get(Nbd::Role::VARIANCE));
  }
}

TEST(NgcKrigingOutputs, ARunStoppedByItsUserIsNoFailure)
{
  // All targets after the first see duplicates only, which would stop the run as a failure.
  for (const qint64 stopsAt : {1, 0}) {
    Study study({{0., 500., 500.}, {0., 500., 500.}}, {{1., 501., 502.}, {1., 501., 502.}});
    study.addData(Nbd::Role::V, QStringLiteral("z"), {3., 4., 5.});
    study.addOutput(Nbd::Role::V);
    NgmNeighborhoodMoving neighborhood = nearestSamples(2);
    neighborhood.setEllipseSize(NbgVector3D(10., 10., 10.));
    Listening kriging;
    kriging.setVarioModel(sphericalModel(0., 1., NbgVector3D(40., 40., 40.)));
    kriging.setUsingMovingNeighborhood(neighborhood);
    kriging.setOnErrorBehavior(Ngc::ON_ERROR_STOP);
    kriging.stopsAt = stopsAt;
    study.configure(kriging);
    EXPECT_EQ(kriging.execute(), stopsAt > 0 ? NbcAProgress::INTERRUPTED : NbcAProgress::FAILED);
    EXPECT_EQ(kriging.getNumberOfInterpolErrors(), stopsAt > 0 ? 0 : 1);
    EXPECT_EQ(kriging.getInterpolErrorsMessage().isEmpty(), stopsAt > 0);
    EXPECT_EQ(kriging.estimates[1], NbbGlobal::D_FFFF);
  }
}
