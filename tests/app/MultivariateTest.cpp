#include "TestFiles.h"
#include "app/io/CsvReader.h"
#include "geos/matrix/NgmMatrix.h"
#include "support/CsvFile.h"

#include <gmock/gmock.h>

#include <cmath>
#include <map>
#include <random>

using namespace orvenal;
using apptest::json;
using apptest::MeuseJob;
using apptest::Outcome;
using apptest::runProgram;
using testing::HasSubstr;

namespace {

struct Lag
{
  double distance;
  double pairs;
  double value;
};

/// The lags of each pair of variables in a table of variograms.
std::map<QStringList, std::vector<Lag>> readVariograms(const QString &path)
{
  CsvReader reader(path, path, TableFormat());
  EXPECT_EQ(reader.getColumns().mid(0, 3), (QStringList{"variable1", "variable2", "direction"}));
  std::map<QStringList, std::vector<Lag>> variograms;
  while (reader.next())
    variograms[{reader.getText(0), reader.getText(1)}].push_back(
        {reader.getNumber(5), reader.getNumber(6), reader.getNumber(7)});
  return variograms;
}

MeuseJob meuseJob(const QStringList &columns)
{
  MeuseJob job;
  job.remove("model").remove("grid").remove("neighborhood");
  job.remove("output.grid").remove("output.maps");
  job.set("variogram", json("{\"lag\": 100, \"lags\": 15}"));
  job.set("variable", json("{\"column\": \"zinc\", \"transform\": \"log\", \"name\": \"zinc\"}"));
  QJsonArray covariates;
  for (const QString &column : columns)
    covariates.append(
        QJsonObject{{"column", column}, {"transform", "log"}, {"name", QString(column)}});
  job.set("covariates", covariates);
  return job;
}

NgmMatrix toMatrix(const QJsonValue &rows)
{
  const int n = rows.toArray().size();
  NgmMatrix matrix(n, n, true);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j)
      matrix.setElement(i, j, rows.toArray()[i].toArray()[j].toDouble());
  }
  return matrix;
}

QJsonObject readModel(const QString &path)
{
  return QJsonDocument::fromJson(apptest::readFile(path)).object();
}

/// Nugget and sills of a model.
std::vector<NgmMatrix> matricesOf(const QJsonObject &model)
{
  std::vector<NgmMatrix> matrices;
  if (model.contains("nugget"))
    matrices.push_back(toMatrix(model.value("nugget")));
  for (const QJsonValue &structure : model.value("structures").toArray())
    matrices.push_back(toMatrix(structure.toObject().value("sill")));
  return matrices;
}

double smallestEigenvalue(const NgmMatrix &matrix)
{
  NgmMatrix values, vectors;
  matrix.eigenValues(values, vectors, false, false, 1);
  return values(0, 0);
}

/// Estimates by place.
std::map<std::pair<double, double>, double> readEstimates(const QString &path)
{
  CsvReader reader(path, path, TableFormat());
  const int column = reader.findColumn("estimate", "test");
  std::map<std::pair<double, double>, double> estimates;
  while (reader.next())
    estimates[{reader.getNumber(0), reader.getNumber(1)}] = reader.getNumber(column);
  return estimates;
}

}  // namespace

TEST(Multivariate, ComputesTheCrossVariogramsOfTheReference)
{
  const apptest::Folder folder;
  MeuseJob job = meuseJob({"lead", "copper"});
  job.set("output.variogram", json("{\"table\": \"v.csv\", \"picture\": \"v.svg\"}"));
  const Outcome outcome = runProgram({"run", job.writeTo(folder)});
  ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
  const auto variograms = readVariograms(folder.path("out/v.csv"));
  ASSERT_EQ(variograms.size(), 6u);
  const testsupport::CsvFile reference("meuse/cross_vario_centred.csv");
  const std::map<QString, std::string> names = {{"zinc", "lz"}, {"lead", "ll"}, {"copper", "lc"}};
  for (const auto &[pair, lags] : variograms) {
    const std::string column = "g_" + names.at(pair[0]) + '_' + names.at(pair[1]);
    ASSERT_EQ(lags.size(), 15u);
    for (std::size_t k = 0; k < lags.size(); ++k) {
      EXPECT_EQ(lags[k].pairs, reference["np"][k]);
      // The reference has 15 digits.
      EXPECT_NEAR(lags[k].distance, reference["mean_dist"][k], 1e-12 * lags[k].distance);
      EXPECT_NEAR(lags[k].value, reference[column][k], 1e-12) << column;
    }
  }
  const std::string picture = apptest::readFile(folder.path("out/v.svg")).toStdString();
  const std::string report = apptest::readFile(folder.path("out/report.html")).toStdString();
  for (const char *title : {"zinc", "lead × zinc", "copper × lead", "copper"}) {
    EXPECT_THAT(picture, HasSubstr(std::string(">") + title + '<'));
    EXPECT_THAT(report, HasSubstr(std::string(">") + title + '<'));
  }
}

