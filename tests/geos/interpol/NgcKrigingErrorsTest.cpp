// Settings that are refused, targets that cannot be kriged, and sameness of bits.

#include "KrigingStudy.h"
#include "basic/data/NbdMacroIndexInfo.h"
#include "geos/interpol/NgcKriging.h"
#include "geos/interpol/NgmBlock.h"
#include "geos/vmodel/NgmLgsVModel.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

using namespace krigingtest;

namespace {

constexpr int nData = 12;
constexpr int nTargets = 6;

Study makeStudy(int nVariables = 1)
{
  Study study(randomPlaces(51, nData, 100.), randomPlaces(52, nTargets, 100.));
  for (int variable = 0; variable < nVariables; ++variable) {
    study.addData(Nbd::Role::V, QStringLiteral("z%1").arg(variable), randomValues(53, nData));
    study.addOutput(Nbd::Role::V, QStringLiteral("V%1").arg(variable));
  }
  return study;
}

NgmVModel makeModel(int nVariables = 1)
{
  if (nVariables == 2)
    return bivariateModel({0.1, 0.05, 0.2}, {1., 0.6, 0.8}, 40.);
  return sphericalModel(0.1, 1., NbgVector3D(40., 40., 40.));
}

NgmBlock makeBlock()
{
  NgmBlock block(false);
  block.setSize(NbgVector3D(10., 10., 0.));
  block.setDiscretizationPointsNumber(NbgIntVector3D(2, 2, 1));
  return block;
}

/// Its mode is simple kriging beside the one that is set.
class Contradictory : public NgcKriging
{
public:
  using NgcKriging::NgcKriging;
  ~Contradictory() override { _finish(); }
  bool isSimpleKriging() const override { return true; }
};

struct Wrong
{
  const char *message;
  int nVariables;
  std::function<void(Study &, NgcKriging &)> configure;
};

void expectRefused(const Wrong &wrong, NgcKriging &kriging)
{
  Study study = makeStudy(wrong.nVariables);
  kriging.setVarioModel(makeModel(wrong.nVariables));
  kriging.setUsingMovingNeighborhood(nearestSamples(8));
  wrong.configure(study, kriging);
  study.configure(kriging);
  EXPECT_EQ(kriging.execute(), NbcAProgress::FAILED) << wrong.message;
  EXPECT_TRUE(kriging.getErrorMessage().contains(QString::fromLatin1(wrong.message)))
      << wrong.message << " / " << qPrintable(kriging.getErrorMessage());
}

const char *errorRole()
{
  return "error";
}

void addErrors(Study &study, int count)
{
  for (int i = 0; i < count; ++i)
    study.addData(Nbd::Role::STDEV_MEAS_ERR, errorRole() + QString::number(i), Values(nData, 0.1));
}

void addCollocated(Study &study, int count)
{
  for (int i = 0; i < count; ++i)
    study.addTargetData(Nbd::Role::COLLOCATED, QStringLiteral("c%1").arg(i), Values(nTargets, 0.1));
}

}  // namespace

