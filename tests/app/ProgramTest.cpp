#include "TestFiles.h"
#include "app/io/CsvReader.h"
#include "basic/base/NbbGlobal.h"
#include "support/CsvFile.h"

#include <QProcess>
#include <QRegularExpression>

#include <gdal_priv.h>
#include <gmock/gmock.h>

#include <cmath>
#include <csignal>
#include <map>

using namespace orvenal;
using apptest::json;
using apptest::MeuseJob;
using apptest::Outcome;
using apptest::runProgram;
using testing::HasSubstr;
using testing::Not;

namespace {

Outcome runJob(const MeuseJob &job, const apptest::Folder &folder,
               const QStringList &options = QStringList())
{
  return runProgram(QStringList{"run", "--overwrite"} + options + QStringList{job.writeTo(folder)});
}

struct Node
{
  double estimate;
  double deviation;
  double variance;
};
using Nodes = std::map<std::pair<double, double>, Node>;

Nodes readNodes(const QString &path)
{
  CsvReader reader(path, path, TableFormat());
  EXPECT_EQ(reader.getColumns().mid(0, 5),
            (QStringList{"x", "y", "estimate", "deviation", "variance"}));
  Nodes nodes;
  while (reader.next())
    nodes[{reader.getNumber(0), reader.getNumber(1)}] = {reader.getNumber(2), reader.getNumber(3),
                                                         reader.getNumber(4)};
  return nodes;
}

/// 1e-9 relative: the reference has 15 digits, and the systems lose some.
void expectEqual(double found, double expected)
{
  EXPECT_NEAR(found, expected, 1e-9 * std::abs(expected));
}

void expectReference(const Nodes &nodes, const std::string &file, bool hasTies)
{
  const testsupport::CsvFile reference("meuse/" + file);
  ASSERT_EQ(nodes.size(), reference["x"].size());
  int nCompared = 0;
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (hasTies && reference["tie"][i] != 0.)
      continue;
    const auto found = nodes.find({reference["x"][i], reference["y"][i]});
    ASSERT_NE(found, nodes.end());
    expectEqual(found->second.estimate, reference["estimate"][i]);
    expectEqual(found->second.variance, reference["variance"][i]);
    expectEqual(found->second.deviation, std::sqrt(reference["variance"][i]));
    ++nCompared;
  }
  EXPECT_GT(nCompared, 3000);
}

/// What the job of a variant writes into its own folder.
Nodes runVariant(const QString &name, const apptest::Folder &folder)
{
  QJsonObject job = QJsonDocument::fromJson(
                        apptest::readFile(ORVENAL_EXAMPLES "/meuse/variants/" + name + ".json"))
                        .object();
  const QString meuse = ORVENAL_EXAMPLES "/meuse/";
  for (const char *table : {"data", "grid.mask", "grid.values", "kriging.faults"}) {
    const QStringList place = QString(table).split('.') << "file";
    const QString file = apptest::valueAt(job, place).toString();
    if (!file.isEmpty())
      job = apptest::withValue(job, place, QString(meuse + "variants/" + file)).toObject();
  }
  job = apptest::withValue(job, {"output", "directory"}, "out").toObject();
  const Outcome outcome =
      runProgram({"run", folder.write(name + ".json", QJsonDocument(job).toJson())});
  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_GT(apptest::readFile(folder.path("out/" + name + ".html")).size(), 10000);
  return readNodes(folder.path("out/" + name + ".csv"));
}

MeuseJob onlyCsv()
{
  MeuseJob job;
  job.set("output.grid", json("[\"k.csv\"]")).remove("output.maps").remove("output.report");
  return job;
}

}  // namespace

TEST(Program, KrigesTheMeuseSamples)
{
  const apptest::Folder folder;
  const Outcome outcome = runJob(MeuseJob(), folder);
  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_THAT(outcome.output, HasSubstr("log zinc [log(mg/kg)]"));
  EXPECT_THAT(outcome.errors, HasSubstr("Kriging: 3,103 nodes in "));
  EXPECT_EQ(folder.list("out"),
            (QStringList{"out/deviation.png", "out/estimate.png", "out/kriging.csv",
                         "out/kriging.tif", "out/report.html"}));
  expectReference(readNodes(folder.path("out/kriging.csv")), "krige_ok_nmax16.csv", true);
}

TEST(Program, KrigesWithAUniqueNeighborhoodAndAnisotropy)
{
  const apptest::Folder folder;
  MeuseJob job = onlyCsv();
  job.set("neighborhood", json("{\"type\": \"unique\"}"));
  ASSERT_EQ(runJob(job, folder).exitCode, 0);
  expectReference(readNodes(folder.path("out/k.csv")), "krige_ok_global.csv", false);

  job.remove("model.structures.0.range").set("model.structures.0.ranges", json("[1200, 480]"));
  job.set("model.structures.0.azimuth", 30);
  ASSERT_EQ(runJob(job, folder).exitCode, 0);
  expectReference(readNodes(folder.path("out/k.csv")), "krige_ok_aniso_global.csv", false);
}

