#include "app/job/Conventions.h"

#include "TestFiles.h"
#include "app/base/UsageError.h"
#include "app/io/CsvReader.h"
#include "app/job/JobReader.h"
#include "basic/geom/NbgRotation.h"
#include "geos/vmodel/NgmAVStruct.h"

#include <QProcess>
#include <QtMath>

#include <gmock/gmock.h>

#include <cmath>

using namespace orvenal;
using apptest::json;
using apptest::MeuseJob;
using testing::HasSubstr;

namespace {

constexpr double rounding = 1e-12;  // of sines, and of a range of a few hundred by a factor

Job read(const MeuseJob &job)
{
  const apptest::Folder folder;
  return readJob(job.writeTo(folder));
}

MeuseJob withConventions(const char *conventions)
{
  return MeuseJob().set("conventions", json(conventions));
}

NgmVModel modelOf(const char *type, double range, const QJsonValue &parameter)
{
  MeuseJob job = withConventions("{\"ranges\": \"scale\"}");
  job.set("model", json("{}")).set("model.structures", json("[{\"sill\": 1}]"));
  job.set("model.structures.0.type", type).set("model.structures.0.range", range);
  job.set("model.structures.0.parameter", parameter);
  return read(job).model;
}

/// Covariance at a distance to the north.
double covariance(const NgmVModel &model, double distance)
{
  return model.calcCovaIJ(0, 0, NbgVector3D(0., distance, 0.));
}

}  // namespace

TEST(Conventions, TakesScaleParametersByTheFormulasOfTheStructures)
{
  const QJsonValue none(QJsonValue::Undefined);
  const double a = 250.;
  for (const double h : {10., 100., 249., 600.}) {
    const double u = h / a;
    EXPECT_NEAR(covariance(modelOf("Exponential", a, none), h), std::exp(-u), rounding);
    EXPECT_NEAR(covariance(modelOf("Gaussian", a, none), h), std::exp(-u * u), rounding);
    EXPECT_NEAR(covariance(modelOf("Stable", a, 1.5), h), std::exp(-std::pow(u, 1.5)), rounding);
    EXPECT_NEAR(covariance(modelOf("Gamma", a, 2.), h), std::pow(1. + u, -2.), rounding);
    EXPECT_NEAR(covariance(modelOf("Generalized Cauchy", a, 2.), h), std::pow(1. + u * u, -2.),
                rounding);
    EXPECT_NEAR(covariance(modelOf("Matern (nu=1.5)", a, none), h), (1. + u) * std::exp(-u),
                rounding);
    EXPECT_NEAR(covariance(modelOf("Cardinal Sine", a, none), h), std::sin(u) / u, rounding);
    const double spherical = u < 1. ? 1. - 1.5 * u + 0.5 * u * u * u : 0.;
    EXPECT_NEAR(covariance(modelOf("Spherical", a, none), h), spherical, rounding);
  }
}

TEST(Conventions, ScalesEveryAxisAlike)
{
  MeuseJob job = withConventions("{\"ranges\": \"scale\"}");
  job.set("model.structures.0",
          json("{\"type\": \"Exponential\", \"sill\": 1, \"ranges\": [300, 100], \"azimuth\": 0}"));
  const Job scaled = read(job);
  EXPECT_NEAR(covariance(scaled.model, 150.), std::exp(-0.5), rounding);
  EXPECT_NEAR(scaled.model.calcCovaIJ(0, 0, NbgVector3D(150., 0., 0.)), std::exp(-1.5), rounding);
  // The same from practical ranges; ln 20 is the practical factor to the digits that the library
  // has.
  job.set("conventions.ranges", "practical");
  EXPECT_NEAR(covariance(read(job).model, 300.), 0.05, 1e-6);
}

