#include "geos/data/NgdNeighborhoodContext.h"

#include "NeighborhoodOracle.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/error/NbeUserError.h"
#include "geos/NgmEnumGlobal.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/data/NgdNeighborhoodMoving.h"
#include "geos/data/NgdNeighborhoodUnique.h"
#include "geos/interpol/NgmFaultSetPolylines.h"
#include "support/Errors.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <map>
#include <thread>

using oracle::Configuration;

namespace {

/// A data set of the configuration, open, and the search object on it.
class Search
{
public:
  explicit Search(const Configuration &configuration)
      : moving(Nbd::Role::V), _configuration(configuration)
  {
    _fill();
    dataSet.openAllVariables();
    moving.setDataset(&dataSet);
    moving.setParameters(configuration.parameters);
    for (const NgmNeighborhoodNestedParam &level : configuration.levels)
      moving.addAlternativeParameters(level);
    if (configuration.rejection) {
      moving.setRejectionPartition(configuration.rejection->partition);
      moving.setRejectionMode(configuration.rejection->mode);
      moving.setRejectionAuxVarOption(configuration.rejection->option);
      moving.setRejectionVarIndex(configuration.rejection->variable);
    }
    moving.loadData();
    variables = moving.getAllData().getDataTableConst().getVarsNumeric(Nbd::Role::V);
    _makeTargets();
    _makeAdditional();
  }

  void prepare(NgdNeighborhoodContext &context) const
  {
    QMap<int, NbdAVariableNumeric *> collocated;
    if (_configuration.hasCollocated)
      collocated[0] = targets.getDataTableConst().getVarNumeric(Nbd::Role::COLLOCATED);
    const bool isLocal =
        !_configuration.factors.empty() || !_configuration.factorsOfAxes[0].empty();
    context.initialize(moving, isLocal, false, 0, false, targets.getDataTableConst(), variables,
                       collocated);
    context.setForceCollocated(_configuration.forcesCollocated);
    if (_configuration.block)
      context.setTargetBlock(*_configuration.block);
    if (!_configuration.moreLocations.empty())
      context.setAdditionalInput(&additional, Nbd::Role::SIMU, _configuration.moreMaximum);
    for (std::size_t i = 0; i < _configuration.moreEnabled.size(); ++i) {
      if (_configuration.moreEnabled[i])
        context.enableAdditionalInputSample(int(i));
    }
    if (_configuration.faults.empty())
      return;
    NbgGeomPolylineSet lines;
    for (const oracle::Fault &fault : _configuration.faults)
      lines.add(NbgGeomPolyline(fault.vertices(), fault.isPolygon));
    context.setFaultsEnabled(true);
    context.setFaultsMode(_configuration.faultsMode);
    context.setFaultsData(NgmNeighborhoodFaultSet(std::make_unique<NgmFaultSetPolylines>(lines)));
  }

  const NgcENeighborhoodErrorCode &search(NgdNeighborhoodContext &context, int target,
                                          int *level) const
  {
    // A target that is no sample has a sample number beyond the file.
    const int rank = _configuration.targetRanks[target];
    const qint64 number = rank >= 0 ? rank + 1 : qint64(_configuration.locations.size()) + 5;
    return context.setTargetLocation(_configuration.targets[target], target, number, level);
  }