TEST(NgcKrigingErrors, RefusesSettingsThatContradict)
{
  using Mode = NgcEKrigingMode::EValue;
  NgmDriftModel linear;
  linear.addDrifts(0, 1, true, true, false);
  const Wrong cases[] = {
      {"Invalid main variable index!", 1,
       [](Study &, NgcKriging &kriging) { kriging.setMainVariableIndex(1); }},
      {"No output variable to be estimated!", 1,
       [](Study &study, NgcKriging &) { study.output().clearRole(Nbd::Role::V); }},
      {"Wrong number of constant known means: expected=2, given=1", 2,
       [](Study &, NgcKriging &kriging) {
         kriging.setKrigingMode(Mode::SIMPLE_KRIGING);
         kriging.setSimpleKrigingMean(0, 3.);
       }},
      {"Using external drifts not enabled in block kriging.", 1,
       [](Study &, NgcKriging &kriging) {
         NgmExtDriftModel drift;
         drift.addDrift(0, 0);
         kriging.setExtDriftModel(drift);
         kriging.setSupportBlock(makeBlock());
       }},
      {"Variance indicator is not available with LGS", 1,
       [](Study &study, NgcKriging &kriging) {
         study.addOutput(Nbd::Role::VARINDICATOR);
         kriging.setEnableLGS(true);
       }},
      {"Cannot use LGS with a Unique Neighborhood.", 1,
       [](Study &, NgcKriging &kriging) {
         kriging.setEnableLGS(true);
         kriging.setUsingUniqueNeighborhood();
       }},
      {"Kriging efficiency needs Kriging variance or Standard deviation", 1,
       [](Study &study, NgcKriging &) { study.addOutput(Nbd::Role::KRIG_EFFIC); }},
      {"You cannot define both Block Interpolation and Direct Block Kriging.", 1,
       [](Study &, NgcKriging &kriging) {
         kriging.setUsingUniqueNeighborhood();
         kriging.setSupportBlock(makeBlock());
         kriging.setBlockCorrectionCoefficient(0, 0.9);
       }},
      {"Invalid r coefficient", 1,
       [](Study &, NgcKriging &kriging) { kriging.setBlockCorrectionCoefficient(0, 1.5); }},
      {"Rescaled cokriging is incompatible with drifts", 2,
       [&linear](Study &, NgcKriging &kriging) {
         kriging.setKrigingMode(Mode::RESCALED_COKRIGING);
         kriging.setDriftModel(linear);
       }},
      {"Rescaled cokriging is incompatible with drift filtering", 2,
       [](Study &, NgcKriging &kriging) {
         kriging.setKrigingMode(Mode::RESCALED_COKRIGING);
         kriging.setFilterDrifts(true);
       }},
      {"NgmAVStruct::setContext: invalid Irf Degree", 1,
       [](Study &, NgcKriging &kriging) {
         NgmVModel model(1);
         model.setContextIrfDegree(0);
         model.setRangeIsotropic(model.addStructure(QStringLiteral("Linear"), 1.), 100.);
         kriging.setVarioModel(model);
         kriging.setKrigingMode(Mode::SIMPLE_KRIGING);
       }},
      {"In the dataset 'INPUT' the number of variables associated to role 'V' is invalid.", 1,
       [](Study &, NgcKriging &kriging) { kriging.setVarioModel(makeModel(2)); }},
      {"In the dataset 'OUTPUT' the number of variables associated to role 'V' is invalid.", 1,
       [](Study &study, NgcKriging &) { study.addOutput(Nbd::Role::V, QStringLiteral("more")); }},
      {"In the dataset 'INPUT' the number of variables associated to role 'EXTDRIFT' is invalid.",
       1,
       [](Study &, NgcKriging &kriging) {
         NgmExtDriftModel drift;
         drift.addDrift(0, 1);
         kriging.setExtDriftModel(drift);
       }},
      {"In the dataset 'INPUT' the number of variables associated to role 'LOCAL_MEAN' is invalid.",
       1,
       [](Study &, NgcKriging &kriging) {
         kriging.setKrigingMode(Mode::SIMPLE_KRIGING);
         kriging.setSimpleKrigingOption(Ngc::SIMPLE_KRIGING_LOCAL_MEAN);
       }},
  };
  for (const Wrong &wrong : cases) {
    NgcKriging kriging(QStringLiteral("KRIGING"));
    expectRefused(wrong, kriging);
  }
  Contradictory both(QStringLiteral("KRIGING"));
  expectRefused(
      {"Simple Kriging and Rescaled CoKriging are exclusive.", 1,
       [](Study &, NgcKriging &kriging) { kriging.setKrigingMode(Mode::RESCALED_COKRIGING); }},
      both);
}