TEST(Conventions, TakesMathematicalAngles)
{
  for (const double angle : {0., 30., 90., 200., -45.}) {
    SCOPED_TRACE(angle);
    MeuseJob job = withConventions("{\"angles\": \"mathematical\"}");
    job.set("model.structures.0",
            json("{\"type\": \"Cubic\", \"sill\": 1, \"ranges\": [300, 100]}"));
    job.set("model.structures.0.azimuth", angle);
    job.set("neighborhood", json("{\"type\": \"moving\", \"radii\": [900, 500], \"maximum\": 9}"));
    job.set("neighborhood.azimuth", angle).set("grid.rotation", angle);
    job.set("variogram", json("{\"directions\": [{}]}"));
    job.set("variogram.directions.0.azimuth", angle);
    const Job result = read(job);
    const double radians = qDegreesToRadians(angle);
    const NbgVector3D along(std::cos(radians), std::sin(radians), 0.);
    const NbgVector3D across(-std::sin(radians), std::cos(radians), 0.);
    const NbgRotation frames[] = {result.model.getStructure(0).getRotation(),
                                  result.neighborhood->moving.getEllipseRotation(),
                                  result.grid.getRotation()};
    for (const NbgRotation &frame : frames) {
      EXPECT_NEAR((frame.getAxisX() - along).norm(), 0., rounding);
      EXPECT_NEAR((frame.getAxisY() - across).norm(), 0., rounding);
    }
    EXPECT_NEAR(Compass::frame(result.variogram->directions[0].azimuth, 0., 0.).getAxisX() * along,
                1., rounding);
    job.set("variogram", json("{\"regular\": 3}")).set("variogram.azimuth", angle);
    EXPECT_EQ(read(job).variogram->firstAzimuth, 90. - angle);
  }
}

TEST(Conventions, KeepsDipAndPitch)
{
  MeuseJob job;
  job.set("data.z", "elev").remove("grid.mask").remove("output");
  job.set("grid.origin", json("[0, 0, 4]")).set("grid.cell", json("[4, 4, 1]"));
  job.set("grid.nodes", json("[7, 10, 3]"));
  job.set("model.structures.0",
          json("{\"type\": \"Cubic\", \"sill\": 1, \"ranges\": [300, 100, 20], \"azimuth\": 25, "
               "\"dip\": 40, \"pitch\": 15}"));
  job.set("conventions", json("{\"angles\": \"mathematical\"}"));
  EXPECT_TRUE(read(job).model.getStructure(0).getRotation().isEqual(Compass::frame(65., 40., 15.)));
}

TEST(Conventions, RefuseRangesThatAreNoLengths)
{
  const apptest::Folder folder;
  const auto errorOf = [&](double range) {
    MeuseJob job = withConventions("{\"ranges\": \"scale\"}");
    job.set("model.structures.0.type", "Cardinal Sine").set("model.structures.0.range", range);
    try {
      readJob(job.writeTo(folder));
    } catch (const UsageError &error) {
      return error.getMessage().toStdString();
    }
    return std::string("no error");
  };
  EXPECT_THAT(errorOf(1e-300), HasSubstr("model.structures[0]: a practical range of 2.0371e-299"));
  EXPECT_THAT(errorOf(9e29), HasSubstr("is too large"));
  EXPECT_EQ(errorOf(1e-9), "no error");
}

TEST(Conventions, BelongToOneFile)
{
  const apptest::Folder folder;
  folder.write("model.json",
               "{ \"structures\": [{ \"type\": \"Exponential\", \"sill\": 1, "
               "\"ranges\": [300, 100], \"azimuth\": 20 }] }");
  MeuseJob job = withConventions("{\"ranges\": \"scale\", \"angles\": \"mathematical\"}");
  job.set("model", json("{\"file\": \"model.json\"}"));
  const Job plain = readJob(job.writeTo(folder));
  EXPECT_NEAR(plain.model.getStructure(0).getPracticalRanges().x(), 300., rounding);
  EXPECT_NEAR(Compass::azimuth(plain.model.getStructure(0).getRotation().getAxisX()), 20.,
              rounding);

  folder.write("model.json",
               "{ \"conventions\": { \"ranges\": \"scale\", \"angles\": \"mathematical\" },"
               "\"structures\": [{ \"type\": \"Exponential\", \"sill\": 1, \"ranges\": "
               "[300, 100], \"azimuth\": 20 }] }");
  job.remove("conventions");
  const Job own = readJob(job.writeTo(folder));
  EXPECT_NEAR(own.model.getStructure(0).getTheoRanges().x(), 300., rounding);
  EXPECT_NEAR(Compass::azimuth(own.model.getStructure(0).getRotation().getAxisX()), 70., rounding);
}

