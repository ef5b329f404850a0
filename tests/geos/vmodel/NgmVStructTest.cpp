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

/// Every type that has a class.
const QList<NgmEVStruct> ALL_TYPES = NgmVStructFactory::getStructureForDegree(99, false);

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
  } cases[] = {{NgmEVStruct::EXPONENTIAL, 0., "exponential"},
               {NgmEVStruct::SPHERICAL, 0., "spherical"},
               {NgmEVStruct::CUBIC, 0., "cubic"},
               {NgmEVStruct::GAUSSIAN, 0., "gaussian"},
               {NgmEVStruct::SINCARD, 0., "cardinal_sine"},
               {NgmEVStruct::STABLE, 1.5, "stable15"},
               {NgmEVStruct::GENERALIZED_CAUCHY, 1., "cauchy1"},
               {NgmEVStruct::MATERN, 0.5, "matern05"},
               {NgmEVStruct::MATERN, 1., "matern10"},
               {NgmEVStruct::MATERN, 1.5, "matern15"},
               {NgmEVStruct::MATERN, 2.5, "matern25"},
               {NgmEVStruct::MATERN_0_5, 0., "matern05"},
               {NgmEVStruct::MATERN_1_0, 0., "matern10"},
               {NgmEVStruct::MATERN_1_5, 0., "matern15"}};
  const std::vector<double> &h = table["h"];
  ASSERT_EQ(h.size(), 20u);
  for (const auto &test : cases) {
    const auto structure = make(test.type);
    structure->setAuxiliaryParameter(0, test.alpha);
    setUnitScale(*structure);
    std::vector<double> covas(h.size());
    structure->calcCovaFromDist(int(h.size()), h.data(), covas.data());
    for (std::size_t i = 0; i < h.size(); ++i) {
      // The table has 15 significant digits of values up to 1. Up to u = 1e-5 the cardinal sine is
      // taken as 1, which is u^2 / 6 too much.
      const bool isTakenAs1 = test.type == NgmEVStruct::SINCARD && h[i] <= 1e-5;
      EXPECT_NEAR(covas[i], table[test.column][i], 1e-14 + (isTakenAs1 ? h[i] * h[i] / 6. : 0.))
          << test.column << " at " << h[i];
      EXPECT_EQ(structure->calcCova(NbgVector3D(0., h[i], 0.)), covas[i]);
    }
  }
}

TEST(NgmVStruct, MaternOfAnySmoothness)
{
  // Computed with 40 digits from the Bessel function.
  const double u[] = {0.001, 0.3, 2., 9.};
  const struct
  {
    double nu;
    double covas[4];
  } cases[] = {
      {0.31, {0.9868267413677124, 0.57262069213640975, 0.080394491327790518, 5.640774574152091e-5}},
      {0.7,
       {0.99992211682054206, 0.84135264504434716, 0.19415701031725618, 0.00023055394507354521}},
      {1.2,
       {0.99999881315847723, 0.94214012660810875, 0.33309766627637453, 0.00072693274473204795}},
      {2., {0.99999975000048586, 0.97855831276169088, 0.50751950913211173, 0.002543426322151667}},
      {2.9,
       {0.99999986842107091, 0.98829950242408337, 0.63641614632497158, 0.0067857399344171211}}};
  for (const auto &test : cases) {
    const auto matern = make(NgmEVStruct::MATERN);
    matern->setAuxiliaryParameter(0, test.nu);
    setUnitScale(*matern);
    for (int i = 0; i < 4; ++i)
      EXPECT_NEAR(covaAt(*matern, u[i]), test.covas[i], 4e-15) << test.nu << " at " << u[i];
  }
  const auto fixed = make(NgmEVStruct::MATERN_2_0);
  setUnitScale(*fixed);
  EXPECT_NEAR(covaAt(*fixed, 2.), 0.50751950913211173, 4e-15);
}

