#include "geos/data/NgdNeighborhoodContext.h"

#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/error/NbeProgrammingError.h"
#include "geos/NgcEnumGlobal.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/data/NgdNeighborhoodMoving.h"
#include "geos/data/NgdNeighborhoodUnique.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace {

/// A seeded random data file and neighborhood.
struct Configuration
{
  int nDimensions;
  std::vector<NbgVector3D> locations;
  std::vector<double> values;
  NgmNeighborhoodMoving parameters;

  explicit Configuration(std::uint64_t seed) : _seed(seed)
  {
    nDimensions = 1 + _draw(3);
    const int n = 1 + _draw(_draw(2) ? 400 : 20);
    const bool onGrid = _draw(3) == 0;  // ties
    for (int i = 0; i < n; ++i) {
      const NbgVector3D any =
          onGrid ? NbgVector3D(10. * _draw(12), 10. * _draw(12), 10. * _draw(5))
                 : NbgVector3D(120. * _uniform(), 120. * _uniform(), 50. * _uniform());
      NbgVector3D location(any.x(), nDimensions > 1 ? any.y() : 0., nDimensions > 2 ? any.z() : 0.);
      if (i > 0 && _draw(10) == 0)
        location = locations[_draw(i)];  // duplicates
      locations.push_back(location);
      values.push_back(_draw(6) == 0 ? NbbGlobal::D_FFFF : _uniform());
    }

    const double radius = 10. * (1 + _draw(20));
    parameters.setEllipseSize(
        _draw(2) ? NbgVector3D(radius, radius, radius)
                 : NbgVector3D(10. * (1 + _draw(12)), 10. * (1 + _draw(12)), 5. * (1 + _draw(8))));
    if (_draw(2))
      parameters.setEllipseRotation(
          nDimensions == 3 ? NbgRotation(15. * _draw(24), 15. * _draw(6), 15. * _draw(6))
                           : NbgRotation(15. * _draw(24), 0., 0.));
    parameters.setRuleAnisotropicDistances(_draw(2) == 0);
    const int nSectors = _draw(2) ? 1 : 1 + _draw(8);
    parameters.setSectors(nSectors, 1 + _draw(12), nDimensions == 3 && _draw(3) == 0);
    const int capacity =
        parameters.getSplittedSectorsNumber() * parameters.getMaximumNumberPerSector();
    parameters.setRuleMinimumNumber(true, _draw(std::min(6, capacity + 1)));
    parameters.setRuleMaximumNumber(_draw(3) == 0, 1 + _draw(20));
  }

  NbgVector3D target(int k) const
  {
    if (k % 4 == 0)
      return locations[std::size_t(k) % locations.size()];
    const NbgVector3D any(10. * testsupport::uniformInt(_seed + 9, 3 * k, 13),
                          150. * testsupport::uniform(_seed + 9, 3 * k + 1) - 20.,
                          60. * testsupport::uniform(_seed + 9, 3 * k + 2) - 5.);
    return NbgVector3D(any.x(), nDimensions > 1 ? any.y() : 0., nDimensions > 2 ? any.z() : 0.);
  }

private:
  double _uniform() { return testsupport::uniform(_seed, _counter++); }
  int _draw(int n) { return testsupport::uniformInt(_seed, _counter++, n); }

  std::uint64_t _seed;
  std::uint64_t _counter = 0;
};

