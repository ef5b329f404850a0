#include "geos/base/NgcAInterpol.h"

#include "InterpolRun.h"
#include "basic/data/NbdMacroIndexInfo.h"
#include "basic/geom/NbgGeomPolylineSet.h"
#include "geos/interpol/NgmBlockUnfolded.h"
#include "geos/interpol/NgmFaultSetPolylines.h"
#include "geos/interpol/NgmLgsNeighborhoodMoving.h"
#include "geos/interpol/NgmNeighborhoodNestedParam.h"
#include "support/Errors.h"
#include "support/SampoutFile.h"

#include <QMutex>
#include <QThread>

#include <atomic>
#include <cmath>

using namespace interpoltest;
using testsupport::errorOf;
using testsupport::SampoutFile;

namespace {

void expectCompleted(NgcAInterpol &calculator)
{
  ASSERT_EQ(calculator.execute(), NbcAProgress::COMPLETED)
      << qPrintable(calculator.getErrorMessage());
}

/// Runs and expects the assertion form with that condition.
void expectRefused(NgcAInterpol &calculator, const QString &condition)
{
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_TRUE(calculator.getErrorMessage().endsWith(
      QStringLiteral("' in file 'base\\NgcAInterpol' failed:\n\n") + condition))
      << qPrintable(calculator.getErrorMessage());
}

struct Outcome
{
  std::vector<double> estimates;
  std::vector<double> weights;
  QStringList sampout;

  bool operator==(const Outcome &other) const
  {
    return estimates == other.estimates && weights == other.weights && sampout == other.sampout;
  }
};

NgmNeighborhoodFaultSet wall(double x)
{
  NbgGeomPolylineSet faults;
  faults.add(NbgGeomPolyline({{x, -1000., 0.}, {x, 1000., 0.}}));
  return NgmNeighborhoodFaultSet(std::make_unique<NgmFaultSetPolylines>(faults));
}

}  // namespace

// Results.

TEST(NgcAInterpol, EstimatesWithTheNeighborsOfEachTarget)
{
  Study study;
  study.mask();
  InverseDistances calculator;
  study.configure(calculator);
  NgmNeighborhoodMoving all = Study::neighborhood();
  all.setSectors(1, Study::nSamples, false);
  calculator.setUsingMovingNeighborhood(all);
  calculator.setWeightsDataset(study.sampleOutput(Nbd::Role::WEIGHT, QStringLiteral("w")));
  expectCompleted(calculator);

  // The same by brute force.
  const std::vector<double> x = selectedValuesOf(*study.samples, "X");
  const std::vector<double> y = selectedValuesOf(*study.samples, "Y");
  const std::vector<double> z = selectedValuesOf(*study.samples, "Z");
  const std::vector<double> values = selectedValuesOf(*study.samples, "z");
  const std::vector<double> estimates = selectedValuesOf(*study.grid, "estimate");
  std::vector<double> sums(values.size());
  double total = 0.;
  std::size_t target = 0;
  for (int rank = 0; rank < 25 * 25 * 3; ++rank) {
    if (rank % 5 == 1)
      continue;
    const NbgVector3D location = study.grid->getGridGeometry().getCellCenter(qint64(rank));
    double weights = 0., sum = 0.;
    std::vector<double> mine(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
      const NbgVector3D sample(x[i], y[i], z[i]);
      if ((sample - location).norm() < 40.)
        weights += mine[i] = rawWeight(sample, location);
      sum += mine[i] * values[i];
    }
    ASSERT_NEAR(estimates[target++], sum / weights, 1e-12);  // order of sums
    for (std::size_t i = 0; i < values.size(); ++i)
      sums[i] += mine[i] / weights;
    ++total;
  }
  const std::vector<double> weights = selectedValuesOf(*study.samples, "w");
  for (std::size_t i = 0; i < values.size(); ++i)
    EXPECT_NEAR(weights[i], sums[i] / total, 1e-12);  // sums of 1500 weights
  EXPECT_EQ(calculator.getWeightsStatistics().getNDefined(), qint64(values.size()));
  EXPECT_NEAR(calculator.getWeightsStatistics().getMean(), 1. / double(values.size()), 1e-14);
  EXPECT_FALSE(study.samples->isVariableOpen(study.samples->getIdFromName(QStringLiteral("w"))));
}

namespace {

Outcome runStudy(int nThreads, int samplesPerBuffer, const NbgIntVector3D &parcel,
                 const NbgVector3D &extension)
{
  Study study;
  study.mask();
  SampoutFile file;
  InverseDistances calculator;
  study.configure(calculator);
  calculator.setNThread(nThreads);
  calculator.samplesPerBuffer = samplesPerBuffer;
  if (parcel != NbgIntVector3D::Null)
    calculator.setParcelling(parcel, extension);
  calculator.setWeightsDataset(study.sampleOutput(Nbd::Role::WEIGHT, QStringLiteral("w")));
  calculator.setSampoutDataSet(file.dataSet);
  expectCompleted(calculator);

  Outcome outcome;
  outcome.estimates = selectedValuesOf(*study.grid, "estimate");
  outcome.weights = selectedValuesOf(*study.samples, "w");
  const std::vector<double> x = file.values("cx"), y = file.values("cy"), z = file.values("cz");
  const std::vector<double> weights = file.values("weight");
  for (std::size_t row = 0; row < x.size(); ++row)
    outcome.sampout << QStringLiteral("%1 %2 %3 %4")
                           .arg(x[row])
                           .arg(y[row])
                           .arg(z[row])
                           .arg(weights[row], 0, 'g', 17);
  outcome.sampout.sort();
  return outcome;
}

}  // namespace

