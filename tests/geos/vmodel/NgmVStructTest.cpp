#include "basic/error/NbeProgrammingError.h"
#include "basic/interval/NbiIntervalData.h"
#include "geos/NgmEnumGlobal.h"
#include "geos/vmodel/NgmAVStruct.h"
#include "geos/vmodel/NgmVStructFactory.h"
#include "support/CsvFile.h"
#include "support/Errors.h"
#include "support/Random.h"
#include "vmodel/private/NgmVStructKernels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace {

using testsupport::errorOf;
using testsupport::uniform;

const NgmEVStruct ALL_TYPES[] = {NgmEVStruct::EXPONENTIAL, NgmEVStruct::SPHERICAL,
                                 NgmEVStruct::CUBIC,       NgmEVStruct::GAUSSIAN,
                                 NgmEVStruct::SINCARD,     NgmEVStruct::STABLE,
                                 NgmEVStruct::GAMMA,       NgmEVStruct::GENERALIZED_CAUCHY};

std::unique_ptr<NgmAVStruct> make(const NgmEVStruct &type)
{
  return NgmVStructFactory::createVStruct(type, NgmModelContext());
}

/// Gives the structure the scale 1 whatever its practical factor.
void setUnitScale(NgmAVStruct &structure)
{
  structure.setRangeIsotropic(structure.getPracticalScaleFactor() / structure.getTheoScaleFactor());
}

double covaAt(const NgmAVStruct &structure, double dist)
{
  double cova = NbbGlobal::D_FFFF;
  structure.calcCovaFromDist(1, &dist, &cova);
  return cova;
}

TEST(NgmVStruct, ClosedFormsAgreeWithIndependentTable)
{
  const testsupport::CsvFile table("meuse/covariances.csv");
  const struct
  {
    NgmEVStruct type;
    double alpha;
    const char *column;
    // The table has 15 significant digits of values up to 1.
    double tolerance = 1e-14;
  } cases[] = {{NgmEVStruct::EXPONENTIAL, 0., "exponential"},
               {NgmEVStruct::SPHERICAL, 0., "spherical"},
               {NgmEVStruct::CUBIC, 0., "cubic"},
               {NgmEVStruct::GAUSSIAN, 0., "gaussian"},
               // 1 up to u = 1e-5, where sin(u) / u is smaller by u^2 / 6
               {NgmEVStruct::SINCARD, 0., "cardinal_sine", 1.7e-11},
               {NgmEVStruct::STABLE, 1.5, "stable15"},
               {NgmEVStruct::GENERALIZED_CAUCHY, 1., "cauchy1"}};
  const std::vector<double> &h = table["h"];
  ASSERT_EQ(h.size(), 20u);
  for (const auto &test : cases) {
    const auto structure = make(test.type);
    structure->setAuxiliaryParameter(0, test.alpha);
    setUnitScale(*structure);
    std::vector<double> covas(h.size());
    structure->calcCovaFromDist(int(h.size()), h.data(), covas.data());
    for (std::size_t i = 0; i < h.size(); ++i) {
      EXPECT_NEAR(covas[i], table[test.column][i], test.tolerance) << test.column << " at " << h[i];
      EXPECT_EQ(structure->calcCova(NbgVector3D(0., h[i], 0.)), covas[i]);
    }
  }
}

TEST(NgmVStruct, GammaFollowsItsFormula)
{
  const auto gamma = make(NgmEVStruct::GAMMA);
  gamma->setAuxiliaryParameter(0, 2.5);
  setUnitScale(*gamma);
  for (const double u : {0., 0.1, 1., 7.})
    EXPECT_NEAR(covaAt(*gamma, u), std::pow(1. + u, -2.5), 1e-15);
}

TEST(NgmVStruct, ReachesFivePercentAtItsPracticalRange)
{
  // Stored factors have six decimals; that of the stable one rounds ln 20 to 3.
  const struct
  {
    NgmEVStruct type;
    double cova;
  } cases[] = {{NgmEVStruct::EXPONENTIAL, 0.05},
               {NgmEVStruct::GAUSSIAN, 0.05},
               {NgmEVStruct::STABLE, std::exp(-3.)},
               {NgmEVStruct::GAMMA, 0.05},
               {NgmEVStruct::GENERALIZED_CAUCHY, 0.05}};
  for (const auto &test : cases) {
    const auto structure = make(test.type);
    structure->setAuxiliaryParameter(0, 1.4);
    structure->setRangeIsotropic(250.);
    EXPECT_NEAR(covaAt(*structure, 250.), test.cova, 1e-6) << test.type.getKey();
  }
  EXPECT_EQ(make(NgmEVStruct::SINCARD)->getPracticalScaleFactor(), 20.371);
}

