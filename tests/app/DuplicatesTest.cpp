#include "TestFiles.h"
#include "app/io/CsvReader.h"
#include "app/job/JobReader.h"
#include "app/study/Samples.h"
#include "basic/base/NbbGlobal.h"

#include <gmock/gmock.h>

#include <map>
#include <random>

using namespace orvenal;
using apptest::json;
using apptest::Outcome;
using apptest::runProgram;
using testing::HasSubstr;
using testing::Not;

namespace {

/// x, y, the variable, the covariate, a mean and the number of a line; -1 where one is undefined.
using Row = std::array<double, 6>;

/// Samples on the nodes of a small grid, so that many share a place.
std::vector<Row> manyDuplicates()
{
  std::mt19937 random(11);
  std::vector<Row> rows;
  for (int i = 0; i < 120; ++i) {
    const auto value = [&] { return random() % 3 == 0 ? -1. : double(random() % 1000); };
    rows.push_back({double(random() % 6), 0.1 * double(random() % 6), value(), value(),
                    double(random() % 10), double(1 + i)});
  }
  return rows;
}

QByteArray toCsv(const std::vector<Row> &rows)
{
  QByteArray text = "x,y,a,b,mean,line\n";
  for (const Row &row : rows) {
    QByteArrayList fields;
    for (const double value : row)
      fields << (value < 0. ? QByteArray("NA") : QByteArray::number(value, 'g', 17));
    text += fields.join(',') + '\n';
  }
  return text;
}

Samples readWith(const char *policy, const std::vector<Row> &rows)
{
  const apptest::Folder folder;
  folder.write("d.csv", toCsv(rows));
  const QString job = folder.write("job.json", QByteArray(R"({
    "data": {"file": "d.csv", "x": "x", "y": "y", "duplicates": ")") +
                                                   policy + R"("},
    "variable": {"column": "a"}, "covariates": [{"column": "b", "transform": "sqrt"}],
    "model": {"nugget": [[1, 0], [0, 1]]}, "neighborhood": {"type": "unique"},
    "kriging": {"mode": "simple", "localMeans": [{"column": "mean"}, {"column": "mean"}]},
    "crossValidation": {"leaveOut": "line", "line": "line"}})");
  return readSamples(readJob(job));
}

double orUndefined(double value)
{
  return value < 0. ? NbbGlobal::D_FFFF : value;
}

}  // namespace

TEST(Duplicates, BecomeOneSampleWithFirstValuesOrMeans)
{
  const std::vector<Row> rows = manyDuplicates();
  for (const bool isMean : {false, true}) {
    // By brute force: for each sample without an earlier one at its place, all later ones.
    std::vector<Row> expected;
    qint64 nMerged = 0, nPlaces = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const auto isThere = [&](std::size_t j) {
        return rows[j][0] == rows[i][0] && rows[j][1] == rows[i][1];
      };
      std::vector<std::size_t> group;
      for (std::size_t j = 0; j < rows.size(); ++j) {
        if (isThere(j))
          group.push_back(j);
      }
      if (group.front() != i)
        continue;
      nMerged += group.size() > 1 ? qint64(group.size()) : 0;
      nPlaces += group.size() > 1 ? 1 : 0;
      Row row = rows[i];
      for (std::size_t column = 2; column < 5; ++column) {
        double sum = 0.;
        int count = 0;
        for (const std::size_t j : group) {
          if (rows[j][column] < 0. || (count > 0 && !isMean))
            continue;
          sum += column == 3 ? std::sqrt(rows[j][column]) : rows[j][column];
          ++count;
        }
        row[column] = count > 0 ? sum / count : -1.;
      }
      expected.push_back(row);
    }
    ASSERT_GT(nPlaces, 20);

    const Samples found = readWith(isMean ? "average" : "first", rows);
    ASSERT_EQ(found.x.size(), expected.size());
    EXPECT_EQ(found.nMerged, nMerged);
    EXPECT_EQ(found.nMergedPlaces, nPlaces);
    for (std::size_t i = 0; i < expected.size(); ++i) {
      EXPECT_EQ(found.x[i], expected[i][0]);
      EXPECT_EQ(found.y[i], expected[i][1]);
      EXPECT_DOUBLE_EQ(found.value[i], orUndefined(expected[i][2]));
      EXPECT_DOUBLE_EQ(found.covariates[0][i], orUndefined(expected[i][3]));
      EXPECT_DOUBLE_EQ(found.auxiliaryColumns["mean"][i], expected[i][4]);
      EXPECT_EQ(found.lines["line"][i], expected[i][5]);
    }
  }
}

