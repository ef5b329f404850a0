#include "geos/interpol/NgcCrossValidation.h"

#include "KrigingRun.h"
#include "basic/data/NbdVariableSelection.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "geos/interpol/NgmBlock.h"
#include "geos/interpol/NgmCrossValidationTestResult.h"
#include "interpol/private/NgwCrossValidation.h"
#include "support/CsvFile.h"
#include "support/Errors.h"
#include "support/TestData.h"

#include <QMap>

#include <functional>
#include <numeric>

#include <gtest/gtest.h>

using namespace krigingtest;

namespace {

using Points = QSharedPointer<NbpMemoryProviderPointsW>;

const QMap<QString, QString> outputNames = {
    {Nbd::Role::V, QStringLiteral("estimate")},
    {Nbd::Role::STDEV, QStringLiteral("stdev")},
    {Nbd::Role::XVAL_ERR, QStringLiteral("error")},
    {Nbd::Role::XVAL_SQ_ERR, QStringLiteral("squared error")},
    {Nbd::Role::XVAL_ST_ERR, QStringLiteral("standardized error")},
    {Nbd::Role::XVAL_SQ_ST_ERR, QStringLiteral("squared standardized error")}};

/// The outputs of a validation on the file of its samples, `nVariables` of each role.
NgdDataSetPoints validationOutput(const Points &points, int nVariables = 1)
{
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(points);
  for (auto output = outputNames.begin(); output != outputNames.end(); ++output) {
    for (int variable = 0; variable < nVariables; ++variable) {
      const QString name = variable == 0
                               ? output.value()
                               : QStringLiteral("%1 %2").arg(output.value()).arg(variable);
      QString id = points->getIdFromName(name);
      if (id.isEmpty())
        id = points->addEmptyVariableSimple(name, Nbd::TYPE_DOUBLE);
      dataSet.assignVariable(output.key(), id);
    }
  }
  return dataSet;
}

/// All values by rank, D_FFFF where nothing is selected.
std::vector<double> values(const Points &points, const QString &name)
{
  const auto all = NbiIntervalIntLarge::fromLength(points->getSampleCount());
  NbdVariableDouble compact;
  compact.resizeAndFill(int(all.getLength()));
  points->readVariable(points->getIdFromName(name), all, compact, 0);
  NbdVariableSelection selection;
  points->readSelection(all, selection);
  std::vector<double> result;
  int next = 0;
  for (qint64 rank = 0; rank < all.getLength(); ++rank)
    result.push_back(selection.getBoolValue(int(rank)) ? compact.getArrayConst()[next++]
                                                       : NbbGlobal::D_FFFF);
  return result;
}

std::vector<double> values(const Points &points, const char *name)
{
  return values(points, QString::fromLatin1(name));
}

NgmNeighborhoodMoving nearest(int maximum, double radius = 1e5)
{
  NgmNeighborhoodMoving neighborhood;
  neighborhood.setEllipseSize(NbgVector3D(radius, radius, radius));
  neighborhood.setSectors(1, maximum, false);
  return neighborhood;
}

NgmVModel smallModel()
{
  return sphericalModel(0.1, 0.9, NbgVector3D(300., 300., 300.));
}

void configure(NgcCrossValidation &validation, const Points &points)
{
  validation.setInputDataSet(input(points));
  validation.setOutputDataSet(validationOutput(points));
  validation.setVarioModel(smallModel());
  validation.setUsingMovingNeighborhood(nearest(12, 400.));
}

void run(NgcCrossValidation &validation)
{
  ASSERT_EQ(validation.execute(), NbcAProgress::COMPLETED)
      << qPrintable(validation.getErrorMessage());
}

Points randomSamples(int n)
{
  const auto x = testsupport::uniformValues(5, n, 0., 1000.);
  const auto y = testsupport::uniformValues(6, n, 0., 1000.);
  return samples(x, y, testsupport::normalValues(7, n));
}

/// Kriges sample `target` from the samples for which `keeps` says so: estimate and deviation.
std::pair<double, double> krigeWithout(const Points &points, int target,
                                       const std::function<bool(int)> &keeps)
{
  const std::vector<double> x = values(points, "X"), y = values(points, "Y"),
                            z = values(points, "z");
  std::vector<double> keptX, keptY, keptZ;
  for (int i = 0; i < int(x.size()); ++i) {
    if (!keeps(i))
      continue;
    keptX.push_back(x[std::size_t(i)]);
    keptY.push_back(y[std::size_t(i)]);
    keptZ.push_back(z[std::size_t(i)]);
  }
  const Points kept = samples(keptX, keptY, keptZ);
  const Points single = samples({x[std::size_t(target)]}, {y[std::size_t(target)]}, {0.});
  NgcKriging kriging(QStringLiteral("KRIGING"));
  kriging.setInputDataSet(input(kept));
  kriging.setOutputDataSet(output<NgdDataSetPoints>(single));
  kriging.setVarioModel(smallModel());
  kriging.setUsingMovingNeighborhood(nearest(12, 400.));
  EXPECT_EQ(kriging.execute(), NbcAProgress::COMPLETED) << qPrintable(kriging.getErrorMessage());
  return {values(single, "estimate")[0], values(single, "stdev")[0]};
}

/// The same neighbors in the same order give the same bits. Sample -1 asks whether the target
/// itself takes no part.
void expectSameAsByHand(const Points &points, const std::function<bool(int, int)> &leavesOut)
{
  const std::vector<double> estimates = values(points, "estimate");
  const std::vector<double> deviations = values(points, "stdev");
  const std::vector<double> z = values(points, "z");
  const std::vector<double> errors = values(points, "error");
  const std::vector<double> standardized = values(points, "standardized error");
  int nDefined = 0;
  for (int target = 0; target < int(z.size()); ++target) {
    if (leavesOut(target, -1)) {
      EXPECT_FALSE(NbbGlobal::isDefined(estimates[std::size_t(target)]));
      continue;
    }
    const auto [estimate, deviation] =
        krigeWithout(points, target, [&](int sample) { return !leavesOut(target, sample); });
    const std::size_t rank = std::size_t(target);
    EXPECT_EQ(estimates[rank], estimate) << target;
    EXPECT_EQ(deviations[rank], deviation) << target;
    if (!NbbGlobal::isDefined(estimate)) {
      EXPECT_FALSE(NbbGlobal::isDefined(errors[rank]));
      continue;
    }
    ++nDefined;
    EXPECT_EQ(errors[rank], estimate - z[rank]) << target;
    EXPECT_NEAR(standardized[rank], (estimate - z[rank]) / deviation, 1e-14);
  }
  EXPECT_GT(nDefined, int(z.size()) / 2);
}

double squaredDistance(const Points &points, int a, int b)
{
  const std::vector<double> x = values(points, "X"), y = values(points, "Y");
  const double dx = x[std::size_t(a)] - x[std::size_t(b)];
  const double dy = y[std::size_t(a)] - y[std::size_t(b)];
  return dx * dx + dy * dy;
}

void expectReference(const Points &points, const std::string &file, bool skipTies)
{
  const testsupport::CsvFile reference("meuse/" + file);
  const std::vector<double> estimates = values(points, "estimate");
  const std::vector<double> deviations = values(points, "stdev");
  const std::vector<double> errors = values(points, "error");
  const std::vector<double> standardized = values(points, "standardized error");
  ASSERT_EQ(estimates.size(), 155u);
  for (std::size_t row = 0; row < estimates.size(); ++row) {
    if (skipTies && reference["tie"][row] != 0.)
      continue;
    const double estimate = reference["estimate"][row];
    const double variance = reference["variance"][row];
    // 1e-8 relative is what is promised; the files are printed with 15 digits.
    ASSERT_NEAR(estimates[row], estimate, 1e-8 * estimate) << "row " << row;
    ASSERT_NEAR(deviations[row] * deviations[row], variance, 1e-8 * variance) << "row " << row;
    // The reference counts errors the other way round.
    ASSERT_NEAR(errors[row], -reference["residual"][row], 1e-8) << "row " << row;
    ASSERT_NEAR(standardized[row], -reference["zscore"][row], 1e-8) << "row " << row;
  }
}

}  // namespace

