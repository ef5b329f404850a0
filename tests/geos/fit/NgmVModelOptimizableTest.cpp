#include "geos/fit/NgmVModelOptimizable.h"

#include <gtest/gtest.h>

#include "geos/fit/NgmOptimizerFoxleg.h"
#include "support/Errors.h"
#include "support/FitCases.h"

using namespace fitcases;
using testsupport::errorOf;
using Model = NgmVModelToBeOptimized;

namespace {

void prepare(NgmVModelOptimizable &optimizable, const NgmVariogramExpData &data,
             const Model &request, const NgmMatrix &variances)
{
  optimizable.setVariogramExp(data, NgmEVarioExp::VARIOGRAM);
  optimizable.setInitialModel(request);
  optimizable.setVarianceCovarianceMatrix(variances);
}

NgmVModel twoStructures(int nVariables, int nDimensions)
{
  NgmVModel model = emptyModel(nVariables, nDimensions);
  model.addStructure(QStringLiteral("Spherical"), randomSills(nVariables, 1));
  model.addStructure(QStringLiteral("Stable"), randomSills(nVariables, 2));
  model.setRanges(0, NbgVector3D(40., 30., 20.));
  model.setRanges(1, NbgVector3D(110., 60., 50.));
  model.setRotation(1, NbgRotation(25., nDimensions > 2 ? 10. : 0., 0.));
  model.setNuggetMatrix(randomSills(nVariables, 3));
  return model;
}

Layout inSpace()
{
  Layout layout = inPlane(3, 6);
  layout.directions.push_back(NbgVector3D(0., 0., 1.));
  layout.directions.push_back(NbgVector3D(0.6, 0., 0.8));
  return layout;
}

/// Labels of the parameters that a request leaves free.
QStringList paramsOf(const Model &request, const Layout &layout)
{
  NgmVModelOptimizable optimizable;
  prepare(optimizable, dataOf(request, layout), request, request.getC00Matrix());
  optimizable._initialize();
  QStringList labels;
  for (const NgmOptParam &param : optimizable._getParamsRef()) {
    int structure, type, index1, index2;
    optimizable.decodeParam(param, structure, type, index1, index2);
    labels << QStringLiteral("%1:%2(%3,%4)")
                  .arg(structure)
                  .arg(Model::getParamLabel(Model::ParamType(type)))
                  .arg(index1)
                  .arg(index2);
  }
  return labels;
}

QStringList textList(const char *text)
{
  return QString::fromLatin1(text).split(QLatin1Char(' '));
}

}  // namespace

TEST(NgmVModelOptimizable, ListsTheParametersThatOptionsLeaveFree)
{
  const Model flat(twoStructures(1, 2));
  EXPECT_EQ(paramsOf(flat, inPlane(3)),
            textList("-1:Sill(0,0) 0:Sill(0,0) 0:Range(0,0) 0:Range(1,0) 0:Rot(0,0) 1:Sill(0,0) "
                     "1:Aux(0,0) 1:Range(0,0) 1:Range(1,0) 1:Rot(0,0)"));

  Model solid(twoStructures(1, 3));
  solid.setFitNugget(false);
  solid.setLockSameRot(true);
  EXPECT_EQ(paramsOf(solid, inSpace()),
            textList("0:Sill(0,0) 0:Range(0,0) 0:Range(1,0) 0:Range(2,0) 0:Rot(0,0) 0:Rot(1,0) "
                     "0:Rot(2,0) 1:Sill(0,0) 1:Aux(0,0) 1:Range(0,0) 1:Range(1,0) 1:Range(2,0)"));
  solid.setLockIso2D(true);
  solid.setLockRot2D(true);
  solid.setConstraint(Model::LOCKED, 1, Model::STRUCT, 0, 0);
  // The known rotation of the locked structure is that of all.
  EXPECT_EQ(paramsOf(solid, inSpace()), textList("0:Sill(0,0) 0:Range(0,0) 0:Range(2,0)"));
  solid.setLockSameRot(false);
  EXPECT_EQ(paramsOf(solid, inSpace()),
            textList("0:Sill(0,0) 0:Range(0,0) 0:Range(2,0) 0:Rot(0,0)"));

  Model sills(twoStructures(2, 2));
  sills.setFitSillsOnly(true);
  EXPECT_EQ(paramsOf(sills, inPlane(2)),
            textList("-1:Sill(0,0) -1:Sill(1,0) -1:Sill(1,1) 0:Sill(0,0) 0:Sill(1,0) 0:Sill(1,1) "
                     "1:Sill(0,0) 1:Sill(1,0) 1:Sill(1,1)"));
}

