// What theory promises of each mode of kriging.

#include "KrigingStudy.h"
#include "basic/geom/NbgRotation.h"
#include "geos/interpol/NgcKriging.h"
#include "geos/vmodel/NgmLgsVModel.h"

#include <gtest/gtest.h>

using namespace krigingtest;

namespace {

constexpr int nData = 25;
constexpr int nTargets = 40;
constexpr double side = 100.;

Places dataPlaces()
{
  return randomPlaces(11, nData, side);
}

Places targetPlaces()
{
  return randomPlaces(12, nTargets, side);
}

NgmVModel monovariateModel(double nugget = 0.2)
{
  NgmVModel model = sphericalModel(nugget, 0.5, NbgVector3D(30., 30., 30.));
  model.setRangeIsotropic(model.addStructure(QStringLiteral("Exponential"), 0.7), 120.);
  return model;
}

/// A study of one variable "z" with the outputs V and VARIANCE.
Study makeStudy(const Values &values)
{
  Study study(dataPlaces(), targetPlaces());
  study.addData(Nbd::Role::V, QStringLiteral("z"), values);
  study.addOutputs({Nbd::Role::V, Nbd::Role::VARIANCE});
  return study;
}

void setNeighborhood(NgcKriging &kriging, bool moving, int maximum = nData)
{
  if (moving)
    kriging.setUsingMovingNeighborhood(nearestSamples(maximum));
  else
    kriging.setUsingUniqueNeighborhood();
}

struct Result
{
  Values estimates;
  Values variances;
};

using Configure = std::function<void(NgcKriging &)>;

Result krige(const Study &study, bool moving, const NgmVModel &model, const Configure &configure)
{
  NgcKriging kriging(QStringLiteral("KRIGING"));
  kriging.setVarioModel(model);
  setNeighborhood(kriging, moving);
  configure(kriging);
  study.krige(kriging);
  EXPECT_EQ(kriging.getNumberOfInterpolErrors(), 0)
      << qPrintable(kriging.getInterpolErrorsMessage());
  return {study.get(Nbd::Role::V), study.get(Nbd::Role::VARIANCE)};
}

void setSimple(NgcKriging &kriging)
{
  kriging.setKrigingMode(NgcEKrigingMode::SIMPLE_KRIGING);
}

void setQuadraticDrift(NgcKriging &kriging)
{
  NgmDriftModel drift;
  drift.addDrifts(0, 2, true, true, false);
  kriging.setKrigingMode(NgcEKrigingMode::UNIVERSAL_KRIGING);
  kriging.setDriftModel(drift);
}

Values quadratic(const Places &places)
{
  Values values;
  for (std::size_t i = 0; i < places.size(); ++i)
    values.push_back(3. - 0.2 * places.x[i] + 0.01 * places.x[i] * places.y[i] +
                     0.004 * places.y[i] * places.y[i]);
  return values;
}

}  // namespace

TEST(NgcKrigingModes, EstimatesAreExactAtDataInEveryMode)
{
  const Values values = randomValues(1, nData, 4.);
  Study study(dataPlaces(), dataPlaces());
  study.addData(Nbd::Role::V, QStringLiteral("z"), values);
  study.addOutputs({Nbd::Role::V, Nbd::Role::VARIANCE});
  for (const Configure &configure :
       {Configure([](NgcKriging &) {}), Configure(setSimple), Configure(setQuadraticDrift)}) {
    for (const bool moving : {true, false}) {
      const Result result = krige(study, moving, monovariateModel(), configure);
      expectEqual(result.estimates, values, 1e-10);  // rounding of systems of order 31
      expectEqual(result.variances, Values(nData, 0.), 1e-11);
    }
  }
}

