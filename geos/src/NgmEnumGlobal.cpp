#include "geos/NgmEnumGlobal.h"

#include <QObject>

// Registries before instances: the constructors of the instances fill them.
NGC_KEYED_ENUM_REGISTRY(NgmECovaExp, COVARIANCE, ".\\NgmEnumGlobal")
NGC_KEYED_ENUM_REGISTRY(NgmEDirectionGroupName, ALL_DIRECTIONS, ".\\NgmEnumGlobal")
NGC_KEYED_ENUM_REGISTRY(NgmEMorphoOp, DILATION, ".\\NgmEnumGlobal")
NGC_KEYED_ENUM_REGISTRY(NgmENeighborhoodNestedCode, MEDIUM, ".\\NgmEnumGlobal")
NGC_KEYED_ENUM_REGISTRY(NgmEVStruct, UNKNOWN, ".\\NgmEnumGlobal")
NGC_KEYED_ENUM_REGISTRY(NgmEVarioExp, VARIOGRAM, ".\\NgmEnumGlobal")

NGC_KEYED_ENUM_ITEM(NgmECovaExp, COVARIANCE, QObject::tr("Covariance"))
NGC_KEYED_ENUM_ITEM(NgmECovaExp, NON_CENTERED_COVARIANCE, QObject::tr("Non Centered Covariance"))
NGC_KEYED_ENUM_ITEM(NgmECovaExp, NON_ERGODIC_COVARIANCE, QObject::tr("Non Ergodic Covariance"))
NGC_KEYED_ENUM_ITEM(NgmECovaExp, ODD_PART_COVARIANCE, QObject::tr("Odd Part of Covariance"))
NGC_KEYED_ENUM_ITEM(NgmECovaExp, EVEN_PART_COVARIANCE, QObject::tr("Even Part of Covariance"))
NGC_KEYED_ENUM_ITEM(NgmECovaExp, TRANSITIVE_COVARIOGRAM, QObject::tr("Transitive Covariogram"))
NGC_KEYED_ENUM_ITEM(NgmECovaExp, CORRELOGRAM, QObject::tr("Correlogram"))
NGC_KEYED_ENUM_ITEM(NgmECovaExp, NON_ERGODIC_CORRELOGRAM, QObject::tr("Non Ergodic Correlogram"))

NGC_KEYED_ENUM_ITEM(NgmEDirectionGroupName, ALL_DIRECTIONS, QObject::tr("All Directions"))
NGC_KEYED_ENUM_ITEM(NgmEDirectionGroupName, OMNIDIRECTIONAL, QObject::tr("Omnidirectional"))
NGC_KEYED_ENUM_ITEM(NgmEDirectionGroupName, HORIZONTAL, QObject::tr("Horizontal"))
NGC_KEYED_ENUM_ITEM(NgmEDirectionGroupName, REF_PLANE, QObject::tr("Ref. Plane"))
NGC_KEYED_ENUM_ITEM(NgmEDirectionGroupName, VERTICAL, QObject::tr("Vertical"))
NGC_KEYED_ENUM_ITEM(NgmEDirectionGroupName, NORMAL, QObject::tr("Normal"))
NGC_KEYED_ENUM_ITEM(NgmEDirectionGroupName, OTHER_DIRECTIONS, QObject::tr("Other Direction(s)"))
NGC_KEYED_ENUM_ITEM(NgmEDirectionGroupName, FREE_DIRECTIONS, QObject::tr("Free Direction(s)"))
NGC_KEYED_ENUM_ITEM(NgmEDirectionGroupName, MAIN_DIRECTIONS_UVW,
                    QObject::tr("Main Directions (U,V,W)"))
NGC_KEYED_ENUM_ITEM(NgmEDirectionGroupName, MAIN_DIRECTIONS_UV,
                    QObject::tr("Main Directions (U,V)"))
NGC_KEYED_ENUM_ITEM(NgmEDirectionGroupName, UV, QObject::tr("U,V"))
NGC_KEYED_ENUM_ITEM(NgmEDirectionGroupName, U, QObject::tr("U"))
NGC_KEYED_ENUM_ITEM(NgmEDirectionGroupName, V, QObject::tr("V"))
NGC_KEYED_ENUM_ITEM(NgmEDirectionGroupName, W, QObject::tr("W (Normal to Reference Plane)"))

NGC_KEYED_ENUM_ITEM(NgmEMorphoOp, DILATION, QObject::tr("Dilation"))
NGC_KEYED_ENUM_ITEM(NgmEMorphoOp, EROSION, QObject::tr("Erosion"))
NGC_KEYED_ENUM_ITEM(NgmEMorphoOp, CLOSING, QObject::tr("Closing"))
NGC_KEYED_ENUM_ITEM(NgmEMorphoOp, OPENING, QObject::tr("Opening"))

NGC_KEYED_ENUM_ITEM(NgmENeighborhoodNestedCode, FAILED, QObject::tr("Failed"))
NGC_KEYED_ENUM_ITEM(NgmENeighborhoodNestedCode, STANDARD, QObject::tr("Standard"))
NGC_KEYED_ENUM_ITEM(NgmENeighborhoodNestedCode, MEDIUM, QObject::tr("Medium"))
NGC_KEYED_ENUM_ITEM(NgmENeighborhoodNestedCode, LARGE, QObject::tr("Large"))
NGC_KEYED_ENUM_ITEM(NgmENeighborhoodNestedCode, UNFINITE, QObject::tr("Infinite"))