TEST(NgcKrigingErrors, RefusesAttachedVariablesThatDoNotFit)
{
  const auto setErrors = [](NgcKriging &kriging, const QMap<int, int> &names) {
    for (auto name = names.begin(); name != names.end(); ++name)
      kriging.setStDevMeasError(name.key(), errorRole() + QString::number(name.value()));
  };
  const auto setCollocated = [](NgcKriging &kriging, const QMap<int, int> &names) {
    for (auto name = names.begin(); name != names.end(); ++name)
      kriging.setCollocated(name.key(), QStringLiteral("c%1").arg(name.value()));
  };
  struct Case
  {
    const char *errors;
    const char *collocated;
    int nPresent;
    QMap<int, int> names;
  };
  const Case cases[] = {
      {"Only one stdev of measurement error by input variable is possible.",
       "Only one collocated variable by input variable is possible.",
       3,
       {{0, 0}}},
      {"There is too much stdev of measurement error.",
       "There is too much collocated variables.",
       2,
       {{0, 0}, {1, 1}, {2, 1}}},
      {"Unknown stdev of measurement error variable name.",
       "Unknown collocated variable name.",
       1,
       {{0, 7}}},
      {"Wrong index in stdev of measurement error variables.",
       "Wrong index in collocated variables.",
       1,
       {{2, 0}}},
      {"Wrong number of stdev of measurement error.",
       "Wrong number of collocated variables.",
       2,
       {{0, 0}}},
  };
  for (const Case &wrong : cases) {
    NgcKriging errors(QStringLiteral("KRIGING"));
    expectRefused({wrong.errors, 2,
                   [&](Study &study, NgcKriging &kriging) {
                     addErrors(study, wrong.nPresent);
                     setErrors(kriging, wrong.names);
                   }},
                  errors);
    NgcKriging collocated(QStringLiteral("KRIGING"));
    expectRefused({wrong.collocated, 2,
                   [&](Study &study, NgcKriging &kriging) {
                     addCollocated(study, wrong.nPresent);
                     setCollocated(kriging, wrong.names);
                   }},
                  collocated);
  }

  NgcKriging blocks(QStringLiteral("KRIGING"));
  expectRefused({"Collocated cokriging not possible in block kriging.", 2,
                 [&](Study &study, NgcKriging &kriging) {
                   addCollocated(study, 1);
                   setCollocated(kriging, {{1, 0}});
                   kriging.setSupportBlock(makeBlock());
                 }},
                blocks);
  NgcKriging filtering(QStringLiteral("KRIGING"));
  expectRefused({"Collocated cokriging not possible when filtering components.", 2,
                 [&](Study &study, NgcKriging &kriging) {
                   addCollocated(study, 1);
                   setCollocated(kriging, {{1, 0}});
                   kriging.setFilterNugget(true);
                 }},
                filtering);
}

TEST(NgcKrigingErrors, UndefinedDriftsAreCountedAndLeaveTheirTargets)
{
  Values drift = randomValues(54, nTargets);
  drift[2] = NbbGlobal::D_FFFF;
  for (const bool localMean : {false, true}) {
    for (const bool moving : {true, false}) {
      const QString role = localMean ? Nbd::Role::LOCAL_MEAN : Nbd::Role::EXTDRIFT;
      Study study = makeStudy();
      study.addData(role, QStringLiteral("f"), randomValues(55, nData));
      study.addTargetData(role, QStringLiteral("f"), drift);
      NgcKriging kriging(QStringLiteral("KRIGING"));
      kriging.setVarioModel(makeModel());
      if (moving)
        kriging.setUsingMovingNeighborhood(nearestSamples(nData));
      else
        kriging.setUsingUniqueNeighborhood();
      NgmExtDriftModel external;
      external.addDrift(0, 0);
      if (localMean) {
        kriging.setKrigingMode(NgcEKrigingMode::SIMPLE_KRIGING);
        kriging.setSimpleKrigingOption(Ngc::SIMPLE_KRIGING_LOCAL_MEAN);
      } else {
        kriging.setExtDriftModel(external);
      }
      study.krige(kriging);
      EXPECT_EQ(kriging.getNumberOfInterpolErrors(), 1);
      EXPECT_TRUE(kriging.hasInterpolError(Ngc::INTERPOL_ERROR_SYSTEM));
      EXPECT_TRUE(kriging.getInterpolErrorsMessage().contains(
          QStringLiteral("Known Drifts are undefined.\nTarget location: X = ")));
      const Values estimates = study.get(QStringLiteral("V0"));
      for (std::size_t t = 0; t < nTargets; ++t)
        EXPECT_EQ(NbbGlobal::isDefined(estimates[t]), t != 2);
    }
  }
}

