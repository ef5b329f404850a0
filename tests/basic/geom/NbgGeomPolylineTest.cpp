#include "basic/geom/NbgGeomPolyline.h"

#include "basic/geom/NbgGeomPolygon.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

/// Side of c in integers, of coordinates that are multiples of 2^-40 below 2^10.
int exactSide(const NbgVector3D &a, const NbgVector3D &b, const NbgVector3D &c)
{
  const auto scaled = [](double v) { return static_cast<__int128>(std::ldexp(v, 40)); };
  const __int128 area = (scaled(b.x()) - scaled(a.x())) * (scaled(c.y()) - scaled(a.y())) -
                        (scaled(b.y()) - scaled(a.y())) * (scaled(c.x()) - scaled(a.x()));
  return area > 0 ? 1 : (area < 0 ? -1 : 0);
}

/// Turns of the border around the point, as a sum of angles.
double turns(const QVector<NbgVector3D> &vertices, const NbgVector3D &p)
{
  double sum = 0.;
  for (int i = 0; i < vertices.size(); ++i) {
    const NbgVector3D a = vertices[i] - p;
    const NbgVector3D b = vertices[(i + 1) % vertices.size()] - p;
    sum += std::atan2(a.x() * b.y() - a.y() * b.x(), a.x() * b.x() + a.y() * b.y());
  }
  return sum / 6.283185307179586;
}

}  // namespace

TEST(NbgGeomPolyline, TellsSidesExactly)
{
  // Points within a few units in the last place of the line from (0.5, 0.5) to (12, 12).
  const NbgVector3D b(12., 12.);
  const NbgVector3D c(24., 24.);
  int nFlat = 0;
  for (int i = 0; i < 64; ++i) {
    for (int j = 0; j < 64; ++j) {
      const NbgVector3D a(0.5 + std::ldexp(i, -40), 0.5 + std::ldexp(j, -40));
      const double side = nbgOrientation(a, b, c);
      ASSERT_EQ((side > 0.) - (side < 0.), exactSide(a, b, c)) << i << ' ' << j;
      nFlat += side == 0.;
    }
  }
  EXPECT_EQ(nFlat, 64);
}

TEST(NbgGeomPolyline, IsCrossedWhenTouched)
{
  const NbgGeomPolyline line(
      {NbgVector3D(0., 0., 5.), NbgVector3D(10., 10.), NbgVector3D(20., 0.)});
  EXPECT_TRUE(line.isCrossedBy(NbgVector3D(0., 5.), NbgVector3D(10., 5.)));
  EXPECT_TRUE(line.isCrossedBy(NbgVector3D(10., 10.), NbgVector3D(10., 20.)));
  EXPECT_TRUE(line.isCrossedBy(NbgVector3D(0., 10.), NbgVector3D(5., 5.)));
  EXPECT_TRUE(line.isCrossedBy(NbgVector3D(3., 3.), NbgVector3D(3., 3.)));
  EXPECT_TRUE(line.isCrossedBy(NbgVector3D(-5., -5.), NbgVector3D(0., 0., 99.)));
  EXPECT_FALSE(line.isCrossedBy(NbgVector3D(-5., -5.), NbgVector3D(-1., -1.)));
  EXPECT_FALSE(line.isCrossedBy(NbgVector3D(5., 0.), NbgVector3D(15., 0.)));
  EXPECT_FALSE(line.isClosed());
  EXPECT_TRUE(NbgGeomPolyline(line.getVertices(), true)
                  .isCrossedBy(NbgVector3D(5., -5.), NbgVector3D(5., 0.)));
  EXPECT_TRUE(NbgGeomPolyline(line.getVertices() + QVector<NbgVector3D>{NbgVector3D(0., 0., 1.)})
                  .isClosed());
  EXPECT_FALSE(NbgGeomPolyline().isCrossedBy(NbgVector3D(), NbgVector3D()));
}

TEST(NbgGeomPolygon, HoldsWhatItsBorderTurnsAround)
{
  // A star with deep notches, and a grid of points that meets vertices and edges.
  QVector<NbgVector3D> star;
  for (int i = 0; i < 14; ++i) {
    const double radius = i % 2 ? 3. : 10.;
    star << NbgVector3D(std::round(radius * std::cos(i * 0.4487989505)),
                        std::round(radius * std::sin(i * 0.4487989505)));
  }
  const NbgGeomPolygon polygon(star);
  int nInside = 0;
  for (int i = -24; i <= 24; ++i) {
    for (int j = -24; j <= 24; ++j) {
      const NbgVector3D p(0.5 * i, 0.5 * j, 7.);
      bool isOnBorder = false;
      for (int k = 0; k < star.size(); ++k)
        isOnBorder |= nbgSegmentsMeet(p, p, star[k], star[(k + 1) % star.size()]);
      const bool expected = isOnBorder || std::abs(turns(star, p)) > 0.5;
      ASSERT_EQ(polygon.isInside(p), expected) << i << ' ' << j;
      nInside += expected;
    }
  }
  EXPECT_GT(nInside, 300);
  EXPECT_FALSE(polygon.isInside(NbgVector3D::Undefined));
}