  QSharedPointer<NbpMemoryProviderPointsW> provider;
  NgdDataSetPoints dataSet;
  NgdNeighborhoodMoving moving;
  QList<NbdAVariableNumeric *> variables;
  NbdDataPoints targets;
  NbdDataPoints additional;

private:
  void _fill()
  {
    const std::vector<NbgVector3D> &locations = _configuration.locations;
    const std::size_t n = locations.size();
    std::vector<double> coordinates[3], lines(n);
    for (std::size_t i = 0; i < n; ++i) {
      for (int axis = 0; axis < 3; ++axis)
        coordinates[axis].push_back(locations[i][axis]);
      lines[i] = _configuration.lines[i];
    }
    const NbgEDimension dimensions[] = {NbgEDimension::DIM_1D, NbgEDimension::DIM_2D,
                                        NbgEDimension::DIM_3D};
    provider = QSharedPointer<NbpMemoryProviderPointsW>::create(
        dimensions[_configuration.nDimensions - 1], qint64(n));
    provider->addXVariable(coordinates[0]);
    if (_configuration.nDimensions > 1)
      provider->addYVariable(coordinates[1]);
    if (_configuration.nDimensions > 2)
      provider->addZVariable(coordinates[2]);
    dataSet.setDataProvider(provider);
    for (std::size_t v = 0; v < _configuration.values.size(); ++v) {
      const QString id =
          provider->addVariable(QStringLiteral("value%1").arg(v), _configuration.values[v]);
      dataSet.assignVariable(Nbd::Role::V, id);
      if (v == 0) {
        dataSet.assignVariable(Nbd::Role::LARGE_CUTOFF, id);
        dataSet.assignVariable(Nbd::Role::SMALL_CUTOFF, id);
      }
    }
    dataSet.assignVariable(Nbd::Role::CODE,
                           provider->addVariable(QStringLiteral("code"), _configuration.codes));
    dataSet.assignVariable(Nbd::Role::OBJECT_ID,
                           provider->addVariable(QStringLiteral("line"), lines));
  }

  void _makeTargets()
  {
    NbdDataTable &table = targets.getDataTable();
    const auto add = [&table](const QString &role, const std::vector<double> &values) {
      if (!values.empty())
        table.createVariableNumeric(role)->setValues(QVector<double>(values.begin(), values.end()));
    };
    add(Nbd::Role::COLLOCATED, _configuration.targetValues);
    add(NgmLgsNeighborhoodMoving::getRoleRadiusFactor(), _configuration.factors);
    using Lgs = NgmLgsNeighborhoodMoving;
    add(Lgs::getRoleRadiusFactorU(), _configuration.factorsOfAxes[0]);
    add(Lgs::getRoleRadiusFactorV(), _configuration.factorsOfAxes[1]);
    add(Lgs::getRoleRadiusFactorW(), _configuration.factorsOfAxes[2]);
    add(Lgs::getRoleRot1(), _configuration.angles[0]);
    add(Lgs::getRoleRot2(), _configuration.angles[1]);
    add(Lgs::getRoleRot3(), _configuration.angles[2]);
    table.adjustNSamples();
  }

  void _makeAdditional()
  {
    additional.setNDimensions(_configuration.nDimensions);
    additional.ensureCoordinates();
    for (std::size_t v = 0; v < _configuration.moreValues.size(); ++v)
      additional.getDataTable().createVariableNumeric(Nbd::Role::SIMU);
    const QList<NbdVariableDouble *> columns =
        additional.getDataTableConst().getVarsDouble(Nbd::Role::SIMU);
    for (std::size_t i = 0; i < _configuration.moreLocations.size(); ++i) {
      additional.appendSample(_configuration.moreLocations[i]);
      for (int v = 0; v < columns.size(); ++v)
        columns[v]->setValue(int(i), _configuration.moreValues[v][i]);
    }
  }

  const Configuration &_configuration;
};

void expectAnswer(const Configuration &configuration, const NgdNeighborhoodContext &context,
                  const oracle::Answer &expected)
{
  const int n = int(expected.selected.size());
  ASSERT_EQ(int(context.getRanks().size()), n);
  for (int i = 0; i < n; ++i) {
    ASSERT_EQ(context.getRanks()[i], expected.selected[i].sample) << "neighbor " << i;
    ASSERT_EQ(context.getSectors()[i], expected.selected[i].sector);
    ASSERT_EQ(context.getSquaredDistances()[i], expected.selected[i].squaredDistance);
  }
  ASSERT_EQ(context.getNSelectedCodes(), expected.nCodes);
  for (std::size_t v = 0; v < expected.nCodesOf.size(); ++v)
    ASSERT_EQ(context.getNSelectedCodesByVar(int(v)), expected.nCodesOf[v]);
  ASSERT_EQ(context.getCollocatedRank(), expected.hasCollocatedTarget ? n : -1);
  ASSERT_EQ(context.getNNeighbors(), n + expected.hasCollocatedTarget);

  const NbdDataPoints &neighbors = context.getNeighbors();
  ASSERT_EQ(neighbors.getNSamples(), context.getNNeighbors());
  for (std::size_t v = 0; v < expected.values.size(); ++v) {
    for (std::size_t i = 0; i < expected.values[v].size(); ++i)
      ASSERT_EQ(context.getMainValues(int(v))[i], expected.values[v][i]) << v << " of " << i;
  }
  for (int i = 0; i < n; ++i) {
    const int rank = expected.selected[i].sample;
    const bool isMain = rank < int(configuration.locations.size());
    const std::size_t position = isMain ? 0 : rank - configuration.locations.size();
    ASSERT_EQ(neighbors.getLocation(i),
              isMain ? configuration.locations[rank] : configuration.moreLocations[position]);
    ASSERT_EQ(neighbors.getSampleNumber(i), isMain ? rank + 1 : NbbGlobal::I64_FFFF);
  }
}

}  // namespace