// The function against the model itself, for the parameters of the model that made the data.
TEST(NgmVModelOptimizable, FunctionIsTheVariogramOfTheModel)
{
  for (int nDimensions : {2, 3}) {
    const NgmVModel truth = twoStructures(3, nDimensions);
    const Layout layout = nDimensions > 2 ? inSpace() : inPlane(3);
    NgmVModelOptimizable optimizable;
    prepare(optimizable, dataOf(truth, layout), Model(truth), truth.getC00Matrix());
    optimizable._initialize();
    const QVector<double> values = optimizable.evaluateFunction(optimizable._getParamsRef(), false);
    const QVector<double> &experience = optimizable.getExperience();
    ASSERT_EQ(values.size(), int(layout.directions.size()) * layout.nLags * 6);
    for (int k = 0; k < values.size(); ++k)
      EXPECT_NEAR(values[k], experience[k], 1e-12);
    EXPECT_LT(largestDifference(truth, optimizable.getOptimizedModel(), layout), 1e-12);

    NgmMatrix matrix, weights, curve;
    optimizable.getExperience(matrix);
    optimizable.getWeights(weights);
    ASSERT_EQ(matrix.getNRows(), 6);
    ASSERT_EQ(matrix.getNColumns(), int(layout.directions.size()) * layout.nLags);
    NgmMatrix sum(6, matrix.getNColumns(), false);
    for (int k = 0; k < optimizable.getNStructuresToFit(); ++k) {
      optimizable.getCova(k, curve);
      for (int i = 0; i < 3; ++i) {
        for (int j = 0; j <= i; ++j) {
          const int row = NgmVModelOptimizable::combineVariables(i, j);
          for (int lag = 0; lag < sum.getNColumns(); ++lag)
            sum.addToElement(row, lag, optimizable.getSills(k)(i, j) * curve(row, lag));
        }
      }
    }
    EXPECT_TRUE((sum - matrix).isNull(1e-12));
  }
}

TEST(NgmVModelOptimizable, WeightsAreSharesOfACurve)
{
  NgmVModel truth = emptyModel(1);
  truth.addStructure(QStringLiteral("Spherical"), 1.);
  NgmVariogramExpData data;
  data.setNVariables(1);
  data.addDirectionVector(NbgVector3D::X, 3, QStringLiteral("D"));
  data.createStandardTables();
  const double distances[] = {1., 2., 3.};
  const long long counts[] = {100, 25, 0};
  const double values[] = {0.5, 0.9, 0.};
  data.setDistances(0, false, 0, 0, 3, distances);
  data.setNumberOfPairs(0, false, 0, 0, 3, counts);
  data.setVarioValues(0, NgmEVarioExp::EValue::VARIOGRAM, 0, 0, 3, values);
  NgmVModelOptimizable optimizable;
  prepare(optimizable, data, Model(truth), truth.getC00Matrix());
  optimizable.setUseDeprecatedWeightingFunction(false);
  optimizable.setNPairsExponent(1.);
  optimizable._initialize();
  ASSERT_EQ(optimizable.getWeights().size(), 3);
  EXPECT_NEAR(optimizable.getWeights()[0], 100. / 112.5, 1e-15);
  EXPECT_NEAR(optimizable.getWeights()[1], 12.5 / 112.5, 1e-15);
  EXPECT_EQ(optimizable.getWeights()[2], 0.);

  EXPECT_NO_THROW(optimizable.setNPairsExponent(2.));
  EXPECT_THROW(optimizable.setNPairsExponent(2.5), NbeError);
  EXPECT_EQ(errorOf([&] { optimizable.setNPairsMinimum(-1); }),
            QStringLiteral("Invalid minimum number of pairs provided"));
}