TEST(Multivariate, CrossVariogramsTakeTheSamplesThatHaveBothVariables)
{
  constexpr int n = 60;
  constexpr double lag = 10.;
  std::mt19937 random(5);
  const auto uniform = [&] { return double(random() % 100000) / 1000.; };
  std::vector<std::array<double, 4>> samples;  // x, y, a, b
  QByteArray data = "x,y,a,b\n";
  for (int i = 0; i < n; ++i) {
    samples.push_back(
        {uniform(), uniform(), i % 3 == 0 ? -1. : uniform(), i % 4 == 0 ? -1. : uniform()});
    QByteArrayList fields;
    for (const double value : samples.back())
      fields << (value < 0. ? QByteArray("NA") : QByteArray::number(value, 'g', 17));
    data += fields.join(',') + '\n';
  }
  const apptest::Folder folder;
  folder.write("d.csv", data);
  folder.write("job.json", R"({"data": {"file": "d.csv", "x": "x", "y": "y"},
    "variable": {"column": "a"}, "covariates": [{"column": "b"}],
    "variogram": {"lag": 10, "lags": 5}, "output": {"variogram": {"table": "v.csv"}}})");
  const Outcome outcome = runProgram({"run", "job.json"}, folder.path(""));
  ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;

  const auto variograms = readVariograms(folder.path("v.csv"));
  const std::size_t columns[][2] = {{2, 2}, {2, 3}, {3, 3}};
  const QStringList names = {"", "", "a", "b"};
  for (const auto &[first, second] : columns) {
    std::map<int, std::pair<int, double>> expected;  // by lag: pairs, sum
    const auto has = [&](int i) { return samples[i][first] >= 0. && samples[i][second] >= 0.; };
    for (int i = 0; i < n; ++i) {
      for (int j = 0; j < i; ++j) {
        const double distance =
            std::hypot(samples[i][0] - samples[j][0], samples[i][1] - samples[j][1]);
        if (!has(i) || !has(j) || distance >= 4.5 * lag)
          continue;
        auto &[count, sum] = expected[int(distance / lag + 0.5)];
        ++count;
        sum += 0.5 * (samples[i][first] - samples[j][first]) *
               (samples[i][second] - samples[j][second]);
      }
    }
    const std::vector<Lag> &found = variograms.at({names[int(first)], names[int(second)]});
    ASSERT_EQ(found.size(), expected.size());
    auto lagFound = found.begin();
    for (const auto &[k, pair] : expected) {
      EXPECT_EQ(lagFound->pairs, pair.first);
      EXPECT_NEAR(lagFound->value, pair.second / pair.first, 1e-9);
      ++lagFound;
    }
  }
}

