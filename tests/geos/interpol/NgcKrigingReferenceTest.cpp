// Kriging of the Meuse samples against independent programs: estimates and variances to 1e-8
// relative. Targets with equally far samples at the end of the neighborhood are left out.

#include "KrigingStudy.h"
#include "geos/interpol/NgcKriging.h"
#include "geos/interpol/NgmBlock.h"
#include "geos/interpol/NgmTarget.h"
#include "geos/matrix/NgmKrigingSystem.h"
#include "support/CsvFile.h"

#include <gtest/gtest.h>

using namespace krigingtest;

namespace {

constexpr double range = 897.;
constexpr double relativeTolerance = 1e-8;

Values logarithms(Values values)
{
  for (double &value : values)
    value = std::log(value);
  return values;
}

Values squareRoots(Values values)
{
  for (double &value : values)
    value = std::sqrt(value);
  return values;
}

NgmVModel zincModel()
{
  return sphericalModel(0.05, 0.59, NbgVector3D(range, range, range));
}

/// log(zinc) at the samples, the first `n` cells of the grid as targets.
class Meuse
{
public:
  explicit Meuse(std::size_t n = 3103)
      : samples("meuse/meuse.csv"),
        cells("meuse/meuse_grid.csv"),
        study({samples["x"], samples["y"]}, {_first(cells["x"], n), _first(cells["y"], n)})
  {
    study.addData(Nbd::Role::V, QStringLiteral("lz"), logarithms(samples["zinc"]));
  }

  testsupport::CsvFile samples;
  testsupport::CsvFile cells;
  Study study;

private:
  static Values _first(const Values &values, std::size_t n)
  {
    return Values(values.begin(), values.begin() + std::ptrdiff_t(n));
  }
};

/// `shift` is added to the variances that were computed.
void expectReference(const Values &estimates, const Values &variances, const std::string &file,
                     double shift = 0.)
{
  const testsupport::CsvFile reference("meuse/" + file + ".csv");
  const bool hasTies = file.find("nmax") != std::string::npos;
  std::size_t nCompared = 0;
  for (std::size_t row = 0; row < reference["x"].size(); ++row) {
    if (hasTies && reference["tie"][row] != 0.)
      continue;
    const double estimate = reference["estimate"][row];
    const double variance = reference["variance"][row];
    ASSERT_NEAR(estimates[row], estimate, relativeTolerance * std::abs(estimate))
        << file << " row " << row;
    ASSERT_NEAR(variances[row] + shift, variance, relativeTolerance * variance)
        << file << " row " << row;
    ++nCompared;
  }
  EXPECT_GT(nCompared, 2500u) << file;
}

using Configure = std::function<void(NgcKriging &)>;

/// The result of `configure` with one neighborhood: `maximum` nearest samples, or unique for 0.
void expectKriging(Study &study, const std::string &file, int maximum, const Configure &configure,
                   double shift = 0.)
{
  NgcKriging kriging(QStringLiteral("KRIGING"));
  kriging.setVarioModel(zincModel());
  if (maximum > 0)
    kriging.setUsingMovingNeighborhood(nearestSamples(maximum));
  else
    kriging.setUsingUniqueNeighborhood();
  configure(kriging);
  study.krige(kriging);
  EXPECT_EQ(kriging.getNumberOfInterpolErrors(), 0)
      << qPrintable(kriging.getInterpolErrorsMessage());
  expectReference(study.get(Nbd::Role::V), study.get(Nbd::Role::VARIANCE), file, shift);
}

void setSimple(NgcKriging &kriging)
{
  kriging.setKrigingMode(NgcEKrigingMode::SIMPLE_KRIGING);
  kriging.setSimpleKrigingMean(0, 5.9);
}

void setLinearDrift(NgcKriging &kriging)
{
  NgmDriftModel drift;
  drift.addDrifts(0, 1, true, true, false);
  kriging.setKrigingMode(NgcEKrigingMode::UNIVERSAL_KRIGING);
  kriging.setDriftModel(drift);
}

}  // namespace

TEST(NgcKrigingReference, EqualsSimpleKriging)
{
  Meuse meuse;
  meuse.study.addOutputs({Nbd::Role::V, Nbd::Role::VARIANCE});
  expectKriging(meuse.study, "krige_sk_global", 0, setSimple);
  expectKriging(meuse.study, "krige_sk_nmax16", 16, setSimple);
}

TEST(NgcKrigingReference, EqualsKrigingWithDrift)
{
  Meuse meuse;
  meuse.study.addOutputs({Nbd::Role::V, Nbd::Role::VARIANCE});
  expectKriging(meuse.study, "krige_uk_xy_global", 0, setLinearDrift);
  expectKriging(meuse.study, "krige_uk_xy_nmax32", 32, setLinearDrift);
}

TEST(NgcKrigingReference, EqualsKrigingWithExternalDrift)
{
  Meuse meuse;
  meuse.study.addOutputs({Nbd::Role::V, Nbd::Role::VARIANCE});
  const QString name = QStringLiteral("root of distance");
  meuse.study.addData(Nbd::Role::EXTDRIFT, name, squareRoots(meuse.samples["dist"]));
  meuse.study.addTargetData(Nbd::Role::EXTDRIFT, name, squareRoots(meuse.cells["dist"]));
  const auto configure = [](NgcKriging &kriging) {
    NgmExtDriftModel drift;
    drift.addDrift(0, 0);
    kriging.setKrigingMode(NgcEKrigingMode::UNIVERSAL_KRIGING);
    kriging.setExtDriftModel(drift);
  };
  expectKriging(meuse.study, "krige_ked_sqrtdist_global", 0, configure);
}