TEST(Program, KrigesEveryVariantOfTheExamples)
{
  const apptest::Folder folder;
  expectReference(runVariant("simple", folder), "krige_sk_nmax16.csv", true);
  expectReference(runVariant("universal", folder), "krige_uk_xy_nmax32.csv", true);
  expectReference(runVariant("external-drift", folder), "krige_ked_sqrtdist_global.csv", false);

  // Blocks: the reference has another variance of the block itself.
  const Nodes blocks = runVariant("block", folder);
  const testsupport::CsvFile blockReference("meuse/krige_block40_ok_nmax16.csv");
  ASSERT_EQ(blocks.size(), blockReference["x"].size());
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    if (blockReference["tie"][i] == 0.)
      expectEqual(blocks.at({blockReference["x"][i], blockReference["y"][i]}).estimate,
                  blockReference["estimate"][i]);
  }

  const Nodes cokriged = runVariant("cokriging", folder);
  const testsupport::CsvFile reference("meuse/cokrige_ok_global_200.csv");
  for (std::size_t i = 0; i < reference["x"].size(); ++i) {
    const Node &node = cokriged.at({reference["x"][i], reference["y"][i]});
    expectEqual(node.estimate, reference["lz_estimate"][i]);
    expectEqual(node.variance, reference["lz_variance"][i]);
  }

  // Measurement errors with the variance of the nugget give what filtering the nugget gives.
  const Nodes filtered = runVariant("filter", folder);
  const Nodes withErrors = runVariant("measurement-error", folder);
  ASSERT_EQ(filtered.size(), withErrors.size());
  for (const auto &[place, node] : filtered)
    expectEqual(node.estimate, withErrors.at(place).estimate);

  // The block's own results, from variance, volume, mean and production.
  const Nodes precise = runVariant("super-kriging", folder);
  CsvReader table(folder.path("out/super-kriging.csv"), "super-kriging.csv", TableFormat());
  while (table.next()) {
    const double variance = table.getNumber(4);
    expectEqual(table.getNumber(5), variance * 1600.);
    expectEqual(table.getNumber(6), variance * 1600. / (5.9 * 5.9));
    expectEqual(table.getNumber(7), std::sqrt(variance * 1600. / (5.9 * 5.9) / 16000.));
  }
  EXPECT_EQ(precise.size(), blocks.size());

  // Nodes inside the closed fault are left out, those far from the faults do not know of them.
  const Nodes faulted = runVariant("faults", folder);
  EXPECT_EQ(faulted.at({180300., 332060.}).estimate, NbbGlobal::D_FFFF);
  const testsupport::CsvFile unfaulted("meuse/krige_ok_nmax16.csv");
  int nEqual = 0, nDifferent = 0;
  for (std::size_t i = 0; i < faulted.size(); ++i) {
    const Node &node = faulted.at({unfaulted["x"][i], unfaulted["y"][i]});
    if (node.estimate == NbbGlobal::D_FFFF)
      continue;
    const bool isEqual = std::abs(node.estimate - unfaulted["estimate"][i]) < 1e-9;
    ++(isEqual ? nEqual : nDifferent);
  }
  EXPECT_GT(nEqual, 1000);
  EXPECT_GT(nDifferent, 500);

  for (const char *name : {"rescaled", "collocated", "local-means", "local-anisotropy"}) {
    for (const auto &[place, node] : runVariant(name, folder)) {
      EXPECT_TRUE(node.estimate > 4. && node.estimate < 8.) << name;
      EXPECT_TRUE(node.variance > 0. && node.variance < 0.7) << name;
    }
  }
}

TEST(Program, WritesAGeoTiffThatSaysTheSame)
{
  const apptest::Folder folder;
  ASSERT_EQ(runJob(MeuseJob(), folder).exitCode, 0);
  const Nodes nodes = readNodes(folder.path("out/kriging.csv"));

  GDALAllRegister();
  const std::unique_ptr<GDALDataset> raster(
      GDALDataset::Open(qPrintable(folder.path("out/kriging.tif"))));
  ASSERT_TRUE(raster);
  ASSERT_EQ(raster->GetRasterXSize(), 78);
  ASSERT_EQ(raster->GetRasterYSize(), 104);
  ASSERT_EQ(raster->GetRasterCount(), 3);
  EXPECT_STREQ(raster->GetRasterBand(1)->GetDescription(), "estimate");
  EXPECT_STREQ(raster->GetRasterBand(1)->GetMetadataItem("long_name"),
               "Estimate of log zinc [log(mg/kg)]");
  EXPECT_TRUE(std::isnan(raster->GetRasterBand(1)->GetNoDataValue()));
  ASSERT_TRUE(raster->GetSpatialRef());
  EXPECT_STREQ(raster->GetSpatialRef()->GetAuthorityCode(nullptr), "28992");
  double transform[6];
  ASSERT_EQ(raster->GetGeoTransform(transform), CE_None);

  std::vector<double> estimate(78 * 104), deviation(78 * 104);
  for (int band : {1, 2})
    ASSERT_EQ(raster->GetRasterBand(band)->RasterIO(GF_Read, 0, 0, 78, 104,
                                                    band == 1 ? estimate.data() : deviation.data(),
                                                    78, 104, GDT_Float64, 0, 0),
              CE_None);
  std::size_t nDefined = 0;
  for (int row = 0; row < 104; ++row) {
    for (int column = 0; column < 78; ++column) {
      const double x = transform[0] + transform[1] * (column + 0.5);
      const double y = transform[3] + transform[5] * (row + 0.5);
      const std::size_t pixel = std::size_t(row) * 78 + column;
      const auto node = nodes.find({x, y});
      ASSERT_EQ(node == nodes.end(), std::isnan(estimate[pixel]));
      if (node == nodes.end())
        continue;
      EXPECT_EQ(estimate[pixel], node->second.estimate);
      EXPECT_EQ(deviation[pixel], node->second.deviation);
      ++nDefined;
    }
  }
  EXPECT_EQ(nDefined, nodes.size());
}