TEST(Conventions, HoldForLocalAnglesToo)
{
  const apptest::Folder folder;
  const QByteArray samples = "x,y,v\n1,1,2\n9,2,5\n4,8,1\n7,7,9\n2,5,4\n";
  QByteArray azimuths = "x,y,a\n";
  QByteArray angles = azimuths;
  for (int i = 0; i < 100; ++i) {
    const QByteArray place = QByteArray::number(i % 10) + ',' + QByteArray::number(i / 10) + ',';
    azimuths += place + QByteArray::number(3 * i) + '\n';
    angles += place + QByteArray::number(90 - 3 * i) + '\n';
  }
  folder.write("samples.csv", samples);
  folder.write("azimuths.csv", azimuths);
  folder.write("angles.csv", angles);
  MeuseJob job;
  job.set("data", json("{\"file\": \"samples.csv\", \"x\": \"x\", \"y\": \"y\"}"));
  job.set("variable", json("{\"column\": \"v\"}"));
  job.set("grid", json("{\"origin\": [0, 0], \"cell\": [1, 1], \"nodes\": [10, 10], \"values\": "
                       "{\"file\": \"azimuths.csv\", \"x\": \"x\", \"y\": \"y\"}}"));
  job.set("model.structures.0",
          json("{\"type\": \"Spherical\", \"sill\": 1, \"ranges\": [20, 5], \"azimuth\": 30}"));
  job.set("kriging", json("{\"local\": {\"azimuth\": \"a\"}}"));
  job.set("neighborhood", json("{\"type\": \"moving\", \"radii\": [9, 5], \"azimuth\": 30, "
                               "\"maximum\": 4}"));
  job.set("output", json("{\"directory\": \".\", \"grid\": [\"azimuth.csv\"]}"));
  const auto run = [&] {
    EXPECT_EQ(QProcess::execute(ORVENAL_PROGRAM, {"run", "-q", job.writeTo(folder)}), 0);
  };
  run();
  job.set("conventions.angles", "mathematical").set("grid.values.file", "angles.csv");
  job.set("model.structures.0.azimuth", 60).set("neighborhood.azimuth", 60);
  job.set("output.grid", json("[\"mathematical.csv\"]"));
  run();
  const QList<QByteArray> a = apptest::readFile(folder.path("azimuth.csv")).split('\n');
  const QList<QByteArray> b = apptest::readFile(folder.path("mathematical.csv")).split('\n');
  ASSERT_EQ(a.size(), b.size());
  ASSERT_EQ(a.size(), 102);
  int nDifferent = 0;
  for (int i = 1; i <= 100; ++i) {
    EXPECT_NEAR(a[i].split(',')[2].toDouble(), b[i].split(',')[2].toDouble(), 1e-9) << i;
    nDifferent += a[i].split(',')[2] == a[1].split(',')[2] ? 0 : 1;
  }
  EXPECT_GT(nDifferent, 90);
}

TEST(Conventions, AreSaidByTheReport)
{
  const apptest::Folder folder;
  MeuseJob job = withConventions("{\"ranges\": \"scale\", \"angles\": \"mathematical\"}");
  job.set("model.structures.0",
          json("{\"type\": \"Gaussian\", \"sill\": 1, \"ranges\": [500, 200], \"azimuth\": 60}"));
  job.set("neighborhood", json("{\"type\": \"moving\", \"radii\": [900, 400], \"azimuth\": 0, "
                               "\"maximum\": 9}"));
  job.set("grid.cell", json("[400, 400]")).set("grid.nodes", json("[8, 10]"));
  job.set("output", json("{\"report\": \"report.html\"}"));
  EXPECT_EQ(QProcess::execute(ORVENAL_PROGRAM, {"run", "-q", job.writeTo(folder)}), 0);
  const std::string html = apptest::readFile(folder.path("report.html")).toStdString();
  const char *const parts[] = {"Practical range",
                               "865.409 m",
                               "346.164 m",  // 1.730818 times
                               "azimuth 30°",
                               "(0.500000, 0.866025, 0.000000)",
                               "(-0.866025, 0.500000, 0.000000)",
                               "(0.000000, 0.000000, 1.000000)",  // W
                               "azimuth 90°",
                               "(1.000000, 0.000000, 0.000000)",
                               "Ranges are practical ranges"};
  for (const char *part : parts)
    EXPECT_THAT(html, HasSubstr(part));
}

TEST(Conventions, AreChecked)
{
  const apptest::Folder folder;
  const auto errorOf = [&](const char *conventions) {
    try {
      readJob(withConventions(conventions).writeTo(folder));
    } catch (const UsageError &error) {
      return error.getMessage().toStdString();
    }
    return std::string("no error");
  };
  EXPECT_THAT(errorOf("{\"angles\": \"degrees\"}"),
              HasSubstr("conventions.angles: \"degrees\" is not known; allowed: \"azimuth\""));
  EXPECT_THAT(errorOf("{\"range\": \"scale\"}"), HasSubstr("did you mean \"ranges\"?"));
  EXPECT_EQ(errorOf("{}"), "no error");
}