TEST(NgmVModelOptimizable, AcceptsOnlyParametersWithinBounds)
{
  const NgmVModel truth = twoStructures(1, 2);
  NgmVModelOptimizable optimizable;
  NgmVModel followed(1);
  optimizable.setObjectToOptimize(&followed);
  prepare(optimizable, dataOf(truth, inPlane(3)), Model(truth), truth.getC00Matrix());
  optimizable._initialize();
  NgmOptParamList params = optimizable._getParamsRef();
  const NgmOptParamId id{0, Model::RANGE, 0, 0};
  params[id].setValue(0.5);
  optimizable.acceptParams(params);
  EXPECT_NEAR(followed.getStructure(0).getPracticalRanges().x(), 0.5, 1e-14);
  EXPECT_NEAR(optimizable.getOptimizedModel().getStructure(0).getPracticalRanges().x(), 75., 1e-10);
  params[id].setValue(-1.);
  EXPECT_TRUE(errorOf([&] { optimizable.acceptParams(params); })
                  .startsWith(QStringLiteral("NgmAOptimizable::acceptParams: Parameter out of "
                                             "bound:")));
  params.remove(id);
  EXPECT_EQ(errorOf([&] { optimizable.acceptParams(params); }),
            QStringLiteral("NgmAOptimizable::acceptParams: Wrong size"));
}

TEST(NgmVModelOptimizable, ReducesTheModelDownToItsMinimum)
{
  NgmVModel truth = emptyModel(1);
  for (double sill : {0.02, 0.9, 0.03}) {
    truth.addStructure(QStringLiteral("Spherical"), sill);
    truth.setRangeIsotropic(truth.getNStructures() - 1, 50. + 100. * sill);
  }
  truth.setNugget(0, 0, 0.05);
  const auto reduced = [&](const Model &request) {
    NgmVModelOptimizable optimizable;
    prepare(optimizable, dataOf(truth, inPlane(2)), request, truth.getC00Matrix());
    optimizable._initialize();
    optimizable.reduceModel(false);
    return optimizable.getOptimizedModel();
  };
  Model request(truth);
  EXPECT_EQ(reduced(request).getNStructures(), 1);
  EXPECT_TRUE(reduced(request).hasNugget());
  request.setTolNugget(5.5);
  EXPECT_FALSE(reduced(request).hasNugget());
  request.setNbMinStruct(2);
  ASSERT_EQ(reduced(request).getNStructures(), 2);
  EXPECT_NEAR(reduced(request).getCoregionalisationMatrix(1)(0, 0), 0.03, 1e-12);
  request.setNbMinStruct(1);
  request.setTolSigma(0.);
  request.setNbMaxStruct(2);
  EXPECT_EQ(reduced(request).getNStructures(), 2);
  request.setAuthCompress(false);
  EXPECT_EQ(reduced(request).getNStructures(), 3);
}

TEST(NgmVModelToBeOptimized, RefusesContradictions)
{
  const NgmVModel truth = twoStructures(1, 2);
  Model model(truth);
  const auto failure = [&] { return errorOf([&] { model.checkConsistency(); }); };
  EXPECT_EQ(failure(), QStringLiteral("nothing thrown"));
  model.setWantIntrinsic(true);
  model.setSillCumulativeConstraint(0, 2.);
  EXPECT_EQ(failure(),
            QStringLiteral("Intrinsics and Cumulative Sills constraints are incompatible"));
  model = Model(truth);
  model.setKnownNugget(0.1);
  model.setFitNugget(false);
  EXPECT_EQ(failure(), QStringLiteral("Cannot use nugget constraint without fitting nugget flag"));
  model = Model(truth);
  model.setNbMaxStruct(0);
  EXPECT_EQ(failure(),
            QStringLiteral("Maximum number of basic structures must be positive (or equal to -1)"));
  model = Model(truth);
  model.setBounds(NbiIntervalData(1., 2.), 0, Model::RANGE, 2, 0);
  EXPECT_EQ(failure(), QStringLiteral("Range index constraint defined exceeds Space Dimension"));
  model = Model(truth);
  model.setTolSigma(101.);
  EXPECT_EQ(failure(), QStringLiteral("Wrong structure sill tolerance (in %)"));

  model = Model(truth);
  EXPECT_EQ(errorOf([&] { model.setConstraint(Model::LOCKED, 0, Model::SILL, 0, 0); }),
            QStringLiteral("No constraint for sills"));
  EXPECT_EQ(errorOf([&] { model.setConstraint(Model::DEFAULT, 0, Model::STRUCT, 0, 0); }),
            QStringLiteral("Structures can only be locked"));
  EXPECT_EQ(errorOf([&] { model.setConstraint(Model::LOCKED, 2, Model::RANGE, 0, 0); }),
            QStringLiteral("Wrong covariance rank"));
  model.setKnownRange(0, 0, 33.);
  EXPECT_EQ(errorOf([&] { model.setBounds(NbiIntervalData(1., 90.), 0, Model::RANGE, 0, 0); }),
            QStringLiteral("NgmVModelToBeOptimized::setBounds: Incompatible with locked status"));
  model.setConstraint(Model::DEFAULT, 1, Model::RANGE, 0, 0);
  EXPECT_EQ(errorOf([&] { model.setBounds(NbiIntervalData(1., 9.), 1, Model::RANGE, 0, 0); }),
            QStringLiteral("NgmVModelToBeOptimized::setBounds: Default value out of bounds"));
  EXPECT_EQ(errorOf([&] { model.setSillCumulativeConstraint(1, 1.); }),
            QStringLiteral("NgmVModelToBeOptimized::setSillCumulativeConstraint: wrong variable "
                           "index"));
}