TEST(NgcKrigingReference, EqualsBlockKriging)
{
  NgmBlock block(false);
  block.setSize(NbgVector3D(40., 40., 0.));
  block.setDiscretizationPointsNumber(NbgIntVector3D(4, 4, 1));
  QVector<NbgVector3D> points;
  block.getDiscretizationPoints(points);
  const NgmVModel model = zincModel();

  // The reference takes the block's own covariance between its points, without the nugget.
  double ownCovariance = 0.;
  for (const NbgVector3D &from : points)
    for (const NbgVector3D &to : points)
      ownCovariance += 0.59 * model.calcElementaryStructure(from - to, 0) / 256.;
  const double shift = ownCovariance - model.computeMeanCvv(block).getElement(0, 0);
  EXPECT_NEAR(shift, 0., 1e-3);

  Meuse meuse;
  meuse.study.addOutputs({Nbd::Role::V, Nbd::Role::VARIANCE});
  const auto configure = [&block](NgcKriging &kriging) { kriging.setSupportBlock(block); };
  expectKriging(meuse.study, "krige_block40_ok_global", 0, configure, shift);
  expectKriging(meuse.study, "krige_block40_ok_nmax16", 16, configure, shift);
}

namespace {

/// log(zinc) and log(lead) at the first 200 cells.
class MeuseCokriging
{
public:
  explicit MeuseCokriging(bool heterotopic) : meuse(200), model(_model())
  {
    zinc = logarithms(meuse.samples["zinc"]);
    lead = logarithms(meuse.samples["lead"]);
    for (std::size_t s = 0; heterotopic && s < zinc.size(); ++s) {
      if (s % 3 != 0)
        zinc[s] = NbbGlobal::D_FFFF;
    }
    study.addData(Nbd::Role::V, QStringLiteral("lz"), zinc);
    study.addData(Nbd::Role::V, QStringLiteral("ll"), lead);
    for (const char *variable : {"lz", "ll"}) {
      for (const QString &role : {Nbd::Role::V, Nbd::Role::VARIANCE})
        study.addOutput(role, role + QLatin1String(variable));
    }
  }

  /// Covariance of the two errors, from the system of all samples.
  double calcErrorCovariance(std::size_t row) const
  {
    const double *values[] = {zinc.data(), lead.data()};
    const Values elevations(zinc.size(), 0.);
    NgmKrigingSamples samples;
    samples.n = int(zinc.size());
    samples.x = meuse.samples["x"].data();
    samples.y = meuse.samples["y"].data();
    samples.z = elevations.data();
    samples.values = values;
    const NgmTarget target(NbgVector3D(meuse.cells["x"][row], meuse.cells["y"][row], 0.));
    NgmKrigingSystem system(2, false, false, 0);
    system.resetSystem(samples.n, target.getCenter());
    system.buildSystem(model, samples, target, nullptr);
    EXPECT_EQ(system.solve(), 0);
    double covariance = model.getC0IJ(0, 1);
    for (int equation = 0; equation < system.getNEquations(); ++equation)
      covariance -= system.getWeightsMatrix().getElement(equation, 0) *
                    system.getRHSMatrix().getElement(equation, 1);
    return covariance;
  }

  Meuse meuse;
  Study study = Study({meuse.samples["x"], meuse.samples["y"]}, _targets());
  NgmVModel model;
  Values zinc;
  Values lead;

private:
  static NgmVModel _model()
  {
    return bivariateModel({0.0561, 0.0443, 0.0479}, {0.5826, 0.5291, 0.5014}, range);
  }

  Places _targets() const
  {
    const Values &x = meuse.cells["x"];
    const Values &y = meuse.cells["y"];
    return {Values(x.begin(), x.begin() + 200), Values(y.begin(), y.begin() + 200)};
  }
};

void expectCokriging(MeuseCokriging &cokriging, const std::string &file)
{
  const testsupport::CsvFile reference("meuse/" + file);
  for (const int maximum : {0, 155}) {
    NgcKriging kriging(QStringLiteral("KRIGING"));
    kriging.setVarioModel(cokriging.model);
    if (maximum > 0)
      kriging.setUsingMovingNeighborhood(nearestSamples(maximum));
    else
      kriging.setUsingUniqueNeighborhood();
    cokriging.study.krige(kriging);
    for (const char *variable : {"lz", "ll"}) {
      const std::string prefix = variable;
      const Values estimates = cokriging.study.get(Nbd::Role::V + QLatin1String(variable));
      const Values variances = cokriging.study.get(Nbd::Role::VARIANCE + QLatin1String(variable));
      for (std::size_t row = 0; row < 200; ++row) {
        const double estimate = reference[prefix + "_estimate"][row];
        const double variance = reference[prefix + "_variance"][row];
        ASSERT_NEAR(estimates[row], estimate, relativeTolerance * estimate) << prefix << row;
        ASSERT_NEAR(variances[row], variance, relativeTolerance * variance) << prefix << row;
      }
    }
  }
  for (std::size_t row = 0; row < 200; row += 20) {
    const double covariance = reference["cov_lz_ll"][row];
    EXPECT_NEAR(cokriging.calcErrorCovariance(row), covariance, relativeTolerance * covariance);
  }
}

}  // namespace

TEST(NgcKrigingReference, EqualsCokrigingOfIsotopicData)
{
  MeuseCokriging cokriging(false);
  expectCokriging(cokriging, "cokrige_ok_global_200.csv");
}

TEST(NgcKrigingReference, EqualsCokrigingOfHeterotopicData)
{
  MeuseCokriging cokriging(true);
  expectCokriging(cokriging, "cokrige_ok_heterotopic_200.csv");
}
