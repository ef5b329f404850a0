#include "app/job/JobReader.h"

#include "TestFiles.h"
#include "app/base/UsageError.h"
#include "app/study/Compass.h"
#include "geos/vmodel/NgmAVStruct.h"
#include "support/Random.h"

#include <gmock/gmock.h>

using namespace orvenal;
using apptest::json;
using apptest::MeuseJob;
using testing::HasSubstr;

namespace {

Job read(const MeuseJob &job)
{
  const apptest::Folder folder;
  return readJob(job.writeTo(folder));
}

std::string errorOf(const QByteArray &text)
{
  const apptest::Folder folder;
  try {
    readJob(folder.write("job.json", text));
  } catch (const UsageError &error) {
    return error.getMessage().toStdString();
  }
  return "no error";
}

/// The Meuse job in three dimensions.
MeuseJob spatialJob()
{
  MeuseJob job;
  job.set("data.z", "elev").remove("grid.mask").remove("output.maps");
  job.set("grid.origin", json("[178460, 329620, 4]")).set("grid.cell", json("[40, 40, 1]"));
  job.set("grid.nodes", json("[78, 104, 3]")).set("output.grid", json("[\"k.csv\"]"));
  return job;
}

}  // namespace

TEST(JobReader, ReadsTheExample)
{
  const Job job = readJob(ORVENAL_EXAMPLES "/meuse/variants/ordinary.json");
  EXPECT_EQ(job.title, "Zinc in the topsoil of the Meuse flood plain");
  EXPECT_EQ(QDir::cleanPath(job.data.file), ORVENAL_EXAMPLES "/meuse/meuse.csv");
  EXPECT_EQ(job.lengthUnit, "m");  // from the coordinate reference system
  EXPECT_EQ(job.variable.getLabel(), "log zinc [log(mg/kg)]");
  EXPECT_EQ(job.grid.getNodesNumber(), NbgIntVector3D(78, 104, 1));
  EXPECT_EQ(job.grid.getCellCenter(77, 103, 0), NbgVector3D(181540., 333740., 0.));
  EXPECT_EQ(job.model.getNugget(0, 0), 0.05);
  EXPECT_NEAR(job.model.getStructure(0).getPracticalRanges().x(), 897., 1e-9);
  ASSERT_TRUE(job.neighborhood);
  EXPECT_EQ(job.neighborhood->moving.getMaximumNeighborsCount(), 16);
  EXPECT_EQ(job.output.getFiles().size(), 5);
  EXPECT_EQ(QDir::cleanPath(job.output.report), ORVENAL_EXAMPLES "/meuse/out/ordinary/report.html");
}

TEST(JobReader, ReadsTheExampleOfThePage)
{
  const QString page = QString::fromUtf8(apptest::readFile(ORVENAL_EXAMPLES "/../docs/job.md"));
  const QByteArray example = page.section("```json", 1).section("```", 0, 0).toUtf8();
  const apptest::Folder folder;
  for (const char *name : {"meuse.csv", "meuse_grid.csv"})
    folder.write(name, apptest::readFile(QString(ORVENAL_EXAMPLES "/meuse/") + name));
  EXPECT_FALSE(readJob(folder.write("job.json", example)).output.getFiles().isEmpty());
}

TEST(JobReader, TurnsAxesByTheCompass)
{
  MeuseJob text = spatialJob();
  text.set("model.structures.0",
           json("{\"type\": \"EXPONENTIAL\", \"sill\": 1, \"ranges\": "
                "[1200, 480, 50], \"azimuth\": 30, \"dip\": 5, \"pitch\": 7}"));
  text.set("grid.rotation", 30);
  text.set("neighborhood",
           json("{\"type\": \"moving\", \"radii\": [900, 600, 30], \"azimuth\": 120, "
                "\"maximum\": 20, \"minimum\": 3, \"sectors\": 4, \"split\": true}"));
  const Job job = read(text);
  const NgmAVStruct &structure = job.model.getStructure(0);
  EXPECT_NEAR(structure.getPracticalRanges().x(), 1200., 1e-9);
  EXPECT_NEAR(structure.getPracticalRanges().z(), 50., 1e-9);
  EXPECT_TRUE(structure.getRotation().isEqual(Compass::frame(30., 5., 7.)));
  EXPECT_NEAR(Compass::azimuthOfRows(job.grid.getRotation()), 30., 1e-10);
  EXPECT_TRUE(job.neighborhood->moving.getEllipseRotation().isEqual(Compass::frame(120., 0., 0.)));
  EXPECT_EQ(job.neighborhood->moving.getMaximumNumber(), 20);
  EXPECT_EQ(job.neighborhood->moving.getMinimumNumber(), 3);
  EXPECT_EQ(job.neighborhood->moving.getSplittedSectorsNumber(), 8);
  EXPECT_EQ(job.neighborhood->moving.getMaximumNumberPerSector(), 3);  // 20 shared by 8, rounded up
}