/// The rules, straight from their definition: ranks of the selected samples in order.
std::vector<int> selectByRules(const Configuration &configuration, const NbgVector3D &target)
{
  const NgmNeighborhoodMoving &p = configuration.parameters;
  const NbgVector3D size = p.getEllipseSize();
  const double radius = std::max({size.x(), size.y(), size.z()});
  const int nSectors = p.getSectorsNumber();

  struct Candidate
  {
    int rank;
    double key;
    int sector;
  };
  std::vector<Candidate> candidates;
  for (std::size_t rank = 0; rank < configuration.locations.size(); ++rank) {
    if (!NbbGlobal::isDefined(configuration.values[rank]))
      continue;
    const NbgVector3D d = configuration.locations[rank] - target;
    const NbgVector3D local = p.getEllipseRotation().worldToLocal(d);
    const double qx = local.x() * (radius / size.x());
    const double qy = configuration.nDimensions > 1 ? local.y() * (radius / size.y()) : 0.;
    const double qz = configuration.nDimensions > 2 ? local.z() * (radius / size.z()) : 0.;
    const double anisotropic = qx * qx + qy * qy + qz * qz;
    const double euclidean = d.x() * d.x() + d.y() * d.y() + d.z() * d.z();
    if (anisotropic >= radius * radius)
      continue;
    int sector = 0;
    if (nSectors > 1 && (local.x() != 0. || local.y() != 0.)) {
      double angle = std::atan2(local.y(), local.x());
      if (angle < 0.)
        angle += 6.283185307179586;
      sector = int(angle * nSectors / 6.283185307179586);
      if (sector >= nSectors)
        sector = 0;
    }
    if (p.isSplitSectors() && local.z() < 0.)
      sector += nSectors;
    candidates.push_back(
        {int(rank), p.isRuleAnisotropicDistances() ? anisotropic : euclidean, sector});
  }

  std::vector<int> selected;
  const int perSector = p.getMaximumNumberPerSector();
  if (p.getSplittedSectorsNumber() == 1 && int(candidates.size()) <= perSector) {
    for (const Candidate &candidate : candidates)
      selected.push_back(candidate.rank);
  } else {
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate &a, const Candidate &b) { return a.key < b.key; });
    std::vector<int> counts(std::size_t(p.getSplittedSectorsNumber()), 0);
    for (const Candidate &candidate : candidates) {
      if (p.isRuleMaximumNumber() && int(selected.size()) >= p.getMaximumNumber())
        break;
      if (counts[candidate.sector] < perSector) {
        ++counts[candidate.sector];
        selected.push_back(candidate.rank);
      }
    }
  }
  if (int(selected.size()) < p.getMinimumNumber())
    selected.clear();
  return selected;
}

/// A data set of the configuration, open, and the search object on it.
class Search
{
public:
  explicit Search(const Configuration &configuration) : moving(Nbd::Role::V)
  {
    const std::size_t n = configuration.locations.size();
    std::vector<double> x(n), y(n), z(n);
    for (std::size_t i = 0; i < n; ++i) {
      x[i] = configuration.locations[i].x();
      y[i] = configuration.locations[i].y();
      z[i] = configuration.locations[i].z();
    }
    const NbgEDimension dimensions[] = {NbgEDimension::DIM_1D, NbgEDimension::DIM_2D,
                                        NbgEDimension::DIM_3D};
    provider = QSharedPointer<NbpMemoryProviderPointsW>::create(
        dimensions[configuration.nDimensions - 1], qint64(n));
    provider->addXVariable(x);
    if (configuration.nDimensions > 1)
      provider->addYVariable(y);
    if (configuration.nDimensions > 2)
      provider->addZVariable(z);
    dataSet.setDataProvider(provider);
    dataSet.assignVariable(Nbd::Role::V,
                           provider->addVariable(QStringLiteral("value"), configuration.values));
    dataSet.openAllVariables();
    moving.setDataset(&dataSet);
    moving.setParameters(configuration.parameters);
    moving.loadData();
    variables = moving.getAllData().getDataTableConst().getVarsNumeric(Nbd::Role::V);
  }

  QSharedPointer<NbpMemoryProviderPointsW> provider;
  NgdDataSetPoints dataSet;
  NgdNeighborhoodMoving moving;
  QList<NbdAVariableNumeric *> variables;
};

}  // namespace

