#include "basic/geom/NbgVector3D.h"

#include "basic/geom/NbgIntVector3D.h"

#include <QDataStream>

#include <gtest/gtest.h>

namespace {
constexpr double ULP = std::numeric_limits<double>::epsilon();
}

TEST(NbgVector3D, IsThreePlainDoubles)
{
  static_assert(sizeof(NbgVector3D) == 3 * sizeof(double));
  static_assert(std::is_trivially_copyable_v<NbgVector3D>);

  // Vectors of a QVector are created by clearing their bytes, which must give the default.
  const QVector<NbgVector3D> created(5);
  for (const NbgVector3D &v : created)
    EXPECT_EQ(v, NbgVector3D::Null);
}

TEST(NbgVector3D, CrossProductIsRightHandedAndPerpendicular)
{
  EXPECT_EQ(NbgVector3D::X.crossProduct(NbgVector3D::Y), NbgVector3D::Z);
  EXPECT_EQ(NbgVector3D::Y.crossProduct(NbgVector3D::Z), NbgVector3D::X);
  const NbgVector3D a(1., -2., 3.), b(4., 5., -6.);
  const NbgVector3D c = a.crossProduct(b);
  EXPECT_EQ(c, NbgVector3D(-3., 18., 13.));
  EXPECT_EQ(c * a, 0.);
  EXPECT_EQ(c * b, 0.);
}

TEST(NbgVector3D, NormalizesTinyAndHugeVectors)
{
  for (double scale : {1e-300, 1e-160, 1., 1e160, 1e300}) {
    NbgVector3D v(3. * scale, 0., -4. * scale);
    v.normalize(10.);
    // Three roundings of relative size 1 ulp.
    EXPECT_NEAR(v.x(), 6., 6. * 4. * ULP) << scale;
    EXPECT_NEAR(v.z(), -8., 8. * 4. * ULP) << scale;
  }
  NbgVector3D null;
  null.normalize();
  EXPECT_EQ(null, NbgVector3D::Null);
}

TEST(NbgVector3D, HorizontalDirectionStaysBelowAFullTurn)
{
  EXPECT_EQ(NbgVector3D(1., 0., 5.).dirHorizontal(), 0.);
  EXPECT_DOUBLE_EQ(NbgVector3D(0., 2.).dirHorizontal(), M_PI / 2.);
  EXPECT_DOUBLE_EQ(NbgVector3D(-1., 0.).dirHorizontal(), M_PI);
  EXPECT_DOUBLE_EQ(NbgVector3D(1., -1.).dirHorizontal(), 1.75 * M_PI);

  // Vertical vectors have no horizontal direction, whatever the signs of their zeros.
  EXPECT_EQ(NbgVector3D(0., 0., 1.).dirHorizontal(), 0.);
  EXPECT_EQ(NbgVector3D(-0., 0., 1.).dirHorizontal(), 0.);
  EXPECT_EQ(NbgVector3D(-0., -0., 1.).dirHorizontal(), 0.);

  // Here 2 pi minus the angle rounds to 2 pi.
  EXPECT_EQ(NbgVector3D(1., -1e-20).dirHorizontal(), 0.);
  EXPECT_FALSE(std::signbit(NbgVector3D(1., -0.).dirHorizontal()));
  for (double y = -1.; y < -1e-17; y *= 0.5)
    EXPECT_LT(NbgVector3D(1., y).dirHorizontal(), 2. * M_PI) << y;
}

TEST(NbgVector3D, BoreholeAnglesAreClockwiseFromNorthAndDownward)
{
  struct Row
  {
    NbgVector3D vector;
    double azimuth, dip;
  };
  const Row rows[] = {{{0., 1., 0.}, 0., 0.},     {{1., 0., 0.}, 90., 0.},
                      {{0., -1., 0.}, 180., 0.},  {{-1., 0., 0.}, 270., 0.},
                      {{0., 0., -3.}, 0., 90.},   {{0., 0., 3.}, 0., -90.},
                      {{1., 0., -1.}, 90., 45.},  {{-1., 1., 0.}, 315., 0.},
                      {{-1e-20, 1., 0.}, 0., 0.}, {NbgVector3D::Null, 0., 0.}};
  for (const Row &row : rows) {
    double azimuth = -1., dip = -1.;
    row.vector.getAzimuthDip(azimuth, dip);
    EXPECT_NEAR(azimuth, row.azimuth, 1e-13) << row.vector.toString().toStdString();
    EXPECT_NEAR(dip, row.dip, 1e-13) << row.vector.toString().toStdString();
  }
}

TEST(NbgVector3D, EllipsoidHoldsItsBorderAndAFlatOneItsPlane)
{
  const NbgVector3D radii(2., 3., 4.);
  EXPECT_TRUE(NbgVector3D(2., 0., 0.).isInEllipsoid(radii));
  EXPECT_TRUE(NbgVector3D(0., 0., -4.).isInEllipsoid(radii));
  EXPECT_FALSE(NbgVector3D(0., 3.0000001, 0.).isInEllipsoid(radii));
  EXPECT_FALSE(NbgVector3D(1.9, 1., 0.).isInEllipsoid(radii));

  const NbgVector3D flat(2., 3., 0.);
  EXPECT_TRUE(NbgVector3D(1., 1., 0.).isInEllipsoid(flat));
  EXPECT_FALSE(NbgVector3D(0., 0., 1e-300).isInEllipsoid(flat));
}

TEST(NbgVector3D, OrdersLexicographicallyAndKnowsUndefinedComponents)
{
  EXPECT_TRUE(NbgVector3D(1., 9., 9.) < NbgVector3D(2., 0., 0.));
  EXPECT_TRUE(NbgVector3D(1., 2., 3.) < NbgVector3D(1., 2., 4.));
  EXPECT_FALSE(NbgVector3D(1., 2., 3.) < NbgVector3D(1., 2., 3.));

  EXPECT_FALSE(NbgVector3D::Undefined.isDefined());
  EXPECT_FALSE(NbgVector3D(0., std::nan(""), 0.).isDefined());
  EXPECT_FALSE(NbgVector3D(0., 0., -std::numeric_limits<double>::infinity()).isDefined());
  EXPECT_EQ(NbgVector3D(1., NbbGlobal::D_FFFF, 2.5).toString(), "(1, N/A, 2.5)");
  EXPECT_FALSE(NbgIntVector3D(1, NbbGlobal::I32_FFFF, 1).isDefined());

  EXPECT_EQ(NbgVector3D(2., 0., -4.).inverse(), NbgVector3D(0.5, NbbGlobal::D_FFFF, -0.25));
}

TEST(NbgVector3D, StreamsRefuseAnotherCount)
{
  QByteArray bytes;
  QDataStream writer(&bytes, QIODevice::WriteOnly);
  writer << NbgVector3D(1., 2., 3.);
  NbgVector3D read;
  QDataStream good(bytes);
  good >> read;
  EXPECT_EQ(read, NbgVector3D(1., 2., 3.));

  bytes[3] = 2;
  QDataStream bad(bytes);
  bad >> read;
  EXPECT_EQ(bad.status(), QDataStream::ReadCorruptData);
  bytes[3] = 3;
  bytes.chop(1);
  read = NbgVector3D::Unit;
  QDataStream cut(bytes);
  cut >> read;
  EXPECT_NE(cut.status(), QDataStream::Ok);
  EXPECT_EQ(read, NbgVector3D::Unit);
}