TEST(NgcCrossValidation, EqualsReference)
{
  const testsupport::CsvFile csv("meuse/meuse.csv");
  std::vector<double> logZinc(csv["zinc"]);
  for (double &value : logZinc)
    value = std::log(value);
  for (const int maximum : {16, 155}) {
    const Points points = samples(csv["x"], csv["y"], logZinc);
    NgcCrossValidation validation(QStringLiteral("XVAL"));
    configure(validation, points);
    validation.setVarioModel(sphericalModel(0.05, 0.59, NbgVector3D(897., 897., 897.)));
    validation.setUsingMovingNeighborhood(nearest(maximum));
    run(validation);
    expectReference(points, maximum == 16 ? "loocv_ok_nmax16.csv" : "loocv_ok_global.csv",
                    maximum == 16);
  }
}

TEST(NgcCrossValidation, LeavesOutTheSampleAndThoseAtItsPlace)
{
  const Points points = randomSamples(60);
  // Sample 60 stands at the place of sample 3; sample 61 has no value.
  std::vector<double> x = values(points, "X"), y = values(points, "Y"), z = values(points, "z");
  x.insert(x.end(), {x[3] + 0.0005, 500.});
  y.insert(y.end(), {y[3], 500.});
  z.insert(z.end(), {9., NbbGlobal::D_FFFF});
  const Points more = samples(x, y, z);
  NgcCrossValidation validation(QStringLiteral("XVAL"));
  configure(validation, more);
  run(validation);
  EXPECT_TRUE(NbbGlobal::isDefined(values(more, "estimate")[61]));
  EXPECT_FALSE(NbbGlobal::isDefined(values(more, "error")[61]));

  std::vector<bool> selection(62, true);
  selection[61] = false;
  selection[20] = false;
  more->setSelection(selection);
  run(validation);
  expectSameAsByHand(more, [&](int target, int sample) {
    if (sample < 0)
      return !selection[std::size_t(target)];
    return !selection[std::size_t(sample)] || squaredDistance(more, target, sample) < 1e-6;
  });
}

