#include "TestFiles.h"
#include "app/io/CsvReader.h"
#include "app/study/DataChecks.h"
#include "app/study/Job.h"
#include "app/study/Samples.h"
#include "basic/base/NbbGlobal.h"

#include <QThread>

#include <gmock/gmock.h>

#include <atomic>
#include <cmath>
#include <random>

#include <sys/stat.h>
#include <unistd.h>

using namespace orvenal;
using apptest::json;
using apptest::Outcome;
using apptest::runProgram;
using testing::HasSubstr;
using testing::Not;

namespace {

struct Point
{
  double x;
  double y;
  double value;
};

/// A smooth field at places that are multiples of 1/1024.
std::vector<Point> samplesOf(int n)
{
  std::mt19937 random(23);
  std::vector<Point> points;
  for (int i = 0; i < n; ++i) {
    const double x = double(random() % 102400) / 1024.;
    const double y = double(random() % 102400) / 1024.;
    points.push_back({x, y, std::sin(x / 20.) + std::cos(y / 15.) + double(random() % 100) / 500.});
  }
  return points;
}

QByteArray toCsv(const std::vector<Point> &points, const QByteArray &header = "x,y,v")
{
  QByteArray text = header + '\n';
  const auto number = [](double value) { return QByteArray::number(value, 'g', 17); };
  for (const Point &point : points)
    text += number(point.x) + ',' + number(point.y) + ',' + number(point.value) + '\n';
  return text;
}

/// A study of the column "v" of d.csv; changed by places and values.
class Study
{
public:
  Study()
      : _job(json(R"({"data": {"file": "d.csv", "x": "x", "y": "y"}, "variable": {"column": "v"},
          "grid": {"origin": [5, 5], "cell": [10, 10], "nodes": [10, 10]},
          "model": {"nugget": 0.1, "structures": [{"type": "Spherical", "sill": 1, "range": 50}]},
          "neighborhood": {"type": "moving", "radius": 60, "maximum": 8},
          "output": {"grid": ["g.csv"]}})"))
  {
  }

  Study &set(const QString &place, const QJsonValue &value)
  {
    _job = apptest::withValue(_job, place.split('.'), value);
    return *this;
  }
  Study &fits()
  {
    set("model", QJsonValue::Undefined).set("variogram", json("{\"lag\": 5, \"lags\": 10}"));
    return set("fit", json("{}"));
  }

  Outcome run(const QByteArray &data) const
  {
    _folder.write("d.csv", data);
    return runIn(_folder);
  }
  Outcome runIn(const apptest::Folder &folder) const
  {
    folder.write("job.json", QJsonDocument(_job.toObject()).toJson());
    return runProgram({"run", "--overwrite", "job.json"}, folder.path(""));
  }

  QByteArray file(const QString &name) const { return apptest::readFile(_folder.path(name)); }

  /// The estimates, in the order of the nodes.
  std::vector<double> estimates() const
  {
    CsvReader reader(_folder.path("g.csv"), "g.csv", TableFormat());
    std::vector<double> values;
    while (reader.next())
      values.push_back(reader.getNumber(2));
    return values;
  }

private:
  QJsonValue _job;
  apptest::Folder _folder;
};

}  // namespace

TEST(BadData, FewSamplesAndEqualOnesAreKriged)
{
  Study study;
  study.set("output.report", "r.html").set("output.maps", json("{\"estimate\": \"e.png\"}"));
  study.set("crossValidation", json("{}"));
  study.set("output.crossValidation", json("{\"picture\": \"x.png\"}"));
  for (const std::vector<Point> &points :
       {std::vector<Point>{{50., 50., 7.}}, {{50., 50., 7.}, {52., 50., 7.}}}) {
    const Outcome outcome = study.run(toCsv(points));
    ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
    int nDefined = 0;
    for (const double estimate : study.estimates()) {
      if (!NbbGlobal::isDefined(estimate))
        continue;
      EXPECT_NEAR(estimate, 7., 1e-12);
      ++nDefined;
    }
    EXPECT_GT(nDefined, 80);
  }
  const Outcome ten = Study().fits().run(toCsv(samplesOf(10)));
  EXPECT_EQ(ten.exitCode, 0) << ten.errors;
}