TEST(NgmVStruct, CompactStructuresVanishExactlyAtTheirRange)
{
  for (const NgmEVStruct &type : {NgmEVStruct::SPHERICAL, NgmEVStruct::CUBIC}) {
    const auto structure = make(type);
    structure->setRangeIsotropic(897.);
    EXPECT_EQ(covaAt(*structure, 897.), 0.);
    EXPECT_EQ(covaAt(*structure, 1e9), 0.);
    EXPECT_GT(covaAt(*structure, 890.), 0.);
    EXPECT_EQ(covaAt(*structure, 0.), 1.);
  }
  const auto sincard = make(NgmEVStruct::SINCARD);
  setUnitScale(*sincard);
  EXPECT_EQ(covaAt(*sincard, 1e-5), 1.);
}

TEST(NgmVStruct, ExponentialIsWithinOneUnitOfTheLibrary)
{
  for (int i = 0; i < 200000; ++i) {
    // Dense near 0 and out to where the result leaves the normal numbers.
    const double x = -std::pow(uniform(5, i), 4) * 708.;
    const double expected = std::exp(x);
    const double actual = NgmVStructKernels::expOfNegative(x);
    ASSERT_LE(std::abs(actual - expected), std::nextafter(expected, 2.) - expected) << "x = " << x;
  }
  EXPECT_EQ(NgmVStructKernels::expOfNegative(0.), 1.);
  EXPECT_EQ(NgmVStructKernels::expOfNegative(-709.), 0.);
  EXPECT_EQ(NgmVStructKernels::expOfNegative(-1e300), 0.);
}

TEST(NgmVStruct, BitsDoNotDependOnPlaceInTheArray)
{
  constexpr int N = 67;
  std::vector<double> dist(N + 8);
  for (std::size_t i = 0; i < dist.size(); ++i)
    dist[i] = uniform(11, i, 0., 1.3);
  for (const NgmEVStruct &type : ALL_TYPES) {
    const auto structure = make(type);
    structure->setAuxiliaryParameter(0, 1.3);
    std::vector<double> expected(N), covas(N);
    for (int i = 0; i < N; ++i)
      expected[i] = covaAt(*structure, dist[i]);
    for (int first = 0; first < 8; ++first)
      for (int n = 1; n <= N - first; ++n) {
        structure->calcCovaFromDist(n, dist.data() + first, covas.data());
        ASSERT_EQ(std::memcmp(covas.data(), expected.data() + first, n * sizeof(double)), 0)
            << type.getKey() << " from " << first << ", " << n << " values";
      }
  }
}

TEST(NgmVStruct, DerivativesAreThoseOfTheCovariance)
{
  for (const NgmEVStruct &type : {NgmEVStruct::CUBIC, NgmEVStruct::GAUSSIAN}) {
    const auto structure = make(type);
    ASSERT_TRUE(structure->isDifferentiable());
    setUnitScale(*structure);
    for (const double u : {0.1, 0.4, 0.9}) {
      const double e = 1e-4;
      const double before = covaAt(*structure, u - e), here = covaAt(*structure, u),
                   after = covaAt(*structure, u + e);
      // Truncation e^2 and cancellation 1e-16 / e^2 of the central differences.
      const NbgVector3D h(u, 0., 0.);
      EXPECT_NEAR(structure->calcFirstDerivative(h), (after - before) / (2. * e) / u, 1e-5);
      EXPECT_NEAR(structure->calcSecondDerivative(h), (after - 2. * here + before) / (e * e), 1e-5);
    }
  }
  const auto spherical = make(NgmEVStruct::SPHERICAL);
  EXPECT_FALSE(spherical->isDifferentiable());
  EXPECT_EQ(errorOf([&] { spherical->calcFirstDerivative(NbgVector3D::X); }),
            QStringLiteral("NgmAVStruct::calcFirstDerivative: should never be called"));
  EXPECT_EQ(errorOf([&] { spherical->calcSecondDerivative(NbgVector3D::X); }),
            QStringLiteral("NgmAVStruct::calcSecondDerivative: should never be called"));
  EXPECT_EQ(errorOf([&] { spherical->calcCovaFromVectors(0, nullptr, nullptr); }),
            QStringLiteral("NgmAVStruct::calcCovaFromVectors: should never be called"));
}