TEST(NgcKrigingErrors, TooFewSamplesForTheDriftAreCounted)
{
  // The second target has two samples only: not enough for a plane.
  Study study({{0., 10., 0., 12., 500., 510.}, {0., 0., 10., 9., 500., 500.}},
              {{5., 505.}, {5., 500.}});
  study.addData(Nbd::Role::V, QStringLiteral("z"), {1., 2., 3., 5., 4., 5.});
  study.addOutput(Nbd::Role::V);
  NgmNeighborhoodMoving neighborhood = nearestSamples(8);
  neighborhood.setEllipseSize(NbgVector3D(50., 50., 50.));
  NgmDriftModel drift;
  drift.addDrifts(0, 1, true, true, false);
  NgcKriging kriging(QStringLiteral("KRIGING"));
  kriging.setVarioModel(makeModel());
  kriging.setUsingMovingNeighborhood(neighborhood);
  kriging.setKrigingMode(NgcEKrigingMode::UNIVERSAL_KRIGING);
  kriging.setDriftModel(drift);
  study.krige(kriging);
  EXPECT_EQ(kriging.getNumberOfInterpolErrors(), 1);
  EXPECT_TRUE(kriging.hasInterpolError(Ngc::INTERPOL_ERROR_NEIGHBORHOOD));
  EXPECT_TRUE(kriging.getInterpolErrorsMessage().contains(QStringLiteral(
      "Please increase your neighborhood size.\nTarget location: X = 505, Y = 500, Z = 0")))
      << qPrintable(kriging.getInterpolErrorsMessage());
  EXPECT_TRUE(NbbGlobal::isDefined(study.get(Nbd::Role::V)[0]));
  EXPECT_EQ(study.get(Nbd::Role::V)[1], NbbGlobal::D_FFFF);
}

// Bits.

namespace {

/// A kriging with buffers of the test's choice that uses much at once: blocks, or collocated
/// values, which cannot go together.
Values krigeRich(bool moving, bool hasBlocks, int nThreads, int samplesPerBuffer)
{
  constexpr int n = 120;
  constexpr int nTarget = 150;
  Study study(randomPlaces(61, n, 100.), randomPlaces(62, nTarget, 100.));
  for (int variable = 0; variable < 2; ++variable) {
    study.addData(Nbd::Role::V, QStringLiteral("z%1").arg(variable),
                  randomValues(63 + variable, n));
    for (const QString &role :
         {Nbd::Role::V, Nbd::Role::STDEV, Nbd::Role::SLOPE_ZZSTAR, Nbd::Role::WEIGHT_OF_MEAN})
      study.addOutput(role, role + QString::number(variable));
  }
  if (hasBlocks) {
    for (const char *name : {"u", "v"})
      study.addTargetData(Nbd::Role::BLOCK_SIZE, QString::fromLatin1(name),
                          testsupport::uniformValues(66 + name[0] - 'u', nTarget, 1., 9.));
  } else {
    study.addTargetData(Nbd::Role::COLLOCATED, QStringLiteral("c"), randomValues(68, nTarget));
  }
  NgdDataSetPoints weights;
  weights.setDataProvider(study.data());
  weights.assignVariable(Nbd::Role::WEIGHT, study.data()->addEmptyVariableSimple(
                                                QStringLiteral("weight"), Nbd::TYPE_DOUBLE));
  NgmDriftModel drift;
  drift.addDrifts(0, 1, true, false, false);
  SizedKriging kriging(samplesPerBuffer);
  kriging.setVarioModel(makeModel(2));
  kriging.setDriftModel(drift);
  if (hasBlocks) {
    kriging.setSupportBlock(makeBlock());
    kriging.setSupportBlockVarSize(true);
  } else {
    kriging.setCollocated(1, QStringLiteral("c"));
  }
  kriging.setWeightsDataset(weights);
  if (moving)
    kriging.setUsingMovingNeighborhood(nearestSamples(10));
  else
    kriging.setUsingUniqueNeighborhood();
  study.configure(kriging);
  kriging.setNThread(nThreads);
  EXPECT_EQ(kriging.execute(), NbcAProgress::COMPLETED) << qPrintable(kriging.getErrorMessage());

  Values all;
  for (int variable = 0; variable < 2; ++variable) {
    for (const QString &role :
         {Nbd::Role::V, Nbd::Role::STDEV, Nbd::Role::SLOPE_ZZSTAR, Nbd::Role::WEIGHT_OF_MEAN}) {
      const Values values = study.get(role + QString::number(variable));
      all.insert(all.end(), values.begin(), values.end());
    }
  }
  NbdVariableDouble kept;
  kept.resizeAndFill(n);
  study.data()->readVariable(study.data()->getIdFromName(QStringLiteral("weight")),
                             NbiIntervalIntLarge::fromLength(n), kept, 0);
  all.insert(all.end(), kept.getArrayConst(), kept.getArrayConst() + n);
  return all;
}

}  // namespace