TEST(BadData, SamplesOnALineHaveVariogramsAndEstimates)
{
  for (const auto &[dx, dy] : {std::pair(2.5, 0.), {0., 2.5}, {2.5, 2.5}}) {
    std::vector<Point> points = samplesOf(40);
    for (int i = 0; i < 40; ++i) {
      points[std::size_t(i)].x = i * dx;
      points[std::size_t(i)].y = i * dy;
    }
    Study study;
    study.fits().set("variogram", json("{\"regular\": 4}"));
    study.set("output.variogram", json("{\"picture\": \"v.svg\", \"map\": \"m.png\"}"));
    const Outcome outcome = study.run(toCsv(points));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    for (const double estimate : study.estimates())
      EXPECT_TRUE(!NbbGlobal::isDefined(estimate) || std::abs(estimate) < 3.) << estimate;
  }
}

TEST(BadData, NamesOfColumnsMayBeAnything)
{
  Study plain;
  ASSERT_EQ(plain.run(toCsv(samplesOf(30))).exitCode, 0);
  for (const QString &name :
       {QString("Zn (mg/kg)"), QString::fromUtf8("teneur en m\xC3\xA9tal"), QString("a\"b"),
        QString("it's"), QString("a,b"), QString("<b>&amp;"), QString(5000, 'x')}) {
    Study study;
    study.set("variable.column", name);
    const bool hasReport = name.size() > 100 || name.contains('<');
    if (hasReport)
      study.set("output.report", "r.html");

    const QString quoted = '"' + QString(name).replace("\"", "\"\"") + '"';
    const Outcome outcome = study.run(toCsv(samplesOf(30), "x,y," + quoted.toUtf8()));
    ASSERT_EQ(outcome.exitCode, 0) << outcome.errors.substr(0, 1000);
    EXPECT_EQ(study.estimates(), plain.estimates());
    if (hasReport) {
      EXPECT_TRUE(QString::fromUtf8(study.file("r.html")).contains(name.toHtmlEscaped()));
    }
  }
}

TEST(BadData, CoordinatesSayWhatIsWrongWithThem)
{
  // One column for both.
  const Outcome twice = Study().set("data.y", "x").run(toCsv(samplesOf(9)));
  EXPECT_EQ(twice.exitCode, 2);
  EXPECT_THAT(twice.errors, HasSubstr("data.y: column \"x\" is another coordinate already"));

  // A grid elsewhere.
  Study elsewhere;
  elsewhere.set("grid.origin", json("[5005, -300]")).set("output.report", "r.html");
  const Outcome missed = elsewhere.run("x,y,v\n1,2,3\n4,60,5\n700,800,NA\n");
  EXPECT_EQ(missed.exitCode, 0);
  const char *const boxes =
      "the grid (x 5000 to 5100, y -305 to -205) and the samples "
      "(x 1 to 4, y 2 to 60) do not meet";
  EXPECT_THAT(missed.errors, HasSubstr(std::string("warning: ") + boxes));
  EXPECT_THAT(elsewhere.file("r.html").toStdString(), HasSubstr(boxes));
  EXPECT_THAT(Study().run(toCsv(samplesOf(9))).errors, Not(HasSubstr("do not meet")));
}