TEST(NgcKrigingModes, DriftsReproduceTheirFunctions)
{
  // Weights that fulfil the conditions give back any combination of the drift functions.
  Study study = makeStudy(quadratic(dataPlaces()));
  for (const bool moving : {true, false}) {
    const Result result = krige(study, moving, monovariateModel(), setQuadraticDrift);
    expectEqual(result.estimates, quadratic(targetPlaces()), 1e-8);  // values of order 100
  }

  const Values atData = randomValues(2, nData);
  const Values atTargets = randomValues(3, nTargets);
  Values values(atData);
  Values expected(atTargets);
  for (double &value : values)
    value = 5. - 2. * value;
  for (double &value : expected)
    value = 5. - 2. * value;
  Study external = makeStudy(values);
  external.addData(Nbd::Role::EXTDRIFT, QStringLiteral("f"), atData);
  external.addTargetData(Nbd::Role::EXTDRIFT, QStringLiteral("f"), atTargets);
  for (const bool moving : {true, false}) {
    const Result result = krige(external, moving, monovariateModel(), [](NgcKriging &kriging) {
      NgmExtDriftModel drift;
      drift.addDrift(0, 0);
      kriging.setKrigingMode(NgcEKrigingMode::UNIVERSAL_KRIGING);
      kriging.setExtDriftModel(drift);
    });
    expectEqual(result.estimates, expected, 1e-11);
  }
}

TEST(NgcKrigingModes, KnownMeansShiftTheEstimate)
{
  const Values residuals = randomValues(4, nData);
  Values shifted(residuals);
  for (double &value : shifted)
    value += 7.;
  const Result expected = krige(makeStudy(residuals), true, monovariateModel(), setSimple);
  Values expectedEstimates(expected.estimates);
  for (double &value : expectedEstimates)
    value += 7.;

  for (const bool moving : {true, false}) {
    const Result constant =
        krige(makeStudy(shifted), moving, monovariateModel(), [](NgcKriging &kriging) {
          setSimple(kriging);
          kriging.setSimpleKrigingMean(0, 7.);
        });
    expectEqual(constant.estimates, expectedEstimates, 1e-12);
    expectEqual(constant.variances, expected.variances, 1e-12);

    // The mean as a variable, at samples and targets or at targets alone.
    for (const bool onlyOnTarget : {false, true}) {
      Study study = makeStudy(shifted);
      if (!onlyOnTarget)
        study.addData(Nbd::Role::LOCAL_MEAN, QStringLiteral("m"), Values(nData, 7.));
      study.addTargetData(Nbd::Role::LOCAL_MEAN, QStringLiteral("m"), Values(nTargets, 7.));
      const Result local = krige(study, moving, monovariateModel(), [&](NgcKriging &kriging) {
        setSimple(kriging);
        kriging.setSimpleKrigingOption(Ngc::SIMPLE_KRIGING_LOCAL_MEAN);
        kriging.setSimpleKrigingVariableOnlyOnTarget(onlyOnTarget);
      });
      expectEqual(local.estimates, expectedEstimates, 1e-12);
    }
  }
}

TEST(NgcKrigingModes, LocalMeansVary)
{
  // Z = m + residual: the estimate is that of the residual plus the mean of the target.
  const Values residuals = randomValues(4, nData);
  const Values meansOfData = randomValues(5, nData, 10.);
  const Values meansOfTargets = randomValues(6, nTargets, 10.);
  Values values(residuals);
  for (int s = 0; s < nData; ++s)
    values[std::size_t(s)] += meansOfData[std::size_t(s)];
  Result expected = krige(makeStudy(residuals), true, monovariateModel(), setSimple);
  for (int t = 0; t < nTargets; ++t)
    expected.estimates[std::size_t(t)] += meansOfTargets[std::size_t(t)];

  Study study = makeStudy(values);
  study.addData(Nbd::Role::LOCAL_MEAN, QStringLiteral("m"), meansOfData);
  study.addTargetData(Nbd::Role::LOCAL_MEAN, QStringLiteral("m"), meansOfTargets);
  for (const bool moving : {true, false}) {
    const Result result = krige(study, moving, monovariateModel(), [](NgcKriging &kriging) {
      setSimple(kriging);
      kriging.setSimpleKrigingOption(Ngc::SIMPLE_KRIGING_LOCAL_MEAN);
    });
    expectEqual(result.estimates, expected.estimates, 1e-12);
  }
}

