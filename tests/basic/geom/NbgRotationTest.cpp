#include "basic/geom/NbgRotation.h"

#include "basic/error/NbeProgrammingError.h"
#include "basic/geom/NbgAngle.h"
#include "basic/geom/NbgCoordinatesTransformation.h"
#include "basic/geom/NbgDirection.h"
#include "basic/geom/NbgEAngleUnit.h"
#include "basic/geom/NbgEDimension.h"
#include "basic/geom/NbgRotationConventionDefault.h"
#include "support/SerializationFuzz.h"

#include <gtest/gtest.h>

#include <random>

namespace {

constexpr double DEGREE = M_PI / 180.;

/// The right-handed rotation about one axis (0, 1, 2), written out.
NbgRotationMatrix elementary(int axis, double degrees)
{
  const int a = (axis + 1) % 3, b = (axis + 2) % 3;
  NbgRotationMatrix m;
  m.set(a, a, std::cos(degrees * DEGREE));
  m.set(b, b, std::cos(degrees * DEGREE));
  m.set(a, b, -std::sin(degrees * DEGREE));
  m.set(b, a, std::sin(degrees * DEGREE));
  return m;
}

/// A hundred rotations, every tenth with a U axis that is vertical or close to it.
std::vector<NbgRotation> someRotations()
{
  std::mt19937 generator(4711);
  std::uniform_real_distribution<double> angle(-360., 360.);
  std::uniform_real_distribution<double> exponent(-16., 0.);
  std::vector<NbgRotation> rotations;
  for (int i = 0; i < 100; ++i) {
    const double a2 = i % 10 == 0 ? 90. - std::pow(10., exponent(generator)) : angle(generator);
    rotations.emplace_back(angle(generator), a2, angle(generator), i % 2);
  }
  return rotations;
}

}  // namespace

TEST(NbgRotation, DefaultConventionIsZThenYThenX)
{
  const NbgRotation rotation(25., -40., 110.);
  const NbgRotationMatrix expected = elementary(2, 25.) * elementary(1, -40.) * elementary(0, 110.);
  EXPECT_TRUE(rotation.getMatrix().isEqual(expected, 1e-15));

  NbgRotation stepwise;
  stepwise.setAngleX(110.);
  stepwise.setAngleY(-40.);
  stepwise.setAngleZ(25.);
  EXPECT_TRUE(stepwise.isEqual(rotation, 0.));
}

TEST(NbgRotation, OneAngleTurnsCounterClockwiseFromX)
{
  const NbgRotation rotation(NbgAngle(30., NbgEAngleUnit::DEGREE));
  EXPECT_TRUE(rotation.isAroundZOnly(0.));
  EXPECT_NEAR(rotation.getAxisX().x(), std::sqrt(0.75), 1e-15);
  EXPECT_NEAR(rotation.getAxisX().y(), 0.5, 1e-15);
  EXPECT_EQ(NbgRotation(NbgAngle(M_PI / 6., NbgEAngleUnit::RADIAN)), rotation);
}

TEST(NbgRotation, QuarterTurnsAreExact)
{
  for (int a = -3; a <= 3; ++a) {
    for (int b = -3; b <= 3; ++b) {
      for (int c = -3; c <= 3; ++c) {
        const NbgRotation rotation(90. * a, 90. * b, 90. * c);
        for (int i = 0; i < 9; ++i) {
          const double element = std::fabs(rotation.getMatrix().getData()[i]);
          ASSERT_TRUE(element == 0. || element == 1.);
        }
      }
    }
  }
}

TEST(NbgRotation, GeologistAnglesAreAzimuthDipAndPitch)
{
  for (double azimuth : {0., 37., 90., 200., 359.}) {
    for (double dip : {-80., 0., 25., 90.}) {
      const NbgRotation rotation(azimuth, dip, 15., 1);
      const NbgVector3D u(std::sin(azimuth * DEGREE) * std::cos(dip * DEGREE),
                          std::cos(azimuth * DEGREE) * std::cos(dip * DEGREE),
                          -std::sin(dip * DEGREE));
      EXPECT_LT((rotation.getAxisX() - u).norm(), 1e-15);
      EXPECT_LT((NbgDirection(azimuth, dip).toVector() - u).norm(), 1e-15);
      EXPECT_TRUE(rotation.isEqual(NbgRotation(90. - azimuth, dip, 15.), 1e-15));
    }
  }
}

