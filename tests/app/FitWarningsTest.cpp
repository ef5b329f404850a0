#include "app/study/FitWarnings.h"

#include "TestFiles.h"
#include "app/study/Job.h"
#include "app/study/Variography.h"
#include "geos/vmodel/NgmVModel.h"

#include <gmock/gmock.h>

using namespace orvenal;
using apptest::json;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

/// A fit of `nStructures` and a nugget to lags of 100 each, in `nDirections`.
class Fit
{
public:
  Fit(int nStructures, int nDirections, int nLags)
  {
    job.fit = FitRequest();
    for (int i = 0; i < nStructures; ++i)
      job.fit->structures << NgmEVStruct::fromLabel("Spherical");
    VariogramCurve curve;
    for (int lag = 1; lag <= nLags; ++lag)
      curve.distances << 100. * lag;
    VariogramSet set;
    set.curves = QVector<VariogramCurve>(nDirections, curve);
    variography.sets << set;
    fit.hasConverged = true;
    fit.model.setContextNDim(2);
    fit.model.setNugget(0, 0, 0.2);
  }

  Fit &add(double sill, double range, double other)
  {
    const int index = fit.model.addStructure("Spherical", sill);
    fit.model.setRanges(index, NbgVector3D(range, other, range));
    return *this;
  }

  std::vector<std::string> warnings() const
  {
    std::vector<std::string> texts;
    for (const QString &warning : fitWarnings(job, variography, fit))
      texts.push_back(warning.toStdString());
    return texts;
  }

  Job job;
  Variography variography;
  ModelFit fit;
};

}  // namespace

TEST(FitWarnings, SayWhatSpeaksAgainstAModel)
{
  EXPECT_THAT(Fit(1, 1, 10).add(1., 500., 500.).warnings(), ElementsAre());
  EXPECT_THAT(Fit(1, 1, 10).add(1., 1000., 100.).warnings(), ElementsAre());
  EXPECT_THAT(Fit(1, 2, 10).add(1., 300., 1001.).warnings(),
              ElementsAre(HasSubstr("range of \"Spherical\", 1001, is beyond the last lag, 1000")));
  EXPECT_THAT(Fit(1, 1, 10).add(1., 99., 99.).warnings(),
              ElementsAre(HasSubstr("99, is below the first lag, 100")));
  EXPECT_THAT(Fit(2, 1, 10).add(1., 500., 500.).add(1e-4, 300., 300.).warnings(),
              ElementsAre(HasSubstr("\"Spherical\" has less than a thousandth of the sill")));
  EXPECT_THAT(Fit(1, 1, 10).warnings(), ElementsAre(HasSubstr("a nugget effect and no structure")));

  // Nugget, sill and range; a second range where there are directions, unless it is isotropic.
  EXPECT_THAT(Fit(1, 1, 3).add(1., 200., 200.).warnings(), ElementsAre());
  EXPECT_THAT(Fit(1, 1, 2).add(1., 900., 900.).warnings(),
              ElementsAre(HasSubstr("more parameters (3 sills and ranges) than the variograms have "
                                    "lags with pairs (2)")));
  EXPECT_THAT(Fit(1, 3, 1).warnings(), ElementsAre(HasSubstr("(4 sills and ranges)")));
  Fit isotropic(1, 3, 1);
  isotropic.job.fit->anisotropy = false;
  EXPECT_THAT(isotropic.add(1., 100., 100.).warnings(), ElementsAre());
}

TEST(FitWarnings, AreInTheReportAndInTheResults)
{
  const apptest::Folder folder;
  const apptest::Outcome outcome =
      apptest::runProgram({"fit", ORVENAL_EXAMPLES "/meuse/meuse.csv", "--variable", "zinc",
                           "--lags", "2", "--json", "--report", "r.html"},
                          folder.path(""));
  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  const char *const warning = "the fit has more parameters";
  EXPECT_THAT(outcome.errors, HasSubstr(std::string("warning: ") + warning));
  EXPECT_THAT(apptest::readFile(folder.path("r.html")).toStdString(), HasSubstr(warning));
  const QJsonObject results = QJsonDocument::fromJson(outcome.output.c_str()).object();
  EXPECT_THAT(results.value("warnings").toArray().first().toString().toStdString(),
              HasSubstr(warning));
}

/// The fits of the examples are good ones.
TEST(FitWarnings, AreNotRaisedForTheExamples)
{
  const apptest::Folder folder;
  const QStringList jobs = {ORVENAL_EXAMPLES "/meuse/job.json",
                            ORVENAL_EXAMPLES "/meuse/variants/cokriging-fit.json"};
  for (const QString &job : jobs) {
    const apptest::Outcome outcome =
        apptest::runProgram({"fit", job, "--set", "output={}", "--json"}, folder.path(""));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    const QJsonObject results = QJsonDocument::fromJson(outcome.output.c_str()).object();
    EXPECT_EQ(results.value("warnings"), QJsonArray());
  }
}