TEST(JobReader, NamesThePlaceOfWhatIsWrong)
{
  struct Case
  {
    const char *place;
    QJsonValue value;
    std::vector<const char *> parts;
  };
  const QJsonValue none(QJsonValue::Undefined);
  const Case cases[] = {
      {"modle", 1, {"job.json: modle: unknown key; did you mean \"model\"?"}},
      {"xyzzy", 1, {"xyzzy: unknown key; known keys: \"title\", \"data\""}},
      {"model.structures.0.rnage", 1, {"model.structures[0].rnage: unknown key", "\"range\""}},
      {"model", none, {"model: missing"}},
      {"title", 5, {"title: expected a text in quotes, found the number 5"}},
      {"data", json("[]"), {"data: expected an object, found a list"}},
      {"data.file", none, {"data.file: missing"}},
      {"data.format", json("\"geoeas\""), {"data.format: \"geoeas\" is not known"}},
      {"data.file", "no.csv", {"data.file: there is no file", "no.csv"}},
      {"data.file", "", {"data.file: there is no file"}},
      {"data.file", "/", {"data.file: \"/\" is a folder"}},
      {"data.separator", "|", {"data.separator: \"|\" is not known; allowed: \"auto\", \",\""}},
      {"data.decimal", "x", {"data.decimal", "allowed: \".\", \",\""}},
      {"data.undefined", json("[\"NA\", -999]"), {"data.undefined[1]: expected a text in quotes"}},
      {"data.crs", "EPSG:999999", {"data.crs: \"EPSG:999999\" is not a coordinate"}},
      {"data.z", "elev", {"data.z: the grid has two dimensions"}},
      {"variable.transform", "root", {"variable.transform: \"root\"", "\"none\", \"log\""}},
      {"grid.nodes", json("[78]"), {"grid.nodes: expected 2 to 3 numbers, found 1"}},
      {"grid.nodes", json("[78.5, 104]"), {"grid.nodes[0]: expected a whole number"}},
      {"grid.nodes", json("[0, 104]"), {"grid.nodes[0]: 0 is not between 1 and"}},
      {"grid.nodes", json("[1000000, 1000000]"), {"grid.nodes: the grid has too many nodes"}},
      {"grid.nodes", json("[78, 104, 2]"), {"grid.origin: expected 3 numbers, found 2"}},
      {"grid.cell", json("[40, 0]"), {"grid.cell[1]: must be greater than 0"}},
      {"grid.cell", json("[40, \"x\"]"), {"grid.cell[1]: expected a number, found the text \"x\""}},
      {"grid.origin.0", 1e300, {"grid.origin[0]", "too large"}},
      {"grid.mask.file", "no.csv", {"grid.mask.file: there is no file"}},
      {"model.nugget", -1, {"model.nugget: -1 is too small, the least is 0"}},
      {"model.nugget", json("null"), {"model.nugget: expected a number, found null"}},
      {"model.structures", json("{}"), {"model.structures: expected a list of objects"}},
      {"model.structures.0", 7, {"model.structures[0]: expected an object"}},
      {"model.structures.0.sill", 0, {"model.structures[0].sill: must be greater than 0"}},
      {"model.structures.0.type",
       "Sperical",
       {"model.structures[0].type: \"Sperical\" is not known; did you mean \"Spherical\"?",
        "\"Exponential\", \"Spherical\", \"Cubic\""}},
      {"model.structures.0.type", "Linear", {"\"Linear\" is not known", "allowed"}},
      {"model.structures.0.range", none, {"model.structures[0].range: missing"}},
      {"model.structures.0.ranges", json("[1, 2]"), {"model.structures[0].ranges: give"}},
      {"model.structures.0.dip", 5, {"model.structures[0].dip", "three dimensions only"}},
      {"model.structures.0",
       json("{\"type\": \"Gamma\", \"sill\": 1, \"range\": 5, \"parameter\": 1e-5}"),
       {"model.structures[0].parameter: the structure comes near to its sill at no distance"}},
      {"model.structures.0.parameter", 1, {"\"Spherical\" has no parameter"}},
      {"model.structures.0",
       json("{\"type\": \"Stable\", \"sill\": 1, \"range\": 5, \"parameter\": 3}"),
       {"model.structures[0].parameter: 3 is not in"}},
      {"model.structures.0",
       json("{\"type\": \"Cubic\", \"sill\": 1, \"ranges\": [5, 6]}"),
       {"model.structures[0].azimuth: missing"}},
      {"model", json("{}"), {"model: the model is empty"}},
      {"model", json("{\"nugget\": 0, \"structures\": []}"), {"model: the model is empty"}},
      {"model", json("{\"nugget\": 1e-12}"), {"model: the model is"}},
      {"neighborhood.type", none, {"neighborhood.type: missing"}},
      {"neighborhood.type", "global", {"allowed: \"moving\", \"unique\""}},
      {"neighborhood.type", "unique", {"has no meaning in a unique neighborhood"}},
      {"neighborhood.radius", 0, {"neighborhood.radius: must be greater than 0"}},
      {"neighborhood.maximum", none, {"neighborhood.maximum: missing"}},
      {"neighborhood.minimum", 17, {"neighborhood.minimum: 17 is more than the maximum, 16"}},
      {"neighborhood.split", true, {"neighborhood: Splitting sectors only available in 3D"}},
      {"neighborhood.split", 1, {"neighborhood.split: expected true or false"}},
      {"kriging", json("{\"mode\": \"simple\"}"), {"kriging.means: missing"}},
      {"kriging", json("{\"means\": [1]}"), {"kriging.means: means are known in simple"}},
      {"kriging",
       json("{\"mode\": \"simple\", \"means\": [1, 2]}"),
       {"kriging.means: expected 1 numbers, found 2"}},
      {"kriging", json("{\"mode\": \"drift\"}"), {"kriging.mode: a drift has a \"degree\""}},
      {"kriging", json("{\"degree\": 1}"), {"kriging.degree: needs the mode \"drift\""}},
      {"kriging",
       json("{\"mode\": \"drift\", \"externalDrifts\": [{\"column\": \"dist\"}]}"),
       {"grid.values: missing", "\"dist\""}},
      {"kriging", json("{\"mode\": \"rescaled\"}"), {"kriging.mode: rescaled cokriging needs"}},
      {"kriging", json("{\"block\": [4]}"), {"kriging.block: expected 2 numbers, found 1"}},
      {"kriging", json("{\"filter\": {}}"), {"kriging.filter: nothing is filtered"}},
      {"kriging",
       json("{\"filter\": {\"structures\": [2]}}"),
       {"kriging.filter.structures[0]: 2 is not between 1 and 1"}},
      {"kriging",
       json("{\"collocated\": [{\"column\": \"dist\"}]}"),
       {"kriging.collocated: the job has no \"covariates\""}},
      {"kriging",
       json("{\"superKriging\": {\"production\": 1, \"mean\": 1}}"),
       {"kriging.superKriging: needs \"block\""}},
      {"kriging",
       json("{\"extra\": [\"specificVolume\"]}"),
       {"\"specificVolume\" needs \"superKriging\""}},
      {"kriging", json("{\"local\": {}}"), {"kriging.local: give \"azimuth\" or"}},
      {"kriging", json("{\"local\": {\"azimuth\": \"a\"}}"), {"grid.values: missing", "\"a\""}},
      {"kriging",
       json("{\"faults\": {\"file\": \"f.csv\", \"x\": \"x\", \"y\": \"y\", \"line\": \"l\"}}"),
       {"kriging.faults.file: there is no file"}},
      {"kriging", json("{\"extra\": [\"slop\"]}"), {"did you mean \"slope\"?"}},
      {"covariates", json("[{\"column\": \"zinc\", \"name\": \"log zinc\"}]"), {"covariates[0]"}},
      {"covariates",
       json("[{\"column\": \"lead\"}]"),
       {"model.nugget: expected 2 lists of 2 numbers"}},
      {"model.structures.0.type",
       "Powre",
       {"model.structures[0].type: ", "did you mean \"Power\""}},
      {"fit", json("{}"), {"fit: the job has a \"model\"; give one of both"}},
      {"model", json("{\"file\": \"m.json\"}"), {"model.file: there is no file", "m.json"}},
      {"model", json("{\"file\": \"m.json\", \"nugget\": 1}"), {"model.nugget: the model is that"}},
      {"output.fit", json("{}"), {"the job has no \"fit\" of which"}},
      {"crossValidation", json("{\"leaveOut\": \"line\"}"), {"crossValidation.line: missing"}},
      {"crossValidation", json("{\"radius\": 3}"), {"has a meaning when balls are left out"}},
      {"output.crossValidation", json("{}"), {"the job has no \"crossValidation\" of which"}},
      {"variogram", json("{\"lag\": 0}"), {"variogram.lag: must be greater than 0"}},
      {"variogram", json("{\"curve\": \"Variogramm\"}"), {"variogram.curve: \"Variogramm\""}},
      {"variogram", json("{\"azimuth\": 3}"), {"has no meaning without \"regular\""}},
      {"variogram", json("{\"width\": 3}"), {"variogram.width: has no meaning without"}},
      {"variogram",
       json("{\"regular\": 2, \"directions\": [{\"azimuth\": 1}]}"),
       {"either \"regular\" or"}},
      {"variogram", json("{\"directions\": []}"), {"expected 1 to 180 directions, found 0"}},
      {"variogram",
       json("{\"directions\": [{\"azimuth\": 1, \"dip\": 2}]}"),
       {"variogram.directions[0].dip: the samples have two dimensions"}},
      {"variogram",
       json("{\"regular\": 2, \"angularTolerance\": 91}"),
       {"variogram.angularTolerance: 91 is more than 90"}},
      {"output.variogram", json("{}"), {"the job has no \"variogram\" of which"}},
      {"grid", QJsonValue(QJsonValue::Undefined), {"the job has no \"grid\""}},
      {"output.grid", json("[\"k.xlsx\"]"), {"output.grid[0]: \"k.xlsx\" should end with .csv"}},
      {"output.maps.estimate", "e.jpg", {"output.maps.estimate: \"e.jpg\" should end with .png"}},
      {"output.report", "r.pdf", {"output.report: \"r.pdf\" should end with .html"}},
      {"output.grid",
       json("[\"k.csv\", \"./k.csv\"]"),
       {"output.grid[1]: ", "k.csv\" would be written twice"}},
      {"output.grid.0",
       ORVENAL_EXAMPLES "/meuse/../meuse/meuse.csv",
       {"output.grid[0]: ", "is an input of the job"}},
      {"threads", 0, {"threads: 0 is not between 1 and 1024"}},
      {"memory", "lots", {"memory: expected a size"}},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.place);
    const std::string error = errorOf(MeuseJob().set(c.place, c.value).text());
    for (const char *part : c.parts)
      EXPECT_THAT(error, HasSubstr(part));
    EXPECT_THAT(error, HasSubstr("job.json: "));
    EXPECT_THAT(error, testing::Not(HasSubstr("NgmVModel")));
  }
}