TEST(Multivariate, TheExampleKrigesWithTheModelThatItFits)
{
  const apptest::Folder folder;
  const QString meuse = ORVENAL_EXAMPLES "/meuse/";
  QJsonValue job =
      QJsonDocument::fromJson(apptest::readFile(meuse + "variants/cokriging-fit.json")).object();
  job = apptest::withValue(job, {"data", "file"}, meuse + "meuse.csv");
  job = apptest::withValue(job, {"grid", "mask", "file"}, meuse + "meuse_grid.csv");
  job = apptest::withValue(job, {"output", "directory"}, "out");
  const auto run = [&](const QStringList &options) {
    const QByteArray text = QJsonDocument(job.toObject()).toJson();
    return runProgram(QStringList{"run", "--overwrite"} + options +
                      QStringList{folder.write("j.json", text)});
  };
  const Outcome outcome = run({});
  ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;

  // Admissible: no matrix of sills has a negative eigenvalue. Near the variograms: what the
  // variables have in all is within a third of their variance or covariance.
  const QJsonObject model = readModel(folder.path("out/model.json"));
  NgmMatrix total(3, 3, true);
  for (const NgmMatrix &sills : matricesOf(model)) {
    EXPECT_GE(smallestEigenvalue(sills), 0.);
    total = total + sills;
  }
  const double covariances[3][3] = {
      {0.5177, 0.4608, 0.3243}, {0.4608, 0.4413, 0.2803}, {0.3243, 0.2803, 0.2567}};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j)
      EXPECT_NEAR(total(i, j), covariances[i][j], covariances[i][j] / 3.);
  }

  // Samples estimated from each other have the errors that the model predicts.
  EXPECT_THAT(outcome.output,
              testing::ContainsRegex("Root mean squared standardized error +(0.9|1.0)"));
  const std::string report = apptest::readFile(folder.path("out/cokriging-fit.html")).toStdString();
  EXPECT_THAT(report, HasSubstr("Matrices of sills"));
  EXPECT_THAT(report, HasSubstr("log copper × log lead"));

  // The written model gives the same estimates when it is read.
  const auto fitted = readEstimates(folder.path("out/cokriging-fit.csv"));
  EXPECT_EQ(fitted.size(), 3103u);
  job = apptest::withValue(job, {"model"}, json("{\"file\": \"fitted.json\"}"));
  QFile::copy(folder.path("out/model.json"), folder.path("fitted.json"));
  for (const char *part : {"fit", "variogram", "crossValidation"}) {
    job = apptest::withValue(job, {part}, QJsonValue::Undefined);
    job = apptest::withValue(job, {"output", part}, QJsonValue::Undefined);
  }
  QDir(folder.path("out")).removeRecursively();
  const Outcome again = run({"--quiet"});
  ASSERT_EQ(again.exitCode, 0) << again.errors;
  for (const auto &[place, estimate] : readEstimates(folder.path("out/cokriging-fit.csv")))
    ASSERT_NEAR(estimate, fitted.at(place), 1e-9);
}

TEST(Multivariate, TheFitDoesNotDependOnTheUnitsOfVariables)
{
  const auto fit = [](const std::vector<double> &factors, const apptest::Folder &folder) {
    CsvReader reader(ORVENAL_EXAMPLES "/meuse/meuse.csv", "meuse.csv", TableFormat());
    QByteArray data = "x,y,a,b,c\n";
    while (reader.next()) {
      QByteArrayList fields = {QByteArray::number(reader.getNumber(0)),
                               QByteArray::number(reader.getNumber(1))};
      for (int i = 0; i < 3; ++i) {
        const int column = reader.findColumn(QStringList{"zinc", "lead", "copper"}[i], "test");
        fields << QByteArray::number(std::log(reader.getNumber(column)) * factors[std::size_t(i)],
                                     'g', 17);
      }
      data += fields.join(',') + '\n';
    }
    folder.write("d.csv", data);
    folder.write("job.json", R"({"data": {"file": "d.csv", "x": "x", "y": "y"},
      "variable": {"column": "a"}, "covariates": [{"column": "b"}, {"column": "c"}],
      "variogram": {"lag": 100, "lags": 15}, "fit": {"structures": ["Spherical", "Spherical"]},
      "output": {"fit": {"model": "m.json"}}})");
    const Outcome outcome =
        runProgram({"fit", "--quiet", "--overwrite", "job.json"}, folder.path(""));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    return readModel(folder.path("m.json"));
  };
  const apptest::Folder plain;
  const QJsonObject expected = fit({1., 1., 1.}, plain);
  const auto expectedMatrices = matricesOf(expected);
  for (const std::vector<double> &factors : {std::vector<double>{1., 1e4, 1.}, {1e12, 1., 1e-6}}) {
    const apptest::Folder folder;
    const QJsonObject found = fit(factors, folder);
    const auto matrices = matricesOf(found);
    ASSERT_EQ(matrices.size(), expectedMatrices.size());
    for (std::size_t m = 0; m < matrices.size(); ++m) {
      for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
          // Values are rounded when they are multiplied, and the fit stops a little elsewhere.
          EXPECT_NEAR(matrices[m](i, j) / factors[std::size_t(i)] / factors[std::size_t(j)],
                      expectedMatrices[m](i, j), 1e-9);
      }
    }
    const auto range = [](const QJsonObject &model) {
      return model.value("structures").toArray()[0].toObject().value("range").toDouble();
    };
    EXPECT_NEAR(range(found), range(expected), 1e-6);

    // A model of such sizes is as good when it is read.
    folder.write("job.json", R"({"data": {"file": "d.csv", "x": "x", "y": "y"},
      "variable": {"column": "a"}, "covariates": [{"column": "b"}, {"column": "c"}],
      "model": {"file": "m.json"}, "crossValidation": {}, "output": {"crossValidation": {"table": "x.csv"}},
      "neighborhood": {"type": "moving", "radius": 3000, "maximum": 8}})");
    plain.write("job.json", apptest::readFile(folder.path("job.json")));
    for (const apptest::Folder *where : {&plain, &folder}) {
      const Outcome outcome =
          runProgram({"run", "--quiet", "--overwrite", "job.json"}, where->path(""));
      ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
    }
    const auto estimates = readEstimates(plain.path("x.csv"));
    for (const auto &[place, estimate] : readEstimates(folder.path("x.csv")))
      EXPECT_NEAR(estimate / factors[0], estimates.at(place), 1e-7);
  }
}