TEST(NgcCrossValidation, LeavesOutTheLine)
{
  const Points points = randomSamples(60);
  std::vector<int> lines(60);
  for (int i = 0; i < 60; ++i)
    lines[std::size_t(i)] = i / 7;
  points->addVariable(QStringLiteral("line"), lines);
  NgcCrossValidation validation(QStringLiteral("XVAL"));
  configure(validation, points);
  validation.setRejectionMode(NgcERejectionMode::REJECTION_BY_LINE);
  EXPECT_EQ(validation.execute(), NbcAProgress::FAILED);
  EXPECT_TRUE(validation.getErrorMessage().contains("'OBJECT_ID' is invalid"))
      << qPrintable(validation.getErrorMessage());

  NgdDataSetPoints withLines = input(points);
  withLines.assignVariable(Nbd::Role::OBJECT_ID, points->getIdFromName(QStringLiteral("line")));
  validation.setInputDataSet(withLines);
  run(validation);
  expectSameAsByHand(
      points, [](int target, int sample) { return sample >= 0 && target / 7 == sample / 7; });
}

TEST(NgcCrossValidation, StopsAtASampleWithoutLine)
{
  const Points points = randomSamples(20);
  std::vector<int> lines(20, 1);
  lines[11] = NbbGlobal::I32_FFFF;
  points->addVariable(QStringLiteral("line"), lines);
  NgcCrossValidation validation(QStringLiteral("XVAL"));
  configure(validation, points);
  validation.setRejectionMode(NgcERejectionMode::REJECTION_BY_LINE);
  NgdDataSetPoints withLines = input(points);
  withLines.assignVariable(Nbd::Role::OBJECT_ID, points->getIdFromName(QStringLiteral("line")));
  validation.setInputDataSet(withLines);
  EXPECT_EQ(validation.execute(), NbcAProgress::FAILED);
  EXPECT_TRUE(validation.getErrorMessage().contains("Wrong line id"));
  EXPECT_EQ(validation.getResults().error, NbbGlobal::D_FFFF);
}