TEST(JobReader, WantsASillWhereOneIsNeeded)
{
  MeuseJob job;
  job.set("model.structures.0.type", "Power").set("model.structures.0.parameter", 2.5);
  EXPECT_THAT(errorOf(job.text()), HasSubstr("model.structures[0].parameter: 2.5 is not in "));
  job.set("model.structures.0.parameter", 1.5);
  EXPECT_EQ(errorOf(job.text()), "no error");
  EXPECT_THAT(errorOf(MeuseJob(job).set("kriging.extra", json("[\"slope\"]")).text()),
              HasSubstr("kriging.extra: \"slope\" needs a model with a sill"));
  job.set("kriging", json("{\"mode\": \"simple\", \"means\": [6]}"));
  EXPECT_THAT(errorOf(job.text()), HasSubstr("kriging.mode: the model has no sill"));
  job = MeuseJob();
  job.remove("model").set("variogram", json("{}"));
  job.set("fit", json("{\"structures\": [\"Power\"]}"));
  EXPECT_THAT(errorOf(job.text()), HasSubstr("fit.structures: \"Power\" is not known"));
}

TEST(JobReader, RefusesSillsThatAreNotPositiveDefinite)
{
  const QJsonValue right = json("[[1, 1], [1, 1]]");  // of rank 1, which is one
  const QJsonValue wrong = json("[[1, 2], [2, 1]]");
  MeuseJob job;
  job.set("covariates", json("[{\"column\": \"lead\"}]"));
  job.set("model.nugget", right).set("model.structures.0.sill", wrong);
  EXPECT_THAT(errorOf(job.text()), HasSubstr("structures[0].sill: the matrix is not positive"));
  job.set("model.nugget", wrong).set("model.structures.0.sill", right);
  EXPECT_THAT(errorOf(job.text()), HasSubstr("job.json: model.nugget: the matrix is not positive"));
  job.set("model.nugget", json("[[1, 0], [0, 1]]"));
  EXPECT_EQ(errorOf(job.text()), "no error");
}