TEST(NgcKrigingModes, MeansOfTargetsOnlyGetTheWeightThatTheDataLeave)
{
  const Values values = randomValues(7, nData, 3.);
  const Values means = randomValues(8, nTargets, 3.);
  Study plain = makeStudy(values);
  plain.addOutput(Nbd::Role::WEIGHT_OF_MEAN);
  Result expected = krige(plain, true, monovariateModel(), setSimple);
  const Values weights = plain.get(Nbd::Role::WEIGHT_OF_MEAN);
  for (std::size_t t = 0; t < means.size(); ++t)
    expected.estimates[t] += weights[t] * means[t];

  Study study = makeStudy(values);
  study.addTargetData(Nbd::Role::LOCAL_MEAN, QStringLiteral("m"), means);
  for (const bool moving : {true, false}) {
    const Result result = krige(study, moving, monovariateModel(), [](NgcKriging &kriging) {
      setSimple(kriging);
      kriging.setSimpleKrigingOption(Ngc::SIMPLE_KRIGING_LOCAL_MEAN);
      kriging.setSimpleKrigingVariableOnlyOnTarget(true);
    });
    expectEqual(result.estimates, expected.estimates, 1e-12);
  }
}

TEST(NgcKrigingModes, FilteredPartsAddUpToTheWhole)
{
  const Places places = dataPlaces();
  Places targets = targetPlaces();
  targets.x[0] = places.x[3];  // where the nugget is seen
  targets.y[0] = places.y[3];
  Study study(places, targets);
  study.addData(Nbd::Role::V, QStringLiteral("z"), randomValues(9, nData, 2.));
  study.addOutputs({Nbd::Role::V, Nbd::Role::VARIANCE});
  for (const bool moving : {true, false}) {
    const Result whole = krige(study, moving, monovariateModel(), [](NgcKriging &) {});
    Values sum(nTargets, 0.);
    // Kept: the nugget, one of the two structures, the drift.
    for (int kept = 0; kept < 4; ++kept) {
      const Result part = krige(study, moving, monovariateModel(), [kept](NgcKriging &kriging) {
        kriging.setFilterNugget(kept != 0);
        for (int structure = 0; structure < 2; ++structure) {
          if (kept != structure + 1)
            kriging.addFilterStructure(structure);
        }
        kriging.setFilterDrifts(kept != 3);
      });
      for (int t = 0; t < nTargets; ++t)
        sum[std::size_t(t)] += part.estimates[std::size_t(t)];
      if (kept == 0) {
        EXPECT_GT(std::abs(part.estimates[0]), 1e-3);
        EXPECT_NEAR(part.estimates[1], 0., 1e-12);
      }
    }
    expectEqual(sum, whole.estimates, 1e-11);
  }
}

TEST(NgcKrigingModes, EqualMeasurementErrorsActAsAFilteredNugget)
{
  const Values values = randomValues(10, nData);
  Study study = makeStudy(values);
  study.addData(Nbd::Role::STDEV_MEAS_ERR, QStringLiteral("error"), Values(nData, std::sqrt(0.2)));
  Study plain = makeStudy(values);
  for (const bool moving : {true, false}) {
    const Result expected = krige(plain, moving, monovariateModel(0.2),
                                  [](NgcKriging &kriging) { kriging.setFilterNugget(true); });
    const Result result = krige(study, moving, monovariateModel(0.), [](NgcKriging &kriging) {
      kriging.setStDevMeasError(0, QStringLiteral("error"));
    });
    expectEqual(result.estimates, expected.estimates, 1e-12);
    expectEqual(result.variances, expected.variances, 1e-12);
  }
}

// Several variables.

namespace {

/// Variables "z1" and "z2" with outputs "V1", "VARIANCE1", ...
Study makeBivariate(const Values &first, const Values &second, bool withOutputs = true)
{
  Study study(dataPlaces(), targetPlaces());
  study.addData(Nbd::Role::V, QStringLiteral("z1"), first);
  study.addData(Nbd::Role::V, QStringLiteral("z2"), second);
  for (const char *variable : {"1", "2"}) {
    for (const QString &role : {Nbd::Role::V, Nbd::Role::VARIANCE}) {
      if (withOutputs)
        study.addOutput(role, role + QLatin1String(variable));
    }
  }
  return study;
}

void cokrige(const Study &study, bool moving, const NgmVModel &model, const Configure &configure)
{
  NgcKriging kriging(QStringLiteral("KRIGING"));
  kriging.setVarioModel(model);
  setNeighborhood(kriging, moving);
  configure(kriging);
  study.krige(kriging);
  EXPECT_EQ(kriging.getNumberOfInterpolErrors(), 0)
      << qPrintable(kriging.getInterpolErrorsMessage());
}

NgmVModel coregionalization()
{
  return bivariateModel({0.1, 0.05, 0.2}, {1., 0.6, 0.8}, 40.);
}

}  // namespace

