#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "basic/error/NbeProgrammingError.h"
#include "geos/NgcEnumGlobal.h"
#include "geos/NgmEnumGlobal.h"

namespace {

struct Item
{
  const char *key;
  int value;
  const char *label;
};

QString messageOf(const std::function<void()> &action)
{
  try {
    action();
  } catch (const NbeProgrammingError &error) {
    return error.getMessage();
  }
  return QStringLiteral("nothing thrown");
}

QString refusal(const QString &name, const QString &path, const QString &operation,
                const QString &text)
{
  return QStringLiteral("'static const %1& %1::%2' in file '%3' failed:\n\n%4 is not valid")
      .arg(name, operation, path, text);
}

template <class T>
void checkItems(const std::vector<Item> &items)
{
  ASSERT_EQ(int(items.size()), T::count());
  auto registered = T::createIterator();
  for (const Item &item : items) {
    const QString label = QString::fromUtf8(item.label);
    ASSERT_TRUE(registered.hasNext());
    const T &instance = registered.next();
    EXPECT_EQ(item.value, instance.getValue());
    EXPECT_STREQ(item.key, instance.getKey());
    EXPECT_EQ(label, instance.getLabel());
    EXPECT_EQ(item.value, int(instance.toEnum()));

    EXPECT_EQ(&instance, &T::fromKey(QString::fromUtf8(item.key)));
    EXPECT_EQ(&instance, &T::fromValue(item.value));
    EXPECT_TRUE(T::existsKey(QString::fromUtf8(item.key)) && T::existsValue(item.value) &&
                T::existsLabel(label));
    EXPECT_EQ(&instance, &T::fromLabel(label));
  }
  EXPECT_FALSE(registered.hasNext());
}

template <class T>
void checkLookupFailures(const QString &name, const QString &path)
{
  const QString key = QStringLiteral("no_such");
  EXPECT_EQ(refusal(name, path, QStringLiteral("fromKey(const QString&)"), key),
            messageOf([&] { T::fromKey(key); }));
  EXPECT_EQ(refusal(name, path, QStringLiteral("fromValue(int)"), QStringLiteral("-7")),
            messageOf([&] { T::fromValue(-7); }));
  EXPECT_EQ(refusal(name, path, QStringLiteral("fromLabel(const QString&)"), key),
            messageOf([&] { T::fromLabel(key); }));

  const T fallback = T::fromValue(T::createIterator().next().getValue());
  EXPECT_EQ(fallback, T::fromKey(key, fallback));
  EXPECT_EQ(fallback, T::fromValue(-7, fallback));
  EXPECT_EQ(fallback, T::fromLabel(key, fallback));
  EXPECT_EQ(T(), T::fromKey(T().getKeyString(), fallback));
}

template <class T>
void check(const char *name, const char *path, const char *defaultKey,
           const std::vector<Item> &items)
{
  SCOPED_TRACE(name);
  checkItems<T>(items);
  EXPECT_STREQ(defaultKey, T().getKey());
  checkLookupFailures<T>(QString::fromUtf8(name), QString::fromUtf8(path));
}

// Two items of one value, as a careless edit would leave them.
class NgcETwice final : public NgcAKeyedEnum<NgcETwice>
{
  NGC_KEYED_ENUM(NgcETwice)

  enum class EValue { FIRST = 1, SECOND = 1 };

  static void build();
};

NGC_KEYED_ENUM_EARLY QMap<int, const NgcETwice *> NgcETwice::_map;
const NgcETwice *const NgcETwice::_default = nullptr;
const char *const NgcETwice::_className = "NgcETwice";
const char *const NgcETwice::_sourcePath = "";

void NgcETwice::build()
{
  static const NgcETwice first(QStringLiteral("One"), 1, "FIRST");
  static const NgcETwice second(QString::fromUtf8("Un \u00e9l\u00e9ment"), 1, "SECOND");
}

QStringList printed;

void keepMessage(QtMsgType, const QMessageLogContext &, const QString &text)
{
  printed << text;
}

// Built while the program loads.
const NgcEResourceClassification earlyDefault;

}  // namespace

