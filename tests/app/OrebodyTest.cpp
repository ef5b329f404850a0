#include "TestFiles.h"

#include <QProcess>

#include <gmock/gmock.h>

#include <cmath>

using apptest::json;
using apptest::valueAt;
using apptest::withValue;
using testing::HasSubstr;

namespace {

const char *const folderOfExample = ORVENAL_EXAMPLES "/orebody/";

/// What the script of the example prints.
QByteArray runScript(const QStringList &arguments, const QByteArray &input = QByteArray())
{
  QProcess python;
  python.start("/usr/bin/python3",
               QStringList{QString(folderOfExample) + "make_samples.py"} + arguments);
  python.write(input);
  python.closeWriteChannel();
  EXPECT_TRUE(python.waitForFinished(60000));
  EXPECT_EQ(python.exitCode(), 0) << python.readAllStandardError().constData();
  return python.readAllStandardOutput();
}

/// The job of the example with large blocks, without the pictures.
QByteArray coarseJob()
{
  QJsonValue job =
      QJsonDocument::fromJson(apptest::readFile(QString(folderOfExample) + "job.json")).object();
  const auto set = [&](const char *place, const QJsonValue &value) {
    job = withValue(job, QString(place).split('.'), value);
  };
  set("data.file", QString(folderOfExample) + "boreholes.csv");
  set("grid.origin", json("[4225, 7825, 140]"));
  set("grid.cell", json("[50, 50, 30]"));
  set("grid.nodes", json("[20, 16, 9]"));
  set("output.data", QJsonValue(QJsonValue::Undefined));
  set("output.variogram", QJsonValue(QJsonValue::Undefined));
  set("output.crossValidation", json("{\"table\": \"errors.csv\", \"map\": \"error_map.png\"}"));
  return QJsonDocument(job.toObject()).toJson();
}

/// The numbers of a column; empty fields are left out.
std::vector<double> readColumn(const QString &path, const QString &name)
{
  const QStringList lines = QString::fromUtf8(apptest::readFile(path)).split('\n');
  const int column = lines.first().split(',').indexOf(name);
  EXPECT_GE(column, 0) << name.toStdString();
  std::vector<double> values;
  for (const QString &line : lines.mid(1)) {
    const QString field = line.section(',', column, column);
    if (!field.isEmpty())
      values.push_back(field.toDouble());
  }
  return values;
}

double meanOf(const std::vector<double> &values)
{
  double sum = 0.;
  for (const double value : values)
    sum += value;
  return sum / double(values.size());
}

/// Sum of products of deviations from the means.
double products(const std::vector<double> &a, const std::vector<double> &b)
{
  const double meanA = meanOf(a);
  const double meanB = meanOf(b);
  double sum = 0.;
  for (std::size_t i = 0; i < a.size(); ++i)
    sum += (a[i] - meanA) * (b[i] - meanB);
  return sum;
}

}  // namespace

TEST(Orebody, IsMadeByItsScript)
{
  const QByteArray samples = apptest::readFile(QString(folderOfExample) + "boreholes.csv");
  EXPECT_EQ(runScript({}), samples);
  EXPECT_LT(samples.size(), 150000);
  EXPECT_GT(samples.count('\n'), 800);
}

TEST(Orebody, IsFoundByKriging)
{
  const apptest::Folder folder;
  const apptest::Outcome outcome =
      apptest::runProgram({"run", folder.write("job.json", coarseJob())});
  ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_THAT(outcome.output, HasSubstr("copper [%]"));
  EXPECT_EQ(folder.list("out"),
            (QStringList{"out/blocks.csv", "out/deviation.png", "out/error_map.png",
                         "out/errors.csv", "out/estimate.png", "out/report.html"}));
  const std::string report = apptest::readFile(folder.path("out/report.html")).toStdString();
  for (const char *caption : {"Estimate of copper [%], sections", "Map of the standardized errors",
                              "The samples, coloured by copper [%]", "Histogram of copper [%]"})
    EXPECT_THAT(report, HasSubstr(caption));

  // The formula of the script at the centres of the blocks is all that is taken from it.
  const QString blocks = folder.path("out/blocks.csv");
  const QString truth =
      folder.write("truth.csv", runScript({"--truth"}, apptest::readFile(blocks)));
  const std::vector<double> estimates = readColumn(blocks, "estimate");
  const std::vector<double> grades = readColumn(truth, "grade");
  ASSERT_EQ(estimates.size(), 2880u);
  ASSERT_EQ(grades.size(), 2880u);
  // Holes are 140 m apart, half the longest range: correlations of 0.6 were found for six seeds.
  const double covariance = products(estimates, grades);
  EXPECT_GT(covariance / std::sqrt(products(estimates, estimates) * products(grades, grades)),
            0.55);
  EXPECT_NEAR(meanOf(estimates) / meanOf(grades), 1., 0.05);
  // Where blocks are estimated as high, they are: no conditional bias.
  EXPECT_NEAR(covariance / products(estimates, estimates), 1., 0.25);

  // A hole is left out as a whole, so errors keep near the deviation that the model promises.
  const std::vector<double> errors = readColumn(folder.path("out/errors.csv"), "standardizedError");
  ASSERT_GT(errors.size(), 800u);
  double squares = 0.;
  for (const double error : errors)
    squares += error * error;
  EXPECT_NEAR(std::sqrt(squares / double(errors.size())), 1., 0.2);
}