TEST(Program, WritesTheSameBytesWithAnyNumberOfThreads)
{
  const auto runWith = [](const char *threads, const QJsonValue &neighborhood) {
    const apptest::Folder folder;
    MeuseJob job;
    job.set("neighborhood", neighborhood).set("grid.rotation", 12).remove("grid.mask");
    const Outcome outcome = runJob(job, folder, {"--threads", threads, "--memory", "20 MB"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    QList<QByteArray> files;
    for (const QString &name : folder.list("out"))
      files << apptest::readFile(folder.path(name));
    // All that may differ in the report stands in its last section.
    files.last().truncate(files.last().indexOf("<section id=\"run\">"));
    return files;
  };
  for (const char *neighborhood :
       {"{\"type\": \"unique\"}",
        "{\"type\": \"moving\", \"radius\": 900, \"maximum\": 12, \"sectors\": 4}"}) {
    const QList<QByteArray> one = runWith("1", json(neighborhood));
    ASSERT_EQ(one.size(), 5);
    EXPECT_EQ(one, runWith("2", json(neighborhood)));
    EXPECT_EQ(one, runWith("8", json(neighborhood)));
  }
}

TEST(Program, LeavesUndefinedSamplesOutAndCountsThem)
{
  // The same samples, once without the last ten and once with ten undefined values.
  const QList<QByteArray> lines =
      apptest::readFile(ORVENAL_EXAMPLES "/meuse/meuse.csv").split('\n');
  const QByteArray header = "x;y;zinc\r\n";
  QByteArray fewer = header;
  QByteArray holes = header;
  for (int i = 1; i <= 155; ++i) {
    const QList<QByteArray> fields = lines[i].split(',');
    const QByteArray place = fields[0] + ',' + "0;" + fields[1] + ';';
    if (i <= 145)
      fewer += place + fields[5] + "\r\n";
    const char *const marks[] = {"NA", "", "-999", "-999,0"};
    holes += place + (i <= 145 ? fields[5] : QByteArray(marks[i % 4])) + "\r\n";
  }
  const apptest::Folder folder;
  const auto krige = [&](const QByteArray &data) {
    MeuseJob job = onlyCsv();
    job.set("data.file", folder.write("data.csv", data)).set("data.decimal", ",");
    const Outcome outcome = runJob(job, folder);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    return std::make_pair(apptest::readFile(folder.path("out/k.csv")), outcome);
  };
  const auto [expected, quiet] = krige(fewer);
  const auto [found, outcome] = krige(holes);
  EXPECT_EQ(found, expected);
  EXPECT_THAT(outcome.errors, HasSubstr("10 of the samples have no value"));
}

TEST(Program, KrigesInThreeDimensions)
{
  // A sample on a node of the grid is returned there, as there is no nugget.
  const apptest::Folder folder;
  folder.write("data.csv", "e n h v\n0 0 0 1.5\n10 0 0 2.5\n0 10 5 3.5\n10 10 5 0.5\n5 5 2 1\n");
  folder.write("job.json", R"({"data": {"file": "data.csv", "x": "e", "y": "n", "z": "h"},
    "variable": {"column": "v"},
    "grid": {"origin": [0, 0, 0], "cell": [10, 10, 5], "nodes": [2, 3, 2]},
    "model": {"structures": [{"type": "exponential", "sill": 2, "ranges": [30, 30, 10]}]},
    "neighborhood": {"type": "moving", "radii": [40, 40, 20], "maximum": 4},
    "output": {"grid": ["out.csv"], "report": "r.html"}})");
  const Outcome outcome = runProgram({"run", "job.json"}, folder.path(""));
  ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
  CsvReader reader(folder.path("out.csv"), "out.csv", TableFormat());
  EXPECT_EQ(reader.getColumns().mid(0, 4), (QStringList{"x", "y", "z", "estimate"}));
  std::map<std::vector<double>, double> found;
  std::vector<double> firstAxis;
  while (reader.next()) {
    firstAxis.push_back(reader.getNumber(0));
    found[{reader.getNumber(0), reader.getNumber(1), reader.getNumber(2)}] = reader.getNumber(3);
  }
  ASSERT_EQ(found.size(), 12u);
  EXPECT_EQ(firstAxis[1], 10.);  // the first axis is the fastest in files
  EXPECT_NEAR((found[{0., 0., 0.}]), 1.5, 1e-12);
  EXPECT_NEAR((found[{10., 0., 0.}]), 2.5, 1e-12);
  EXPECT_NEAR((found[{0., 10., 5.}]), 3.5, 1e-12);
  EXPECT_NEAR((found[{10., 10., 5.}]), 0.5, 1e-12);
}

TEST(Program, ComputesVariograms)
{
  const apptest::Folder folder;
  MeuseJob job;
  job.set("variogram", json("{\"lag\": 100, \"lags\": 15}"));
  job.set("output.variogram", json("{\"table\": \"v.csv\", \"picture\": \"v.svg\","
                                   " \"map\": \"m.png\", \"cloud\": \"c.svg\"}"));
  const Outcome outcome =
      runProgram({"variogram", "--quiet", job.writeTo(folder)}, folder.path(""));
  ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_EQ(folder.list("out"), (QStringList{"out/c.svg", "out/m.png", "out/v.csv", "out/v.svg"}));

  const testsupport::CsvFile reference("meuse/vario_centred_omni.csv");
  CsvReader table(folder.path("out/v.csv"), "v.csv", TableFormat());
  std::size_t lag = 0;
  for (; table.next(); ++lag) {
    ASSERT_LT(lag, reference["np"].size());
    EXPECT_EQ(table.getNumber(4), reference["np"][lag]);
    expectEqual(table.getNumber(3), reference["mean_dist"][lag]);
    expectEqual(table.getNumber(5), reference["gamma"][lag]);
  }
  EXPECT_EQ(lag, 15u);
  const std::string variogram = apptest::readFile(folder.path("out/v.svg")).toStdString();
  EXPECT_THAT(variogram, HasSubstr("variance of the samples"));
  EXPECT_THAT(variogram, HasSubstr(">model<"));

  // The model is one of variograms, and is drawn with no other curve.
  job.set("variogram.curve", "Madogram");
  ASSERT_EQ(runProgram({"variogram", "--quiet", job.writeTo(folder)}).exitCode, 0);
  const std::string madogram = apptest::readFile(folder.path("out/v.svg")).toStdString();
  EXPECT_THAT(madogram, HasSubstr("Madogram"));
  EXPECT_THAT(madogram, Not(HasSubstr(">model<")));
}

TEST(Program, ComputesVariogramsByDirections)
{
  // Values that differ along x only: pairs along y have none.
  const apptest::Folder folder;
  QByteArray data = "x,y,v\n";
  for (int i = 0; i < 64; ++i)
    data += QByteArray::number(i % 8) + ',' + QByteArray::number(i / 8) + ',' +
            QByteArray::number(i % 8) + '\n';
  folder.write("d.csv", data);
  folder.write("job.json", R"({"data": {"file": "d.csv", "x": "x", "y": "y"},
    "variable": {"column": "v"},
    "variogram": {"lag": 1, "lags": 4, "tolerance": 0.1,
      "directions": [{"azimuth": 0, "angularTolerance": 5, "name": "north"},
                     {"azimuth": 90, "angularTolerance": 5}]},
    "output": {"variogram": {"table": "v.csv"}, "report": "r.html"}})");
  const Outcome outcome = runProgram({"run", "job.json"}, folder.path(""));
  ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_THAT(outcome.output, HasSubstr("north"));
  CsvReader table(folder.path("v.csv"), "v.csv", TableFormat());
  int nLines = 0;
  for (; table.next(); ++nLines) {
    const double azimuth = table.getNumber(1);
    const double distance = table.getNumber(3);
    EXPECT_EQ(table.getNumber(4), 8. * (8. - distance));
    EXPECT_NEAR(table.getNumber(5), azimuth == 90. ? distance * distance / 2. : 0., 1e-12);
  }
  EXPECT_EQ(nLines, 6);
  const std::string html = apptest::readFile(folder.path("r.html")).toStdString();
  EXPECT_THAT(html, HasSubstr("Experimental variograms"));
  EXPECT_THAT(html, Not(HasSubstr("Neighborhood")));
}