TEST(NgcKrigingModes, IntrinsicIsotopicCokrigingIsKriging)
{
  const Values first = randomValues(21, nData);
  const Values second = randomValues(22, nData);
  const NgmVModel one = sphericalModel(0.2, 0.8, NbgVector3D(40., 40., 40.));
  const NgmVModel both = bivariateModel({0.2, 0.1, 0.6}, {0.8, 0.4, 2.4}, 40.);
  const Result expected = krige(makeStudy(first), true, one, [](NgcKriging &) {});
  for (const bool moving : {true, false}) {
    const Study study = makeBivariate(first, second);
    cokrige(study, moving, both, [](NgcKriging &) {});
    expectEqual(study.get(QStringLiteral("V1")), expected.estimates, 1e-11);
    expectEqual(study.get(QStringLiteral("VARIANCE1")), expected.variances, 1e-11);
  }
}

TEST(NgcKrigingModes, RescaledCokrigingGivesBackACommonResidual)
{
  // One condition: the weights of both variables together sum to one.
  const double means[] = {5., -3.};
  const double residual = 0.7;
  for (const bool moving : {true, false}) {
    const Study study =
        makeBivariate(Values(nData, means[0] + residual), Values(nData, means[1] + residual));
    cokrige(study, moving, coregionalization(), [&](NgcKriging &kriging) {
      kriging.setKrigingMode(NgcEKrigingMode::EValue::RESCALED_COKRIGING);
      kriging.setSimpleKrigingMean(0, means[0]);
      kriging.setSimpleKrigingMean(1, means[1]);
    });
    expectEqual(study.get(QStringLiteral("V1")), Values(nTargets, means[0] + residual), 1e-11);
    expectEqual(study.get(QStringLiteral("V2")), Values(nTargets, means[1] + residual), 1e-11);
  }
}

TEST(NgcKrigingModes, CollocatedValueActsAsASampleAtTheTarget)
{
  const Values first = randomValues(23, nData);
  const Values second = randomValues(24, nData);
  const Values atTargets = randomValues(25, nTargets);
  for (const bool simple : {false, true}) {
    const auto setMode = [simple](NgcKriging &kriging) {
      if (!simple)
        return;
      setSimple(kriging);
      kriging.setSimpleKrigingMean(0, 0.5);
      kriging.setSimpleKrigingMean(1, -0.25);
    };

    // Brute force: one run per target, with the target among the samples.
    Values expected, expectedVariances;
    for (int t = 0; t < 5; ++t) {
      Places places = dataPlaces();
      const Places targets = targetPlaces();
      const std::size_t target = std::size_t(t);
      places.x.push_back(targets.x[target]);
      places.y.push_back(targets.y[target]);
      Values firstToo(first), secondToo(second);
      firstToo.push_back(NbbGlobal::D_FFFF);
      secondToo.push_back(atTargets[target]);
      Study study(places, {{targets.x[target]}, {targets.y[target]}});
      study.addData(Nbd::Role::V, QStringLiteral("z1"), firstToo);
      study.addData(Nbd::Role::V, QStringLiteral("z2"), secondToo);
      for (const QString &role : {Nbd::Role::V, Nbd::Role::VARIANCE}) {
        study.addOutput(role, role + QLatin1String("1"));
        study.addOutput(role, role + QLatin1String("2"));
      }
      cokrige(study, false, coregionalization(), setMode);
      expected.push_back(study.get(QStringLiteral("V1"))[0]);
      expectedVariances.push_back(study.get(QStringLiteral("VARIANCE1"))[0]);
    }

    for (const bool moving : {true, false}) {
      Study study = makeBivariate(first, second);
      study.addTargetData(Nbd::Role::COLLOCATED, QStringLiteral("secondary"), atTargets);
      cokrige(study, moving, coregionalization(), [&](NgcKriging &kriging) {
        setMode(kriging);
        kriging.setCollocated(1, QStringLiteral("secondary"));
      });
      Values estimates = study.get(QStringLiteral("V1"));
      Values variances = study.get(QStringLiteral("VARIANCE1"));
      estimates.resize(expected.size());
      variances.resize(expected.size());
      expectEqual(estimates, expected, 1e-11, simple ? "simple" : "ordinary");
      expectEqual(variances, expectedVariances, 1e-11);
      // The collocated variable itself is known.
      Values known = study.get(QStringLiteral("V2"));
      expectEqual(known, atTargets, 1e-11);
    }
  }
}