TEST(NgcEnumGlobal, EveryClassHasItsValuesKeysAndLabels)
{
  check<NgcEConnectMode>(
      "NgcEConnectMode", ".\\NgcEnumGlobal", "DELAUNAY_3D",
      {{"MOVING_NEIGHBORHOOD", 0, "Moving Neighborhood"}, {"DELAUNAY_3D", 1, "Delaunay 3D"}});
  check<NgcECutoffMode>("NgcECutoffMode", ".\\NgcEnumGlobal", "CUTOFF_REPLACE",
                        {{"CUTOFF_REPLACE", 0, "Cap"},
                         {"CUTOFF_REMOVE", 1, "Remove sample"},
                         {"CUTOFF_IGNORE", 2, "Ignore"}});
  check<NgcEFaultsMode>(
      "NgcEFaultsMode", ".\\NgcEnumGlobal", "CALCULATE_INSIDE",
      {{"CALCULATE_INSIDE", 0, "Calculate inside"},
       {"CALCULATE_INSIDE_IGNORING_POLYGON", 1, "Calculate inside ignoring polygon"},
       {"DO_NOT_CALCULATE_INSIDE", 2, "Do not calculate inside"},
       {"IGNORE_POYGONAL_STATUS", 3, "Ignore polygonal status"}});
  check<NgcEGibbsGenerationMode>("NgcEGibbsGenerationMode", ".\\NgcEnumGlobal", "DETERMINISTIC",
                                 {{"DETERMINISTIC", 0, "One per Interval"},
                                  {"EXHAUSTIVE", 1, "Exhaustive"},
                                  {"ADAPTIVE", 2, "Adaptive"},
                                  {"HYBRID", 3, "Hybrid"},
                                  {"SURROUND", 4, "Surround Contacts"},
                                  {"MODERATE", 8, "Moderate"}});
  check<NgcEInterpolType>("NgcEInterpolType", ".\\NgcEnumGlobal", "INVERSE_DISTANCES",
                          {{"INVERSE_DISTANCES", 0, "Inverse Distances"},
                           {"NEAREST_NEIGHBOR", 1, "Nearest Neighbor"},
                           {"MOVING_AVERAGE", 2, "Moving Average"},
                           {"MOVING_MEDIAN", 3, "Moving Median"}});
  check<NgcEKrigingMode>("NgcEKrigingMode", ".\\NgcEnumGlobal", "ORDINARY_KRIGING",
                         {{"ORDINARY_KRIGING", 0, "Ordinary Kriging"},
                          {"SIMPLE_KRIGING", 1, "Simple Kriging"},
                          {"UNIVERSAL_KRIGING", 2, "Kriging with Drifts"},
                          {"RESCALED_COKRIGING", 3, "Rescaled Cokriging"}});
  check<NgcEMafSelectionMode>("NgcEMafSelectionMode", "stats\\NgmMafModelTransform", "KEEP_ALL",
                              {{"KEEP_ALL", 0, "All"},
                               {"NON_AUTO", 1, "Fixed number"},
                               {"PERCENT_VAR", 2, "Automatic number (percent of var)"}});
  check<NgcEMafTransfoMode>("NgcEMafTransfoMode", "stats\\NgmMafModelTransform", "SPC_TO_MAF",
                            {{"SPC_TO_MAF", 0, "SPC to MAF"},
                             {"PCA_TO_MAF", 1, "PCA to MAF"},
                             {"RAW_TO_MAF", 2, "Raw to MAF"},
                             {"MAF_TO_SPC", 3, "MAF to SPC"},
                             {"MAF_TO_PCA", 4, "MAF to PCA"},
                             {"MAF_TO_RAW", 5, "MAF to Raw"}});
  check<NgcEMovNeighMode>(
      "NgcEMovNeighMode", ".\\NgcEnumGlobal", "FROM_ELLIPSOID",
      {{"FROM_ELLIPSOID", 0, "an ellipsoid"}, {"FROM_BLOCK", 1, "the target block"}});
  check<NgcENeighborhoodErrorCode>(
      "NgcENeighborhoodErrorCode", ".\\NgcEnumGlobal", "NEIGH_SUCCESS",
      {{"NEIGH_SUCCESS", 0, "No Problem or Unique Neighborhood"},
       {"NEIGH_EMPTY_SECT", 1, "Too Many Consecutive Empty Sectors"},
       {"NEIGH_TOO_FAR", 2, "No Sample in the Rhomin Distance"},
       {"NEIGH_NOT_ENOUGH", 3, "Not Enough Samples Selected"},
       {"NEIGH_NOT_ENOUGH_CODES", 4, "Not Enough Different Codes Selected"},
       {"NEIGH_MAX_IN_BLOCK", 5, "Maximum Number of Samples in the Block Reached"},
       {"NEIGH_PROXIMITY", 6, "One Point Selected in the Proximity Parallelepiped"},
       {"NEIGH_BLOCK_ONLY", 7, "Some Samples in the Block Only"},
       {"NEIGH_UNDEF_LGS", 8, "LGS Undefined Value"},
       {"NEIGH_NO_SAMPLE", 9, "No Sample Selected"}});
  check<NgcEPcSelectionMode>("NgcEPcSelectionMode", "stats\\NgmPcaModelTransform", "KEEP_ALL",
                             {{"KEEP_ALL", 0, "All"},
                              {"NON_AUTO", 1, "Fixed number"},
                              {"KAYSER_RULE", 2, "Automatic number (Kayser rule)"},
                              {"PERCENT_VAR", 3, "Automatic number (percent of var)"}});
  check<NgcEPotentialFunction>(
      "NgcEPotentialFunction", ".\\NgcEnumGlobal", "POTENTIAL",
      {{"POTENTIAL", 0, "Potential"},
       {"GRAD_NORM", 1, "Norm of Gradient"},
       {"STDEV", 2, "Standard Deviation"},
       {"VARIANCE", 3, "Variance"},
       {"ESTIM_VALUE", 4, "Norm Stdev. by Potential"},
       {"NORM_STDEV", 5, "Norm Stdev. by Gradient"},
       {"IN_DOMAIN_PROBA", 6, "Proba to be in Domain"},
       {"SIMULATION", 7, "Simulation"},
       {"GRAD_CONTRIBUTION", 8, "Gradient Contribution"},
       {"TAN_CONTRIBUTION", 9, "Tangent Contribution"},
       {"POL_CONTRIBUTION", 10, "Polarity Contribution"},
       {"ISO_CONTRIBUTION", 11, "Isopot Contribution"},
       {"GIBBS_CONTRIBUTION", 12, "Gibbs Contribution"},
       {"EXT_DRIFT_CONTRIBUTION", 13, "External Drift Contribution"},
       {"INT_DRIFT_CONTRIBUTION", 14, "Internal Drift Contribution"},
       {"DRIFTS_CONTRIBUTION", 15, "Drifts Contribution"},
       {"KRIGED_ZONE", 16, "Kriged Zone"},
       {"DISTANCE", 17, "Distance to an Isopotential"},
       {"DISTANCE_GRAD", 18, "Distance to Isopotential 0 using Gradient"}});
  check<NgcEReductionMode>("NgcEReductionMode", ".\\NgcEnumGlobal", "EXHAUSTIVE",
                           {{"EXHAUSTIVE", 0, "Exhaustive Algorithm"},
                            {"RANDOM", 1, "Random Algorithm"},
                            {"GENETIC", 2, "Genetic Algorithm"}});
  check<NgcERejectionAuxVarOption>(
      "NgcERejectionAuxVarOption", ".\\NgcEnumGlobal", "AUX_VAR_KEEP_TARGET",
      {{"AUX_VAR_KEEP_TARGET", 0, "Keep Auxiliary Variables Only at Target Point"},
       {"AUX_VAR_KEEP_NOTHING", 1, "Ignore All Variables"},
       {"AUX_VAR_KEEP_ALL", 2, "Keep Auxiliary Variables"}});
  check<NgcERejectionMode>("NgcERejectionMode", ".\\NgcEnumGlobal", "REJECTION_BY_TARGET",
                           {{"REJECTION_BY_TARGET", 0, "Rejection by Target"},
                            {"REJECTION_BY_LINE", 1, "Rejection by Line"},
                            {"REJECTION_BY_PARTITION", 2, "Rejection by Proximity"}});
  check<NgcEResourceClassification>("NgcEResourceClassification", ".\\NgcEnumGlobal",
                                    "RESOURCE_INFERRED",
                                    {{"RESOURCE_MEASURED", 1, "Measured"},
                                     {"RESOURCE_INDICATED", 2, "Indicated"},
                                     {"RESOURCE_INFERRED", 3, "Inferred"}});
  check<NgcESolidShape>("NgcESolidShape", ".\\NgcEnumGlobal", "SHAPE_CUBOID",
                        {{"SHAPE_CUBOID", 0, "Cuboid"},
                         {"SHAPE_ELLIPSOID", 1, "Ellipsoid"},
                         {"SHAPE_ELLIPTIC_CYLINDER", 2, "Elliptic Cylinder"}});
  check<NgcESpheringMode>(
      "NgcESpheringMode", "stats\\NgmPcaModelTransform", "SDS",
      {{"SDS", 0, "Spectral Decomposition Sphering"}, {"DRS", 1, "Dimension Reduction Sphering"}});
  check<NgcEStatMode>("NgcEStatMode", ".\\NgcEnumGlobal", "MULTIVARIATE",
                      {{"MULTIVARIATE", 0, "Multivariate Statistics"},
                       {"BIVARIATE", 1, "Bivariate Statistics"},
                       {"UNIVARIATE", 2, "Univariate Statistics"}});
  check<NgmECovaExp>("NgmECovaExp", ".\\NgmEnumGlobal", "COVARIANCE",
                     {{"COVARIANCE", 0, "Covariance"},
                      {"NON_CENTERED_COVARIANCE", 1, "Non Centered Covariance"},
                      {"NON_ERGODIC_COVARIANCE", 2, "Non Ergodic Covariance"},
                      {"ODD_PART_COVARIANCE", 3, "Odd Part of Covariance"},
                      {"EVEN_PART_COVARIANCE", 4, "Even Part of Covariance"},
                      {"TRANSITIVE_COVARIOGRAM", 5, "Transitive Covariogram"},
                      {"CORRELOGRAM", 6, "Correlogram"},
                      {"NON_ERGODIC_CORRELOGRAM", 7, "Non Ergodic Correlogram"}});
  check<NgmEDirectionGroupName>("NgmEDirectionGroupName", ".\\NgmEnumGlobal", "ALL_DIRECTIONS",
                                {{"ALL_DIRECTIONS", 0, "All Directions"},
                                 {"OMNIDIRECTIONAL", 1, "Omnidirectional"},
                                 {"HORIZONTAL", 2, "Horizontal"},
                                 {"REF_PLANE", 3, "Ref. Plane"},
                                 {"VERTICAL", 4, "Vertical"},
                                 {"NORMAL", 5, "Normal"},
                                 {"OTHER_DIRECTIONS", 6, "Other Direction(s)"},
                                 {"FREE_DIRECTIONS", 7, "Free Direction(s)"},
                                 {"MAIN_DIRECTIONS_UVW", 8, "Main Directions (U,V,W)"},
                                 {"MAIN_DIRECTIONS_UV", 9, "Main Directions (U,V)"},
                                 {"UV", 10, "U,V"},
                                 {"U", 11, "U"},
                                 {"V", 12, "V"},
                                 {"W", 13, "W (Normal to Reference Plane)"}});
  check<NgmELineRegulByDomainCatMode>("NgmELineRegulByDomainCatMode", ".\\NgcEnumGlobal", "CENTRAL",
                                      {{"FIRST", 0, "First"},
                                       {"MAJORITY", 1, "Most Present"},
                                       {"CENTRAL", 2, "Central"},
                                       {"LAST", 3, "Last"},
                                       {"RANDOM", 4, "Random"}});
  check<NgmELineRegulByDomainResidualMode>("NgmELineRegulByDomainResidualMode", ".\\NgcEnumGlobal",
                                           "MERGE",
                                           {{"KEEP", 0, "Keep residual sample"},
                                            {"REMOVE", 1, "Remove residual sample"},
                                            {"MERGE", 2, "Merge residual sample with previous one"},
                                            {"SPREAD", 3, "Spread residual sample in all others"}});
  check<NgmEMorphoOp>("NgmEMorphoOp", ".\\NgmEnumGlobal", "DILATION",
                      {{"DILATION", 0, "Dilation"},
                       {"EROSION", 1, "Erosion"},
                       {"CLOSING", 2, "Closing"},
                       {"OPENING", 3, "Opening"}});
  check<NgmENeighborhoodNestedCode>("NgmENeighborhoodNestedCode", ".\\NgmEnumGlobal", "MEDIUM",
                                    {{"FAILED", 0, "Failed"},
                                     {"STANDARD", 1, "Standard"},
                                     {"MEDIUM", 2, "Medium"},
                                     {"LARGE", 3, "Large"},
                                     {"UNFINITE", 4, "Infinite"}});
  check<NgmEVStruct>("NgmEVStruct", ".\\NgmEnumGlobal", "UNKNOWN",
                     {{"UNKNOWN", 0, "None"},
                      {"EXPONENTIAL", 1, "Exponential"},
                      {"SPHERICAL", 2, "Spherical"},
                      {"CUBIC", 3, "Cubic"},
                      {"POWER", 4, "Power"},
                      {"GAUSSIAN", 5, "Gaussian"},
                      {"SINCARD", 6, "Cardinal Sine"},
                      {"STABLE", 7, "Stable"},
                      {"GAMMA", 8, "Gamma"},
                      {"BESSEL_J", 9, "Bessel-J"},
                      {"MATERN", 10, "Bessel-K"},
                      {"EXPONENTIAL_COSINE", 11, "Exponential Cosine"},
                      {"GENERALIZED_CAUCHY", 12, "Generalized Cauchy"},
                      {"LINEAR", 13, "Linear"},
                      {"SPLINE_GC", 14, "Spline GC"},
                      {"SPLINE2_GC", 15, "SPline2 GC"},
                      {"THIRD_ORDER_GC", 16, "Third Order GC"},
                      {"FIFTH_ORDER_GC", 17, "Fifth Order GC"},
                      {"MATERN_0_5", 18, "Matern (nu=0.5)"},
                      {"MATERN_1_0", 19, "Matern (nu=1.0)"},
                      {"MATERN_1_5", 20, "Matern (nu=1.5)"},
                      {"MATERN_2_0", 21, "Matern (nu=2.0)"}});
  check<NgmEVarioExp>(
      "NgmEVarioExp", ".\\NgmEnumGlobal", "VARIOGRAM",
      {{"VARIOGRAM", 0, "Variogram"},
       {"MADOGRAM", 1, "Madogram"},
       {"RODOGRAM", 2, "Rodogram"},
       {"RELATIVE_VARIOGRAM", 3, "Relative variogram"},
       {"NON_ERGODIC_RELATIVE_VARIOGRAM", 4, "Non ergodic relative variogram"},
       {"PAIRWISE_RELATIVE_VARIOGRAM", 5, "Pairwise relative variogram"},
       {"VARIOGRAM_CROSS_OVER_SIMPLE", 6, "Cross-variogram/Simple Variogram"},
       {"VARIOGRAM_CROSS_OVER_SQRT_SIMPLE", 7, "Cross-variogram/sqrt(simple variogram)"},
       {"VARIOGRAM_OVER_MADOGRAM", 8, "Variogram/Madogram"},
       {"SQRT_VARIOGRAM_OVER_MADOGRAM", 9, "Sqrt(variogram)/madogram"}});
}