TEST(JobReader, WantsTheThirdCoordinateWhereItBelongs)
{
  EXPECT_EQ(read(spatialJob()).getNDimensions(), 3);
  EXPECT_THAT(errorOf(spatialJob().remove("data.z").text()), HasSubstr("data.z: missing"));
  EXPECT_THAT(errorOf(spatialJob().set("output.grid", json("[\"k.tif\"]")).text()),
              HasSubstr("output.grid[0]: a GeoTIFF needs a grid of two dimensions"));
  EXPECT_THAT(errorOf(MeuseJob().set("output.maps.sections", json("[{\"x\": 1}]")).text()),
              HasSubstr("output.maps.sections: sections need a grid of three dimensions"));
}

TEST(JobReader, NamesLineAndColumnOfSyntaxErrors)
{
  EXPECT_THAT(errorOf("{\n  \"title\": \"x\",\n  \"data\" {}\n}"),
              HasSubstr("job.json, line 3, column 1"));
  EXPECT_THAT(errorOf("[1]"), HasSubstr("job.json: a job is a JSON object"));
  EXPECT_THAT(errorOf(""), HasSubstr("line 1, column 1"));
  EXPECT_THAT(errorOf(QByteArray(5000, '[')), HasSubstr("nested deeper than"));
}

TEST(JobReader, SurvivesDamagedJobs)
{
  const QByteArray whole = MeuseJob().text();
  int nRead = 0;
  for (int round = 0; round < 300; ++round) {
    QByteArray damaged = whole;
    const int place = testsupport::uniformInt(11, 2 * round, whole.size());
    damaged[place] = char(testsupport::uniformInt(11, 2 * round + 1, 256));
    nRead += errorOf(damaged) == "no error" ? 1 : 0;
    EXPECT_NE(errorOf(whole.left(place)), "no error");
  }
  EXPECT_GT(nRead, 0);  // where blanks and titles change
}

TEST(JobReader, ReadsMemorySizes)
{
  constexpr qint64 kibi = 1024;
  const std::pair<const char *, qint64> cases[] = {
      {"500 MB", 500 * kibi * kibi},
      {"2GB", 2 * kibi * kibi * kibi},
      {" 2 gib ", 2 * kibi * kibi * kibi},
      {"1.5G", 1536 * kibi * kibi},
      {"100k", 100 * kibi},
      {"1 TB", kibi * kibi * kibi * kibi},
      {"0 GB", 0},
      {"500", -1},  // of what?
      {"-1 GB", -1},
      {"1e3 MB", -1},
      {"2 PB", -1},
      {"2 GB x", -1},
      {"99999999999 TB", -1},
      {"abc", -1},
      {"", -1},
  };
  for (const auto &[text, size] : cases)
    EXPECT_EQ(parseMemorySize(text), size) << text;
}
