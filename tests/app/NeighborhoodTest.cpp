#include "TestFiles.h"
#include "app/base/UsageError.h"
#include "app/io/CsvReader.h"
#include "app/job/JobReader.h"
#include "app/study/Job.h"
#include "basic/base/NbbGlobal.h"

#include <gmock/gmock.h>

#include <map>

using namespace orvenal;
using apptest::json;
using apptest::MeuseJob;
using apptest::Outcome;
using apptest::runProgram;
using testing::HasSubstr;

namespace {

// A node at the origin, and samples whose values tell which of them it used: ordinary kriging of
// one sample gives its value, of two with a pure nugget their mean.
const char *const samples =
    "x,y,v,hole\n"
    "0,3,1,A-1\n"
    "0,3.5,2,A-1\n"
    "6,0,4,B-7\n"
    "8,-3.5,8,C\n";

/// Results at the node by their columns.
std::map<std::string, double> krigeOrigin(const char *neighborhood)
{
  const apptest::Folder folder;
  folder.write("s.csv", samples);
  folder.write("job.json", QByteArray(R"({"data": {"file": "s.csv"}, "variable": {"column": "v"},
      "grid": {"origin": [0, 0], "cell": [1, 1], "nodes": [1, 1]}, "model": {"nugget": 1},
      "kriging": {"extra": ["neighbors", "pass"]}, "output": {"grid": ["g.csv"]},
      "neighborhood": {"type": "moving", )") +
                               neighborhood + "}}");
  const Outcome outcome = runProgram({"run", "--quiet", "job.json"}, folder.path(""));
  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  CsvReader table(folder.path("g.csv"), "g.csv", TableFormat());
  std::map<std::string, double> results;
  EXPECT_TRUE(table.next());
  for (int column = 0; column < table.getColumns().size(); ++column)
    results[table.getColumns()[column].toStdString()] = table.getNumber(column);
  return results;
}

std::string errorOf(const QString &place, const char *value)
{
  const apptest::Folder folder;
  try {
    readJob(MeuseJob().set("neighborhood." + place, json(value)).writeTo(folder));
  } catch (const UsageError &error) {
    return error.getMessage().toStdString();
  }
  return "no error";
}

}  // namespace

TEST(Neighborhood, RulesChooseTheSamples)
{
  const double none = NbbGlobal::D_FFFF;
  struct Case
  {
    const char *neighborhood;
    double estimate;
  };
  const Case cases[] = {
      {R"("maximum": 1, "radius": 20)", 1.},
      // Radii of 20 along east: 6 of 20 is less than 3 of 5.
      {R"("maximum": 1, "radii": [20, 5], "azimuth": 90)", 1.},
      {R"("maximum": 1, "radii": [20, 5], "azimuth": 90, "distances": "ellipsoid")", 4.},
      // In the corner of the box, outside the ellipse.
      {R"("maximum": 9, "minimum": 4, "radii": [9, 4], "azimuth": 90)", none},
      {R"("maximum": 9, "minimum": 4, "radii": [9, 4], "azimuth": 90, "shape": "box")", 3.75},
      {R"("maximum": 2, "radius": 20)", 1.5},
      {R"("maximum": 2, "radius": 20, "gap": 1)", 2.5},
      {R"("maximum": 2, "radius": 20, "nearest": 2.9)", none},
      {R"("maximum": 2, "radius": 20, "nearest": 3.1)", 1.5},
      // Quarters from north counter-clockwise; the third one is empty, and so is the second.
      {R"("maximum": 8, "radius": 20, "sectors": 4, "azimuth": -1, "emptySectors": 1)", none},
      {R"("maximum": 8, "radius": 20, "sectors": 4, "azimuth": -1, "emptySectors": 3)", 3.75},
      {R"("maximum": 8, "radius": 20, "sectors": 4, "azimuth": -1, "emptySectorsInARow": 0)", none},
      {R"("maximum": 2, "radius": 20, "lines": {"column": "hole", "perLine": 1})", 2.5},
      {R"("maximum": 2, "radius": 20, "lines": {"column": "hole", "minimum": 2})", none},
      {R"("maximum": 3, "radius": 20, "lines": {"column": "hole", "minimum": 2})", 7. / 3.},
      {R"("maximum": 9, "radius": 20, "lines": {"column": "hole", "maximum": 1})", 1.5},
      {R"("maximum": 3, "radius": 20, "lines": {"column": "hole", "firstPerLine": 1})", 13. / 3.},
      {R"("maximum": 4, "radius": 20, "highValues": {"above": 3})", 9. / 4.},
      {R"("maximum": 4, "radius": 20, "highValues": {"above": 3, "beyond": 7})", 2.5},
      {R"("maximum": 3, "radius": 20, "highValues": {"above": 3, "treatment": "remove"})", 1.5},
      {R"("maximum": 3, "radius": 20, "lowValues": {"below": 1.5, "treatment": "ignore"})", 3.},
  };
  for (const Case &c : cases)
    EXPECT_DOUBLE_EQ(krigeOrigin(c.neighborhood)["estimate"], c.estimate) << c.neighborhood;
}

TEST(Neighborhood, PassesServeNodesThatTheFirstSearchLeaves)
{
  const char *const passes = R"("maximum": 8, "radius": 2, "minimum": 3, "passes": [
      {"factor": 2}, {"factor": 3.1}, {"minimum": 1}])";
  std::map<std::string, double> results = krigeOrigin(passes);
  EXPECT_EQ(results["pass"], 3.);  // 6.2 holds three
  EXPECT_EQ(results["neighbors"], 3.);
  results = krigeOrigin(R"("maximum": 8, "radius": 2, "minimum": 3, "passes": [
      {"factor": 2, "minimum": 2}, {"factor": 3.1}])");
  EXPECT_EQ(results["pass"], 2.);
  EXPECT_EQ(results["neighbors"], 2.);
  EXPECT_DOUBLE_EQ(results["estimate"], 1.5);
}