TEST(NgcEnumGlobal, KeysAreCaseSensitive)
{
  EXPECT_EQ(0, NgcESpheringMode::fromKey(QStringLiteral("SDS")).getValue());
  EXPECT_FALSE(NgcESpheringMode::existsKey(QStringLiteral("sds")));
  EXPECT_THROW(NgcESpheringMode::fromKey(QStringLiteral("sds")), NbeProgrammingError);
}

TEST(NgcEnumGlobal, ComparesByValue)
{
  const NgmEVStruct &low = NgmEVStruct::EXPONENTIAL, &high = NgmEVStruct::CUBIC;
  NgmEVStruct copy = low;
  EXPECT_TRUE(copy == low && !(copy != low) && copy <= low && copy >= low);
  EXPECT_TRUE(low < high && low <= high && high > low && high >= low && low != high);
  copy = high;
  EXPECT_EQ(NgmEVStruct::EValue::CUBIC, copy.toEnum());
  EXPECT_STREQ("CUBIC", copy.getKey());
}

TEST(NgcEnumGlobal, DefaultsAreReadyForObjectsBuiltAtLoad)
{
  EXPECT_EQ(NgcEResourceClassification::RESOURCE_INFERRED, earlyDefault);
  EXPECT_EQ(QStringLiteral("Inferred"), earlyDefault.getLabel());
}

TEST(NgcEnumGlobal, DuplicateValueIsPrintedAndReplaces)
{
  const QtMessageHandler before = qInstallMessageHandler(keepMessage);
  NgcETwice::build();
  qInstallMessageHandler(before);
  EXPECT_EQ(QStringList(
                QString::fromUtf8("NgcETwice: duplicated item Un \u00e9l\u00e9ment [1=SECOND]!\n")),
            printed);
  EXPECT_EQ(1, NgcETwice::count());
  EXPECT_STREQ("SECOND", NgcETwice::fromValue(1).getKey());
}