TEST(NgcAInterpol, GivesSameBitsWithAnyThreadsBuffersAndParcels)
{
  const NbgVector3D reach(40., 40., 40.);
  const Outcome expected = runStudy(1, 0, NbgIntVector3D::Null, {});
  ASSERT_EQ(expected.estimates.size(), 1500u);
  for (const int nThreads : {1, 2, 8}) {
    EXPECT_EQ(runStudy(nThreads, 75, NbgIntVector3D::Null, {}), expected) << nThreads;
    EXPECT_EQ(runStudy(nThreads, 3, {10, 10, 1}, reach), expected) << nThreads;
  }
  EXPECT_EQ(runStudy(2, 0, {25, 3, 2}, reach), expected);
  // Without the extension samples are missing: the parcels do act.
  EXPECT_NE(runStudy(2, 0, {10, 10, 1}, {}).estimates, expected.estimates);
}

TEST(NgcAInterpol, CutsAGridIntoParcels)
{
  Study study;
  InverseDistances calculator;
  study.configure(calculator);
  const std::pair<NbgIntVector3D, int> cases[] = {{{10, 10, 1}, 27},
                                                  {{25, 25, 3}, 1},
                                                  {{25, 24, 9}, 2},
                                                  {{1, 100, 3}, 25},
                                                  {{24, 2147483647, 2}, 4}};
  for (const auto &[sizes, nParcels] : cases) {
    calculator.setParcelling(sizes, {1., 1., 1.});
    expectCompleted(calculator);
    EXPECT_EQ(calculator.nPreLaunch, nParcels) << qPrintable(sizes.toString());
    EXPECT_EQ(calculator.nPostLaunch, nParcels);
  }
  // Only the samples in reach of a parcel are in memory.
  calculator.setParcelling({5, 5, 3}, {5., 5., 5.});
  expectCompleted(calculator);
  EXPECT_EQ(calculator.targetBoxes[6].getLowerLeftCorner(), NbgVector3D(50., 50., 0.));
  EXPECT_EQ(calculator.targetBoxes[6].getUpperRightCorner(), NbgVector3D(100., 100., 15.));
  EXPECT_GT(calculator.mostLoaded, 0);
  EXPECT_LT(calculator.mostLoaded, Study::nSamples / 8);
}

TEST(NgcAInterpol, FiltersAlongTheAxesOfARotatedGrid)
{
  // Parcels of one column of cells, in a grid that is turned: each loads the samples in its cells.
  NbgGeomGrid geometry = testsupport::makeGridGeometry2D(4, 1, 10., 10.);
  geometry.setRotation(NbgRotation(40., 0., 0.));
  geometry.setOriginCentered({3., -2., 0.});
  const auto grid = testsupport::makeGrid(geometry);
  grid->addEmptyVariableSimple(QStringLiteral("estimate"), Nbd::TYPE_DOUBLE);
  std::vector<double> x, y, z;
  for (int i = 0; i < 4; ++i) {
    const NbgVector3D corner =
        geometry.getCellCenter(i, 0, 0) + geometry.getRotation().localToWorld({4.9, 4.9, 0.});
    x.push_back(corner.x());
    y.push_back(corner.y());
    z.push_back(i);
  }
  const auto samples = QSharedPointer<NbpMemoryProviderPointsW>::create(NbgEDimension::DIM_2D, 4);
  samples->addXVariable(x);
  samples->addYVariable(y);
  samples->addVariable(QStringLiteral("z"), z);
  NgdDataSetPoints input;
  input.setDataProvider(samples);
  input.assignVariable(Nbd::Role::V, samples->getIdFromName(QStringLiteral("z")));
  NgdDataSetGrid output;
  output.setDataProvider(grid);
  output.assignVariable(Nbd::Role::V, grid->getIdFromName(QStringLiteral("estimate")));
  for (const bool moving : {true, false}) {
    InverseDistances calculator;
    calculator.setInputDataSet(input);
    calculator.setOutputDataSet(output);
    calculator.setUsingMovingNeighborhood(Study::neighborhood());
    if (!moving)
      calculator.setUsingUniqueNeighborhood();
    calculator.setParcelling({1, 1, 1}, {0., 0., 0.});
    expectCompleted(calculator);
    EXPECT_EQ(calculator.mostLoaded, 1);
    EXPECT_EQ(selectedValuesOf(*grid, "estimate"), (std::vector<double>{0., 1., 2., 3.}));
  }
}

namespace {

/// Adds the realizations 2, 5 and 9 of "simulated" to the samples and the macro "estimates" to the
/// grid.
void addRealizations(const Study &study)
{
  const QString id =
      study.samples->addMacro(QStringLiteral("simulated"), Nbd::TYPE_DOUBLE, NbdMacroIndexInfo());
  for (const int index : {2, 5, 9})
    study.samples->addRealization(id, NbdMacroIndex(index),
                                  testsupport::normalValues(100 + index, Study::nSamples));
  study.grid->addMacro(QStringLiteral("estimates"), Nbd::TYPE_DOUBLE, NbdMacroIndexInfo());
}

}  // namespace