TEST(NgdNeighborhoodContext, SelectsWhatTheRulesSay)
{
  std::map<std::string, int> outcomes;
  qint64 nNearest = 0;
  qint64 nNearestInSectors = 0;
  int nLevels = 0;
  for (std::uint64_t seed = 1; seed <= 4000; ++seed) {
    SCOPED_TRACE(seed);
    const Configuration configuration(1000 * seed);
    const Search search(configuration);
    NgdNeighborhoodContext context;
    search.prepare(context);
    for (int k = 0; k < Configuration::nTargets; ++k) {
      SCOPED_TRACE(k);
      int level = 7;
      const NgcENeighborhoodErrorCode &outcome = search.search(context, k, &level);
      const oracle::Answer expected = oracle::Search(configuration, k).run();
      ASSERT_STREQ(outcome.getKey(), expected.outcome.getKey());
      ASSERT_EQ(level, expected.level);
      expectAnswer(configuration, context, expected);
      if (HasFatalFailure())
        return;
      ++outcomes[outcome.getKey()];
      nLevels += level > 0;
    }
    nNearest += context.getNNearestSearches();
    if (configuration.parameters.getSplittedSectorsNumber() > 1)
      nNearestInSectors += context.getNNearestSearches();
  }
  // Every outcome occurs, and both roads.
  EXPECT_EQ(outcomes.size(), 9u);
  for (const auto &[key, count] : outcomes)
    EXPECT_GT(count, 20) << key;
  EXPECT_GT(nLevels, 300);
  EXPECT_GT(nNearest, 2000);
  EXPECT_GT(nNearestInSectors, 100);
}

TEST(NgdNeighborhoodContext, AnswersTheSameFromEightThreads)
{
  for (const std::uint64_t seed : {77000, 78000, 79000, 81000}) {
    const Configuration configuration(seed);
    const Search search(configuration);
    std::vector<int> wrong(8, 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
      threads.emplace_back([&, t] {
        NgdNeighborhoodContext context;
        search.prepare(context);
        for (int k = 0; k < 20 * Configuration::nTargets; ++k) {
          int level = 0;
          const int target = (k + t) % Configuration::nTargets;
          search.search(context, target, &level);
          const oracle::Answer expected = oracle::Search(configuration, target).run();
          wrong[t] += level != expected.level ||
                      context.getRanks().size() != expected.selected.size() ||
                      !std::equal(expected.selected.begin(), expected.selected.end(),
                                  context.getRanks().begin(),
                                  [](const auto &a, int rank) { return a.sample == rank; });
        }
      });
    }
    for (std::thread &thread : threads)
      thread.join();
    EXPECT_EQ(wrong, std::vector<int>(8, 0));
  }
}

namespace {

/// Two samples in the plane, 5 apart, and a search of radius 5.
Configuration twoSamples()
{
  Configuration configuration(2);
  configuration.nDimensions = 2;
  configuration.locations = {NbgVector3D(0., 0., 0.), NbgVector3D(3., 4., 0.)};
  configuration.values = {{1., 2.}};
  configuration.codes = {1., 2.};
  configuration.lines = {1, 2};
  configuration.levels.clear();
  configuration.parameters = NgmNeighborhoodMoving();
  configuration.parameters.setEllipseSize(NbgVector3D(5., 5., 5.));
  configuration.rejection.reset();
  configuration.moreLocations.clear();
  configuration.moreValues.clear();
  configuration.moreEnabled.clear();
  configuration.factors.clear();
  for (int i = 0; i < 3; ++i) {
    configuration.factorsOfAxes[i].clear();
    configuration.angles[i].clear();
  }
  return configuration;
}

const QString contextPath = QStringLiteral("data\\private\\NgdNeighborhoodContext");

}  // namespace