TEST(NgcKrigingModes, CollocatedValuesOfAUniqueNeighborhoodEqualThoseOfAllNeighbors)
{
  // Some targets have no collocated value, two stand at samples.
  Places targets = targetPlaces();
  const Places data = dataPlaces();
  targets.x[4] = data.x[2];
  targets.y[4] = data.y[2];
  targets.x[9] = data.x[7];
  targets.y[9] = data.y[7];
  Values atTargets = randomValues(45, nTargets);
  for (std::size_t t = 0; t < atTargets.size(); t += 3)
    atTargets[t] = NbbGlobal::D_FFFF;
  Values holed = randomValues(46, nData);
  holed[7] = NbbGlobal::D_FFFF;
  const QStringList roles = {
      Nbd::Role::V,     Nbd::Role::VARIANCE,  Nbd::Role::VAR_ESTIMATE,   Nbd::Role::COVAR_ZZSTAR,
      Nbd::Role::SUM_W, Nbd::Role::SUM_POS_W, Nbd::Role::WEIGHT_OF_MEAN, Nbd::Role::NEIGH_NUMBER};
  const auto setMode = [](int mode, NgcKriging &kriging) {
    kriging.setKrigingMode(NgcEKrigingMode::EValue(mode));
    if (mode != int(NgcEKrigingMode::EValue::UNIVERSAL_KRIGING)) {
      kriging.setSimpleKrigingMean(0, 0.5);
      kriging.setSimpleKrigingMean(1, -0.25);
      return;
    }
    NgmDriftModel drift;
    drift.addDrifts(1, 1, true, true, false);
    NgmExtDriftModel external;
    external.addDrift(0, 0);
    kriging.setDriftModel(drift);
    kriging.setExtDriftModel(external);
  };
  // Rescaled, with drifts, simple, ordinary.
  for (const int mode : {3, 2, 1, 0}) {
    const auto run = [&](bool moving) {
      Study study(data, targets);
      study.addData(Nbd::Role::V, QStringLiteral("z1"), randomValues(47, nData));
      study.addData(Nbd::Role::V, QStringLiteral("z2"), holed);
      study.addData(Nbd::Role::EXTDRIFT, QStringLiteral("f"), randomValues(48, nData));
      study.addTargetData(Nbd::Role::EXTDRIFT, QStringLiteral("f"), randomValues(49, nTargets));
      study.addTargetData(Nbd::Role::COLLOCATED, QStringLiteral("secondary"), atTargets);
      for (const QString &role : roles) {
        study.addOutput(role, role + QLatin1String("1"));
        study.addOutput(role, role + QLatin1String("2"));
      }
      cokrige(study, moving, coregionalization(), [&](NgcKriging &kriging) {
        setMode(mode, kriging);
        kriging.setCollocated(1, QStringLiteral("secondary"));
      });
      return study;
    };
    const Study moving = run(true);
    const Study unique = run(false);
    for (const QString &role : roles) {
      for (const char *variable : {"1", "2"}) {
        const QString name = role + QLatin1String(variable);
        // Rounding of systems of order 55.
        expectEqual(unique.get(name), moving.get(name), 1e-9,
                    qPrintable(QStringLiteral("%1, mode %2").arg(name).arg(mode)));
      }
    }
  }
}