NGC_KEYED_ENUM_ITEM(NgmEVStruct, UNKNOWN, QObject::tr("None"))
NGC_KEYED_ENUM_ITEM(NgmEVStruct, EXPONENTIAL, QObject::tr("Exponential"))
NGC_KEYED_ENUM_ITEM(NgmEVStruct, SPHERICAL, QObject::tr("Spherical"))
NGC_KEYED_ENUM_ITEM(NgmEVStruct, CUBIC, QObject::tr("Cubic"))
NGC_KEYED_ENUM_ITEM(NgmEVStruct, POWER, QObject::tr("Power"))
NGC_KEYED_ENUM_ITEM(NgmEVStruct, GAUSSIAN, QObject::tr("Gaussian"))
NGC_KEYED_ENUM_ITEM(NgmEVStruct, SINCARD, QObject::tr("Cardinal Sine"))
NGC_KEYED_ENUM_ITEM(NgmEVStruct, STABLE, QObject::tr("Stable"))
NGC_KEYED_ENUM_ITEM(NgmEVStruct, GAMMA, QObject::tr("Gamma"))
NGC_KEYED_ENUM_ITEM(NgmEVStruct, BESSEL_J, QObject::tr("Bessel-J"))
NGC_KEYED_ENUM_ITEM(NgmEVStruct, MATERN, QObject::tr("Bessel-K"))
NGC_KEYED_ENUM_ITEM(NgmEVStruct, EXPONENTIAL_COSINE, QObject::tr("Exponential Cosine"))
NGC_KEYED_ENUM_ITEM(NgmEVStruct, GENERALIZED_CAUCHY, QObject::tr("Generalized Cauchy"))
NGC_KEYED_ENUM_ITEM(NgmEVStruct, LINEAR, QObject::tr("Linear"))
NGC_KEYED_ENUM_ITEM(NgmEVStruct, SPLINE_GC, QObject::tr("Spline GC"))
NGC_KEYED_ENUM_ITEM(NgmEVStruct, SPLINE2_GC, QObject::tr("SPline2 GC"))
NGC_KEYED_ENUM_ITEM(NgmEVStruct, THIRD_ORDER_GC, QObject::tr("Third Order GC"))
NGC_KEYED_ENUM_ITEM(NgmEVStruct, FIFTH_ORDER_GC, QObject::tr("Fifth Order GC"))
NGC_KEYED_ENUM_ITEM(NgmEVStruct, MATERN_0_5, QObject::tr("Matern (nu=0.5)"))
NGC_KEYED_ENUM_ITEM(NgmEVStruct, MATERN_1_0, QObject::tr("Matern (nu=1.0)"))
NGC_KEYED_ENUM_ITEM(NgmEVStruct, MATERN_1_5, QObject::tr("Matern (nu=1.5)"))
NGC_KEYED_ENUM_ITEM(NgmEVStruct, MATERN_2_0, QObject::tr("Matern (nu=2.0)"))

NGC_KEYED_ENUM_ITEM(NgmEVarioExp, VARIOGRAM, QObject::tr("Variogram"))
NGC_KEYED_ENUM_ITEM(NgmEVarioExp, MADOGRAM, QObject::tr("Madogram"))
NGC_KEYED_ENUM_ITEM(NgmEVarioExp, RODOGRAM, QObject::tr("Rodogram"))
NGC_KEYED_ENUM_ITEM(NgmEVarioExp, RELATIVE_VARIOGRAM, QObject::tr("Relative variogram"))
NGC_KEYED_ENUM_ITEM(NgmEVarioExp, NON_ERGODIC_RELATIVE_VARIOGRAM,
                    QObject::tr("Non ergodic relative variogram"))
NGC_KEYED_ENUM_ITEM(NgmEVarioExp, PAIRWISE_RELATIVE_VARIOGRAM,
                    QObject::tr("Pairwise relative variogram"))
NGC_KEYED_ENUM_ITEM(NgmEVarioExp, VARIOGRAM_CROSS_OVER_SIMPLE,
                    QObject::tr("Cross-variogram/Simple Variogram"))
NGC_KEYED_ENUM_ITEM(NgmEVarioExp, VARIOGRAM_CROSS_OVER_SQRT_SIMPLE,
                    QObject::tr("Cross-variogram/sqrt(simple variogram)"))
NGC_KEYED_ENUM_ITEM(NgmEVarioExp, VARIOGRAM_OVER_MADOGRAM, QObject::tr("Variogram/Madogram"))
NGC_KEYED_ENUM_ITEM(NgmEVarioExp, SQRT_VARIOGRAM_OVER_MADOGRAM,
                    QObject::tr("Sqrt(variogram)/madogram"))

bool NgmEDirectionGroupName::isMultidirectional() const
{
  switch (toEnum()) {
    case EValue::OMNIDIRECTIONAL:
    case EValue::VERTICAL:
    case EValue::NORMAL:
    case EValue::U:
    case EValue::V:
    case EValue::W:
      return false;
    default:
      return true;
  }
}