TEST(NgmVStruct, RangesGiveScaleAndCoefficients)
{
  const auto structure = make(NgmEVStruct::EXPONENTIAL);
  EXPECT_TRUE(structure->isIsotropic());
  structure->setRanges(NbgVector3D(100., 50., 10.));
  EXPECT_DOUBLE_EQ(structure->getTheoScaleFactor(), 10. / 2.995732);
  EXPECT_EQ(structure->getAnisotropy(), NbgVector3D(0.1, 0.2, 1.));
  EXPECT_FALSE(structure->isIsotropic());
  EXPECT_FALSE(structure->isIsotropic2D());
  const NbgVector3D ranges = structure->getPracticalRanges();
  EXPECT_DOUBLE_EQ(ranges.x(), 100.);
  EXPECT_DOUBLE_EQ(ranges.y(), 50.);
  EXPECT_DOUBLE_EQ(ranges.z(), 10.);
  EXPECT_DOUBLE_EQ(structure->getTheoRanges().y(), 50. / 2.995732);

  structure->setRanges(NbgVector3D(40., 40., 10.));
  EXPECT_TRUE(structure->isIsotropic2D());
  structure->updateToIsotropic();
  EXPECT_TRUE(structure->isIsotropic());
  EXPECT_DOUBLE_EQ(structure->getPracticalScaleFactor(), 10.);
  structure->normalizeStructure(2.);
  EXPECT_DOUBLE_EQ(structure->getPracticalScaleFactor(), 5.);
}

TEST(NgmVStruct, DimensionsBeyondTheContextDoNotCount)
{
  const auto structure =
      NgmVStructFactory::createVStruct(NgmEVStruct::SPHERICAL, NgmModelContext(-1, 2, 0.));
  structure->setRanges(NbgVector3D(30., 30., -1.));
  EXPECT_TRUE(structure->isIsotropic());
  EXPECT_EQ(structure->getAnisotropy(), NbgVector3D(1., 1., 1.));
  structure->setContext(NgmModelContext(-1, 1, 0.));
  EXPECT_FALSE(structure->isIsotropic2D());
}

TEST(NgmVStruct, RefusesRangesAndLeavesTheStructureUnchanged)
{
  const auto structure = make(NgmEVStruct::SPHERICAL);
  structure->setRanges(NbgVector3D(10., 20., 30.));
  const struct
  {
    NbgVector3D ranges;
    const char *message;
  } cases[] = {{{0., 1., 1.}, "NgmAVStruct::setRanges: Invalid range for X Component"},
               {{1., 1e-30, 1.}, "NgmAVStruct::setRanges: Invalid range for Y Component"},
               {{1., 1., -3.}, "NgmAVStruct::setRanges: Invalid range for Z Component"},
               {{1., 1., std::nan("")}, "NgmAVStruct::setRanges: Invalid range for Z Component"}};
  for (const auto &test : cases)
    EXPECT_EQ(errorOf([&] { structure->setRanges(test.ranges); }),
              QString::fromLatin1(test.message));
  EXPECT_EQ(errorOf([&] { structure->setRangeIsotropic(0.); }),
            QStringLiteral("NgmAVStruct::setRangeIsotropic: Invalid range"));
  EXPECT_DOUBLE_EQ(structure->getPracticalRanges().z(), 30.);
}

TEST(NgmVStruct, ChangingAlphaKeepsTheScale)
{
  const auto gamma = make(NgmEVStruct::GAMMA);
  gamma->setRangeIsotropic(19.);
  EXPECT_DOUBLE_EQ(gamma->getTheoScaleFactor(), 1.);
  gamma->setAuxiliaryParameter(7, 2.);  // any index
  EXPECT_DOUBLE_EQ(gamma->getTheoScaleFactor(), 1.);
  EXPECT_DOUBLE_EQ(gamma->getPracticalScaleFactor(), std::sqrt(20.) - 1.);
  const auto cauchy = make(NgmEVStruct::GENERALIZED_CAUCHY);
  EXPECT_DOUBLE_EQ(cauchy->getPracticalScaleFactor(), std::sqrt(19.));
  const auto stable = make(NgmEVStruct::STABLE);
  stable->setAuxiliaryParameter(0, 2.);
  EXPECT_DOUBLE_EQ(stable->getPracticalScaleFactor(), std::sqrt(3.));
}