TEST(Neighborhood, SectorsOfACircleBeginAtTheAzimuth)
{
  const apptest::Folder folder;
  MeuseJob job;
  job.set("neighborhood.sectors", 3);
  const auto axisOf = [&] {
    return readJob(job.writeTo(folder)).neighborhood->moving.getEllipseRotation().getAxisX();
  };
  EXPECT_NEAR(axisOf().y(), 1., 1e-15);  // north
  job.set("neighborhood.azimuth", 90);
  EXPECT_NEAR(axisOf().x(), 1., 1e-15);
}

TEST(Neighborhood, ErrorsOfRulesNameTheirPlace)
{
  EXPECT_THAT(errorOf("passes", R"([{"factor": 2}, {"factor": 1.5}])"),
              HasSubstr("neighborhood.passes[1].factor: "));
  EXPECT_THAT(errorOf("passes", R"([{"minimum": 17}])"),
              HasSubstr("neighborhood.passes[0].minimum: 17 is not between 1 and 16"));
  EXPECT_THAT(errorOf("lines", R"({"column": "soil"})"),
              HasSubstr("neighborhood.lines: give \"perLine\""));
  EXPECT_THAT(errorOf("lines", R"({"colum": "soil"})"), HasSubstr("did you mean \"column\"?"));
  EXPECT_THAT(errorOf("variables", R"("all")"),
              HasSubstr("neighborhood.variables: the job has no \"covariates\""));
  EXPECT_THAT(errorOf("distances", R"("ellipsiod")"), HasSubstr("did you mean \"ellipsoid\"?"));
  EXPECT_THAT(errorOf("highValues", R"({"treatment": "cap"})"),
              HasSubstr("neighborhood.highValues.above: missing"));
}

TEST(Neighborhood, AUniqueOneServesCollocatedCokriging)
{
  const apptest::Folder folder;
  const QString job =
      folder.write("job.json", apptest::readFile(ORVENAL_EXAMPLES "/meuse/variants/collocated.json")
                                   .replace("../meuse", ORVENAL_EXAMPLES "/meuse/meuse"));
  const auto krige = [&](const QString &neighborhood) {
    const Outcome outcome =
        runProgram({"krige", job, "--quiet", "--overwrite", "--set", neighborhood, "--set",
                    "output={\"grid\": [\"g.csv\"]}", "--set", "grid.mask=null", "--set",
                    "grid.nodes=[16, 12]", "--set", "grid.origin=[179500, 330500]"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    CsvReader table(folder.path("g.csv"), "g.csv", TableFormat());
    std::vector<double> estimates;
    while (table.next())
      estimates.push_back(table.getNumber(2));
    return estimates;
  };
  const std::vector<double> unique = krige("neighborhood={\"type\": \"unique\"}");
  const std::vector<double> moving =
      krige("neighborhood={\"type\": \"moving\", \"radius\": 1e6, \"maximum\": 155}");
  ASSERT_EQ(unique.size(), 192u);
  EXPECT_THAT(unique, testing::Pointwise(testing::DoubleNear(1e-9), moving));
}

TEST(Neighborhood, NodesThatDoNotMeetARuleAreReported)
{
  const apptest::Folder folder;
  MeuseJob job;
  job.set("neighborhood.nearest", 100).set("output", json("{\"report\": \"r.html\"}"));
  const Outcome outcome = runProgram({"run", job.writeTo(folder)});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.errors, HasSubstr("or a rule of the neighborhood not met"));
  const std::string report = apptest::readFile(folder.path("r.html")).toStdString();
  EXPECT_THAT(report, HasSubstr("Distance of the nearest sample, at most"));
  EXPECT_THAT(report, HasSubstr("or a rule of the neighborhood not met"));
}