TEST(Program, FitsAModelAndReadsItBack)
{
  const apptest::Folder folder;
  MeuseJob job;
  job.set("variogram", json("{\"lag\": 100, \"lags\": 15}")).set("fit", json("{}"));
  job.remove("model").set("output.fit", json("{\"model\": \"model.json\"}"));
  const Outcome fit = runProgram({"fit", job.writeTo(folder)});
  ASSERT_EQ(fit.exitCode, 0) << fit.errors;
  EXPECT_THAT(fit.output, HasSubstr("fitted   nugget 0.0"));
  EXPECT_EQ(folder.list("out"), QStringList{"out/model.json"});
  const QJsonObject model =
      QJsonDocument::fromJson(apptest::readFile(folder.path("out/model.json"))).object();
  const QJsonObject structure = model.value("structures").toArray().first().toObject();
  EXPECT_NEAR(model.value("nugget").toDouble(), 0.05, 0.03);
  EXPECT_NEAR(structure.value("sill").toDouble(), 0.59, 0.06);
  EXPECT_NEAR(structure.value("range").toDouble(), 900., 90.);

  // A run that fits and one that reads what was fitted krige alike.
  ASSERT_EQ(runJob(job, folder).exitCode, 0);
  const Nodes fitted = readNodes(folder.path("out/kriging.csv"));
  job.remove("fit").remove("output.fit");
  job.set("model", json("{\"file\": \"out/model.json\"}"));
  const Outcome outcome = runJob(job, folder);
  ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
  for (const auto &[place, node] : readNodes(folder.path("out/kriging.csv")))
    EXPECT_NEAR(node.estimate, fitted.at(place).estimate, 1e-9);
  EXPECT_THAT(apptest::readFile(folder.path("out/report.html")).toStdString(),
              HasSubstr(">model.json<"));
}