TEST(NgdNeighborhoodContext, SelectsWhatTheRulesSay)
{
  int nSelected = 0;
  for (std::uint64_t seed = 1; seed <= 600; ++seed) {
    SCOPED_TRACE(seed);
    const Configuration configuration(1000 * seed);
    const Search search(configuration);
    NgdNeighborhoodContext context;
    context.initialize(search.moving, search.variables);

    for (int k = 0; k < 12; ++k) {
      const NbgVector3D target = configuration.target(k);
      int level = 7;
      const NgcENeighborhoodErrorCode &outcome = context.setTargetLocation(target, &level);
      const std::vector<int> expected = selectByRules(configuration, target);
      ASSERT_EQ(context.getRanks(), expected) << "target " << k;
      ASSERT_EQ(outcome == NgcENeighborhoodErrorCode::NEIGH_SUCCESS, level == 0);
      ASSERT_TRUE(expected.empty() || level == 0);

      const NbdDataPoints &neighbors = context.getNeighbors();
      ASSERT_EQ(neighbors.getNSamples(), int(expected.size()));
      for (std::size_t i = 0; i < expected.size(); ++i) {
        ASSERT_EQ(neighbors.getLocation(int(i)), configuration.locations[expected[i]]);
        ASSERT_EQ(context.getMainValues(0)[i], configuration.values[expected[i]]);
        ASSERT_EQ(neighbors.getSampleNumber(int(i)), expected[i] + 1);
      }
      nSelected += int(expected.size());
    }
  }
  EXPECT_GT(nSelected, 10000);
}

TEST(NgdNeighborhoodContext, AnswersTheSameFromEightThreads)
{
  const Configuration configuration(77000);
  const Search search(configuration);
  std::vector<int> wrong(8, 0);
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([&, t] {
      NgdNeighborhoodContext context;
      context.initialize(search.moving, search.variables);
      for (int k = 0; k < 300; ++k) {
        int level = 0;
        context.setTargetLocation(configuration.target(k), &level);
        wrong[t] += context.getRanks() != selectByRules(configuration, configuration.target(k));
      }
    });
  }
  for (std::thread &thread : threads)
    thread.join();
  EXPECT_EQ(wrong, std::vector<int>(8, 0));
}

TEST(NgdNeighborhoodContext, NamesTheOutcome)
{
  Configuration configuration(1);
  configuration.nDimensions = 2;
  configuration.locations = {NbgVector3D(0., 0., 0.), NbgVector3D(3., 4., 0.)};
  configuration.values = {1., 2.};
  configuration.parameters = NgmNeighborhoodMoving();
  configuration.parameters.setEllipseSize(NbgVector3D(5., 5., 5.));
  configuration.parameters.setRuleMinimumNumber(true, 2);
  const Search search(configuration);
  NgdNeighborhoodContext context;
  context.initialize(search.moving, search.variables);
  EXPECT_THROW(context.initialize(search.moving, search.variables), NbeProgrammingError);

  int level = 0;
  // A sample exactly on the ellipsoid is outside.
  EXPECT_EQ(context.setTargetLocation(NbgVector3D(0., 0., 0.), &level),
            NgcENeighborhoodErrorCode::NEIGH_NOT_ENOUGH);
  EXPECT_EQ(level, -1);
  EXPECT_EQ(context.getNNeighbors(), 0);
  EXPECT_EQ(context.setTargetLocation(NbgVector3D(1., 1., 0.), &level),
            NgcENeighborhoodErrorCode::NEIGH_SUCCESS);
  EXPECT_EQ(level, 0);
  EXPECT_EQ(context.setTargetLocation(NbgVector3D(100., 0., 0.), &level),
            NgcENeighborhoodErrorCode::NEIGH_NO_SAMPLE);

  NgdNeighborhoodUnique unique(Nbd::Role::V);
  EXPECT_THROW(unique.getAllData(), NbeProgrammingError);
  EXPECT_THROW(unique.loadAllData(), NbeProgrammingError);
  unique.setDataset(&search.dataSet);
  unique.loadAllData();
  NgdNeighborhoodContext all;
  all.initialize(unique, unique.getAllData().getDataTableConst().getVarsNumeric(Nbd::Role::V));
  EXPECT_EQ(all.setTargetLocation(NbgVector3D(100., 0., 0.), &level),
            NgcENeighborhoodErrorCode::NEIGH_SUCCESS);
  EXPECT_EQ(level, -1);
  EXPECT_EQ(all.getRanks(), (std::vector<int>{0, 1}));
}