TEST(NgmVStruct, MaternAtTheEndsOfItsRange)
{
  const auto matern = make(NgmEVStruct::MATERN);
  matern->setAuxiliaryParameter(0, 2.9);
  setUnitScale(*matern);
  EXPECT_EQ(covaAt(*matern, 0.), 1.);
  EXPECT_NEAR(covaAt(*matern, 1e-100), 1., 1e-13);
  EXPECT_EQ(covaAt(*matern, 1e-200), 0.) << "the Bessel function overflows";
  EXPECT_GT(covaAt(*matern, 705.), 0.);
  EXPECT_EQ(covaAt(*matern, 706.), 0.);
}

TEST(NgmVStruct, HalfIntegerMaternAgreesWithTheBesselFunction)
{
  using namespace NgmVStructKernels;
  for (int i = 1; i < 2000; ++i) {
    const double u = 0.02 * i;
    const auto expectNear = [u](double closed, double bessel) {
      EXPECT_NEAR(closed, bessel, 1e-14 * bessel + 1e-18) << u;
    };
    const double rootPi = std::sqrt(M_PI);
    expectNear(Exponential{}(u), Matern{0.5, 2. / rootPi}(u));
    expectNear(Matern3Halves{}(u), Matern{1.5, 4. / rootPi}(u));
    expectNear(Matern5Halves{}(u), Matern{2.5, 8. / (3. * rootPi)}(u));
  }
}

TEST(NgmVStruct, BesselJFollowsItsFunction)
{
  // Computed with 40 digits from the Bessel function.
  const double u[] = {0.5, 6., 31., 120.};
  const struct
  {
    double nu;
    double covas[4];
  } cases[] = {
      {0.3,
       {0.9525721870785623, 0.003741892207363491, -0.0058864247230849837, 0.015376277052277572}},
      {2.4,
       {0.98174770108027963, -0.023574536190860669, 0.0001006427792826782, -8.4091292397669657e-6}},
      {7.,
       {0.99221457030226961, 0.29863590547830946, 1.3634753359466899e-6, -4.8886435692631323e-12}},
      {40.5,
       {0.9984950827441098, 0.80458835404219413, 0.0018773341971469832, 3.5672639790687148e-25}},
      // Gamma function and power overflow.
      {200., {0., 0.9562067883758522, 0.30154439145865303, 6.7268928469867475e-9}}};
  for (const auto &test : cases) {
    const auto besselJ = make(NgmEVStruct::BESSEL_J);
    besselJ->setAuxiliaryParameter(0, test.nu);
    EXPECT_EQ(besselJ->getPracticalScaleFactor(), 1.);
    for (int i = 0; i < 4; ++i)
      // exp(ln Gamma) costs ln Gamma units in the last place.
      EXPECT_NEAR(covaAt(*besselJ, u[i]), test.covas[i], 2e-14 + 5e-16 * std::lgamma(test.nu + 1.))
          << test.nu << " at " << u[i];
    EXPECT_EQ(covaAt(*besselJ, 0.), 1.);
  }
}

TEST(NgmVStruct, BesselJVanishesWhereItsFunctionUnderflowsAndForNegativeOrders)
{
  const auto besselJ = make(NgmEVStruct::BESSEL_J);
  besselJ->setAuxiliaryParameter(0, 100.);
  EXPECT_EQ(covaAt(*besselJ, 0.01), 0.);
  EXPECT_GT(covaAt(*besselJ, 1.), 0.99);
  for (const double nu : {1e6, 1e15, 1e29, 0., -0.4}) {
    besselJ->setAuxiliaryParameter(0, nu);
    EXPECT_EQ(covaAt(*besselJ, 0.), 1.);
    for (const double u : {1e-3, 1., 100., 1e15, 1e22})
      EXPECT_EQ(covaAt(*besselJ, u), 0.) << nu << " at " << u;
  }
}