TEST(Program, SaysWhyThereIsNoVariogramOrModel)
{
  struct Case
  {
    const char *data;
    const char *command;
    const char *message;
  };
  const Case cases[] = {
      {"x,y,v\n1,2,3\n", "variogram", "all samples lie at one place"},
      {"x,y,v\n1,2,3\n1,2,4\n", "run", "all samples lie at one place"},
      {"x,y,v\n1,2,3\n1.2,2,3\n9,2,3\n1,8,3\n", "fit", "all values of \"v\" are equal"},
  };
  for (const Case &c : cases) {
    const apptest::Folder folder;
    folder.write("d.csv", c.data);
    folder.write("job.json", R"({"data": {"file": "d.csv", "x": "x", "y": "y"},
      "variable": {"column": "v"}, "variogram": {}, "fit": {},
      "output": {"variogram": {"picture": "v.png"}}})");
    const Outcome outcome = runProgram({c.command, "--quiet", "job.json"}, folder.path(""));
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, HasSubstr(c.message));
    EXPECT_EQ(folder.list(), (QStringList{"d.csv", "job.json"}));
  }
}

TEST(Program, CrossValidatesAFittedModel)
{
  const apptest::Folder folder;
  MeuseJob job;
  job.set("variogram", json("{\"lag\": 100, \"lags\": 15}")).set("fit", json("{}"));
  job.remove("model").set("crossValidation", json("{}"));
  job.set("output.crossValidation", json("{\"table\": \"x.csv\"}"));
  const Outcome outcome = runProgram({"xvalid", job.writeTo(folder)});
  ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_THAT(outcome.output, HasSubstr("Root mean squared standardized error     0.92"));
  EXPECT_EQ(folder.list("out"), QStringList{"out/x.csv"});
}

TEST(Program, FitsAnAnisotropicModel)
{
  // A linear combination of waves along one direction: the range across it is the shorter one.
  const apptest::Folder folder;
  QByteArray data = "x,y,v\n";
  const double azimuth = 30. * M_PI / 180.;
  for (int i = 0; i < 900; ++i) {
    const double x = i % 30, y = i / 30;
    const double along = x * std::sin(azimuth) + y * std::cos(azimuth);
    const double across = x * std::cos(azimuth) - y * std::sin(azimuth);
    double v = 0.;
    for (int k = 1; k < 9; ++k)
      v += std::sin(0.06 * k * along + 2.1 * k * k) + std::sin(0.2 * k * across + 1.3 * k * k);
    data +=
        QByteArray::number(x) + ',' + QByteArray::number(y) + ',' + QByteArray::number(v) + '\n';
  }
  folder.write("d.csv", data);
  folder.write("job.json", R"({"data": {"file": "d.csv", "x": "x", "y": "y"},
    "variable": {"column": "v"},
    "variogram": {"lag": 1, "lags": 12, "regular": 6}, "fit": {"structures": ["Gaussian"]},
    "output": {"fit": {"model": "m.json"}}})");
  const Outcome outcome = runProgram({"fit", "job.json"}, folder.path(""));
  ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
  const QJsonObject structure = QJsonDocument::fromJson(apptest::readFile(folder.path("m.json")))
                                    .object()
                                    .value("structures")
                                    .toArray()
                                    .first()
                                    .toObject();
  const QJsonArray ranges = structure.value("ranges").toArray();
  ASSERT_EQ(ranges.size(), 2);
  const double ratio = ranges[0].toDouble() / ranges[1].toDouble();
  const double found =
      std::fmod(structure.value("azimuth").toDouble() + (ratio < 1. ? 90. : 0.), 180.);
  EXPECT_GT(std::max(ratio, 1. / ratio), 1.5);
  EXPECT_NEAR(found, 30., 15.);
}

TEST(Program, CrossValidates)
{
  const apptest::Folder folder;
  MeuseJob job;
  job.set("output.crossValidation", json("{\"table\": \"x.csv\", \"picture\": \"x.png\"}"));
  job.set("crossValidation", json("{\"leaveOut\": \"sample\"}"));
  for (const auto &[neighborhood, file, hasTies] :
       {std::tuple("{\"type\": \"unique\"}", "meuse/loocv_ok_global.csv", false),
        std::tuple("{\"type\": \"moving\", \"radius\": 5000, \"maximum\": 16}",
                   "meuse/loocv_ok_nmax16.csv", true)}) {
    job.set("neighborhood", json(neighborhood));
    const Outcome outcome = runProgram({"xvalid", job.writeTo(folder)});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(folder.list("out"), (QStringList{"out/x.csv", "out/x.png"}));
    const testsupport::CsvFile reference(file);
    CsvReader table(folder.path("out/x.csv"), "x.csv", TableFormat());
    double squares = 0.;
    std::size_t i = 0;
    for (; table.next(); ++i) {
      squares += table.getNumber(5) * table.getNumber(5);
      if (hasTies && reference["tie"][i] != 0.)
        continue;
      expectEqual(table.getNumber(3), reference["estimate"][i]);
      expectEqual(table.getNumber(4), std::sqrt(reference["variance"][i]));
      EXPECT_NEAR(table.getNumber(5), -reference["residual"][i], 1e-9);
      EXPECT_NEAR(table.getNumber(6), -reference["zscore"][i], 1e-9);
    }
    EXPECT_EQ(i, 155u);
    EXPECT_THAT(outcome.output,
                HasSubstr(QString::number(std::sqrt(squares / 155.), 'g', 6).toStdString()));
  }
}

