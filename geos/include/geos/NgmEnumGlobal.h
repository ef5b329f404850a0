#pragma once

#include "geos/NgcAKeyedEnum.h"

/// Experimental covariance kind.
class NgmECovaExp final : public NgcAKeyedEnum<NgmECovaExp>
{
  NGC_KEYED_ENUM(NgmECovaExp)

  enum class EValue {
    COVARIANCE = 0,
    NON_CENTERED_COVARIANCE = 1,
    NON_ERGODIC_COVARIANCE = 2,
    ODD_PART_COVARIANCE = 3,
    EVEN_PART_COVARIANCE = 4,
    TRANSITIVE_COVARIOGRAM = 5,
    CORRELOGRAM = 6,
    NON_ERGODIC_CORRELOGRAM = 7
  };

  static const NgmECovaExp COVARIANCE;
  static const NgmECovaExp NON_CENTERED_COVARIANCE;
  static const NgmECovaExp NON_ERGODIC_COVARIANCE;
  static const NgmECovaExp ODD_PART_COVARIANCE;
  static const NgmECovaExp EVEN_PART_COVARIANCE;
  static const NgmECovaExp TRANSITIVE_COVARIOGRAM;
  static const NgmECovaExp CORRELOGRAM;
  static const NgmECovaExp NON_ERGODIC_CORRELOGRAM;
};

/// Group of calculation directions.
class NgmEDirectionGroupName final : public NgcAKeyedEnum<NgmEDirectionGroupName>
{
  NGC_KEYED_ENUM(NgmEDirectionGroupName)

  enum class EValue {
    ALL_DIRECTIONS = 0,
    OMNIDIRECTIONAL = 1,
    HORIZONTAL = 2,
    REF_PLANE = 3,
    VERTICAL = 4,
    NORMAL = 5,
    OTHER_DIRECTIONS = 6,
    FREE_DIRECTIONS = 7,
    MAIN_DIRECTIONS_UVW = 8,
    MAIN_DIRECTIONS_UV = 9,
    UV = 10,
    U = 11,
    V = 12,
    W = 13
  };

  /// Whether the group may hold several directions.
  bool isMultidirectional() const;

  static const NgmEDirectionGroupName ALL_DIRECTIONS;
  static const NgmEDirectionGroupName OMNIDIRECTIONAL;
  static const NgmEDirectionGroupName HORIZONTAL;
  static const NgmEDirectionGroupName REF_PLANE;
  static const NgmEDirectionGroupName VERTICAL;
  static const NgmEDirectionGroupName NORMAL;
  static const NgmEDirectionGroupName OTHER_DIRECTIONS;
  static const NgmEDirectionGroupName FREE_DIRECTIONS;
  static const NgmEDirectionGroupName MAIN_DIRECTIONS_UVW;
  static const NgmEDirectionGroupName MAIN_DIRECTIONS_UV;
  static const NgmEDirectionGroupName UV;
  static const NgmEDirectionGroupName U;
  static const NgmEDirectionGroupName V;
  static const NgmEDirectionGroupName W;
};

/// Morphological operation.
class NgmEMorphoOp final : public NgcAKeyedEnum<NgmEMorphoOp>
{
  NGC_KEYED_ENUM(NgmEMorphoOp)

  enum class EValue { DILATION = 0, EROSION = 1, CLOSING = 2, OPENING = 3 };

  static const NgmEMorphoOp DILATION;
  static const NgmEMorphoOp EROSION;
  static const NgmEMorphoOp CLOSING;
  static const NgmEMorphoOp OPENING;
};

/// Level reached by a nested neighborhood search. The default is MEDIUM.
class NgmENeighborhoodNestedCode final : public NgcAKeyedEnum<NgmENeighborhoodNestedCode>
{
  NGC_KEYED_ENUM(NgmENeighborhoodNestedCode)

  enum class EValue { FAILED = 0, STANDARD = 1, MEDIUM = 2, LARGE = 3, UNFINITE = 4 };