TEST(NgmVStruct, ExponentialCosineHasAPeriodOfLength)
{
  const auto cosexp = make(NgmEVStruct::EXPONENTIAL_COSINE);
  cosexp->setAuxiliaryParameter(0, 8.);
  for (const double scale : {5., 10.}) {
    cosexp->setRangeIsotropic(2.995732 * scale);
    EXPECT_NEAR(covaAt(*cosexp, 8.), std::exp(-8. / scale), 1e-15);
    EXPECT_NEAR(covaAt(*cosexp, 4.), -std::exp(-4. / scale), 1e-15);
    EXPECT_NEAR(covaAt(*cosexp, 2.), 0., 1e-15);
    EXPECT_EQ(cosexp->calcCova(NbgVector3D(3., 4., 12.)), covaAt(*cosexp, 13.));
    EXPECT_NE(covaAt(*cosexp, 99.9 * scale), 0.);
    EXPECT_EQ(covaAt(*cosexp, 100.1 * scale), 0.);
  }
}

TEST(NgmVStruct, GeneralizedCovariancesByDimension)
{
  // Computed with 40 digits for a field of twice the scale, at u = 0.7.
  const struct
  {
    NgmEVStruct type;
    double covas[3];
    double atOrigin;  // in 2 dimensions
  } cases[] = {
      {NgmEVStruct::LINEAR, {1.3, 2.4415926535897932, 3.3}, M_PI},
      {NgmEVStruct::SPLINE_GC, {1.0902292774700211, 2.9955871589956479, 4.9268959441366878}, 4.},
      {NgmEVStruct::SPLINE2_GC,
       {-0.025712654039689644, -0.025712654039689644, -0.025712654039689644},
       -0.25},
      {NgmEVStruct::THIRD_ORDER_GC, {13.403, 34.578505942494772, 60.423}, 12. * M_PI},
      {NgmEVStruct::FIFTH_ORDER_GC, {-435.83293, -1394.9946969713095, -2917.91313}, -480. * M_PI}};
  for (const auto &test : cases)
    for (int dimension = 1; dimension <= 3; ++dimension) {
      const auto structure =
          NgmVStructFactory::createVStruct(test.type, NgmModelContext(2, dimension, 20.));
      structure->setRangeIsotropic(10.);
      const double expected = test.covas[dimension - 1];
      EXPECT_NEAR(covaAt(*structure, 7.), expected, 1e-15 * std::abs(expected) + 2e-15);
      EXPECT_EQ(structure->calcCova(NbgVector3D(0., 0., 7.)), covaAt(*structure, 7.));
      if (dimension == 2) {
        EXPECT_NEAR(covaAt(*structure, 0.), test.atOrigin, 1e-15 * std::abs(test.atOrigin));
      }
    }
}

TEST(NgmVStruct, SplineHasNoLogarithmNearItsOriginNorInSmallFields)
{
  const auto spline =
      NgmVStructFactory::createVStruct(NgmEVStruct::SPLINE_GC, NgmModelContext(2, 2, 1.));
  EXPECT_EQ(covaAt(*spline, 0.99e-4), 1. - 0.99e-4 * 0.99e-4);
  EXPECT_LT(covaAt(*spline, 1.01e-4), 1. - 9. * 1.01e-4 * 1.01e-4);
  spline->setContext(NgmModelContext(2, 2, 0.));
  EXPECT_EQ(covaAt(*spline, 3.), -9.);
}