TEST(Program, KrigesWithoutASill)
{
  // A variogram of slope 0.4 between values at 0 and 10: kriging interpolates along the line, with
  // the variance 2 (0.6 g(4) + 0.4 g(6)) - 2 0.6 0.4 g(10).
  const apptest::Folder folder;
  folder.write("d.csv", "x,y,v\n0,0,1\n10,0,3\n");
  for (const char *neighborhood :
       {R"({"type": "unique"})", R"({"type": "moving", "radius": 20, "maximum": 4})"}) {
    folder.write("job.json", QByteArray(R"({"data": {"file": "d.csv"}, "variable": {"column": "v"},
        "model": {"structures": [{"type": "Power", "sill": 2, "range": 5, "parameter": 1}]},
        "grid": {"origin": [4, 0], "cell": [1, 1], "nodes": [1, 1]},
        "output": {"grid": ["g.csv"], "report": "r.html"}, "neighborhood": )") +
                                 neighborhood + '}');
    const Outcome outcome =
        runProgram({"run", "--quiet", "--overwrite", "job.json"}, folder.path(""));
    ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
    CsvReader table(folder.path("g.csv"), "g.csv", TableFormat());
    ASSERT_TRUE(table.next());
    EXPECT_NEAR(table.getNumber(2), 1.8, 1e-12);
    EXPECT_NEAR(table.getNumber(4), 1.92, 1e-12);
    const QByteArray report = apptest::readFile(folder.path("r.html"));
    EXPECT_TRUE(report.contains("A model without a sill"));
    EXPECT_FALSE(report.contains("Total sill"));
  }
}

TEST(Program, LeavesOutLinesAndBalls)
{
  // Two lines of equal values: without its own line a sample can only be given the other's value.
  const apptest::Folder folder;
  QByteArray data = "x,y,v,line\n";
  for (int i = 0; i < 12; ++i)
    data += QByteArray::number(i % 6) + ',' + QByteArray::number(10 * (i / 6)) + ',' +
            QByteArray::number(1 + i / 6) + ',' + QByteArray::number(1 + i / 6) + '\n';
  folder.write("d.csv", data);
  for (const char *leaveOut : {"{\"leaveOut\": \"line\", \"line\": \"line\"}",
                               "{\"leaveOut\": \"ball\", \"radius\": 8}"}) {
    folder.write("job.json", QByteArray(R"({"data": {"file": "d.csv", "x": "x", "y": "y"},
      "variable": {"column": "v"}, "crossValidation": )") +
                                 leaveOut + R"(,
      "model": {"structures": [{"type": "Spherical", "sill": 1, "range": 30}]},
      "neighborhood": {"type": "unique"},
      "output": {"crossValidation": {"table": "x.csv"}}})");
    const Outcome outcome =
        runProgram({"run", "--quiet", "--overwrite", "job.json"}, folder.path(""));
    ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
    CsvReader table(folder.path("x.csv"), "x.csv", TableFormat());
    for (int i = 0; table.next(); ++i)
      EXPECT_NEAR(table.getNumber(3), i < 6 ? 2. : 1., 1e-12) << leaveOut;
  }
}

TEST(Program, ReportsNodesWithoutEnoughSamples)
{
  const apptest::Folder folder;
  MeuseJob job = onlyCsv();
  job.set("neighborhood.radius", 150).set("neighborhood.minimum", 4);
  job.set("output.report", "r.html");
  const Outcome outcome = runJob(job, folder);
  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  const Nodes nodes = readNodes(folder.path("out/k.csv"));
  const auto nUndefined = std::count_if(nodes.begin(), nodes.end(), [](const auto &node) {
    return node.second.estimate == NbbGlobal::D_FFFF;
  });
  EXPECT_GT(nUndefined, 1000);
  EXPECT_LT(nUndefined, 3103);
  const std::string text = QString::number(nUndefined).insert(1, ',').toStdString();
  EXPECT_THAT(outcome.errors,
              HasSubstr("warning: " + text + " nodes are left undefined: too few samples"));
  EXPECT_THAT(apptest::readFile(folder.path("out/r.html")).toStdString(),
              HasSubstr("Warning: " + text + " nodes are left undefined: too few samples"));
}

