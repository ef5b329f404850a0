#include "app/study/Compass.h"

#include <QtMath>

#include <gtest/gtest.h>

#include <cmath>

using namespace orvenal;

namespace {

// Sines and cosines of a few hundred degrees: some ulps.
constexpr double tolerance = 1e-14;

void expectEqual(const NbgVector3D &found, const NbgVector3D &expected)
{
  EXPECT_NEAR(found.x(), expected.x(), tolerance);
  EXPECT_NEAR(found.y(), expected.y(), tolerance);
  EXPECT_NEAR(found.z(), expected.z(), tolerance);
}

}  // namespace

TEST(Compass, AzimuthAndDipPlaceTheFirstAxis)
{
  expectEqual(Compass::frame(0., 0., 0.).getAxisX(), {0., 1., 0.});      // north
  expectEqual(Compass::frame(90., 0., 0.).getAxisX(), {1., 0., 0.});     // east
  expectEqual(Compass::frame(0., 90., 0.).getAxisX(), {0., 0., -1.});    // down
  expectEqual(Compass::frame(180., -90., 0.).getAxisX(), {0., 0., 1.});  // up
  for (double azimuth = -270.; azimuth < 400.; azimuth += 35.) {
    for (double dip = -80.; dip <= 80.; dip += 20.) {
      SCOPED_TRACE(testing::Message() << azimuth << " " << dip);
      const double a = qDegreesToRadians(azimuth);
      const double d = qDegreesToRadians(dip);
      const NbgRotation frame = Compass::frame(azimuth, dip, 25.);
      expectEqual(frame.getAxisX(),
                  {std::sin(a) * std::cos(d), std::cos(a) * std::cos(d), -std::sin(d)});
      EXPECT_NEAR(Compass::dip(frame.getAxisX()), dip, 1e-10);
      EXPECT_NEAR(std::fmod(Compass::azimuth(frame.getAxisX()) - azimuth + 720., 360.), 0., 1e-10);
      EXPECT_NEAR(Compass::frame(azimuth, dip, 0.).getAxisY().z(), 0., tolerance);
    }
  }
}

TEST(Compass, TurnsGridsByTheAzimuthOfTheirRows)
{
  EXPECT_TRUE(Compass::gridFrame(0.).isIdentity(0.));
  for (const double azimuth : {0., 30., 90., 200., 359.}) {
    const NbgRotation frame = Compass::gridFrame(azimuth);
    const double a = qDegreesToRadians(azimuth);
    expectEqual(frame.getAxisY(), {std::sin(a), std::cos(a), 0.});
    expectEqual(frame.getAxisX(), {std::cos(a), -std::sin(a), 0.});
    EXPECT_NEAR(Compass::azimuthOfRows(frame), azimuth, 1e-10);
  }
}

TEST(Compass, SaysDirectionsInWords)
{
  EXPECT_EQ(Compass::describe(Compass::frame(30., 10., 0.).getAxisX(), 3),
            QString::fromUtf8("azimuth 30°, dip 10°"));
  EXPECT_EQ(Compass::describe({-1e-17, 1., 0.}, 2), QString::fromUtf8("azimuth 0°"));
}