TEST(NgcKrigingModes, ExcludedOutputsLeaveTheOthersAsTheyAre)
{
  const Values first = randomValues(26, nData);
  const Values second = randomValues(27, nData);
  const Study both = makeBivariate(first, second);
  for (const bool moving : {true, false}) {
    cokrige(both, moving, coregionalization(), [](NgcKriging &) {});
    const Values expected = both.get(QStringLiteral("V2"));
    // Outputs of all variables, or of those that are estimated.
    for (const bool allOutputs : {true, false}) {
      Study study = makeBivariate(first, second, allOutputs);
      if (!allOutputs)
        study.addOutput(Nbd::Role::V, QStringLiteral("V2"));
      cokrige(study, moving, coregionalization(),
              [](NgcKriging &kriging) { kriging.addExcludedOutputVar(0); });
      EXPECT_EQ(study.get(QStringLiteral("V2")), expected);
      if (allOutputs) {
        EXPECT_EQ(study.get(QStringLiteral("V1")), Values(nTargets, NbbGlobal::D_FFFF));
        EXPECT_EQ(study.get(QStringLiteral("VARIANCE1")), Values(nTargets, NbbGlobal::D_FFFF));
      }
    }
  }
}

TEST(NgcKrigingModes, UndefinedDataHaveNoPart)
{
  Values holed = randomValues(28, nData);
  Places kept;
  Values keptValues;
  for (std::size_t s = 0; s < holed.size(); ++s) {
    if (s % 4 == 1) {
      holed[s] = NbbGlobal::D_FFFF;
      continue;
    }
    kept.x.push_back(dataPlaces().x[s]);
    kept.y.push_back(dataPlaces().y[s]);
    keptValues.push_back(holed[s]);
  }
  Study whole(kept, targetPlaces());
  whole.addData(Nbd::Role::V, QStringLiteral("z"), keptValues);
  whole.addOutputs({Nbd::Role::V, Nbd::Role::VARIANCE});
  for (const Configure &configure : {Configure(setSimple), Configure(setQuadraticDrift)}) {
    for (const bool moving : {true, false}) {
      const Result expected = krige(whole, moving, monovariateModel(), configure);
      const Result result = krige(makeStudy(holed), moving, monovariateModel(), configure);
      expectEqual(result.estimates, expected.estimates, 1e-10);
      expectEqual(result.variances, expected.variances, 1e-10);
    }
  }
}

// Locally varying models.

TEST(NgcKrigingModes, LocalModelsAreThoseOfEachTarget)
{
  const Values values = randomValues(29, nData);
  const std::array<double, 3> factors = {0.5, 1., 2.5};
  Values factorOfTarget, angleOfTarget;
  for (int t = 0; t < nTargets; ++t) {
    factorOfTarget.push_back(factors[std::size_t(t) % 3]);
    angleOfTarget.push_back(t % 2 == 0 ? 30. : NbbGlobal::D_FFFF);
  }
  factorOfTarget[7] = NbbGlobal::D_FFFF;

  Study study = makeStudy(values);
  study.addTargetData(NgmLgsVModel::getRoleRangeFactor(), QStringLiteral("factor"), factorOfTarget);
  study.addTargetData(NgmLgsVModel::getRoleRot1(), QStringLiteral("angle"), angleOfTarget);
  NgcKriging kriging(QStringLiteral("KRIGING"));
  kriging.setVarioModel(sphericalModel(0.1, 1., NbgVector3D(60., 20., 20.)));
  setNeighborhood(kriging, true);
  kriging.setEnableLGS(true);
  study.krige(kriging);
  EXPECT_EQ(kriging.getNumberOfInterpolErrors(), 1);
  EXPECT_TRUE(kriging.hasInterpolError(Ngc::INTERPOL_ERROR_NEIGHBORHOOD));
  const Values estimates = study.get(Nbd::Role::V);
  const Values variances = study.get(Nbd::Role::VARIANCE);
  EXPECT_EQ(estimates[7], NbbGlobal::D_FFFF);

  for (std::size_t kind = 0; kind < 6; ++kind) {
    const double factor = factors[kind % 3];
    const NgmVModel model =
        sphericalModel(0.1, 1., NbgVector3D(60. * factor, 20. * factor, 20. * factor),
                       NbgRotation(kind % 2 == 0 ? 30. : 0., 0., 0.));
    const Result expected = krige(makeStudy(values), true, model, [](NgcKriging &) {});
    for (std::size_t t = kind; t < nTargets; t += 6) {
      if (t == 7)
        continue;
      EXPECT_NEAR(estimates[t], expected.estimates[t], 1e-13) << t;
      EXPECT_NEAR(variances[t], expected.variances[t], 1e-13) << t;
    }
  }
}