TEST(Program, WritesAReportThatNeedsNothingElse)
{
  const apptest::Folder folder;
  MeuseJob job;
  job.set("title", "Zinc <in> the \"Meuse\" & more");
  job.remove("model.structures.0.range").set("model.structures.0.ranges", json("[1200, 480]"));
  job.set("model.structures.0.azimuth", 30);
  job.set("output.data", json("{\"map\": \"samples.png\", \"histogram\": \"histogram.png\"}"));
  ASSERT_EQ(runJob(job, folder).exitCode, 0);
  const QString html = QString::fromUtf8(apptest::readFile(folder.path("out/report.html")));

  const QRegularExpression image("src=\"data:image/png;base64,([A-Za-z0-9+/=]+)\"");
  QList<QByteArray> pictures;
  for (auto match = image.globalMatch(html); match.hasNext();)
    pictures << QByteArray::fromBase64(match.next().captured(1).toLatin1());
  QList<QByteArray> written;
  for (const char *name : {"estimate", "deviation", "samples", "histogram"})
    written << apptest::readFile(folder.path(QString("out/%1.png").arg(name)));
  EXPECT_EQ(pictures, written);

  QString rest = html;
  rest.remove(image);
  const QRegularExpression anchor("<a href=\"#([a-z-]+)\">");
  QStringList sections;
  for (auto match = anchor.globalMatch(html); match.hasNext();)
    sections << match.next().captured(1);
  EXPECT_EQ(sections.size(), html.count("<section "));
  for (const QString &section : sections)
    EXPECT_EQ(html.count("<section id=\"" + section + "\">"), 1) << qPrintable(section);
  rest.remove(anchor);
  for (const char *link : {"http", "href", "src=", "url(", "@import", "<script", "<link"})
    EXPECT_FALSE(rest.contains(link)) << link;
  EXPECT_TRUE(rest.contains("Zinc &lt;in&gt; the"));
  EXPECT_FALSE(rest.contains("<in>"));
  EXPECT_TRUE(rest.contains(QString::fromUtf8(job.text()).toHtmlEscaped()));  // the job itself
  EXPECT_TRUE(rest.contains("1200 m"));
  EXPECT_TRUE(rest.contains("<title>Zinc &lt;in&gt;"));
  EXPECT_TRUE(rest.contains("x 178440 to 181560, y 329600 to 333760 m"));  // the grid's cells
  EXPECT_TRUE(rest.contains("There were no warnings."));
  EXPECT_EQ(rest.count("<img "), rest.count(QRegularExpression("alt=\"[^\"]{20,}\"")));
  EXPECT_TRUE(rest.contains(QString::fromUtf8("azimuth 30°")));
  EXPECT_TRUE(rest.contains("(0.500000, 0.866025, 0.000000)"));   // U, to the N 30
  EXPECT_TRUE(rest.contains("(-0.866025, 0.500000, 0.000000)"));  // V
}

TEST(Program, SaysNothingWhenItIsQuiet)
{
  const apptest::Folder folder;
  const Outcome outcome = runJob(onlyCsv(), folder, {"--quiet"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(folder.list("out"), QStringList{"out/k.csv"});

  const Outcome failed = runJob(onlyCsv().set("data.x", "X"), folder, {"-q"});
  EXPECT_EQ(failed.exitCode, 1);
  EXPECT_THAT(failed.errors, HasSubstr("there is no column \"X\""));
}

TEST(Program, ExplainsItself)
{
  for (const QStringList &arguments : {QStringList{"help"}, {"--help"}, {"-h"}}) {
    const Outcome help = runProgram(arguments);
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_THAT(help.output, HasSubstr("run the study"));
    EXPECT_EQ(help.errors, "");
  }
  EXPECT_THAT(runProgram({"help", "run"}).output, HasSubstr("usage: orvenal run"));
  EXPECT_EQ(runProgram({"run", "--help"}).output, runProgram({"help", "run"}).output);
  EXPECT_THAT(runProgram({"--version"}).output, testing::StartsWith("Orvenal "));
}

TEST(Program, RefusesWrongUse)
{
  struct Case
  {
    QStringList arguments;
    const char *part;
  };
  const Case cases[] = {
      {{}, "a command is missing"},
      {{"rnu"}, "there is no command \"rnu\"; did you mean \"run\"?"},
      {{"help", "conventoins"},
       "no command or topic \"conventoins\"; did you mean \"conventions\""},
      {{"help", "run", "run"}, "one command or topic at a time"},
      {{"version", "x"}, "no argument is expected"},
      {{"run"}, "the job file is missing"},
      {{"run", "a.json", "b.json"}, "one file at a time"},
      {{"run", "--thread", "2", "a.json"},
       "there is no option --thread; did you mean \"--threads\"?"},
      {{"run", "/nowhere/job.json"}, "there is no file \"/nowhere/job.json\""},
      {{"run", "--threads", "two", ORVENAL_EXAMPLES "/meuse/job.json"}, "--threads: expected"},
      {{"run", "--memory", "500", ORVENAL_EXAMPLES "/meuse/job.json"}, "--memory: expected a size"},
      {{"run", "--memory", "0 MB", ORVENAL_EXAMPLES "/meuse/job.json"}, "--memory: expected"},
  };
  for (const Case &c : cases) {
    const Outcome outcome = runProgram(c.arguments);
    EXPECT_EQ(outcome.exitCode, 2) << c.part;
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, HasSubstr(c.part));
  }
}

TEST(Program, EndsBadInputWithOneMessageAndNoFile)
{
  struct Case
  {
    const char *data;  // null keeps the Meuse samples
    const char *place;
    QJsonValue value;
    int exitCode;
    const char *part;
  };
  const Case cases[] = {
      {nullptr, "variable.column", "zink", 1, "did you mean \"zinc\"?"},
      {nullptr, "grid.mask.y", "Y", 1,
       "meuse_grid.csv, line 1: there is no column \"Y\" (grid.mask.y)"},
      {"x,y,zinc\n1,2,3\n1,2,much\n", "threads", 1, 1,
       "d.csv, line 3: column 3 (\"zinc\"): \"much\" is not a number"},
      {"x,y,zinc\n1,2,3\n1,2\n", "threads", 1, 1, "d.csv, line 3: 2 fields"},
      {"x,y,zinc\n", "threads", 1, 1, "d.csv: no rows below the header"},
      {"", "threads", 1, 1, "d.csv: the file is empty"},
      {"x,y,zinc\n1,2,NA\n", "threads", 1, 1, "d.csv: all values of column \"zinc\" are undefined"},
      {"x,y,zinc\n1,NA,5\n", "threads", 1, 1, "column 2 (\"y\"): a coordinate is undefined"},
      {"x,y,zinc\n1,2,0\n", "threads", 1, 1, "line 2: column 3 (\"zinc\"): 0 has no logarithm"},
      {nullptr, "grid.origin", json("[0, 0]"), 1, "none of its 3103 points lies inside the grid"},
      {nullptr, "mdoel", 1, 2, "job.json: mdoel: unknown key"},
      {nullptr, "grid.cell", "x", 2, "job.json: grid.cell: expected a list of numbers"},
      {nullptr, "data.file", "gone.csv", 2, "data.file: there is no file"},
      {nullptr, "model", json("{}"), 2, "job.json: model: the model is empty"},
      {nullptr, "output.directory", "/dev/null/out", 1, "cannot be written"},
      {nullptr, "output.directory", "/proc/out", 1, "cannot be written"},
      {nullptr, "output.grid.0", "../d.csv", 2, "is an input of the job"},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.part);
    const apptest::Folder folder;
    MeuseJob job;
    job.set("data.file",
            folder.write("d.csv", c.data ? QByteArray(c.data)
                                         : apptest::readFile(ORVENAL_EXAMPLES "/meuse/meuse.csv")));
    job.set(c.place, c.value);
    const QStringList before = {"d.csv", "job.json"};
    const Outcome outcome = runJob(job, folder, {"--quiet"});
    EXPECT_EQ(outcome.exitCode, c.exitCode);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, testing::StartsWith("orvenal: "));
    EXPECT_THAT(outcome.errors, HasSubstr(c.part));
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1);
    EXPECT_EQ(folder.list(), before);
  }
}