TEST(NgdNeighborhoodContext, NamesTheOutcome)
{
  Configuration configuration = twoSamples();
  configuration.parameters.setRuleMinimumNumber(true, 2);
  configuration.levels = {{NbgVector3D(2., 2., 2.), 2, -1, -1, QString()}};
  const Search search(configuration);
  NgdNeighborhoodContext context;
  context.initialize(search.moving, search.variables);
  testsupport::expectAssertion(contextPath, QStringLiteral("Should be called only once"),
                               [&] { context.initialize(search.moving, search.variables); });

  int level = 0;
  // A sample exactly on the ellipsoid is outside; the next level finds it.
  EXPECT_EQ(context.setTargetLocation(NbgVector3D(0., 0., 0.), &level),
            NgcENeighborhoodErrorCode::NEIGH_SUCCESS);
  EXPECT_EQ(level, 1);
  EXPECT_EQ(context.getNestedNeighIndex(level), NgmENeighborhoodNestedCode::MEDIUM.getValue());
  EXPECT_EQ(context.getNestedNeighName(level), QStringLiteral("Nested2"));
  EXPECT_EQ(context.getNSelectedCodes(), 2);
  EXPECT_EQ(context.setTargetLocation(NbgVector3D(1., 1., 0.), &level),
            NgcENeighborhoodErrorCode::NEIGH_SUCCESS);
  EXPECT_EQ(context.getNestedNeighName(level), QStringLiteral("Standard"));
  EXPECT_EQ(context.setTargetLocation(NbgVector3D(-7., 0., 0.), &level),
            NgcENeighborhoodErrorCode::NEIGH_NOT_ENOUGH);
  EXPECT_EQ(context.getNestedNeighIndex(level), NgmENeighborhoodNestedCode::FAILED.getValue());
  EXPECT_EQ(context.getNNeighbors(), 0);

  NgdNeighborhoodUnique unique(Nbd::Role::V);
  testsupport::expectAssertion(QStringLiteral("data\\private\\NgdNeighborhoodUnique"),
                               QStringLiteral("LoadAllData() must be called before."),
                               [&] { unique.getAllData(); });
  testsupport::expectAssertion(QStringLiteral("data\\private\\NgdANeighborhood"),
                               QStringLiteral("Cannot use rejection in unique neighborhood"),
                               [&] { unique.setRejectionVarIndex(0); });
  unique.setDataset(&search.dataSet);
  unique.loadAllData();
  NgdNeighborhoodContext all;
  all.initialize(unique, unique.getAllData().getDataTableConst().getVarsNumeric(Nbd::Role::V));
  EXPECT_EQ(all.setTargetLocation(NbgVector3D(100., 0., 0.), &level),
            NgcENeighborhoodErrorCode::NEIGH_SUCCESS);
  EXPECT_EQ(level, -1);
  EXPECT_EQ(all.getRanks(), (std::vector<int>{0, 1}));
}