TEST(BadData, CoordinatesThatSeemToBeDegrees)
{
  struct Case
  {
    const char *x;
    const char *y;
    double west, south, width, height;
    const char *crs;
    const char *unit;
    bool isWarned;
  };
  const Case cases[] = {
      {"Longitude", "lat_wgs84", 5.7, 50.9, 0.04, 0.04, "", "", true},
      {"LON", "LAT", -80., -10., 160., 70., "", "", true},
      {"L\u00E4nge [\u00B0]", "Breite [\u00B0]", 5., 47., 10., 8., "", "", true},
      {"longitud", "latitud", -70., -33., 1., 1., "", "", true},
      {"GPS lat", "GPS long", 50., 5., 1., 1., "", "", true},
      {"lng", "lat", 359., 0., 1., 1., "", "", true},
      {"lon", "lat", 178600., 329700., 3000., 4000., "", "", false},  // in metres for all that
      {"Longitude", "Latitude", 5.7, 50.9, 0.04, 0.04, "EPSG:28992", "", false},
      {"Longitude", "Latitude", 5.7, 50.9, 0.04, 0.04, "", "m", false},
      {"x", "y", 178600., 329700., 3000., 4000., "EPSG:4326", "", true},
      {"x", "y", 0., 0., 80., 80., "", "\u00B0", true},
      {"x", "y", 5.7, 50.9, 0.04, 0.04, "", "", true},  // by the values alone
      {"x", "y", -4.8, 41.2, 3.9, 2.8, "", "", true},
      {"x", "y", 5.7, 50.9, 0.04, 0.04, "", "m", false},
      {"x", "y", 5.7, 50.9, 0.04, 0.04, "EPSG:28992", "", false},
      {"x", "y", 0., 0., 80., 80., "", "", false},  // local grids
      {"x", "y", 0.5, 0.5, 7., 5., "", "", false},
      {"x", "y", -40., -40., 80., 80., "", "", false},
      {"x", "y", 100., 50., 80., 40., "", "", false},
      {"x", "y", 50., 50., 0., 0., "", "", false},
      {"along", "platform", 0., 0., 80., 80., "", "", false},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(testing::Message() << c.x << ' ' << c.west << ' ' << c.crs << ' ' << c.unit);
    Job job;
    job.data.x = QString::fromUtf8(c.x);
    job.data.y = QString::fromUtf8(c.y);
    job.crs = c.crs;
    job.lengthUnit = QString::fromUtf8(c.unit);
    Samples samples;
    samples.x = {c.west, c.west + c.width};
    samples.y = {c.south + c.height, c.south};
    const QString text = DataChecks::seemsToBeDegrees(job, samples);
    EXPECT_EQ(text.contains("shorter than one of latitude"), c.isWarned) << qPrintable(text);
    EXPECT_EQ(text.isEmpty(), !c.isWarned);
  }
  Study study;
  study.set("grid.origin", json("[5, 50]")).set("output.report", "r.html");
  const Outcome outcome = study.run("x,y,v\n5.1,50.2,3\n5.3,50.4,5\n");
  EXPECT_THAT(outcome.errors, HasSubstr("warning: the coordinates (x 5.1 to 5.3, y 50.2 to 50.4) "
                                        "could be degrees"));
  EXPECT_THAT(study.file("r.html").toStdString(), HasSubstr("could be degrees"));
}

TEST(BadData, LargeCoordinatesWithSmallDifferences)
{
  // The places are the same to the bit but for the shift, so are all distances.
  std::vector<Point> points = samplesOf(60);
  Study near;
  near.fits();
  ASSERT_EQ(near.run(toCsv(points)).exitCode, 0);
  constexpr double shift = 16777216.;
  for (Point &point : points) {
    point.x += shift;
    point.y += shift;
  }
  Study far;
  far.fits().set("grid.origin", QJsonArray{shift + 5., shift + 5.});
  const Outcome outcome = far.run(toCsv(points));
  ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
  const std::vector<double> expected = near.estimates();
  const std::vector<double> found = far.estimates();
  for (std::size_t i = 0; i < expected.size(); ++i)
    EXPECT_NEAR(found[i], expected[i], 1e-9);
}

TEST(BadData, ValuesOfAnySize)
{
  const std::vector<Point> points = samplesOf(60);
  Study plain;
  plain.fits();
  ASSERT_EQ(plain.run(toCsv(points)).exitCode, 0);
  const std::vector<double> expected = plain.estimates();
  for (const double factor : {1e-12, 1e12}) {
    std::vector<Point> scaled = points;
    for (Point &point : scaled)
      point.value *= factor;
    Study study;
    study.fits().set("output.report", "r.html");
    study.set("output.maps", json("{\"estimate\": \"e.png\"}"));
    const Outcome outcome = study.run(toCsv(scaled));
    ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
    const std::vector<double> found = study.estimates();
    for (std::size_t i = 0; i < expected.size(); ++i)
      EXPECT_NEAR(found[i] / factor, expected[i], 1e-9);
  }

  // From 1e30 on the libraries take numbers, and so variances, for undefined.
  std::vector<Point> huge = points;
  for (Point &point : huge)
    point.value *= 1e25;
  const Outcome outcome = Study().fits().run(toCsv(huge));
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("the values of \"v\" are too large or too small"));
}

