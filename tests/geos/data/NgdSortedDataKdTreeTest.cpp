#include "geos/data/NgdSortedDataKdTree.h"

#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdDataPoints.h"
#include "basic/data/NbdVariableAlpha.h"
#include "geos/data/NgdDataSetPoints.h"
#include "support/Errors.h"
#include "support/Random.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

TEST(NgdSortedDataKdTree, FindsTheNearestAndThoseWithin)
{
  for (int nDimensions = 1; nDimensions <= 3; ++nDimensions) {
    SCOPED_TRACE(nDimensions);
    // Integer coordinates and the frame of the world: distances are exact, many are equal.
    NbdDataPoints points;
    points.setNDimensions(nDimensions);
    points.ensureCoordinates();
    std::uint64_t counter = 0;
    const auto draw = [&](int axis) {
      return axis < nDimensions ? double(testsupport::uniformInt(5, counter++, 30)) : 0.;
    };
    for (int i = 0; i < 500; ++i)
      points.appendSample(NbgVector3D(draw(0), draw(1), draw(2)));
    NgdSortedDataKdTree tree;
    tree.setDimension(nDimensions);
    tree.build(points);
    testsupport::expectAssertion(QStringLiteral("data\\private\\NgdSortedDataKdTree"),
                                 QStringLiteral("Sorted Data is already built"),
                                 [&] { tree.build(points); });

    for (int query = 0; query < 100; ++query) {
      const NbgVector3D target(draw(0), draw(1), draw(2));
      std::vector<std::pair<double, int>> all;
      for (int rank = 0; rank < 500; ++rank)
        all.emplace_back((points.getLocation(rank) - target).squaredNorm(), rank);

      const double radius = query % 7;
      QVector<int> within;
      for (const auto &[squared, rank] : all) {
        if (squared <= radius * radius)
          within << rank;
      }
      QVector<int> ranks;
      tree.radiusSearch(target, radius, ranks);
      ASSERT_EQ(ranks, within);

      std::sort(all.begin(), all.end());
      const int count = query % 40 == 39 ? 600 : query % 40;
      QVector<double> distances;
      tree.knnSearch(target, count, ranks, distances);
      ASSERT_EQ(ranks.size(), std::min(count, 500));
      for (int i = 0; i < ranks.size(); ++i) {
        ASSERT_EQ(ranks[i], all[i].second) << i;
        ASSERT_EQ(distances[i], all[i].first);
      }
    }
  }
}

TEST(NgdSortedDataKdTree, ProposesTheNearestThatAnEllipsoidHolds)
{
  // A turned frame, stretched so that the flat ellipsoid is a sphere; every fourth sample is left
  // out and every fifth stands where another does.
  const NbgVector3D radii(200., 200., 8.);
  const NbgRotation rotation(30., 20., 10.);
  const int n = 4000;
  std::uint64_t counter = 0;
  const auto draw = [&] { return testsupport::uniform(11, counter++, 0., 100.); };
  NbdDataPoints points;
  points.setNDimensions(3);
  points.ensureCoordinates();
  std::vector<unsigned char> usable;
  for (int rank = 0; rank < n; ++rank) {
    points.appendSample(rank % 5 == 4 ? points.getLocation(rank / 2)
                                      : NbgVector3D(draw(), draw(), draw()));
    usable.push_back(rank % 4 != 0);
  }
  NgdSortedDataKdTree tree;
  tree.setSystem(NbgVector3D(50., 50., 50.), rotation, NbgVector3D(1., 1., 25.));
  tree.build(points);

  NgdSortedDataKdTree::Proposals proposals;
  for (int query = 0; query < 200; ++query) {
    const NbgVector3D target =
        query % 3 ? NbgVector3D(draw(), draw(), draw()) : points.getLocation(query);
    std::vector<std::pair<double, int>> inside;
    for (int rank = 0; rank < n; ++rank) {
      const NbgVector3D d = points.getLocation(rank) - target;
      const NbgVector3D local = rotation.worldToLocal(d);
      if (usable[rank] && NbgVector3D(local.x(), local.y(), 25. * local.z()).norm() < radii.x())
        inside.emplace_back(d.squaredNorm(), rank);
    }
    std::sort(inside.begin(), inside.end());
    const int count = 1 + query % 50;
    tree.proposeNearestUnscaled(target, count, radii.x() * radii.x(), usable.data(), proposals);
    std::vector<int> ranks(proposals.ranks.begin(), proposals.ranks.begin() + proposals.count);
    ASSERT_LE(proposals.count, count + 10);
    for (int i = 0; i < std::min(count, int(inside.size())); ++i)
      ASSERT_TRUE(std::count(ranks.begin(), ranks.end(), inside[i].second)) << query << ": " << i;
  }
}

TEST(NgdSortedDataKdTree, LoadsADataSetByRoles)
{
  const QSharedPointer<NbpMemoryProviderPointsW> provider = testsupport::makePoints(700);
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  dataSet.assignVariable(Nbd::Role::V, provider->getIdFromName(QStringLiteral("Z1")));
  dataSet.assignVariable(Nbd::Role::WEIGHT, provider->getIdFromName(QStringLiteral("Z2")));
  dataSet.openAllVariables();

  NgdSortedDataKdTree tree;
  tree.setDimension(2);
  tree.setNumericRole(Nbd::Role::V);
  EXPECT_TRUE(tree.getAllVars().isEmpty());
  tree.loadData(&dataSet);
  EXPECT_EQ(tree.getDataset(), &dataSet);
  EXPECT_EQ(tree.getNData(), 700);
  ASSERT_EQ(tree.getNumericVariables(Nbd::Role::V).size(), 1);
  EXPECT_EQ(tree.getVariables(Nbd::Role::V).size(), 1);
  EXPECT_TRUE(tree.getVariables(Nbd::Role::WEIGHT).isEmpty());
  EXPECT_TRUE(tree.getAlphaVariables(Nbd::Role::V).isEmpty());
  const NbgVector3D seventh = tree.getCoords(7);
  EXPECT_EQ(tree.getNumericVariables(Nbd::Role::V).first()->getValue(7),
            testsupport::smoothValue(seventh.x(), seventh.y(), 0.));

  // All samples from near to far.
  QVector<int> ranks;
  QVector<double> distances;
  tree.knnSearch(seventh, ranks, distances);
  ASSERT_EQ(ranks.size(), 700);
  EXPECT_EQ(ranks.first(), 7);
  EXPECT_TRUE(std::is_sorted(distances.begin(), distances.end()));
  EXPECT_DOUBLE_EQ(distances.last(), (tree.getCoords(ranks.last()) - seventh).norm());

  testsupport::expectAssertion(QStringLiteral("data\\private\\NgdSortedDataKdTree"),
                               QStringLiteral("Sorted Data is already built"),
                               [&] { tree.loadData(&dataSet); });
  tree.clear();
  EXPECT_EQ(tree.getDataset(), nullptr);
  tree.setDimension(3);
  testsupport::expectAssertion(
      QStringLiteral("data\\private\\NgdSortedDataKdTree"),
      QStringLiteral("Points Data and Sorted Data have not the same dimension."),
      [&] { tree.loadData(&dataSet); });
}