TEST(NbgRotation, MatricesAreOrthonormalAndAnglesComeBack)
{
  for (const NbgRotation &rotation : someRotations()) {
    EXPECT_TRUE(rotation.getMatrix().isOrthonormal(1e-15));
    // The detour leaves rounding errors in all elements, which near the vertical are as large as
    // those that hold the angles. From 1e-12 on the direction counts as vertical.
    const NbgRotation detour(70., 50., 30.);
    const NbgRotationMatrix matrix = (detour * (detour.inverse() * rotation)).getMatrix();
    const NbgRotation again(matrix, rotation.getConventionId());
    EXPECT_TRUE(again.getMatrix().isEqual(matrix, 0.));
    const NbgRotation fromAngles(again.getAngle1(), again.getAngle2(), again.getAngle3(),
                                 again.getConventionId());
    EXPECT_TRUE(fromAngles.isEqual(rotation, 2e-12)) << rotation.toString().toStdString();
  }
}

TEST(NbgRotation, InverseUndoes)
{
  const NbgVector3D v(1., -2., 3.);
  for (const NbgRotation &rotation : someRotations()) {
    EXPECT_LT((rotation.worldToLocal(rotation.localToWorld(v)) - v).norm(), 1e-14);
    EXPECT_LT((rotation.inverse().rotate(rotation.rotate(v)) - v).norm(), 1e-14);
    EXPECT_TRUE((rotation * rotation.inverse()).isIdentity(1e-14));
    EXPECT_EQ(rotation.inverse().getConventionId(), rotation.getConventionId());
  }
}

TEST(NbgRotation, ConventionChangesKeepTheOrientation)
{
  NbgRotation rotation(30., 20., 10.);
  const NbgRotation before = rotation;
  rotation.setConvention(1);
  EXPECT_EQ(rotation.getAngles(), NbgVector3D(60., 20., 10.));
  EXPECT_TRUE(rotation.isEqual(before, 0.));
  EXPECT_EQ(rotation.toString(), "Azimuth=60 Dip=20 Pitch=10");
  rotation.setAngleX(11.);
  EXPECT_TRUE(rotation.isEqual(NbgRotation(30., 20., 11.), 1e-15));

  EXPECT_THROW(rotation.setConvention(7), NbeProgrammingError);
  EXPECT_THROW(NbgRotation(0., 0., 0., -1), NbeProgrammingError);
}

TEST(NbgRotation, AnglesMayBeSetInAnyOrderThroughTheVertical)
{
  NbgRotation rotation;
  rotation.setAngleY(90.);
  rotation.setAngleX(30.);
  rotation.setAngleZ(20.);
  rotation.setAngleY(10.);
  EXPECT_TRUE(rotation.isEqual(NbgRotation(20., 10., 30.), 0.));
}

TEST(NbgRotation, BelowThreeDimensionsOnlyZTurns)
{
  NbgRotation rotation(30., 20., 10.);
  rotation.setDimension(NbgEDimension::DIM_2D);
  EXPECT_TRUE(rotation.isEqual(NbgRotation(30., 0., 0.), 0.));
  rotation.setAngle2(45.);
  EXPECT_TRUE(rotation.isAroundZOnly(0.));
  EXPECT_EQ(rotation.getAngle2(), 0.);
  EXPECT_TRUE(rotation.inverse().isEqual(NbgRotation(-30., 0., 0.), 1e-15));

  // Half turns about X and Y make one about Z.
  NbgRotation turned(20., 180., 180.);
  turned.setDimension(NbgEDimension::DIM_2D);
  EXPECT_TRUE(turned.isEqual(NbgRotation(200., 0., 0.), 1e-15));
  turned.setAngle1(turned.getAngle1());
  EXPECT_TRUE(turned.isEqual(NbgRotation(200., 0., 0.), 1e-15));
}