  static const NgmENeighborhoodNestedCode FAILED;
  static const NgmENeighborhoodNestedCode STANDARD;
  static const NgmENeighborhoodNestedCode MEDIUM;
  static const NgmENeighborhoodNestedCode LARGE;
  static const NgmENeighborhoodNestedCode UNFINITE;
};

/// Basic structure type of a variogram model.
class NgmEVStruct final : public NgcAKeyedEnum<NgmEVStruct>
{
  NGC_KEYED_ENUM(NgmEVStruct)

  enum class EValue {
    UNKNOWN = 0,
    EXPONENTIAL = 1,
    SPHERICAL = 2,
    CUBIC = 3,
    POWER = 4,
    GAUSSIAN = 5,
    SINCARD = 6,
    STABLE = 7,
    GAMMA = 8,
    BESSEL_J = 9,
    MATERN = 10,
    EXPONENTIAL_COSINE = 11,
    GENERALIZED_CAUCHY = 12,
    LINEAR = 13,
    SPLINE_GC = 14,
    SPLINE2_GC = 15,
    THIRD_ORDER_GC = 16,
    FIFTH_ORDER_GC = 17,
    MATERN_0_5 = 18,
    MATERN_1_0 = 19,
    MATERN_1_5 = 20,
    MATERN_2_0 = 21
  };

  static const NgmEVStruct UNKNOWN;
  static const NgmEVStruct EXPONENTIAL;
  static const NgmEVStruct SPHERICAL;
  static const NgmEVStruct CUBIC;
  static const NgmEVStruct POWER;
  static const NgmEVStruct GAUSSIAN;
  static const NgmEVStruct SINCARD;
  static const NgmEVStruct STABLE;
  static const NgmEVStruct GAMMA;
  static const NgmEVStruct BESSEL_J;
  static const NgmEVStruct MATERN;
  static const NgmEVStruct EXPONENTIAL_COSINE;
  static const NgmEVStruct GENERALIZED_CAUCHY;
  static const NgmEVStruct LINEAR;
  static const NgmEVStruct SPLINE_GC;
  static const NgmEVStruct SPLINE2_GC;
  static const NgmEVStruct THIRD_ORDER_GC;
  static const NgmEVStruct FIFTH_ORDER_GC;
  static const NgmEVStruct MATERN_0_5;
  static const NgmEVStruct MATERN_1_0;
  static const NgmEVStruct MATERN_1_5;
  static const NgmEVStruct MATERN_2_0;
};

/// Experimental variogram kind.
class NgmEVarioExp final : public NgcAKeyedEnum<NgmEVarioExp>
{
  NGC_KEYED_ENUM(NgmEVarioExp)

  enum class EValue {
    VARIOGRAM = 0,
    MADOGRAM = 1,
    RODOGRAM = 2,
    RELATIVE_VARIOGRAM = 3,
    NON_ERGODIC_RELATIVE_VARIOGRAM = 4,
    PAIRWISE_RELATIVE_VARIOGRAM = 5,
    VARIOGRAM_CROSS_OVER_SIMPLE = 6,
    VARIOGRAM_CROSS_OVER_SQRT_SIMPLE = 7,
    VARIOGRAM_OVER_MADOGRAM = 8,
    SQRT_VARIOGRAM_OVER_MADOGRAM = 9
  };

  static const NgmEVarioExp VARIOGRAM;
  static const NgmEVarioExp MADOGRAM;
  static const NgmEVarioExp RODOGRAM;
  static const NgmEVarioExp RELATIVE_VARIOGRAM;
  static const NgmEVarioExp NON_ERGODIC_RELATIVE_VARIOGRAM;
  static const NgmEVarioExp PAIRWISE_RELATIVE_VARIOGRAM;
  static const NgmEVarioExp VARIOGRAM_CROSS_OVER_SIMPLE;
  static const NgmEVarioExp VARIOGRAM_CROSS_OVER_SQRT_SIMPLE;
  static const NgmEVarioExp VARIOGRAM_OVER_MADOGRAM;
  static const NgmEVarioExp SQRT_VARIOGRAM_OVER_MADOGRAM;
};