TEST(NgmVStruct, ConstantOfThePowerFollowsScaleContextAndExponent)
{
  const auto power =
      NgmVStructFactory::createVStruct(NgmEVStruct::POWER, NgmModelContext(0, 2, 100.));
  power->setRangeIsotropic(10.);
  EXPECT_DOUBLE_EQ(covaAt(*power, 0.), 15.);
  EXPECT_DOUBLE_EQ(covaAt(*power, 25.), 12.5);
  // The logarithm of the gamma function, not the function.
  power->setAuxiliaryParameter(0, 1.5);
  const double logGamma = std::lgamma(0.25);
  EXPECT_DOUBLE_EQ(covaAt(*power, 0.), logGamma * std::pow(10., 1.5));
  EXPECT_DOUBLE_EQ(covaAt(*power, 40.), logGamma * std::pow(10., 1.5) - 8.);
  power->setContext(NgmModelContext(0, 1, 100.));
  EXPECT_DOUBLE_EQ(covaAt(*power, 0.), 0.56 * logGamma * std::pow(10., 1.5));
  power->setContext(NgmModelContext(0, 3, 50.));
  EXPECT_DOUBLE_EQ(covaAt(*power, 0.), 1.5 * logGamma * std::pow(5., 1.5));
  // In another unit of length the ratio of field size and scale is the same.
  power->normalizeStructure(0.5);
  EXPECT_EQ(power->getTheoScaleFactor(), 20.);
  EXPECT_DOUBLE_EQ(covaAt(*power, 0.), 1.5 * logGamma * std::pow(5., 1.5));
  power->setRanges(NbgVector3D(50., 60., 70.));
  EXPECT_DOUBLE_EQ(covaAt(*power, 0.), 1.5 * logGamma);
  EXPECT_EQ(power->getAuxiliaryValue(0), 1.5);
  EXPECT_EQ(power->getAuxiliaryValue(1), 0.);

  power->setContext(NgmModelContext(0, 2, 0.));
  for (const double alpha : {0.5, 1., 2.}) {
    power->setAuxiliaryParameter(0, alpha);
    EXPECT_EQ(covaAt(*power, 0.), 0.) << "no field size";
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
  for (const NgmEVStruct &type :
       {NgmEVStruct::CUBIC, NgmEVStruct::GAUSSIAN, NgmEVStruct::SPLINE2_GC}) {
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
  const auto spline2 = make(NgmEVStruct::SPLINE2_GC);
  EXPECT_EQ(spline2->calcFirstDerivative(NbgVector3D::Null), 2.);
  EXPECT_EQ(spline2->calcSecondDerivative(NbgVector3D::Null), 2.);
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

TEST(NgmVStruct, ChangingNuKeepsThePracticalRange)
{
  const auto matern = make(NgmEVStruct::MATERN);
  matern->setRangeIsotropic(120.);
  EXPECT_DOUBLE_EQ(matern->getTheoScaleFactor(), 120. / 3.6527);
  matern->setAuxiliaryParameter(0, 2.);
  EXPECT_DOUBLE_EQ(matern->getPracticalScaleFactor(), 120.);
  EXPECT_DOUBLE_EQ(matern->getTheoScaleFactor(), 120. / (3.6527 * std::pow(2., 0.4874)));
}

TEST(NgmVStruct, AuxiliaryParameters)
{
  const double infinity = NbiIntervalData::Infinity;
  const struct
  {
    NgmEVStruct type;
    const char *className;
    NbiIntervalData bounds;
    double outside;
    int name = 0x03B1;
  } cases[] = {
      {NgmEVStruct::POWER, "NgmVStructPower", NbiIntervalData(0., 2., true, true), 2.01},
      {NgmEVStruct::STABLE, "NgmVStructStable", NbiIntervalData(0., 2., false, true), 0.},
      {NgmEVStruct::GAMMA, "NgmVStructGamma", NbiIntervalData(0., infinity, false, false), 0.},
      {NgmEVStruct::BESSEL_J, "NgmVStructBesselJ", NbiIntervalData(-0.5, infinity, false, false),
       -0.5},
      {NgmEVStruct::MATERN, "NgmVStructBesselK", NbiIntervalData(0.3, 3., false, false), 3.,
       0x03BD},
      {NgmEVStruct::EXPONENTIAL_COSINE, "NgmVStructCosexp",
       NbiIntervalData(0., infinity, false, false), 0.},
      {NgmEVStruct::GENERALIZED_CAUCHY, "NgmVStructCauchy",
       NbiIntervalData(0., infinity, false, false), -1.}};
  for (const auto &test : cases) {
    const auto structure = make(test.type);
    EXPECT_EQ(structure->getNAuxiliaryParameters(), 1);
    EXPECT_EQ(structure->getAuxiliaryValue(0), 1.);
    EXPECT_EQ(structure->getAuxiliaryName(0), QString(QChar(test.name)));
    EXPECT_TRUE(structure->getAuxiliaryBounds(0) == test.bounds) << test.className;
    EXPECT_EQ(errorOf([&] { structure->setAuxiliaryParameter(0, test.outside); }),
              QString::fromLatin1(test.className) +
                  QStringLiteral("::setAuxiliaryParameter: Auxiliary parameter out of bounds"));
    EXPECT_EQ(structure->getAuxiliaryValue(0), 1.);
  }
  const auto fixed = make(NgmEVStruct::MATERN_1_5);
  EXPECT_EQ(fixed->getNAuxiliaryParameters(), 0);
  EXPECT_EQ(fixed->getAuxiliaryValue(0), 1.5);
  EXPECT_TRUE(fixed->getAuxiliaryBounds(0).isInfinite());
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
  for (const NgmEVStruct &type :
       {NgmEVStruct::LINEAR, NgmEVStruct::POWER, NgmEVStruct::SPLINE_GC}) {
    const auto generalized = make(type);
    EXPECT_THROW(generalized->setContext(NgmModelContext(-1, 3, 0.)), NbeProgrammingError);
    EXPECT_NO_THROW(generalized->setContext(NgmModelContext(generalized->getIRFDegree(), 3, 0.)));
  }
}

TEST(NgmVStructFactory, ListsTheTypesThatSuitADrift)
{
  const auto keys = [](const QList<NgmEVStruct> &types) {
    QString text;
    for (const NgmEVStruct &type : types)
      text += type.getKeyString() + QLatin1Char(' ');
    return text;
  };
  EXPECT_EQ(ALL_TYPES.size(), 21);
  EXPECT_EQ(keys(NgmVStructFactory::getStructureForDegree(-1, true)),
            QStringLiteral("EXPONENTIAL SPHERICAL CUBIC GAUSSIAN SINCARD GAMMA BESSEL_J MATERN "
                           "GENERALIZED_CAUCHY MATERN_0_5 MATERN_1_0 MATERN_1_5 MATERN_2_0 "));
  EXPECT_EQ(keys(NgmVStructFactory::getStructureForDegree(0, false)),
            QStringLiteral("EXPONENTIAL SPHERICAL CUBIC POWER GAUSSIAN SINCARD STABLE GAMMA "
                           "BESSEL_J MATERN EXPONENTIAL_COSINE GENERALIZED_CAUCHY LINEAR "
                           "MATERN_0_5 MATERN_1_0 MATERN_1_5 MATERN_2_0 "));
  EXPECT_EQ(NgmVStructFactory::getStructureForDegree(1, false),
            NgmVStructFactory::getStructureForDegree(0, false));
  EXPECT_TRUE(keys(NgmVStructFactory::getStructureForDegree(2, true))
                  .contains(QStringLiteral("LINEAR THIRD_ORDER_GC FIFTH_ORDER_GC")));
  EXPECT_EQ(keys(NgmVStructFactory::getStructureForPotential(1)),
            QStringLiteral("CUBIC GAUSSIAN "));
  EXPECT_EQ(keys(NgmVStructFactory::getStructureForPotential(2)),
            QStringLiteral("CUBIC GAUSSIAN SPLINE2_GC "));

  EXPECT_EQ(NgmVStructFactory::getStructureNamesAll().size(), 21);
  EXPECT_EQ(NgmVStructFactory::getStructureNamesAll().at(8), QStringLiteral("Bessel-J"));
  EXPECT_EQ(NgmVStructFactory::getStructureNamesStationnary(false).size(), 15);
  EXPECT_EQ(NgmVStructFactory::getStructureNamesIntrinsic().size(), 17);
}

TEST(NgmVStruct, OnlyGeneralizedCovariancesHaveNoRange)
{
  for (const NgmEVStruct &type : ALL_TYPES) {
    const auto structure = make(type);
    EXPECT_EQ(structure->isScaleFactorSignificant(), structure->getIRFDegree() < 0)
        << type.getKey();
    EXPECT_FALSE(structure->isFactorized());
    EXPECT_FALSE(structure->isAuxiliaryCoordinate(0));
  }
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