TEST(Multivariate, SaysWhichVariablesHaveNoModel)
{
  struct Case
  {
    const char *covariate;  // values of the second variable, by rows
    const char *message;
  };
  const Case cases[] = {
      {"NA NA NA 4 5 6", "no lag holds a pair of samples with both \"a\" and \"b\""},
      {"1 NA NA NA NA NA", "no lag of the variogram of \"b\" holds a pair"},
      {"2 2 2 2 2 2", "all values of \"b\" are equal"},
      {"NA NA NA NA NA NA", "all values of column \"b\" are undefined"},
  };
  for (const Case &c : cases) {
    const apptest::Folder folder;
    QByteArray data = "x,y,a,b\n";
    const QByteArrayList values = QByteArray(c.covariate).split(' ');
    for (int i = 0; i < 6; ++i)
      data += QByteArray::number(i) + ",0," + (i < 3 ? QByteArray::number(i * i) : "NA") + ',' +
              values[i] + '\n';
    folder.write("d.csv", data);
    folder.write("job.json", R"({"data": {"file": "d.csv", "x": "x", "y": "y"},
      "variable": {"column": "a"}, "covariates": [{"column": "b"}],
      "variogram": {"lag": 1, "lags": 6}, "fit": {}})");
    const Outcome outcome =
        runProgram({"fit", "--quiet", "--overwrite", "job.json"}, folder.path(""));
    EXPECT_EQ(outcome.exitCode, 1) << c.message;
    EXPECT_THAT(outcome.errors, HasSubstr(c.message));
  }
}

TEST(Multivariate, RefusesSillsThatCannotBe)
{
  struct Case
  {
    const char *place;
    const char *matrix;
  };
  // Whatever the units: the correlation in the second one is 1.1.
  const Case cases[] = {
      {"model.nugget", "[[1, 2], [2, 1]]"},
      {"model.structures.0.sill", "[[1e12, 1.1], [1.1, 1e-12]]"},
      {"model.structures.0.sill", "[[0, 1], [1, 1]]"},
  };
  for (const Case &c : cases) {
    const apptest::Folder folder;
    MeuseJob job;
    job.set("covariates", json("[{\"column\": \"lead\"}]"))
        .set("model.nugget", json("[[0,0],[0,0]]"));
    job.set("model.structures.0.sill", json("[[1, 0], [0, 1]]")).set(c.place, json(c.matrix));
    const Outcome outcome = runProgram({"run", job.writeTo(folder)});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_THAT(outcome.errors, HasSubstr(QString(c.place).replace(".0", "[0]").toStdString() +
                                          ": the matrix is not positive semi-definite"));
  }
}