TEST(NgcAInterpol, EstimatesOneRealizationAtATime)
{
  Study study;
  addRealizations(study);
  NgdDataSetPoints input;
  input.setDataProvider(study.samples);
  input.assignMacro(Nbd::Role::V, study.samples->getIdFromName(QStringLiteral("simulated")));
  NgdDataSetGrid output;
  const QString estimates = study.grid->getIdFromName(QStringLiteral("estimates"));
  output.setDataProvider(study.grid);
  output.assignMacro(Nbd::Role::V, estimates);
  InverseDistances calculator;
  study.configure(calculator);
  calculator.setInputDataSet(input);
  calculator.setOutputDataSet(output);
  calculator.setNThread(2);
  calculator.setParcelling({13, 25, 3}, {40., 40., 40.});
  calculator.setPerformStatistics(Nbd::Role::V);
  calculator.setWeightsDataset(study.sampleOutput(Nbd::Role::WEIGHT, QStringLiteral("w")));
  int nWritten = 0;
  calculator.setInputWriteDataset(study.sampleOutput(Nbd::Role::MEAN, QStringLiteral("mine")),
                                  {{Nbd::Role::MEAN, Nbd::TYPE_DOUBLE}});
  QMutex mutex;
  calculator.inputWrite = [&](qint64 target, double estimate) -> QMap<qint64, QList<double>> {
    const QMutexLocker locker(&mutex);
    ++nWritten;
    return {{target % Study::nSamples + 1, {target < Study::nSamples ? estimate : 0.}}};
  };
  expectCompleted(calculator);
  EXPECT_EQ(calculator.nPreLaunch, 6);
  EXPECT_EQ(nWritten, 3 * 25 * 25 * 3);
  const std::vector<double> weights = selectedValuesOf(*study.samples, "w");

  // Each realization is that of a run with it alone; the weights are those of one of them.
  InverseDistances single;
  study.configure(single);
  single.setWeightsDataset(study.sampleOutput(Nbd::Role::WEIGHT, QStringLiteral("w1")));
  for (const int index : {2, 5, 9}) {
    input.clearRole(Nbd::Role::V);
    input.assignVariable(
        Nbd::Role::V,
        study.samples->getRealizationId(study.samples->getIdFromName(QStringLiteral("simulated")),
                                        NbdMacroIndex(index)));
    single.setInputDataSet(input);
    expectCompleted(single);
    const std::vector<double> expected = selectedValuesOf(*study.grid, "estimate");
    EXPECT_EQ(
        selectedValues(*study.grid, study.grid->getRealizationId(estimates, NbdMacroIndex(index))),
        expected)
        << index;
    double mean = 0.;
    for (const double value : expected)
      mean += value / double(expected.size());
    EXPECT_NEAR(calculator.getMacroStatistics(Nbd::Role::V, 0, NbdMacroIndex(index)).getMean(),
                mean, 1e-12);
  }
  EXPECT_EQ(weights, selectedValuesOf(*study.samples, "w1"));
}

TEST(NgcAInterpol, WritesValuesBackToTheInput)
{
  Study study;
  study.mask();
  InverseDistances calculator;
  study.configure(calculator);
  calculator.setNThread(2);
  calculator.samplesPerBuffer = 75;
  NgdDataSetPoints written = study.sampleOutput(Nbd::Role::MEAN, QStringLiteral("mine"));
  study.samples->addEmptyVariableSimple(QStringLiteral("target"), Nbd::TYPE_INT32);
  written.assignVariable(Nbd::Role::RANK, study.samples->getIdFromName(QStringLiteral("target")));
  const QMap<QString, Nbd::EVariableType> types = {{Nbd::Role::MEAN, Nbd::TYPE_DOUBLE},
                                                   {Nbd::Role::RANK, Nbd::TYPE_INT32}};
  calculator.setInputWriteDataset(written, types);
  // The targets 10, 20, ... write to the samples 1, 2, ...
  calculator.inputWrite = [](qint64 target, double) -> QMap<qint64, QList<double>> {
    if (target % 10 != 0 || (target / 10 - 1) % 7 == 3)
      return {};
    return {{target / 10, {0.5 * double(target), double(target)}}};
  };
  expectCompleted(calculator);
  EXPECT_EQ(calculator.getInputWriteStatistics().keys(), types.keys());
  const std::vector<double> means = selectedValuesOf(*study.samples, "mine");
  const std::vector<double> targets = selectedValuesOf(*study.samples, "target");
  int position = 0, nWritten = 0;
  for (int rank = 0; rank < Study::nSamples; ++rank) {
    if (rank % 7 == 3)
      continue;
    const int target = 10 * (rank + 1);
    const bool isWritten = target <= 25 * 25 * 3 && (target - 1) % 5 != 1;
    EXPECT_EQ(means[position], isWritten ? 0.5 * target : NbbGlobal::D_FFFF) << rank;
    EXPECT_EQ(targets[position], isWritten ? target : NbbGlobal::D_FFFF) << rank;
    nWritten += isWritten;
    ++position;
  }
  EXPECT_EQ(calculator.getInputWriteStatistics().value(Nbd::Role::RANK).getNDefined(), nWritten);

  calculator.inputWrite = [](qint64 target, double) -> QMap<qint64, QList<double>> {
    return {{target, {1., 2., 3.}}};
  };
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_TRUE(calculator.getErrorMessage().contains(
      QStringLiteral("Inconsistent number of input write variables")));
  calculator.inputWrite = [](qint64, double) -> QMap<qint64, QList<double>> {
    return {{4, {1., 2.}}};  // not selected
  };
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_TRUE(calculator.getErrorMessage().contains(QStringLiteral("Cannot find sample #4")));
}