TEST(NgmVStruct, AuxiliaryParameters)
{
  const struct
  {
    NgmEVStruct type;
    const char *className;
    double upper;
    bool upperIncluded;
  } cases[] = {
      {NgmEVStruct::STABLE, "NgmVStructStable", 2., true},
      {NgmEVStruct::GAMMA, "NgmVStructGamma", NbiIntervalData::Infinity, false},
      {NgmEVStruct::GENERALIZED_CAUCHY, "NgmVStructCauchy", NbiIntervalData::Infinity, false}};
  for (const auto &test : cases) {
    const auto structure = make(test.type);
    EXPECT_EQ(structure->getNAuxiliaryParameters(), 1);
    EXPECT_EQ(structure->getAuxiliaryValue(3), 1.);
    EXPECT_EQ(structure->getAuxiliaryName(0), QString(QChar(0x03B1)));
    EXPECT_TRUE(structure->getAuxiliaryBounds(0) ==
                NbiIntervalData(0., test.upper, false, test.upperIncluded));
    EXPECT_EQ(errorOf([&] { structure->setAuxiliaryParameter(0, 0.); }),
              QString::fromLatin1(test.className) +
                  QStringLiteral("::setAuxiliaryParameter: Auxiliary parameter out of bounds"));
    EXPECT_EQ(structure->getAuxiliaryValue(0), 1.);
  }
  const auto spherical = make(NgmEVStruct::SPHERICAL);
  spherical->setAuxiliaryParameter(0, -5.);
  EXPECT_EQ(spherical->getNAuxiliaryParameters(), 0);
  EXPECT_EQ(spherical->getAuxiliaryValue(0), 0.);
  EXPECT_TRUE(spherical->getAuxiliaryBounds(0).isInfinite());
  EXPECT_TRUE(spherical->getAuxiliaryName(0).isEmpty());
}

TEST(NgmVStruct, ContextOfALowerDegreeThanTheStructureIsRefused)
{
  const auto structure = make(NgmEVStruct::SPHERICAL);
  EXPECT_EQ(errorOf([&] { structure->setContext(NgmModelContext(-2, 3, 0.)); }),
            QStringLiteral("NgmAVStruct::setContext: invalid Irf Degree"));
  EXPECT_EQ(structure->getContext().getMaxIrfDegree(), 99);
}

TEST(NgmVStructFactory, CreatesEveryTypeThatHasAClassAndCopiesIt)
{
  for (const NgmEVStruct &type : ALL_TYPES) {
    const auto structure = make(type);
    ASSERT_TRUE(structure);
    EXPECT_EQ(structure->getType(), type);
    structure->setAuxiliaryParameter(0, 1.7);
    structure->setRanges(NbgVector3D(5., 7., 11.));
    structure->setRotation(NbgRotation(30., 10., 5.));
    const auto copy = NgmVStructFactory::createVStruct(*structure);
    EXPECT_EQ(copy->debug(0), structure->debug(0));
    EXPECT_EQ(copy->calcCova(NbgVector3D(1., 2., 3.)),
              structure->calcCova(NbgVector3D(1., 2., 3.)));
  }
  EXPECT_FALSE(NgmVStructFactory::createTemplateVStruct(NgmEVStruct::UNKNOWN));
  EXPECT_FALSE(make(NgmEVStruct::UNKNOWN));
}

TEST(NgmVStruct, DescribesItself)
{
  const auto structure = make(NgmEVStruct::SPHERICAL);
  structure->setRangeIsotropic(12.5);
  const QString text = structure->debug(0);
  for (const char *part :
       {"Structure Type=Spherical\n", "Range=12.5\n", "Delta=12.5\n", "Isotropic=true\n",
        "Isotropic2D=true\n", "Rotation:\n", "Anisotropy:\n"})
    EXPECT_TRUE(text.contains(QString::fromLatin1(part))) << part;
  const QStringList lines = structure->summary(QStringLiteral("> "));
  ASSERT_EQ(lines.size(), 2);
  EXPECT_TRUE(lines[0].startsWith(QStringLiteral("> Ranges: ")));
  EXPECT_TRUE(lines[1].startsWith(QStringLiteral("> Rotation: ")));
}

}  // namespace