TEST(NgcKrigingErrors, RichRunsGiveSameBitsWithAnyThreadsAndBuffers)
{
  for (const auto &[moving, hasBlocks] : {std::pair(true, true), std::pair(true, false),
                                          std::pair(false, true), std::pair(false, false)}) {
    const Values expected = krigeRich(moving, hasBlocks, 1, 150);
    EXPECT_EQ(std::count(expected.begin(), expected.end(), NbbGlobal::D_FFFF), 0);
    for (const auto &[nThreads, samplesPerBuffer] :
         {std::pair(1, 7), std::pair(2, 7), std::pair(8, 7), std::pair(2, 1), std::pair(8, 64)})
      EXPECT_EQ(krigeRich(moving, hasBlocks, nThreads, samplesPerBuffer), expected)
          << nThreads << " threads, " << samplesPerBuffer << " per buffer";
  }
}

TEST(NgcKrigingErrors, EachRealizationOfTheDataIsKriged)
{
  const QString simulated = QStringLiteral("simulated");
  const QString estimated = QStringLiteral("estimated");
  for (const bool moving : {true, false}) {
    Study study(randomPlaces(51, nData, 100.), randomPlaces(52, nTargets, 100.));
    const NbdMacroIndexInfo info;
    const QString in = study.data()->addMacro(simulated, Nbd::TYPE_DOUBLE, info);
    for (const int index : {2, 5})
      study.data()->addRealization(in, NbdMacroIndex(index), randomValues(70 + index, nData));
    study.input().assignMacro(Nbd::Role::V, in);
    const QString out = study.targets()->addMacro(estimated, Nbd::TYPE_DOUBLE, info);
    study.output().assignMacro(Nbd::Role::V, out);
    study.addOutput(Nbd::Role::VARIANCE);

    const auto setNeighborhood = [moving](NgcKriging &kriging) {
      kriging.setVarioModel(makeModel());
      if (moving)
        kriging.setUsingMovingNeighborhood(nearestSamples(8));
      else
        kriging.setUsingUniqueNeighborhood();
    };
    NgcKriging kriging(QStringLiteral("KRIGING"));
    setNeighborhood(kriging);
    study.krige(kriging);
    for (const int index : {2, 5}) {
      Study single(randomPlaces(51, nData, 100.), randomPlaces(52, nTargets, 100.));
      single.addData(Nbd::Role::V, QStringLiteral("z"), randomValues(70 + index, nData));
      single.addOutputs({Nbd::Role::V, Nbd::Role::VARIANCE});
      NgcKriging one(QStringLiteral("KRIGING"));
      setNeighborhood(one);
      single.krige(one);
      NbdVariableDouble values;
      values.resizeAndFill(nTargets);
      study.targets()->readVariable(study.targets()->getRealizationId(out, NbdMacroIndex(index)),
                                    NbiIntervalIntLarge::fromLength(nTargets), values, 0);
      EXPECT_EQ(Values(values.getArrayConst(), values.getArrayConst() + nTargets),
                single.get(Nbd::Role::V));
      EXPECT_EQ(study.get(Nbd::Role::VARIANCE), single.get(Nbd::Role::VARIANCE));
    }
  }
}