TEST(NgcAInterpol, TellsTheSamplesThatItUsed)
{
  Study study;
  SampoutFile file;
  file.add(NgdSampout::getRoleAuxiliary(), "I_z");
  file.add(NgdSampout::getRoleAuxiliary(), "O_count");
  InverseDistances calculator;
  study.configure(calculator);
  calculator.setNThread(2);
  calculator.setSampoutDataSet(file.dataSet);
  ASSERT_NE(calculator.getSampout(), nullptr);
  EXPECT_FALSE(calculator.getSampout()->hasRhs());
  expectCompleted(calculator);

  const std::vector<double> counts = selectedValuesOf(*study.grid, "count");
  double nRows = 0.;
  for (const double count : counts)
    nRows += count;
  EXPECT_EQ(file.getNRows(), nRows);
  EXPECT_EQ(file.values("value"), file.values("I_z"));
  EXPECT_EQ(file.texts("name").front(), "z");

  // The rows of a target are contiguous, and their weights sum to 1.
  const std::vector<double> x = file.values("cx"), y = file.values("cy"), z = file.values("cz");
  const std::vector<double> weights = file.values("weight"), count = file.values("O_count");
  const NbgGeomGrid &geometry = study.grid->getGridGeometry();
  for (std::size_t row = 0; row < x.size();) {
    NbgIntVector3D node;
    ASSERT_TRUE(geometry.getCellIJK({x[row], y[row], z[row]}, node));
    const double expected = counts[std::size_t(geometry.getRankFromIJK(node))];
    EXPECT_EQ(count[row], expected);
    double sum = 0.;
    for (int i = 0; i < int(expected); ++i, ++row) {
      ASSERT_TRUE(x[row] == geometry.getCellCenter(node).x() &&
                  y[row] == geometry.getCellCenter(node).y());
      sum += weights[row];
    }
    EXPECT_NEAR(sum, 1., 1e-14);
  }
}

// Neighborhoods.

TEST(NgcAInterpol, StandsInForAUniqueNeighborhoodWithFaults)
{
  Study study;
  InverseDistances calculator;
  study.configure(calculator);
  calculator.setUsingUniqueNeighborhood();
  expectCompleted(calculator);
  const std::vector<double> expected = selectedValuesOf(*study.grid, "estimate");

  calculator.setFaultsData(NgmNeighborhoodFaultSet(), NgcEFaultsMode::CALCULATE_INSIDE);
  expectCompleted(calculator);
  EXPECT_TRUE(calculator.areFaultsActive());
  EXPECT_FALSE(calculator.usedMoving);

  // A fault beyond all samples changes nothing, not even for opposite corners.
  calculator.setFaultsData(wall(1000.), NgcEFaultsMode::CALCULATE_INSIDE);
  expectCompleted(calculator);
  EXPECT_TRUE(calculator.usedMoving);
  EXPECT_FALSE(calculator.isUsingMoving());
  const std::vector<double> counts = selectedValuesOf(*study.grid, "count");
  EXPECT_EQ(std::count(counts.begin(), counts.end(), double(Study::nSamples)), 25 * 25 * 3);
  const std::vector<double> far = selectedValuesOf(*study.grid, "estimate");
  for (std::size_t i = 0; i < far.size(); ++i)
    ASSERT_NEAR(far[i], expected[i], 1e-12);  // another order of sums

  // A fault through the middle parts the samples.
  calculator.setFaultsData(wall(125.1), NgcEFaultsMode::CALCULATE_INSIDE);
  expectCompleted(calculator);
  const std::vector<double> x = selectedValuesOf(*study.samples, "X");
  const auto nWest = double(std::count_if(x.begin(), x.end(), [](double v) { return v < 125.1; }));
  const std::vector<double> parted = selectedValuesOf(*study.grid, "count");
  for (int rank = 0; rank < 25 * 25 * 3; ++rank)
    ASSERT_EQ(parted[rank], rank / 75 < 13 ? nWest : Study::nSamples - nWest);

  calculator._setEnableFaults(false);
  EXPECT_TRUE(errorOf([&] {
                calculator.setFaultsData(wall(0.), NgcEFaultsMode::CALCULATE_INSIDE);
              }).endsWith(QStringLiteral("Fault are not allowed in this calculator")));
}

