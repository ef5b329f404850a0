#include "geos/vmodel/NgmTapering.h"

#include "geos/matrix/NgmMatrix.h"
#include "geos/vmodel/NgmVModel.h"
#include "support/Errors.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using testsupport::errorOf;

NgmTapering makeTapering(int type, int nDim, const NbgVector3D &ranges)
{
  NgmTapering tapering;
  tapering.setNDim(nDim);
  tapering.setRanges(ranges);
  tapering.setType(NgmTapering::TaperingType(type));
  return tapering;
}

TEST(NgmTapering, GoesFromOneToZeroOverItsRange)
{
  // At half the range, by hand.
  const double atHalf[] = {0.3125, 3. / 16., (1. + 3. + 35. / 12.) / 64.,
                           (1. + 2. + 0.75 + 3. / 32.) / 16.,
                           (1. + 3. + 41. / 12. + 1.5 + 5. / 16. + 5. / 192.) / 64.};
  for (int type = 0; type < 5; ++type) {
    const NgmTapering tapering = makeTapering(type, 3, NbgVector3D(10., 20., 40.));
    EXPECT_EQ(tapering.calcTapering(NbgVector3D::Null), 1.);
    for (int axis = 0; axis < 3; ++axis) {
      NbgVector3D h;
      h[axis] = 5. * (1 << axis);
      EXPECT_NEAR(tapering.calcTapering(h), atHalf[type], 1e-15) << type << ", axis " << axis;
      EXPECT_LT(tapering.calcTapering(1.999 * h), 1e-5);
      EXPECT_EQ(tapering.calcTapering(2.001 * h), 0.);
    }
  }
}

TEST(NgmTapering, IsACovarianceInSpace)
{
  constexpr int N = 70;
  for (int type = 0; type < 5; ++type) {
    const NgmTapering tapering = makeTapering(type, 3, NbgVector3D(0.8, 0.9, 1.));
    NgmMatrix covas(N, N, true);
    const auto point = [](int i) {
      return NbgVector3D(testsupport::uniform(3, 3 * i), testsupport::uniform(3, 3 * i + 1),
                         testsupport::uniform(3, 3 * i + 2));
    };
    for (int i = 0; i < N; ++i)
      for (int j = 0; j <= i; ++j)
        covas.setElement(i, j, tapering.calcTapering(point(i) - point(j)));
    EXPECT_TRUE(covas.isPositiveDefinite(true, false)) << type;
  }
}

TEST(NgmTapering, OnlyActiveRangesCount)
{
  const NgmTapering tapering = makeTapering(1, 2, NbgVector3D(10., 20., -1.));
  EXPECT_GT(tapering.calcTapering(NbgVector3D(0., 15., 0.)), 0.);
  NgmTapering space;
  space.setNDim(3);
  const struct
  {
    NbgVector3D ranges;
    const char *message;
  } cases[] = {{{0., 1., 1.}, "NgmAVStruct::setRanges: Invalid range for X Component"},
               {{1., 1e-30, 1.}, "NgmAVStruct::setRanges: Invalid range for Y Component"},
               {{1., 1., std::nan("")}, "NgmAVStruct::setRanges: Invalid range for Z Component"}};
  for (const auto &test : cases)
    EXPECT_EQ(errorOf([&] { space.setRanges(test.ranges); }), QString::fromLatin1(test.message));
}

TEST(NgmTapering, NeedsAFunction)
{
  NgmTapering tapering;
  EXPECT_THROW(tapering.calcTapering(NbgVector3D::X), NbeError);
  tapering.setType(NgmTapering::WU_1);
  const double value = tapering.calcTapering(NbgVector3D::X);
  tapering.setType(NgmTapering::TaperingType(5));
  EXPECT_EQ(tapering.calcTapering(NbgVector3D::X), value);
}

TEST(NgmTapering, TaperedCovarianceOfAModel)
{
  NgmVModel model(1);
  model.setNugget(0, 0, 0.5);
  model.addStructure(QStringLiteral("Exponential"), 2.);
  model.setRangeIsotropic(0, 30.);
  const NbgVector3D h(3., 4., 0.);
  EXPECT_FALSE(model.useTapering());
  EXPECT_EQ(model.calcTapering(h), 1.);
  EXPECT_EQ(model.calcTaperedCovaIJ(0, 0, h), model.calcCovaIJ(0, 0, h));
  model.setTapering(NbgVector3D(10., 10., 10.), NgmTapering::SPHERICAL);
  EXPECT_DOUBLE_EQ(model.calcTaperedCovaIJ(0, 0, h), 0.3125 * model.calcCovaIJ(0, 0, h));
  EXPECT_EQ(model.calcTaperedCovaIJ(0, 0, NbgVector3D(1e-11, 0., 0.)), 2.5);
  EXPECT_EQ(model.calcTaperedCovaIJ(0, 0, 3. * h), 0.);

  // In the frame of the model, and kept by copies.
  model.setTapering(NbgVector3D(10., 5., 10.), NgmTapering::SPHERICAL);
  model.setGlobalRotation(NbgRotation(90., 0., 0.));
  const NgmVModel copy(model);
  NgmVModel assigned(1);
  assigned = copy;
  EXPECT_DOUBLE_EQ(assigned.calcTapering(NbgVector3D(0., 5., 0.)), 0.3125);
  EXPECT_NEAR(assigned.calcTapering(NbgVector3D(5., 0., 0.)), 0., 1e-30);
  EXPECT_THROW(model.setTapering(NbgVector3D::Null, NgmTapering::WU_2), NbeError);
  EXPECT_DOUBLE_EQ(model.calcTapering(NbgVector3D(0., 5., 0.)), 0.3125);
}

}  // namespace