TEST(NgcCrossValidation, LeavesOutAPartition)
{
  const Points points = randomSamples(60);
  NgmSearchPartition partition;
  partition.setShape(NgcESolidShape::SHAPE_ELLIPSOID);
  partition.setEllipsoidSize(NbgVector3D(120., 120., 120.));
  NgcCrossValidation validation(QStringLiteral("XVAL"));
  configure(validation, points);
  validation.setRejectionPartition(partition);
  run(validation);
  expectSameAsByHand(points, [&](int target, int sample) {
    return sample >= 0 && squaredDistance(points, target, sample) <= 120. * 120.;
  });
}

TEST(NgcCrossValidation, GivesTheMeansOfItsOutputs)
{
  const Points points = randomSamples(500);
  std::vector<bool> selection(500);
  for (std::size_t i = 0; i < 500; ++i)
    selection[i] = i % 5 != 0;
  points->setSelection(selection);
  XValRes first;
  std::vector<double> firstErrors;
  for (const int nThreads : {1, 2, 8}) {
    NgcCrossValidation validation(QStringLiteral("XVAL"));
    configure(validation, points);
    validation.setNThread(nThreads);
    run(validation);
    const XValRes &results = validation.getResults();
    const auto meanOf = [&points](const char *name) {
      double sum = 0.;
      int n = 0;
      for (const double value : values(points, name)) {
        if (!NbbGlobal::isDefined(value))
          continue;
        sum += value;
        ++n;
      }
      EXPECT_EQ(n, 400);
      return sum / n;
    };
    const double tolerance = 1e-13;  // two ways to sum 400 values of size 1
    EXPECT_NEAR(results.estimation, meanOf("estimate"), tolerance);
    EXPECT_NEAR(results.standardDeviation, meanOf("stdev"), tolerance);
    EXPECT_NEAR(results.error, meanOf("error"), tolerance);
    EXPECT_NEAR(results.squaredError, meanOf("squared error"), tolerance);
    EXPECT_NEAR(results.standardizedError, meanOf("standardized error"), tolerance);
    EXPECT_NEAR(results.squaredStandardizedError, meanOf("squared standardized error"), tolerance);
    EXPECT_NEAR(results.realValue, meanOf("z"), tolerance);
    EXPECT_EQ(results.rootSquaredError, std::sqrt(results.squaredError));
    EXPECT_EQ(results.rootSquaredStandardizedError, std::sqrt(results.squaredStandardizedError));
    if (firstErrors.empty()) {
      first = results;
      firstErrors = values(points, "standardized error");
    }
    EXPECT_EQ(values(points, "standardized error"), firstErrors);
    EXPECT_EQ(results.debug(0), first.debug(0));
    EXPECT_EQ(results.standardizedError, first.standardizedError);
  }
}

TEST(NgcCrossValidation, WritesOnlyWhatIsAskedFor)
{
  const Points points = randomSamples(30);
  NgcCrossValidation full(QStringLiteral("XVAL"));
  configure(full, points);
  run(full);
  const std::vector<double> expected = values(points, "standardized error");

  NgdDataSetPoints single;
  single.setDataProvider(points);
  single.assignVariable(Nbd::Role::XVAL_ST_ERR,
                        points->addEmptyVariableSimple(QStringLiteral("alone"), Nbd::TYPE_DOUBLE));
  NgcCrossValidation validation(QStringLiteral("XVAL"));
  configure(validation, points);
  validation.setOutputDataSet(single);
  run(validation);
  EXPECT_EQ(values(points, "alone"), expected);
  EXPECT_EQ(validation.getResults().standardizedError, full.getResults().standardizedError);
  EXPECT_FALSE(NbbGlobal::isDefined(validation.getResults().estimation));
}