TEST(NbgRotation, BulkFormsGiveTheSameBits)
{
  const NbgRotation rotation(33., 21., -77.);
  std::mt19937 generator(99);
  std::uniform_real_distribution<double> coordinate(-1e3, 1e3);
  const int n = 101;
  QVector<NbgVector3D> v(n);
  std::vector<double> x(n), y(n), z(n);
  for (int i = 0; i < n; ++i) {
    v[i].set(coordinate(generator), coordinate(generator), coordinate(generator));
    x[i] = v[i].x();
    y[i] = v[i].y();
    z[i] = v[i].z();
  }

  QVector<NbgVector3D> local(n);
  rotation.worldToLocal(n, v.constData()->getData(), local.data()->getData());
  rotation.worldToLocal(n, x.data(), y.data(), z.data());
  for (int i = 0; i < n; ++i) {
    EXPECT_EQ(local[i], rotation.worldToLocal(v[i]));
    EXPECT_EQ(NbgVector3D(x[i], y[i], z[i]), rotation.worldToLocal(v[i]));
  }

  QVector<NbgVector3D> world = local;
  rotation.localToWorld(n, world.data()->getData(), world.data()->getData());
  rotation.localToWorld(n, x.data(), y.data(), z.data());
  for (int i = 0; i < n; ++i) {
    EXPECT_EQ(world[i], rotation.localToWorld(local[i]));
    EXPECT_EQ(NbgVector3D(x[i], y[i], z[i]), world[i]);
  }
}

TEST(NbgRotation, RelativeRotationsAreSeenInTheReference)
{
  const NbgRotation plane(40., 15., 5.);
  NbgRotation direction(NbgAngle::fromDegrees(45.));
  direction.setRelativeTo(plane);
  const NbgVector3D inPlane(std::sqrt(0.5), std::sqrt(0.5), 0.);
  EXPECT_LT((direction.getAxisX() - plane.localToWorld(inPlane)).norm(), 1e-15);
  EXPECT_LT((direction.getAxisZ() - plane.getAxisZ()).norm(), 1e-15);
}

TEST(NbgRotation, TensorsAreTurnedIntoTheWorld)
{
  const NbgRotation rotation(50., 20., 70.);
  const double tensor[9] = {1., 2., 3., 4., 5., 6., 7., 8., 10.};
  double result[9];
  rotation.applyRotTRot(tensor, result);
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 3; ++column) {
      double sum = 0.;
      for (int a = 0; a < 3; ++a)
        for (int b = 0; b < 3; ++b)
          sum += rotation.getMatrix().get(row, a) * tensor[3 * b + a] *
                 rotation.getMatrix().get(column, b);
      EXPECT_NEAR(result[3 * column + row], sum, 1e-14);
    }
  }
}

TEST(NbgRotation, DirectionsAreNamedByCompass)
{
  struct Row
  {
    NbgVector3D direction;
    const char *name;
  };
  const Row rows[] = {
      {{0., 1., 0.}, "N0"},          {{0., -1., 0.}, "N0"},           {{1., 1., 0.}, "N45"},
      {{-1., -1., 0.}, "N45"},       {{-1., 1., 0.}, "N135"},         {{1., 0., -1.}, "N90 Dip 45"},
      {{-1., 0., 1.}, "N90 Dip 45"}, {{-1., 0., -1.}, "N90 Dip -45"}, {{0., 0., 1.}, "N0 Dip 90"},
      {{0., 0., -1.}, "N0 Dip 90"},  {{-1e-9, 1., 0.}, "N0"},         {{1e-9, -1., 0.}, "N0"}};
  for (const Row &row : rows) {
    EXPECT_EQ(NbgRotation::fromDirection(row.direction).getUDirectionName(), row.name)
        << row.direction.toString().toStdString();
    EXPECT_LT(
        (NbgRotation::fromDirection(row.direction).getAxisX() - row.direction.normalized()).norm(),
        1e-15);
  }
  // The regular directions of a plane, as angles from X: compass azimuths run the other way.
  EXPECT_EQ(NbgRotation(NbgAngle::fromDegrees(30.)).getUDirectionName(), "N60");
  EXPECT_EQ(NbgRotation(NbgAngle::fromDegrees(120.)).getUDirectionName(), "N150");
}