TEST(NgdNeighborhoodContext, RefusesWhatDoesNotGoTogether)
{
  const auto refusal = [](const std::function<void(Configuration &)> &change,
                          const std::function<void(NgdNeighborhoodMoving &)> &setUp = {}) {
    Configuration configuration = twoSamples();
    change(configuration);
    return testsupport::errorOf([&] {
      Search search(configuration);
      if (setUp)
        setUp(search.moving);
      NgdNeighborhoodContext context;
      context.initialize(search.moving, search.variables);
      int level = 0;
      context.setTargetLocation(NbgVector3D(), 0, 0, &level);
    });
  };
  const oracle::Rejection byTarget;
  EXPECT_TRUE(refusal([&](Configuration &c) {
                c.rejection = byTarget;
              }).endsWith(QStringLiteral("targetSN must be defined to use rejection.")));
  EXPECT_TRUE(refusal([&](Configuration &c) {
                c.rejection = byTarget;
                c.parameters.setRuleKeepAllInBlock(true);
              }).endsWith(QStringLiteral("Block rules cannot be used with rejection")));
  EXPECT_TRUE(
      refusal([&](Configuration &c) {
        c.rejection = byTarget;
        c.parameters.setRuleProximity(true, NbgVector3D(1., 1., 1.));
      }).endsWith(QStringLiteral("Proximity parallelepiped cannot be used with rejection")));
  EXPECT_TRUE(refusal([&](Configuration &c) {
                c.rejection = byTarget;
                c.rejection->variable = 1;
              }).endsWith(QStringLiteral("(keep nothing used)")));
  EXPECT_TRUE(refusal([](Configuration &c) {
                c.parameters.setSectors(1, 0, false);
              }).startsWith(QStringLiteral("Wrong neighborhood parameters:\n- Maximum number")));
  EXPECT_TRUE(refusal([](Configuration &c) {
                c.levels = {{NbgVector3D::Undefined, -1, 0, -1, QString()}};
              }).startsWith(QStringLiteral("Wrong alternative neighborhood parameters:\n")));
  EXPECT_EQ(
      refusal([](Configuration &c) {
        c.levels = {{NbgVector3D(0.5, 2., 2.), -1, -1, -1, QString()}};
      }),
      QStringLiteral("NgdNeighborhoodMoving::addAlternativeParameters: decreasing ellipsoid size"));
  EXPECT_TRUE(
      refusal([](Configuration &) {},
              [](NgdNeighborhoodMoving &moving) { moving.setParameters(NgmNeighborhoodMoving()); })
          .endsWith(QStringLiteral("Moving neighborhood not initialized")));
  NgdNeighborhoodMoving fresh(Nbd::Role::V);
  EXPECT_EQ(testsupport::errorOf([&] { fresh.addAlternativeParameters({}); }),
            QStringLiteral("NgdNeighborhoodMoving::addAlternativeParameters: setParameters method "
                           "not called before"));
}

TEST(NgdNeighborhoodContext, TurnsToTheEllipsoidOfEachTarget)
{
  // Radius 5: the samples stand 0 and 5 from the target.
  Configuration configuration = twoSamples();
  configuration.factors = {2., 1., NbbGlobal::D_FFFF, -2.};
  const Search search(configuration);
  NgdNeighborhoodContext context;
  search.prepare(context);
  const auto countAt = [&](int targetIndex) {
    int level = 7;
    const NgcENeighborhoodErrorCode &outcome =
        context.setTargetLocation(NbgVector3D(), targetIndex, NbbGlobal::I64_FFFF, &level);
    EXPECT_EQ(context.getNNeighbors() > 0, outcome == NgcENeighborhoodErrorCode::NEIGH_SUCCESS);
    EXPECT_EQ(level, context.getNNeighbors() > 0 ? 0 : -1);
    return context.getNNeighbors();
  };
  EXPECT_EQ(countAt(0), 2);
  EXPECT_EQ(countAt(1), 1);
  EXPECT_EQ(countAt(2), 0);
  EXPECT_EQ(countAt(3), 0);

  // Targets that the data do not hold, and one that is not of the data.
  EXPECT_EQ(countAt(0), 2);
  int level = 7;
  EXPECT_EQ(context.setTargetLocation(NbgVector3D(), 5, NbbGlobal::I64_FFFF, &level),
            NgcENeighborhoodErrorCode::NEIGH_UNDEF_LGS);
  EXPECT_EQ(level, -1);
  EXPECT_EQ(context.getNNeighbors(), 0);
  EXPECT_EQ(countAt(0), 2);
  EXPECT_EQ(countAt(-1), 1);

  // The next buffer of targets acts on the parameters, not on the ellipsoid of the last target.
  EXPECT_EQ(countAt(0), 2);
  NbdDataTable next;
  next.createVariableNumeric(NgmLgsNeighborhoodMoving::getRoleRadiusFactor())->setValues({0.9});
  next.adjustNSamples();
  context.setTargetData(next, {});
  EXPECT_EQ(countAt(0), 1);
  EXPECT_EQ(context.getCurrentParams().getEllipseSize(), NbgVector3D(4.5, 4.5, 4.5));
}

