#include "geos/data/NgdSortedData.h"

#include "basic/geom/NbgBox.h"
#include "support/Errors.h"
#include "support/Random.h"

#include <gtest/gtest.h>

TEST(NgdSortedData, FindsWhatABoxHolds)
{
  const NbgEDimension dimensions[] = {NbgEDimension::DIM_1D, NbgEDimension::DIM_2D,
                                      NbgEDimension::DIM_3D};
  for (int nDimensions = 1; nDimensions <= 3; ++nDimensions) {
    SCOPED_TRACE(nDimensions);
    NgdSortedData octree;
    octree.setDimension(dimensions[nDimensions - 1]);
    octree.setMaximumDepth(5);
    // Smaller than the cloud: some samples lie outside.
    octree.setBoundingBox(NbgBox(NbgVector3D(10., 10., 10.), NbgVector3D(80., 70., 60.)),
                          NbgRotation(nDimensions > 1 ? 30. : 0., 0., 0.));
    std::vector<NbgVector3D> points;
    std::uint64_t counter = 0;
    const auto draw = [&counter](double high) { return testsupport::uniform(9, counter++) * high; };
    for (int rank = 0; rank < 3000; ++rank) {
      NbgVector3D point(draw(100.), nDimensions > 1 ? draw(100.) : 0.,
                        nDimensions > 2 ? draw(100.) : 0.);
      points.push_back(rank % 10 == 9 ? points[rank / 2] : point);
      octree.insertSample(rank, points.back());
    }
    EXPECT_EQ(octree.getNData(), 3000);

    int nFound = 0;
    for (int query = 0; query < 200; ++query) {
      const NbgVector3D center(draw(120.) - 10., nDimensions > 1 ? draw(100.) : 0.,
                               nDimensions > 2 ? draw(100.) : 0.);
      const NbgVector3D half(draw(30.), draw(30.), draw(30.));
      const NbgRotation rotation(nDimensions > 1 ? draw(360.) : 0.,
                                 nDimensions > 2 ? draw(90.) : 0., 0.);
      QVector<int> ranks;
      octree.selectDataFromBox(center, half, rotation, ranks);
      QVector<int> expected;
      for (int rank = 0; rank < int(points.size()); ++rank) {
        const NbgVector3D local = rotation.worldToLocal(points[rank] - center);
        bool isInside = true;
        for (int axis = 0; axis < nDimensions; ++axis)
          isInside &= std::abs(local[axis]) <= half[axis];
        if (isInside)
          expected << rank;
      }
      ASSERT_EQ(ranks, expected) << query;
      nFound += ranks.size();
    }
    EXPECT_GT(nFound, 2000);
    octree.clear();
    EXPECT_EQ(octree.getNData(), 0);
  }
}

TEST(NgdSortedData, IsSetUpBeforeItHoldsData)
{
  const QString path = QStringLiteral("data\\private\\NgdSortedData");
  NgdSortedData octree;
  const NbgBox box(NbgVector3D(), NbgVector3D(1., 1., 1.));
  testsupport::expectAssertion(
      path, QStringLiteral("Set the dimension of the data before the bounding box."),
      [&] { octree.setBoundingBox(box, NbgRotation()); });
  octree.setDimension(NbgEDimension::DIM_2D);
  testsupport::expectAssertion(path, QStringLiteral("Can't use 3D rotation with 2D data."),
                               [&] { octree.setBoundingBox(box, NbgRotation(0., 10., 0.)); });
  octree.insertSample(0, NbgVector3D());
  testsupport::expectAssertion(
      path, QStringLiteral("Can't modify bounding box when data are already present."),
      [&] { octree.setBoundingBox(box, NbgRotation()); });
  testsupport::expectAssertion(
      path, QStringLiteral("Can't modify octree depth when data are already present."),
      [&] { octree.setMaximumDepth(4); });
  EXPECT_TRUE(octree.debug(0).endsWith(QStringLiteral("Is 3D = false\nNb Data = 1\n")));
}