TEST(NgcAInterpol, SearchesWithALocallyVaryingEllipsoidAndLevels)
{
  Study study;
  std::vector<double> factors(25 * 25 * 3);
  for (std::size_t i = 0; i < factors.size(); ++i)
    factors[i] = i % 2 == 0 ? 1. : 2.;
  study.grid->addVariable(QStringLiteral("factor"), factors);
  NgmNeighborhoodMoving parameters = Study::neighborhood();
  parameters.setSectors(1, Study::nSamples, false);
  const auto countsOf = [&](double radius, bool local, double minimum) {
    InverseDistances calculator;
    study.configure(calculator);
    calculator.setNThread(2);
    calculator.samplesPerBuffer = 150;
    parameters.setEllipseSize({radius, radius, radius});
    parameters.setRuleMinimumNumber(true, int(minimum));
    calculator.setUsingMovingNeighborhood(parameters);
    if (minimum > 1) {
      NgmNeighborhoodNestedParam level;
      level.factor = {2., 2., 2.};
      level.minimum = 1;
      calculator.addMovingAlternativeParameters(level);
    }
    NgdDataSetGrid output = study.output();
    output.assignVariable(NgmLgsNeighborhoodMoving::getRoleRadiusFactor(),
                          study.grid->getIdFromName(QStringLiteral("factor")));
    calculator.setOutputDataSet(output);
    calculator.setEnableLGS(local);
    expectCompleted(calculator);
    return selectedValuesOf(*study.grid, "count");
  };
  const std::vector<double> single = countsOf(20., false, 1.);
  const std::vector<double> twice = countsOf(40., false, 1.);
  const std::vector<double> local = countsOf(20., true, 1.);
  const std::vector<double> nested = countsOf(20., false, 9.);
  ASSERT_NE(single, twice);
  int nFallbacks = 0;
  for (std::size_t i = 0; i < local.size(); ++i) {
    ASSERT_EQ(local[i], i % 2 == 0 ? single[i] : twice[i]);
    const bool fallsBack = !(single[i] >= 9. && NbbGlobal::isDefined(single[i]));
    ASSERT_EQ(nested[i], fallsBack ? twice[i] : single[i]);
    nFallbacks += fallsBack;
  }
  EXPECT_GT(nFallbacks, 0);
  EXPECT_LT(nFallbacks, int(local.size()));
}

// Supports.

TEST(NgcAInterpol, KnowsItsBlocks)
{
  InverseDistances calculator(true);
  EXPECT_FALSE(calculator.isBlockInterpolation());
  EXPECT_TRUE(errorOf([&] {
                calculator.getBlockDefinition();
              }).endsWith(QStringLiteral("block interpolation is not defined")));
  NgmBlock block(true);
  block.setSize({1., 2., 3.});
  calculator.setSupportBlock(block);
  block.setSize({9., 9., 9.});
  EXPECT_TRUE(calculator.isBlockInterpolation());
  EXPECT_FALSE(calculator.isSupportBlockUnfolded());
  EXPECT_EQ(calculator.getBlockDefinition().getSize(), NbgVector3D(1., 2., 3.));

  NbdDataPoints targets;
  targets.appendSamples(1);
  NbdDataTable &table = targets.getDataTable();
  for (int axis = 0; axis < 3; ++axis)
    table.createVariableNumeric(Nbd::Role::BLOCK_SIZE);
  EXPECT_TRUE(calculator.getBlockVariables(table).isEmpty());
  calculator.setSupportBlockVarSize(true);
  EXPECT_EQ(calculator.getBlockVariables(table), table.getVarsNumeric(Nbd::Role::BLOCK_SIZE));

  // The corners come in the order of the unfolded block: u + 2 v + 4 w.
  const QString corners[] = {Nbd::Role::BLOCK_BOTSW, Nbd::Role::BLOCK_BOTSE, Nbd::Role::BLOCK_BOTNW,
                             Nbd::Role::BLOCK_BOTNE, Nbd::Role::BLOCK_TOPSW, Nbd::Role::BLOCK_TOPSE,
                             Nbd::Role::BLOCK_TOPNW, Nbd::Role::BLOCK_TOPNE};
  for (int corner = 0; corner < 8; ++corner) {
    const double place[] = {double(corner % 2), double(corner / 2 % 2), double(corner / 4)};
    for (const double coordinate : place)
      table.createVariableNumeric(corners[corner])->setValue(0, coordinate);
  }
  const NgmBlockUnfolded unfolded(true);
  calculator.setSupportBlock(unfolded);
  EXPECT_TRUE(calculator.isSupportBlockUnfolded());
  const std::unique_ptr<NgmABlock> clone(calculator.cloneBlockDefinition());
  const std::unique_ptr<NgmABlock> first(
      clone->getResizedBlock(0, calculator.getBlockVariables(table)));
  EXPECT_EQ(first->getSize(), NbgVector3D(1., 1., 1.));

  calculator.setSupportPoint();
  EXPECT_FALSE(calculator.isBlockInterpolation());
  EXPECT_TRUE(calculator.getBlockVariables(table).isEmpty());
}

// What a run refuses.