TEST(NgcCrossValidation, ValidatesTheRejectedVariable)
{
  // Two variables that are independent: cokriging gives what kriging gives.
  const Points points = randomSamples(50);
  points->addVariable(QStringLiteral("other"), testsupport::normalValues(17, 50));
  NgdDataSetPoints both = input(points);
  both.assignVariable(Nbd::Role::V, points->getIdFromName(QStringLiteral("other")));
  NgmVModel model(2);
  NgmMatrix sills(2, 2, true);
  for (int v = 0; v < 2; ++v) {
    model.setNugget(v, v, 0.1);
    sills.setElement(v, v, 0.9);
  }
  model.setRanges(model.addStructure(QStringLiteral("Spherical"), sills),
                  NbgVector3D(300., 300., 300.));

  NgdDataSetPoints second;
  second.setDataProvider(points);
  second.assignVariable(Nbd::Role::V, points->getIdFromName(QStringLiteral("other")));
  const auto validate = [&](const NgdDataSetPoints &in, const NgmVModel &with,
                            NgcCrossValidation &validation, int nVariables) {
    validation.setInputDataSet(in);
    validation.setOutputDataSet(validationOutput(points, nVariables));
    validation.setVarioModel(with);
    validation.setUsingMovingNeighborhood(nearest(12, 400.));
    run(validation);
  };
  NgcCrossValidation first(QStringLiteral("XVAL")), other(QStringLiteral("XVAL"));
  validate(input(points), smallModel(), first, 1);
  const std::vector<double> firstErrors = values(points, "error");
  validate(second, smallModel(), other, 1);
  const std::vector<double> otherErrors = values(points, "error");

  NgcCrossValidation nothing(QStringLiteral("XVAL"));
  validate(both, model, nothing, 2);
  const std::vector<double> both0 = values(points, "error"), both1 = values(points, "error 1");
  NgcCrossValidation kept(QStringLiteral("XVAL"));
  kept.setRejectionVarIndex(1);
  kept.setRejectionAuxVarOption(NgcERejectionAuxVarOption::AUX_VAR_KEEP_ALL);
  kept.setMainVariableIndex(1);
  validate(both, model, kept, 2);
  const std::vector<double> kept0 = values(points, "error"), kept1 = values(points, "error 1");
  for (std::size_t i = 0; i < 50; ++i) {
    EXPECT_NEAR(both0[i], firstErrors[i], 1e-12) << i;
    EXPECT_NEAR(both1[i], otherErrors[i], 1e-12) << i;
    EXPECT_FALSE(NbbGlobal::isDefined(kept0[i]));
    EXPECT_TRUE(NbbGlobal::isDefined(kept1[i]));
  }
  EXPECT_NEAR(nothing.getResults().error, first.getResults().error, 1e-12);
  EXPECT_NEAR(kept.getResults().error,
              std::accumulate(kept1.begin(), kept1.end(), 0.) / double(kept1.size()), 1e-13);
}

TEST(NgcCrossValidation, StandardizesOnlyByPositiveDeviations)
{
  const XValRes usual = NgwCrossValidation::calcErrors(5., 3., 4.);
  EXPECT_EQ(usual.error, -2.);
  EXPECT_EQ(usual.squaredError, 4.);
  EXPECT_EQ(usual.standardizedError, -1.);
  EXPECT_EQ(usual.squaredStandardizedError, 1.);
  EXPECT_EQ(usual.rootSquaredError, 2.);
  EXPECT_EQ(usual.rootSquaredStandardizedError, 1.);

  const XValRes exact = NgwCrossValidation::calcErrors(5., 3., 0.);
  EXPECT_EQ(exact.standardDeviation, 0.);
  EXPECT_EQ(exact.error, -2.);
  EXPECT_EQ(exact.squaredError, 4.);
  EXPECT_FALSE(NbbGlobal::isDefined(exact.standardizedError));
  EXPECT_FALSE(NbbGlobal::isDefined(exact.squaredStandardizedError));
  EXPECT_FALSE(NbbGlobal::isDefined(exact.rootSquaredStandardizedError));

  const double undefined = NbbGlobal::D_FFFF;
  EXPECT_FALSE(NbbGlobal::isDefined(NgwCrossValidation::calcErrors(undefined, 3., 4.).error));
  EXPECT_FALSE(NbbGlobal::isDefined(NgwCrossValidation::calcErrors(5., undefined, 4.).error));
  EXPECT_FALSE(NbbGlobal::isDefined(NgwCrossValidation::calcErrors(5., 3., undefined).error));
  testsupport::expectAssertion(QStringLiteral("interpol\\private\\NgwCrossValidation"),
                               QStringLiteral("Negative variance."),
                               [] { NgwCrossValidation::calcErrors(5., 3., -1e-12); });
}