TEST(BadData, FilesThatAreNone)
{
  const apptest::Folder folder;
  ASSERT_EQ(::symlink("gone.csv", qPrintable(folder.path("link.csv"))), 0);
  ASSERT_EQ(::mkfifo(qPrintable(folder.path("fifo.csv")), 0600), 0);
  ASSERT_TRUE(QDir().mkpath(folder.path("folder.csv")));
  const std::pair<const char *, const char *> cases[] = {
      {"link.csv", "data.file: there is no file"},
      {"fifo.csv", "fifo.csv\" is not a regular file"},
      {"folder.csv", "folder.csv\" is a folder"},
      {"/dev/zero", "is not a regular file"},
  };
  for (const auto &[name, message] : cases) {
    const Outcome outcome = Study().set("data.file", name).runIn(folder);
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_THAT(outcome.errors, HasSubstr(message));
  }
  folder.write("header.csv", "x,y,v\n");
  folder.write("units.csv", "x,y,v\nm,m,ppm\n1,2,3\n");
  const struct
  {
    QStringList arguments;
    const char *message;
  } commands[] = {
      {{"stats", "header.csv"}, "orvenal: header.csv: no rows below the header"},
      {{"init", "header.csv"}, "orvenal: header.csv: no rows below the header"},
      {{"convert", "header.csv", "g.nc"}, "orvenal: header.csv: no rows below the header"},
      {{"init", "units.csv"}, "units.csv: the coordinates \"x\" hold texts, such as \"m\""},
      {{"stats", "units.csv"}, "warning: \"v\" is left out, as 1 of its values are texts, such as"},
      {{"stats", "fifo.csv"}, "\"fifo.csv\" is not a regular file: inputs are read more than once"},
      {{"info", "fifo.csv"}, "\"fifo.csv\" is not a regular file"},
      {{"init", "fifo.csv"}, "\"fifo.csv\" is not a regular file"},
      {{"convert", "fifo.csv", "g.csv"}, "\"fifo.csv\" is not a regular file"},
      {{"run", "folder.csv"}, "\"folder.csv\" is a folder"},
      {{"run", "gone.json"}, "there is no file \"gone.json\""},
  };
  const QStringList before = folder.list();
  for (const auto &command : commands) {
    const Outcome outcome = runProgram(command.arguments, folder.path(""));
    EXPECT_NE(outcome.exitCode, 0);
    EXPECT_THAT(outcome.errors, HasSubstr(command.message));
  }
  EXPECT_EQ(folder.list(), before);
}

TEST(BadData, AFileThatChangesWhileItIsReadIsAnError)
{
  const apptest::Folder folder;
  QByteArray rows;
  for (int i = 0; i < 300000; ++i)
    rows += QByteArray::number(i % 1000) + ',' + QByteArray::number(i / 1000) + ",1\n";
  const QString path = folder.write("d.csv", "x,y,v\n" + rows);
  std::atomic<bool> isDone = false;
  const std::unique_ptr<QThread> writer(QThread::create([&] {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::Append));
    while (!isDone) {
      file.write("1,1,1\n");
      file.flush();
      QThread::msleep(2);
    }
  }));
  writer->start();
  const Outcome outcome = Study().runIn(folder);
  isDone = true;
  writer->wait();
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("d.csv: changed while it was read"));
}

TEST(BadData, TextThatIsNoTable)
{
  const auto errorsOf = [](const QByteArray &data) {
    const Outcome outcome = Study().run(data);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_LT(outcome.errors.size(), 600u);
    return outcome.errors;
  };
  EXPECT_THAT(errorsOf(QByteArray("x,y,v\n1,2,3\n1,2,4\0\n", 19)), HasSubstr("d.csv, line 3"));
  EXPECT_THAT(errorsOf(QByteArray(1 << 20, '\0')), HasSubstr("d.csv"));
  EXPECT_THAT(errorsOf("x,y,v\n1,2,3\n1,2," + QByteArray(10 << 20, '7') + '\n'),
              HasSubstr("d.csv, line 3: column 3"));
  EXPECT_THAT(errorsOf("x,y,v\n1,2,\"3\n4,5,6\n"), HasSubstr("d.csv"));
}

TEST(BadData, TenThousandColumns)
{
  const std::vector<Point> points = samplesOf(30);
  QByteArrayList header = {"x", "y", "v"};
  for (int i = 3; i < 10000; ++i)
    header << "c" + QByteArray::number(i);
  QByteArray data = header.join(',') + '\n';
  for (const QByteArray &row : toCsv(points).split('\n').mid(1, 30))
    data += row + QByteArray(9997, ',') + '\n';
  Study wide, narrow;
  const Outcome outcome = wide.run(data);
  ASSERT_EQ(outcome.exitCode, 0) << outcome.errors.substr(0, 1000);
  ASSERT_EQ(narrow.run(toCsv(points)).exitCode, 0);
  EXPECT_EQ(wide.estimates(), narrow.estimates());
  // Nobody reads ten thousand names in a message.
  const Outcome missing = Study().set("variable.column", "vv").run(data);
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_THAT(missing.errors, HasSubstr("there is no column \"vv\""));
  EXPECT_LT(missing.errors.size(), 2000u);
}