TEST(NgcAInterpol, RefusesWrongConfigurations)
{
  Study study;
  InverseDistances calculator;
  expectRefused(calculator, QStringLiteral("No input dataset defined!"));
  calculator.setInputDataSet(study.input());
  expectRefused(calculator, QStringLiteral("No output dataset defined!"));
  calculator.setOutputDataSet(study.output());
  expectRefused(calculator, QStringLiteral("No moving neighborhood defined."));
  calculator.setUsingMovingNeighborhood(Study::neighborhood());

  NgmBlock block(true);
  block.setSize({1., 1., 1.});
  calculator.setSupportBlock(block);
  expectRefused(calculator, QStringLiteral("Discretization parameters are missing."));
  NgmBlockUnfolded unfolded(true);
  unfolded.setDiscretizationPointsNumber({2, 2, 2});
  calculator.setSupportBlock(unfolded);
  expectRefused(calculator, QStringLiteral("Support block unfolded is not allowed"));
  block.setDiscretizationPointsNumber({2, 2, 2});
  calculator.setSupportBlock(block);
  calculator.setSupportBlockVarSize(true);
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_TRUE(calculator.getErrorMessage().contains(QStringLiteral("BLOCK_SIZE")));
  calculator.setSupportPoint();

  EXPECT_EQ(errorOf([&] {
              calculator.setParcelling({5, 0, 5}, {});
            }),
            QStringLiteral("Parcelling size cannot be null: (5, 0, 5)"));
  EXPECT_TRUE(errorOf([&] {
                calculator.setSampoutDataSet(study.output());
              }).endsWith(QStringLiteral("The sample output must be a points dataset.")));

  NgmNeighborhoodMoving codes = Study::neighborhood();
  codes.setRuleMaximumPerCode(true, 2);
  calculator.setUsingMovingNeighborhood(codes);
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_TRUE(calculator.getErrorMessage().contains(QStringLiteral("'CODE'")))
      << qPrintable(calculator.getErrorMessage());

  SampoutFile file;
  calculator.setUsingUniqueNeighborhood();
  calculator.setSampoutDataSet(file.dataSet);
  expectRefused(calculator, QStringLiteral("Sampout available only for moving neighborhood."));
}

TEST(NgcAInterpol, RefusesDataSetsThatDoNotFitTogether)
{
  Study study;
  InverseDistances calculator;
  study.configure(calculator);
  const auto plane = testsupport::makeGrid2D(5, 5);
  NgdDataSetGrid flat;
  flat.setDataProvider(plane);
  flat.assignVariable(Nbd::Role::V, plane->getIdFromName(QStringLiteral("Z1")));
  calculator.setOutputDataSet(flat);
  expectRefused(calculator, QStringLiteral("In data (ndim=3) and out data (ndim=2) do not have the "
                                           "same space dimension!"));
  calculator._setStrictDimension(false);
  expectCompleted(calculator);
  calculator.addMovingAlternativeParameters(NgmNeighborhoodNestedParam());
  expectRefused(calculator,
                QStringLiteral("Cannot use nested neighborhood with in data (ndim=3) and out data "
                               "(ndim=2) different space dimension!"));

  study.configure(calculator);
  NgdDataSetPoints points = study.sampleOutput(Nbd::Role::V, QStringLiteral("out"));
  calculator.setOutputDataSet(points);
  calculator.setParcelling({2, 2, 2}, {});
  expectRefused(calculator, QStringLiteral("Parcelling is only available for output dataset grid"));
}

TEST(NgcAInterpol, RefusesOutputsOfOtherSamples)
{
  Study study;
  const auto other = QSharedPointer<NbpMemoryProviderPointsW>::create(NbgEDimension::DIM_3D, 299);
  other->addEmptyVariableSimple(QStringLiteral("w"), Nbd::TYPE_DOUBLE);
  NgdDataSetPoints weights;
  weights.setDataProvider(other);
  weights.assignVariable(Nbd::Role::WEIGHT, other->getIdFromName(QStringLiteral("w")));
  InverseDistances calculator;
  study.configure(calculator);
  calculator.setWeightsDataset(weights);
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_TRUE(
      calculator.getErrorMessage().endsWith(QStringLiteral("Cannot read weights samples.")));

  study.mask();
  expectRefused(calculator, QStringLiteral("Selection definitions are not consistent between input "
                                           "dataset and weights dataset."));
  const auto select = [](NbpMemoryProviderPointsW &provider, const char *name) {
    const QString id = provider.addVariable(
        QLatin1String(name), std::vector<bool>(std::size_t(provider.getSampleCount()), true));
    provider.setSelectionId(id);
  };
  select(*study.samples, "mine");
  select(*other, "theirs");
  calculator.setInputDataSet(study.input());
  calculator.setWeightsDataset(weights);
  expectRefused(calculator, QStringLiteral("Selection names are not consistent between input "
                                           "dataset and weights dataset."));
}

TEST(NgcAInterpol, RefusesSamplesThatDoNotFitInMemory)
{
  // A sample takes four doubles and its number.
  Study study;
  InverseDistances calculator;
  study.configure(calculator);
  constexpr int bytes = Study::nSamples * 40;
  calculator.setAvailableMemBytes(2 * bytes - 2);
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_EQ(calculator.getErrorType(), NbeError::MEMORY);
  EXPECT_EQ(calculator.getErrorMessage().toStdString(),
            "There is not enough available memory to perform the interpolation.\n"
            "Available memory : 23.4 KB\nNeeded memory : 11.7 KB\n(Number of samples = 300)");
  calculator.setAvailableMemBytes(2 * bytes);
  expectCompleted(calculator);

  // With 4 parcels a run needs twice a quarter; with 2 nothing is gained.
  calculator.setAvailableMemBytes(bytes);
  calculator.setParcelling({13, 13, 3}, {});
  expectCompleted(calculator);
  calculator.setAvailableMemBytes(bytes - 2);
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  calculator.setParcelling({13, 25, 3}, {});
  calculator.setAvailableMemBytes(2 * bytes - 2);
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
}