TEST(NgcCrossValidation, RefusesWrongConfigurations)
{
  const Points points = randomSamples(10);
  const auto failureOf = [&](const std::function<void(NgcCrossValidation &)> &change) {
    NgcCrossValidation validation(QStringLiteral("XVAL"));
    configure(validation, points);
    change(validation);
    EXPECT_EQ(validation.execute(), NbcAProgress::FAILED);
    return validation.getErrorMessage();
  };
  EXPECT_TRUE(
      failureOf([](NgcCrossValidation &validation) { validation.setUsingUniqueNeighborhood(); })
          .endsWith("NgcCrossValidation::_preProcessing: Only moving neighborhood is "
                    "authorized"));
  EXPECT_TRUE(failureOf([](NgcCrossValidation &validation) {
                NgmBlock block(false);
                block.setSize(NbgVector3D(10., 10., 0.));
                block.setDiscretizationPointsNumber(NbgIntVector3D(2, 2, 1));
                validation.setSupportBlock(block);
              }).endsWith("NgcCrossValidation::_preProcessing: Only point kriging is authorized"));
  EXPECT_TRUE(failureOf([&](NgcCrossValidation &validation) {
                NgdDataSetPoints two = validationOutput(points);
                two.assignVariable(
                    Nbd::Role::XVAL_ERR,
                    points->addEmptyVariableSimple(QStringLiteral("surplus"), Nbd::TYPE_DOUBLE));
                validation.setOutputDataSet(two);
              }).contains("'XVAL_ERR' is invalid"));
  EXPECT_TRUE(failureOf([](NgcCrossValidation &validation) {
                NgmNeighborhoodMoving neighborhood = nearest(12, 400.);
                neighborhood.setRuleProximity(true, NbgVector3D(2., 2., 0.));
                validation.setUsingMovingNeighborhood(neighborhood);
              }).contains("Proximity parallelepiped cannot be used with rejection"));
}

TEST(NgcCrossValidation, TellsTheErrorsOfOneSample)
{
  const Points points = randomSamples(40);
  NgcCrossValidation validation(QStringLiteral("XVAL"));
  configure(validation, points);
  run(validation);
  NgmCrossValidationTestResult result;
  validation.test(7, result);
  EXPECT_TRUE(result.hasResults());
  EXPECT_EQ(result.getTargetSampleNumber(), 7);
  int nNeighbors = 0;
  for (int sample = 0; sample < 40; ++sample)
    nNeighbors += sample != 6 && squaredDistance(points, 6, sample) < 400. * 400.;
  EXPECT_EQ(result.getNeighbors().getNSamples(), std::min(nNeighbors, 12));
  const XValRes &errors = result.getXVal();
  EXPECT_EQ(errors.realValue, values(points, "z")[6]);
  EXPECT_EQ(errors.estimation, values(points, "estimate")[6]);
  EXPECT_EQ(errors.standardDeviation, values(points, "stdev")[6]);
  EXPECT_EQ(errors.error, values(points, "error")[6]);
  EXPECT_EQ(errors.standardizedError, values(points, "standardized error")[6]);
  EXPECT_EQ(result.getKrigingResults(0).estimation, errors.estimation);

  // Targets that are not the samples.
  std::vector<double> x = values(points, "X"), y = values(points, "Y"), z = values(points, "z");
  x[6] += 1.;
  const Points moved = samples(x, y, z);
  validation.setOutputDataSet(validationOutput(moved));
  testsupport::expectAssertion(
      QStringLiteral("interpol\\private\\NgwCrossValidation"),
      QStringLiteral("NgwCrossValidation::_targetKriged: Wrong target for test !"),
      [&] { validation.test(7, result); });
}