TEST(Duplicates, AreThoseWithAValueThatAnEarlierSampleHasToo)
{
  // Of the same place: a alone, b alone, nothing, both; and a neighbor that is not quite there.
  const std::vector<Row> rows = {{1, 2, 5, -1, 0, 1},
                                 {1, 2, -1, 5, 0, 2},
                                 {1, 2, -1, -1, 0, 3},
                                 {1, 2, 6, 6, 0, 4},
                                 {1, 2 + 1e-15, 5, 5, 0, 5}};
  const auto count = [&](std::size_t n) {
    return readWith("keep", std::vector<Row>(rows.begin(), rows.begin() + std::ptrdiff_t(n)))
        .nDuplicates;
  };
  EXPECT_EQ(count(2), 0);
  EXPECT_EQ(count(3), 0);
  EXPECT_EQ(count(4), 1);
  EXPECT_EQ(count(5), 1);
  EXPECT_EQ(readWith("keep", rows).nDuplicatesOf, (std::vector<qint64>{1, 1}));
  EXPECT_EQ(readWith("keep", rows).getCount(), 5);
}

TEST(Duplicates, AnErrorNamesTheFirstTwoInTheFile)
{
  // Text in quotes takes a line more, so rows are not lines.
  const apptest::Folder folder;
  folder.write("d.csv",
               "x,y,v,note\n9,9,1,\"two\nlines\"\n1.5,2,NA,a\n1.5,2,3,b\n0,0,1,c\n0,0,1,d\n"
               "1.5,2,4,e\n0,0,2,f\n");
  folder.write("job.json", R"({"data": {"file": "d.csv", "x": "x", "y": "y", "duplicates": "error"},
    "variable": {"column": "v"}})");
  const Outcome outcome = runProgram({"run", "--overwrite", "job.json"}, folder.path(""));
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("d.csv: the samples of line 6 and line 7 lie at one place "
                                        "(0, 0); 3 samples lie at the place of an earlier one"));
}

TEST(Duplicates, TheWarningSaysWhatBecomesOfThem)
{
  struct Case
  {
    const char *nugget;
    const char *neighborhood;
    const char *extra;
    int exitCode;
    int nUndefined;  // nodes
    const char *message;
  };
  const char *const moving = "{\"type\": \"moving\", \"radius\": 2.5, \"maximum\": 4}";
  const char *const unique = "{\"type\": \"unique\"}";
  const char *const distinct = "1 sample lies at the place of an earlier one; all are used";
  // The node at x = 9 is too far from the two samples at 0 to use them.
  const Case cases[] = {
      {"0.2", unique, "{}", 0, 0, distinct},
      {"0.2", moving, "{}", 0, 0, distinct},
      {"0", moving, "{}", 0, 2, "without a nugget effect no system with two of a place"},
      {"0", unique, "{}", 1, 0, "no system of a unique neighborhood can have"},
      {"0", unique, "{\"measurementError\": 0.1}", 0, 0, distinct},
      {"0", unique, "first", 0, 0, ""},
      {"0", unique, "average", 0, 0, ""},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(std::string(c.nugget) + c.neighborhood + c.extra);
    const apptest::Folder folder;
    folder.write("d.csv", "x,y,v\n0,0,1\n0,0,3\n1,0,4\n8,0,2\n9,1,5\n");
    const bool isMerged = c.extra[0] != '{';
    QJsonValue job = json(R"({"data": {"file": "d.csv", "x": "x", "y": "y"},
      "variable": {"column": "v"}, "grid": {"origin": [0.5, 0], "cell": [1, 1], "nodes": [10, 1]},
      "model": {"structures": [{"type": "Spherical", "sill": 1, "range": 30}]},
      "output": {"grid": ["g.csv"], "report": "r.html"}})");
    job = apptest::withValue(job, {"model", "nugget"}, json(c.nugget));
    job = apptest::withValue(job, {"neighborhood"}, json(c.neighborhood));
    if (isMerged)
      job = apptest::withValue(job, {"data", "duplicates"}, c.extra);
    else
      job = apptest::withValue(job, {"kriging"}, json(c.extra));
    folder.write("job.json", QJsonDocument(job.toObject()).toJson());
    const Outcome outcome = runProgram({"run", "--overwrite", "job.json"}, folder.path(""));
    EXPECT_EQ(outcome.exitCode, c.exitCode);
    EXPECT_THAT(outcome.errors, HasSubstr(c.message));
    if (c.exitCode != 0)
      continue;
    CsvReader grid(folder.path("g.csv"), "g.csv", TableFormat());
    int nUndefined = 0;
    while (grid.next()) {
      const bool isNear = grid.getNumber(0) < 2.5;
      const bool isDefined = NbbGlobal::isDefined(grid.getNumber(2));
      nUndefined += isNear && !isDefined ? 1 : 0;
    }
    EXPECT_EQ(nUndefined, c.nUndefined);
    const std::string report = apptest::readFile(folder.path("r.html")).toStdString();
    if (isMerged) {
      EXPECT_THAT(outcome.errors, Not(HasSubstr("warning")));
      EXPECT_THAT(outcome.output, HasSubstr("2 samples at 1 places: one at each"));
      EXPECT_THAT(report, HasSubstr("2 samples at 1 places: one at each"));
    } else {
      EXPECT_THAT(report, HasSubstr("1, all kept"));
    }
  }
}
