#include "TestFiles.h"

#include <gmock/gmock.h>

#include <functional>

using apptest::json;
using apptest::MeuseJob;
using apptest::Outcome;
using apptest::runProgram;
using apptest::valueAt;

namespace {

QJsonObject parse(const std::string &text)
{
  QJsonParseError error;
  const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(text), &error);
  EXPECT_EQ(error.error, QJsonParseError::NoError) << text;
  return document.object();
}

double numberAt(const QJsonObject &object, const char *path)
{
  const QJsonValue value = valueAt(object, QString(path).split('.'));
  EXPECT_TRUE(value.isDouble()) << path;
  return value.toDouble();
}

}  // namespace

TEST(ResultJson, HasWhatAStudyFound)
{
  const apptest::Folder folder;
  MeuseJob job;
  job.set("variogram", json("{\"lag\": 100, \"lags\": 15}")).set("fit", json("{}"));
  job.remove("model").set("crossValidation", json("{}")).remove("output.maps");
  job.set("output.results", "r.json");
  const Outcome outcome = runProgram({"run", "--json", "--quiet", job.writeTo(folder)});
  ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_EQ(outcome.errors, "");
  const QJsonObject found = parse(outcome.output);

  EXPECT_EQ(numberAt(found, "data.samples"), 155.);
  EXPECT_EQ(numberAt(found, "data.undefined"), 0.);
  EXPECT_NEAR(numberAt(found, "statistics.samples.mean"), 5.885776, 1e-6);  // of log(zinc)
  EXPECT_EQ(numberAt(found, "kriging.estimated"), 3103.);
  EXPECT_EQ(numberAt(found, "kriging.nodes"), 78. * 104.);
  EXPECT_EQ(valueAt(found, {"kriging", "grid", "origin"}), json("[178460, 329620]"));
  EXPECT_NEAR(numberAt(found, "crossValidation.rootMeanSquaredStandardizedError"), 0.92, 0.02);
  EXPECT_TRUE(valueAt(found, {"fit", "converged"}).toBool());
  EXPECT_NEAR(numberAt(found, "model.nugget"), 0.05, 0.03);
  const QJsonObject direction = valueAt(found, {"variogram", "curves"})
                                    .toArray()
                                    .first()
                                    .toObject()
                                    .value("directions")
                                    .toArray()
                                    .first()
                                    .toObject();
  EXPECT_TRUE(direction.value("azimuth").isNull());
  const QJsonArray lags = direction.value("lags").toArray();
  ASSERT_EQ(lags.size(), 15);
  EXPECT_GT(lags.last().toObject().value("pairs").toInt(), 100);
  EXPECT_EQ(found.value("files").toArray().size(), 4);
  EXPECT_TRUE(valueAt(found, {"versions", "Orvenal"}).isString());
  EXPECT_GE(found.value("timings").toArray().size(), 5);

  // The file says the same, but for what came after it.
  const QJsonObject written = parse(apptest::readFile(folder.path("out/r.json")).toStdString());
  for (const char *key : {"data", "variable", "statistics", "variogram", "model", "fit",
                          "crossValidation", "kriging", "files", "warnings", "versions"})
    EXPECT_EQ(written.value(key), found.value(key)) << key;
}

TEST(ResultJson, IsAloneOnTheStandardOutput)
{
  const apptest::Folder folder;
  folder.write("d.csv", "x,y,v\n0,0,1\n1,0,NA\n0,1,3\n0,1,4\n");
  const Outcome outcome = runProgram(
      {"variogram", "d.csv", "--json", "--x", "x", "--y", "y", "--variable", "v", "--lag", "1"},
      folder.path(""));
  ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
  const QJsonObject found = parse(outcome.output);
  EXPECT_EQ(numberAt(found, "data.undefined"), 1.);
  EXPECT_EQ(numberAt(found, "data.duplicates"), 1.);
  EXPECT_EQ(found.value("warnings").toArray().size(), 1);
  EXPECT_THAT(outcome.errors, testing::HasSubstr("lies at the place"));
  EXPECT_FALSE(found.contains("kriging"));

  const Outcome failed =
      runProgram({"stats", "d.csv", "--json", "--variable", "w"}, folder.path(""));
  EXPECT_EQ(failed.exitCode, 1);
  EXPECT_EQ(failed.output, "");
}

TEST(ResultJson, HasNullForWhatIsUndefined)
{
  const apptest::Folder folder;
  folder.write("d.csv", "v,w\n1,5\n1,6\n");
  const Outcome outcome = runProgram({"stats", "d.csv", "--json"}, folder.path(""));
  ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
  const QJsonObject found = parse(outcome.output);
  ASSERT_EQ(found.value("variables").toArray().size(), 2);
  EXPECT_TRUE(found.value("correlations").toArray()[0].toArray()[1].isNull());
  EXPECT_EQ(found.value("variables").toArray()[1].toObject().value("median").toDouble(), 5.5);
}

TEST(ResultJson, HasKeysThatAreDocumented)
{
  const apptest::Folder folder;
  MeuseJob job;
  job.set("variogram", json("{}")).set("fit", json("{}")).remove("model");
  job.set("crossValidation", json("{}")).set("output", json("{}"));
  const QString file = job.writeTo(folder);
  const QString model = folder.write("m.json", "{\"nugget\": 1}");
  const QString data = ORVENAL_EXAMPLES "/meuse/meuse.csv";
  const QByteArray page = apptest::readFile(ORVENAL_EXAMPLES "/../docs/results.md");
  const std::function<void(const QJsonValue &)> check = [&](const QJsonValue &value) {
    for (const QJsonValue &element : value.toArray())
      check(element);
    const QJsonObject object = value.toObject();
    for (auto member = object.begin(); member != object.end(); ++member) {
      EXPECT_TRUE(page.contains('`' + member.key().toUtf8() + '`')) << qPrintable(member.key());
      // Those have the keys of jobs, and names.
      if (member.key() != "model" && member.key() != "versions")
        check(member.value());
    }
  };
  const QList<QStringList> commands = {
      {"run", file}, {"stats", data}, {"info", data}, {"info", model}, {"info", file}};
  for (const QStringList &command : commands) {
    const Outcome found = runProgram(command + QStringList("--json"));
    EXPECT_EQ(found.exitCode, 0) << found.errors;
    check(parse(found.output));
  }
}