TEST(NgdNeighborhoodContext, KeepsToItsSideOfTheFaults)
{
  // Two square fault polygons and a line between the target's surroundings and what is east.
  Configuration configuration = twoSamples();
  enum { IN_FIRST, IN_SECOND, WEST, EAST, ON_BORDER };
  configuration.locations = {NbgVector3D(12., 15.), NbgVector3D(35., 15.), NbgVector3D(5., 15.),
                             NbgVector3D(55., 15.), NbgVector3D(20., 12.)};
  configuration.values = {{1., 2., 3., 4., 5.}};
  configuration.codes = {1., 1., 1., 1., 1.};
  configuration.lines = {1, 1, 1, 1, 1};
  configuration.parameters.setEllipseSize(NbgVector3D(100., 100., 100.));
  const Search search(configuration);
  NbgGeomPolylineSet lines;
  lines.add(NbgGeomPolyline(
      {NbgVector3D(10., 10.), NbgVector3D(20., 10.), NbgVector3D(20., 20.), NbgVector3D(10., 20.)},
      true));
  lines.add(NbgGeomPolyline({NbgVector3D(50., 0.), NbgVector3D(50., 40.)}));
  lines.add(NbgGeomPolyline(
      {NbgVector3D(30., 10.), NbgVector3D(40., 10.), NbgVector3D(40., 20.), NbgVector3D(30., 20.)},
      true));
  const NgmNeighborhoodFaultSet faults(std::make_unique<NgmFaultSetPolylines>(lines));

  const auto seenFrom = [&](const NgcEFaultsMode &mode, const NbgVector3D &target) {
    NgdNeighborhoodContext context;
    context.setFaultsEnabled(true);
    context.setFaultsData(faults);
    context.setFaultsMode(mode);
    context.initialize(search.moving, search.variables);
    int level = 0;
    context.setTargetLocation(target, &level);
    std::vector<int> ranks = context.getRanks();
    std::sort(ranks.begin(), ranks.end());
    return ranks;
  };
  using Ranks = std::vector<int>;
  using Mode = NgcEFaultsMode;
  const NbgVector3D inside(15., 15.), outside(25., 15.);
  // From inside, the border of the own polygon hides nothing; that of another one does.
  EXPECT_EQ(seenFrom(Mode::CALCULATE_INSIDE, inside), (Ranks{IN_FIRST, ON_BORDER}));
  EXPECT_EQ(seenFrom(Mode::CALCULATE_INSIDE_IGNORING_POLYGON, inside),
            (Ranks{IN_FIRST, WEST, ON_BORDER}));
  EXPECT_EQ(seenFrom(Mode::DO_NOT_CALCULATE_INSIDE, inside), Ranks());
  EXPECT_EQ(seenFrom(Mode::IGNORE_POYGONAL_STATUS, inside), (Ranks{IN_FIRST}));
  // From outside every border hides what it touches or what is behind it.
  for (const int value : {0, 1, 2, 3})
    EXPECT_EQ(seenFrom(Mode::fromValue(value), outside), Ranks()) << value;
  // Within the second polygon, from its border too.
  EXPECT_EQ(seenFrom(Mode::CALCULATE_INSIDE, NbgVector3D(30., 15.)), (Ranks{IN_SECOND}));
  EXPECT_EQ(seenFrom(Mode::IGNORE_POYGONAL_STATUS, NbgVector3D(5., 30.)), (Ranks{WEST}));
  EXPECT_EQ(seenFrom(Mode::CALCULATE_INSIDE, NbgVector3D(55., 30.)), (Ranks{EAST}));
}

TEST(NgdNeighborhoodContext, TakesNumbersThatTheBlockModeDoesNotCheck)
{
  // Around a block nothing is checked; a target without block is searched in the ellipsoid.
  Configuration configuration = twoSamples();
  configuration.parameters.setMovingNeighborhoodMode(NgcEMovNeighMode::FROM_BLOCK);
  configuration.parameters.setRuleMinimumNumber(false, 0);
  configuration.block.reset();
  for (const int sectors : {-3, 0, 1, 4}) {
    for (const int perSector : {-2, 0, 1}) {
      SCOPED_TRACE(testing::Message() << sectors << " sectors of " << perSector);
      configuration.parameters.setSectors(sectors, perSector, sectors == 4);
      configuration.parameters.setRuleMaximumNumber(perSector < 0, perSector);
      const Search search(configuration);
      NgdNeighborhoodContext context;
      context.initialize(search.moving, search.variables);
      int level = 0;
      EXPECT_EQ(context.setTargetLocation(NbgVector3D(1., 1., 0.), &level),
                NgcENeighborhoodErrorCode::NEIGH_SUCCESS);
      EXPECT_EQ(context.getNNeighbors(), perSector < 1 ? 0 : sectors == 4 ? 2 : 1);
    }
  }
}