// Failures at targets.

TEST(NgcAInterpol, CountsFailuresAndListsTheFirstTen)
{
  Study study;
  InverseDistances calculator;
  study.configure(calculator);
  calculator.setNThread(4);
  calculator.samplesPerBuffer = 30;
  QString expected = QStringLiteral("The interpolation process encountered errors:\n");
  for (int i = 1; i <= 10; ++i) {
    calculator.failing.insert(100 * i);
    expected += QStringLiteral("Error #%1: Target %2 failed\n").arg(i).arg(100 * i);
  }
  expectCompleted(calculator);
  EXPECT_EQ(calculator.getNumberOfInterpolErrors(), 10);
  EXPECT_EQ(calculator.getInterpolErrorsMessage(), expected);
  EXPECT_TRUE(calculator.hasInterpolError(Ngc::INTERPOL_ERROR_NEIGHBORHOOD));
  EXPECT_FALSE(calculator.hasInterpolError(Ngc::INTERPOL_ERROR_SYSTEM));
  const std::vector<double> estimates = selectedValuesOf(*study.grid, "estimate");
  for (std::size_t i = 0; i < estimates.size(); ++i)
    ASSERT_EQ(NbbGlobal::isDefined(estimates[i]), calculator.failing.count(qint64(i) + 1) == 0);

  calculator.failing.insert({1500, 1600});
  expectCompleted(calculator);
  EXPECT_EQ(calculator.getNumberOfInterpolErrors(), 12);
  EXPECT_EQ(calculator.getInterpolErrorsMessage(),
            expected + QStringLiteral("Only 10 first errors are reported..."));

  calculator.failing.clear();
  expectCompleted(calculator);
  EXPECT_EQ(calculator.getNumberOfInterpolErrors(), 0);
  EXPECT_TRUE(calculator.getInterpolErrorsMessage().isEmpty());
}

TEST(NgcAInterpol, StopsAtTheFirstFailureWhenAsked)
{
  Study study;
  InverseDistances calculator;
  study.configure(calculator);
  calculator.setNThread(2);
  calculator.samplesPerBuffer = 30;
  calculator.failing = {700};
  calculator.setOnErrorBehavior(Ngc::ON_ERROR_STOP);
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  const QString text = QStringLiteral(
      "The interpolation process has been stopped due to the following error:\nTarget 700 failed");
  EXPECT_EQ(calculator.getErrorMessage(), QStringLiteral("Thread failed:\n") + text + '\n');
  EXPECT_EQ(calculator.getInterpolErrorsMessage(), text);
  EXPECT_EQ(calculator.getNumberOfInterpolErrors(), 1);
  EXPECT_EQ(calculator.nPreLaunch, 1);
  EXPECT_EQ(calculator.nPostLaunch, 1);

  // The other worker, in a buffer that holds the rest of the grid, does not go on to its end.
  std::atomic<int> nTargets{0};
  std::atomic<bool> failed{false};
  calculator.samplesPerBuffer = 25 * 25 * 3 / 2;
  calculator.failing = {1};
  calculator.onTarget = [&](qint64 number) {
    while (number != 1 && !failed)
      QThread::yieldCurrentThread();
    if (number == 1)
      failed = true;
    else
      QThread::msleep(1);
    ++nTargets;
  };
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_TRUE(calculator.getErrorMessage().contains(QStringLiteral("Target 1 failed")));
  EXPECT_LT(nTargets, 800);
}

TEST(NgcAInterpol, ReleasesAPassThatWasInterrupted)
{
  Study study;
  InverseDistances calculator;
  study.configure(calculator);
  calculator.setParcelling({10, 10, 3}, {});
  calculator.setFaultsData(wall(1000.), NgcEFaultsMode::CALCULATE_INSIDE);
  calculator.setUsingUniqueNeighborhood();
  calculator.onTarget = [&](qint64) {
    if (calculator.nPreLaunch == 3)
      calculator.stop();
  };
  EXPECT_EQ(calculator.execute(), NbcAProgress::INTERRUPTED);
  EXPECT_EQ(calculator.nPreLaunch, 3);
  EXPECT_EQ(calculator.nPostLaunch, 3);
  EXPECT_FALSE(calculator.isUsingMoving());
  EXPECT_FALSE(calculator.getConstNeighborhood().isUseFilteringCuboid());
  EXPECT_FALSE(study.grid->isVariableOpen(study.grid->getIdFromName(QStringLiteral("estimate"))));
}

// Progress.