TEST(NgmVModelToBeOptimized, ConstraintsFollowTheStructures)
{
  Model model(twoStructures(1, 2));
  model.setKnownRange(1, 0, 88.);
  model.removeStructure(0);
  double value = 0.;
  EXPECT_TRUE(model.isLocked(value, 0, Model::RANGE, 0, 0));
  EXPECT_NEAR(value, 88., 1e-12);
  EXPECT_TRUE(model.isAutomatic(0, Model::RANGE, 1, 0));
  EXPECT_TRUE(model.summary(true, true, 4)
                  .contains(QStringLiteral("Structure #1 - Range(1,1) = 88 [Locked]")));
  EXPECT_TRUE(model.toString().contains(QStringLiteral("userConstraint=0,3,0,0;2")));
}

TEST(NgmOptimizerFoxleg, ChecksItsSettings)
{
  const NgmVModel truth = twoStructures(1, 2);
  NgmVModelOptimizable optimizable;
  prepare(optimizable, dataOf(truth, inPlane(3)), Model(truth), truth.getC00Matrix());
  NgmOptimizerFoxleg optimizer;
  optimizer.runOptimizer(true);
  EXPECT_EQ(optimizer.getErrorMessage(),
            QStringLiteral("NgmAOptimizer::_doRun: No optimizable object defined, call "
                           "setOptimizable() before"));
  optimizer.setOptimizable(&optimizable, false);
  optimizer.setInitialDelta(0.001);
  optimizer.runOptimizer(true);
  EXPECT_EQ(optimizer.getState(), NbcAProgress::FAILED);
  optimizer.setInitialDelta(0.0011);
  optimizer.setVerboseFlag(true);
  optimizer.runOptimizer(true);
  EXPECT_TRUE(optimizer.isCompleted());
  // The parameters of the model that made the curves: nothing is left to do.
  EXPECT_TRUE(optimizer.hasConverged());
  EXPECT_LT(optimizer.getScore(), 1e-20);
  EXPECT_TRUE(optimizer.getLogs().contains(QStringLiteral("Number of Iterations     = 1/1000")));
}

TEST(NgmOptimizerFoxleg, SaysThatOneIterationWasNotEnough)
{
  const NgmVModel truth = twoStructures(1, 2);
  Model start(truth);
  start.setRanges(1, NbgVector3D(20., 20., 20.));
  NgmVModelOptimizable optimizable;
  prepare(optimizable, dataOf(truth, inPlane(3)), start, truth.getC00Matrix());
  NgmOptimizerFoxleg optimizer;
  optimizer.setOptimizable(&optimizable, false);
  optimizer.setNbMaxIteration(1);
  optimizer.runOptimizer(true);
  EXPECT_FALSE(optimizer.hasConverged());
  optimizer.setNbMaxIteration(200);
  optimizer.runOptimizer(true);
  EXPECT_TRUE(optimizer.hasConverged());
  EXPECT_LT(optimizer.getScore(), 1e-5);
  EXPECT_NEAR(optimizer.getGOF(), 2. * optimizer.getScore(), 1e-18);
  const double n = 45., p = 10., l = std::log(optimizer.getGOF() / 44.);
  EXPECT_NEAR(optimizer.getAIC(), n * l + 2. * p + 220. / 34., 1e-9);
  EXPECT_NEAR(optimizer.getBIC(), n * l + p * std::log(n), 1e-9);
}