TEST(NgdNeighborhoodContext, CapsVariablesOfAnyNumericType)
{
  const auto provider = QSharedPointer<NbpMemoryProviderPointsW>::create(NbgEDimension::DIM_1D, 3);
  provider->addXVariable({0., 1., 2.});
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  const QString id =
      provider->addVariable(QStringLiteral("grade"), std::vector<float>{1.f, 90.f, -5.f});
  for (const QString &role : {Nbd::Role::V, Nbd::Role::LARGE_CUTOFF, Nbd::Role::SMALL_CUTOFF})
    dataSet.assignVariable(role, id);
  dataSet.openAllVariables();
  NgmNeighborhoodMoving parameters;
  const NgcECutoffMode &replace = NgcECutoffMode::CUTOFF_REPLACE;
  parameters.setRuleCutLarge(true, replace, 10., NbgVector3D(0.5, 0.5, 0.5));
  parameters.setRuleCutSmall(true, replace, 0., NbgVector3D(0.5, 0.5, 0.5));
  NgdNeighborhoodMoving moving(Nbd::Role::V);
  moving.setDataset(&dataSet);
  moving.setParameters(parameters);
  moving.loadData();
  NgdNeighborhoodContext context;
  context.initialize(moving, moving.getAllData().getDataTableConst().getVarsNumeric(Nbd::Role::V));
  int level = 0;
  const auto valuesAround = [&](double x) {
    context.setTargetLocation(NbgVector3D(x, 0., 0.), &level);
    const NbdAVariableNumeric &values = *context.getNumericVariable(Nbd::Role::V);
    std::map<int, double> byRank;
    for (int i = 0; i < context.getNNeighbors(); ++i)
      byRank[context.getRanks()[i]] = values.getValue(i);
    return byRank;
  };
  EXPECT_EQ(valuesAround(0.), (std::map<int, double>{{0, 1.}, {1, 10.}, {2, 0.}}));
  EXPECT_EQ(valuesAround(1.), (std::map<int, double>{{0, 1.}, {1, 90.}, {2, 0.}}));
}

TEST(NgdNeighborhoodMoving, LoadsWhatTheCuboidHoldsAndFindsItByBox)
{
  Configuration configuration = twoSamples();
  for (int i = 0; i < 100; ++i) {
    configuration.locations.push_back(NbgVector3D(10. * (i % 10), 10. * (i / 10)));
    configuration.values[0].push_back(1.);
    configuration.codes.push_back(1.);
    configuration.lines.push_back(1);
  }
  Search search(configuration);
  QVector<int> ranks;
  const NbgRotation turned(45., 0., 0.);
  search.moving.selectDataFromBox(NbgVector3D(45., 45.), NbgVector3D(30., 8., 1.), turned, ranks);
  QVector<int> expected;
  for (int i = 0; i < int(configuration.locations.size()); ++i) {
    const NbgVector3D local =
        turned.worldToLocal(configuration.locations[i] - NbgVector3D(45., 45.));
    if (std::abs(local.x()) <= 30. && std::abs(local.y()) <= 8.)
      expected << i;
  }
  EXPECT_EQ(ranks, expected);
  EXPECT_GT(ranks.size(), 5);

  search.moving.setUseFilteringCuboid(true);
  search.moving.setFilteringCuboid(
      NbgGeomCuboid(NbgVector3D(20., 20., 0.), NbgVector3D(40., 20., 1.)));
  search.moving.loadData();
  EXPECT_EQ(search.moving.getAllData().getNSamples(), 15);
  EXPECT_EQ(search.moving.getAllData().getSampleNumber(0), 13);
}