TEST(NbgRotation, RefusesMatricesThatAreNoRotations)
{
  const NbgVector3D x = NbgVector3D::X, y = NbgVector3D::Y, z = NbgVector3D::Z;
  EXPECT_NO_THROW(NbgRotation(NbgRotationMatrix(y, z, x)));
  EXPECT_THROW(NbgRotation(NbgRotationMatrix(y, x, z)), NbeProgrammingError);
  EXPECT_THROW(NbgRotation(NbgRotationMatrix(x, y, z * 1.00001)), NbeProgrammingError);
  EXPECT_THROW(NbgRotation(NbgRotationMatrix(x, y, {std::nan(""), 0., 1.})), NbeProgrammingError);
}

TEST(NbgRotation, StreamKeepsEveryBit)
{
  for (const NbgRotation &rotation : someRotations()) {
    // The inverse has a matrix that its angles alone would not give to the last bit.
    for (const NbgRotation &written : {rotation, rotation.inverse()}) {
      NbgRotation read;
      ASSERT_NO_THROW(test::fromBytes(test::toBytes(written), read));
      EXPECT_TRUE(read.isEqual(written, 0.));
      EXPECT_EQ(read.getAngles(), written.getAngles());
      EXPECT_EQ(read.getConventionId(), written.getConventionId());
    }
  }
  test::fuzzSerialization(NbgRotation(10., 20., 30., 1));
}

TEST(NbgRotation, StreamRefusesWhatIsNoRotation)
{
  const QByteArray bytes = test::toBytes(NbgRotation(10., 20., 30.));
  const int content = 8;  // After magic and version.
  const auto damaged = [&bytes](int position, char value) {
    QByteArray copy = bytes;
    copy[position] = value;
    return copy;
  };
  NbgRotation target(1., 2., 3.);
  const QByteArray before = test::toBytes(target);
  // Dimension 4, dimension 2 with a tilt, convention 9, an angle and a matrix element changed.
  const QByteArray streams[] = {damaged(content + 3, 4), damaged(content + 3, 2),
                                damaged(content + 7, 9), damaged(content + 8 + 1, 0x20),
                                damaged(content + 8 + 24 + 2, 0)};
  for (const QByteArray &stream : streams) {
    EXPECT_THROW(test::fromBytes(stream, target), NbeUserError);
    EXPECT_EQ(test::toBytes(target), before);
  }
}

TEST(NbgAngle, KnowsItsSupplementAndRadians)
{
  EXPECT_EQ(NbgAngle::fromDegrees(30.).getSupplement().getDegreeValue(), 150.);
  EXPECT_DOUBLE_EQ(NbgAngle::fromDegrees(90.).getRadianValue(), M_PI / 2.);
  for (double degrees = -720.; degrees <= 720.; degrees += 7.5) {
    EXPECT_NEAR(NbgAngle::fromDegrees(degrees).sine(), std::sin(degrees * DEGREE), 3e-15);
    EXPECT_NEAR(NbgAngle::fromDegrees(degrees).cosine(), std::cos(degrees * DEGREE), 3e-15);
  }
}

TEST(NbgCoordinatesTransformation, GoesThereAndBack)
{
  NbgCoordinatesTransformation transformation;
  transformation.setRotationOrigin({100., 200., 300.});
  transformation.setRotation(NbgRotation(90., 0., 0.));
  transformation.setScale({2., 1., 0.5});
  EXPECT_EQ(transformation.toRelativeSystem({100., 203., 304.}), NbgVector3D(6., 0., 2.));
  EXPECT_EQ(transformation.toReferenceSystem({6., 0., 2.}), NbgVector3D(100., 203., 304.));
  EXPECT_THROW(transformation.setScale({1., 0., 1.}), NbeProgrammingError);
}