TEST(Program, KeepsWhatStandsWhenItFails)
{
  const apptest::Folder folder;
  ASSERT_EQ(runJob(onlyCsv(), folder).exitCode, 0);
  const QByteArray before = apptest::readFile(folder.path("out/k.csv"));
  EXPECT_EQ(
      runJob(onlyCsv().set("output.report", "missing/../../job.json/r.html"), folder).exitCode, 1);
  EXPECT_EQ(apptest::readFile(folder.path("out/k.csv")), before);
  EXPECT_EQ(folder.list("out"), QStringList{"out/k.csv"});
}

TEST(Program, StopsOnRequestAndLeavesNothing)
{
  for (const auto &[signal, exitCode] : {std::pair(SIGINT, 130), std::pair(SIGTERM, 143)}) {
    const apptest::Folder folder;
    MeuseJob job;
    job.set("grid.nodes", json("[2000, 2000]")).set("grid.cell", json("[2, 2]"));
    job.remove("grid.mask");
    QProcess program;
    program.setReadChannel(QProcess::StandardError);
    program.start(ORVENAL_PROGRAM, {"run", job.writeTo(folder)});
    // The first line of progress comes after a second of kriging.
    const QRegularExpression progress("Kriging: \\d+% after");
    QString errors;
    while (!errors.contains(progress) && program.waitForReadyRead(60000))
      errors += QString::fromUtf8(program.readAllStandardError());
    ASSERT_TRUE(errors.contains(progress)) << qPrintable(errors);
    ::kill(pid_t(program.processId()), signal);
    ASSERT_TRUE(program.waitForFinished(60000));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), exitCode);
    EXPECT_THAT(program.readAllStandardError().toStdString(), HasSubstr("interrupted"));
    EXPECT_EQ(folder.list(), QStringList{"job.json"});
  }
}

TEST(Program, TakesNamesOfFilesInAnyLocale)
{
  const apptest::Folder folder;
  const QString name = QString::fromUtf8("données.json");
  MeuseJob job = onlyCsv();
  job.set("output.directory", QString::fromUtf8("sortie é"));
  QFile file(folder.path(name));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(job.text());
  file.close();
  QProcess program;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("LC_ALL", "C");
  program.setProcessEnvironment(environment);
  program.setWorkingDirectory(folder.path(""));
  program.start("/bin/sh", {"-c", QString(ORVENAL_PROGRAM) + " run --quiet d*.json"});
  ASSERT_TRUE(program.waitForFinished(60000));
  EXPECT_EQ(program.exitCode(), 0) << program.readAllStandardError().constData();
  EXPECT_EQ(apptest::readFile(folder.path(QString::fromUtf8("sortie é/k.csv"))).left(4), "x,y,");
}

TEST(Program, RunsTwiceAtATimeInOneFolder)
{
  const apptest::Folder folder;
  const QString job = onlyCsv().writeTo(folder);
  QProcess programs[2];
  for (QProcess &program : programs)
    program.start(ORVENAL_PROGRAM, {"run", "--quiet", "--overwrite", job});
  for (QProcess &program : programs) {
    ASSERT_TRUE(program.waitForFinished(120000));
    EXPECT_EQ(program.exitCode(), 0);
  }
  EXPECT_EQ(folder.list("out"), QStringList{"out/k.csv"});
  EXPECT_EQ(readNodes(folder.path("out/k.csv")).size(), 3103u);
}