TEST(NgcAInterpol, CountsSamplesAndBuffers)
{
  Study study;
  study.mask();
  InverseDistances calculator;
  study.configure(calculator);
  calculator.setNThread(1);
  calculator.samplesPerBuffer = 75;
  std::vector<qint64> counters;
  calculator.onTarget = [&](qint64) { counters.push_back(calculator.getCounter()); };
  expectCompleted(calculator);
  constexpr int nNodes = 25 * 25 * 3;
  ASSERT_GT(calculator.nBuffers, 10);
  EXPECT_EQ(calculator.getCounterMax(), nNodes + calculator.nBuffers);
  EXPECT_GT(counters.front(), 1);  // its buffer was taken
  EXPECT_EQ(counters.back(), nNodes + calculator.nBuffers - 1);
  EXPECT_TRUE(std::is_sorted(counters.begin(), counters.end()));

  // With parcels progress goes on, and buffers without a selected sample count.
  counters.clear();
  for (int rank = 0; rank < 600; ++rank)
    study.grid->deselect({rank, rank});
  calculator.setParcelling({5, 25, 3}, {});
  expectCompleted(calculator);
  EXPECT_EQ(calculator.getCounterMax(), nNodes + 5 * calculator.nBuffers);
  EXPECT_GT(counters.front(), 600);
  EXPECT_EQ(counters.back(), nNodes + 5 * calculator.nBuffers - 1);
  EXPECT_TRUE(std::is_sorted(counters.begin(), counters.end()));

  counters.clear();
  calculator._setPerSampleProgress(true);
  expectCompleted(calculator);
  EXPECT_EQ(calculator.getCounterMax(), qint64(counters.size()));
  for (std::size_t i = 0; i < counters.size(); ++i)
    ASSERT_EQ(counters[i], qint64(i));
}

// The test of one target.

TEST(NgcAInterpol, TestsOneTargetWithoutWriting)
{
  Study study;
  study.mask();
  InverseDistances calculator;
  study.configure(calculator);
  calculator.setWeightsDataset(study.sampleOutput(Nbd::Role::WEIGHT, QStringLiteral("w")));
  calculator.setParcelling({10, 10, 3}, {0., 0., 0.});
  calculator.untestedRoles << Nbd::Role::N;
  TestResult result;
  calculator.test(901, result);
  EXPECT_FALSE(result.getTargetValues().getDataTableConst().hasRole(Nbd::Role::N));
  EXPECT_TRUE(result.hasResults());
  const double tested = result.estimate;
  EXPECT_EQ(result.getTargetSampleNumber(), 901);
  EXPECT_EQ(result.getTargetIndices(), NbgIntVector3D(12, 0, 0));
  EXPECT_EQ(result.getTargetLocation(), study.grid->getGridGeometry().getCellCenter(12, 0, 0));
  EXPECT_EQ(result.getTargetValues().getDataTableConst().getVarDoubleRef(Nbd::Role::V).getValue(0),
            tested);
  EXPECT_GT(result.getNeighbors().getNSamples(), 0);
  EXPECT_LE(result.getNeighbors().getNSamples(), 8);
  EXPECT_EQ(result.getInputDetails().first().getName(), QStringLiteral("z"));
  EXPECT_EQ(result.getOutputDetails().first().getName(), QStringLiteral("estimate"));
  for (const double value : selectedValuesOf(*study.grid, "estimate"))
    ASSERT_FALSE(NbbGlobal::isDefined(value));
  for (const double value : selectedValuesOf(*study.samples, "w"))
    ASSERT_FALSE(NbbGlobal::isDefined(value));
  EXPECT_EQ(calculator.getState(), NbcAProgress::IDLE);

  // The run is the same with the role again, and gives what was tested.
  expectCompleted(calculator);
  EXPECT_TRUE(NbbGlobal::isDefined(selectedValuesOf(*study.grid, "count").front()));
  NbdVariableDouble stored;
  stored.resizeAndFill(1);
  study.grid->readVariable(study.grid->getIdFromName(QStringLiteral("estimate")), {900, 900},
                           stored, 0);
  EXPECT_EQ(stored.getValue(0), tested);

  calculator.test(902, result);  // not selected
  EXPECT_FALSE(result.hasResults());
}

TEST(NgcAInterpol, RefusesWrongTests)
{
  Study study;
  InverseDistances calculator;
  TestResult result;
  EXPECT_TRUE(errorOf([&] {
                calculator.test(1, result);
              }).endsWith(QStringLiteral("No input dataset defined!")));
  study.configure(calculator);
  for (const qint64 number : {-1, 0, 25 * 25 * 3 + 1})
    EXPECT_EQ(errorOf([&] { calculator.test(number, result); }),
              QStringLiteral("Sample number out of range"));
  calculator.makesForeignWorkers = true;
  EXPECT_TRUE(errorOf([&] {
                calculator.test(1, result);
              }).endsWith(QStringLiteral("Cannot create interpolator thread!")));
  EXPECT_EQ(calculator.nPostLaunch, 1);
  EXPECT_FALSE(study.grid->isVariableOpen(study.grid->getIdFromName(QStringLiteral("estimate"))));
  calculator.makesForeignWorkers = false;
  calculator.failing = {1};
  calculator.setOnErrorBehavior(Ngc::ON_ERROR_STOP);
  EXPECT_TRUE(errorOf([&] { calculator.test(1, result); }).endsWith(QStringLiteral("1 failed")));
}
