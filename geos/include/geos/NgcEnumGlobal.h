#pragma once

#include "geos/NgcAKeyedEnum.h"

/// How samples are connected. The default is DELAUNAY_3D.
class NgcEConnectMode final : public NgcAKeyedEnum<NgcEConnectMode>
{
  NGC_KEYED_ENUM(NgcEConnectMode)

  enum class EValue { MOVING_NEIGHBORHOOD = 0, DELAUNAY_3D = 1 };

  static const NgcEConnectMode MOVING_NEIGHBORHOOD;
  static const NgcEConnectMode DELAUNAY_3D;
};

/// Small and large cut-off modes of a moving neighborhood.
class NgcECutoffMode final : public NgcAKeyedEnum<NgcECutoffMode>
{
  NGC_KEYED_ENUM(NgcECutoffMode)

  enum class EValue { CUTOFF_REPLACE = 0, CUTOFF_REMOVE = 1, CUTOFF_IGNORE = 2 };

  static const NgcECutoffMode CUTOFF_REPLACE;
  static const NgcECutoffMode CUTOFF_REMOVE;
  static const NgcECutoffMode CUTOFF_IGNORE;
};

/// Faults mode of interpolation and cross-validation calculators.
class NgcEFaultsMode final : public NgcAKeyedEnum<NgcEFaultsMode>
{
  NGC_KEYED_ENUM(NgcEFaultsMode)

  enum class EValue {
    CALCULATE_INSIDE = 0,
    CALCULATE_INSIDE_IGNORING_POLYGON = 1,
    DO_NOT_CALCULATE_INSIDE = 2,
    IGNORE_POYGONAL_STATUS = 3
  };

  static const NgcEFaultsMode CALCULATE_INSIDE;
  static const NgcEFaultsMode CALCULATE_INSIDE_IGNORING_POLYGON;
  static const NgcEFaultsMode DO_NOT_CALCULATE_INSIDE;
  static const NgcEFaultsMode IGNORE_POYGONAL_STATUS;
};

/// Generation mode of the Gibbs sampler.
class NgcEGibbsGenerationMode final : public NgcAKeyedEnum<NgcEGibbsGenerationMode>
{
  NGC_KEYED_ENUM(NgcEGibbsGenerationMode)

  enum class EValue {
    DETERMINISTIC = 0,
    EXHAUSTIVE = 1,
    ADAPTIVE = 2,
    HYBRID = 3,
    SURROUND = 4,
    MODERATE = 8
  };

  static const NgcEGibbsGenerationMode DETERMINISTIC;
  static const NgcEGibbsGenerationMode EXHAUSTIVE;
  static const NgcEGibbsGenerationMode ADAPTIVE;
  static const NgcEGibbsGenerationMode HYBRID;
  static const NgcEGibbsGenerationMode SURROUND;
  static const NgcEGibbsGenerationMode MODERATE;
};

/// Interpolation type of the quick interpolation calculator.
class NgcEInterpolType final : public NgcAKeyedEnum<NgcEInterpolType>
{
  NGC_KEYED_ENUM(NgcEInterpolType)

  enum class EValue {
    INVERSE_DISTANCES = 0,
    NEAREST_NEIGHBOR = 1,
    MOVING_AVERAGE = 2,
    MOVING_MEDIAN = 3
  };

  static const NgcEInterpolType INVERSE_DISTANCES;
  static const NgcEInterpolType NEAREST_NEIGHBOR;
  static const NgcEInterpolType MOVING_AVERAGE;
  static const NgcEInterpolType MOVING_MEDIAN;
};

/// Kriging type.
class NgcEKrigingMode final : public NgcAKeyedEnum<NgcEKrigingMode>
{
  NGC_KEYED_ENUM(NgcEKrigingMode)

  enum class EValue {
    ORDINARY_KRIGING = 0,
    SIMPLE_KRIGING = 1,
    UNIVERSAL_KRIGING = 2,
    RESCALED_COKRIGING = 3
  };

  static const NgcEKrigingMode ORDINARY_KRIGING;
  static const NgcEKrigingMode SIMPLE_KRIGING;
  static const NgcEKrigingMode UNIVERSAL_KRIGING;
  static const NgcEKrigingMode RESCALED_COKRIGING;
};

/// Number of MAF factors kept.
class NgcEMafSelectionMode final : public NgcAKeyedEnum<NgcEMafSelectionMode>
{
  NGC_KEYED_ENUM(NgcEMafSelectionMode)

  enum class EValue { KEEP_ALL = 0, NON_AUTO = 1, PERCENT_VAR = 2 };

  static const NgcEMafSelectionMode KEEP_ALL;
  static const NgcEMafSelectionMode NON_AUTO;
  static const NgcEMafSelectionMode PERCENT_VAR;
};

/// Direction of the MAF transformation.
class NgcEMafTransfoMode final : public NgcAKeyedEnum<NgcEMafTransfoMode>
{
  NGC_KEYED_ENUM(NgcEMafTransfoMode)

  enum class EValue {
    SPC_TO_MAF = 0,
    PCA_TO_MAF = 1,
    RAW_TO_MAF = 2,
    MAF_TO_SPC = 3,
    MAF_TO_PCA = 4,
    MAF_TO_RAW = 5
  };

  static const NgcEMafTransfoMode SPC_TO_MAF;
  static const NgcEMafTransfoMode PCA_TO_MAF;
  static const NgcEMafTransfoMode RAW_TO_MAF;
  static const NgcEMafTransfoMode MAF_TO_SPC;
  static const NgcEMafTransfoMode MAF_TO_PCA;
  static const NgcEMafTransfoMode MAF_TO_RAW;
};

/// Moving-neighborhood mode.
class NgcEMovNeighMode final : public NgcAKeyedEnum<NgcEMovNeighMode>
{
  NGC_KEYED_ENUM(NgcEMovNeighMode)

  enum class EValue { FROM_ELLIPSOID = 0, FROM_BLOCK = 1 };

  static const NgcEMovNeighMode FROM_ELLIPSOID;
  static const NgcEMovNeighMode FROM_BLOCK;
};

/// Status of a neighborhood search.
class NgcENeighborhoodErrorCode final : public NgcAKeyedEnum<NgcENeighborhoodErrorCode>
{
  NGC_KEYED_ENUM(NgcENeighborhoodErrorCode)

  enum class EValue {
    NEIGH_SUCCESS = 0,
    NEIGH_EMPTY_SECT = 1,
    NEIGH_TOO_FAR = 2,
    NEIGH_NOT_ENOUGH = 3,
    NEIGH_NOT_ENOUGH_CODES = 4,
    NEIGH_MAX_IN_BLOCK = 5,
    NEIGH_PROXIMITY = 6,
    NEIGH_BLOCK_ONLY = 7,
    NEIGH_UNDEF_LGS = 8,
    NEIGH_NO_SAMPLE = 9
  };

  static const NgcENeighborhoodErrorCode NEIGH_SUCCESS;
  static const NgcENeighborhoodErrorCode NEIGH_EMPTY_SECT;
  static const NgcENeighborhoodErrorCode NEIGH_TOO_FAR;
  static const NgcENeighborhoodErrorCode NEIGH_NOT_ENOUGH;
  static const NgcENeighborhoodErrorCode NEIGH_NOT_ENOUGH_CODES;
  static const NgcENeighborhoodErrorCode NEIGH_MAX_IN_BLOCK;
  static const NgcENeighborhoodErrorCode NEIGH_PROXIMITY;
  static const NgcENeighborhoodErrorCode NEIGH_BLOCK_ONLY;
  static const NgcENeighborhoodErrorCode NEIGH_UNDEF_LGS;
  static const NgcENeighborhoodErrorCode NEIGH_NO_SAMPLE;
};

/// Number of principal components kept.
class NgcEPcSelectionMode final : public NgcAKeyedEnum<NgcEPcSelectionMode>
{
  NGC_KEYED_ENUM(NgcEPcSelectionMode)

  enum class EValue { KEEP_ALL = 0, NON_AUTO = 1, KAYSER_RULE = 2, PERCENT_VAR = 3 };

  static const NgcEPcSelectionMode KEEP_ALL;
  static const NgcEPcSelectionMode NON_AUTO;
  static const NgcEPcSelectionMode KAYSER_RULE;
  static const NgcEPcSelectionMode PERCENT_VAR;
};

/// Output function of the potential-field calculators.
class NgcEPotentialFunction final : public NgcAKeyedEnum<NgcEPotentialFunction>
{
  NGC_KEYED_ENUM(NgcEPotentialFunction)

  enum class EValue {
    POTENTIAL = 0,
    GRAD_NORM = 1,
    STDEV = 2,
    VARIANCE = 3,
    ESTIM_VALUE = 4,
    NORM_STDEV = 5,
    IN_DOMAIN_PROBA = 6,
    SIMULATION = 7,
    GRAD_CONTRIBUTION = 8,
    TAN_CONTRIBUTION = 9,
    POL_CONTRIBUTION = 10,
    ISO_CONTRIBUTION = 11,
    GIBBS_CONTRIBUTION = 12,
    EXT_DRIFT_CONTRIBUTION = 13,
    INT_DRIFT_CONTRIBUTION = 14,
    DRIFTS_CONTRIBUTION = 15,
    KRIGED_ZONE = 16,
    DISTANCE = 17,
    DISTANCE_GRAD = 18
  };

  static const NgcEPotentialFunction POTENTIAL;
  static const NgcEPotentialFunction GRAD_NORM;
  static const NgcEPotentialFunction STDEV;
  static const NgcEPotentialFunction VARIANCE;
  static const NgcEPotentialFunction ESTIM_VALUE;
  static const NgcEPotentialFunction NORM_STDEV;
  static const NgcEPotentialFunction IN_DOMAIN_PROBA;
  static const NgcEPotentialFunction SIMULATION;
  static const NgcEPotentialFunction GRAD_CONTRIBUTION;
  static const NgcEPotentialFunction TAN_CONTRIBUTION;
  static const NgcEPotentialFunction POL_CONTRIBUTION;
  static const NgcEPotentialFunction ISO_CONTRIBUTION;
  static const NgcEPotentialFunction GIBBS_CONTRIBUTION;
  static const NgcEPotentialFunction EXT_DRIFT_CONTRIBUTION;
  static const NgcEPotentialFunction INT_DRIFT_CONTRIBUTION;
  static const NgcEPotentialFunction DRIFTS_CONTRIBUTION;
  static const NgcEPotentialFunction KRIGED_ZONE;
  static const NgcEPotentialFunction DISTANCE;
  static const NgcEPotentialFunction DISTANCE_GRAD;
};

/// Reduction mode of the simulation-reduction calculator and its proxy model.
class NgcEReductionMode final : public NgcAKeyedEnum<NgcEReductionMode>
{
  NGC_KEYED_ENUM(NgcEReductionMode)

  enum class EValue { EXHAUSTIVE = 0, RANDOM = 1, GENETIC = 2 };

  static const NgcEReductionMode EXHAUSTIVE;
  static const NgcEReductionMode RANDOM;
  static const NgcEReductionMode GENETIC;
};

/// Rejection auxiliary-variable option of neighborhoods and interpolation calculators.
class NgcERejectionAuxVarOption final : public NgcAKeyedEnum<NgcERejectionAuxVarOption>
{
  NGC_KEYED_ENUM(NgcERejectionAuxVarOption)

  enum class EValue { AUX_VAR_KEEP_TARGET = 0, AUX_VAR_KEEP_NOTHING = 1, AUX_VAR_KEEP_ALL = 2 };

  static const NgcERejectionAuxVarOption AUX_VAR_KEEP_TARGET;
  static const NgcERejectionAuxVarOption AUX_VAR_KEEP_NOTHING;
  static const NgcERejectionAuxVarOption AUX_VAR_KEEP_ALL;
};

/// Rejection mode of neighborhoods and interpolation calculators.
class NgcERejectionMode final : public NgcAKeyedEnum<NgcERejectionMode>
{
  NGC_KEYED_ENUM(NgcERejectionMode)

  enum class EValue { REJECTION_BY_TARGET = 0, REJECTION_BY_LINE = 1, REJECTION_BY_PARTITION = 2 };

  static const NgcERejectionMode REJECTION_BY_TARGET;
  static const NgcERejectionMode REJECTION_BY_LINE;
  static const NgcERejectionMode REJECTION_BY_PARTITION;
};

/// Resource classification category. The default is RESOURCE_INFERRED.
class NgcEResourceClassification final : public NgcAKeyedEnum<NgcEResourceClassification>
{
  NGC_KEYED_ENUM(NgcEResourceClassification)

  enum class EValue { RESOURCE_MEASURED = 1, RESOURCE_INDICATED = 2, RESOURCE_INFERRED = 3 };

  static const NgcEResourceClassification RESOURCE_MEASURED;
  static const NgcEResourceClassification RESOURCE_INDICATED;
  static const NgcEResourceClassification RESOURCE_INFERRED;
};

/// Shape of a search partition.
class NgcESolidShape final : public NgcAKeyedEnum<NgcESolidShape>
{
  NGC_KEYED_ENUM(NgcESolidShape)

  enum class EValue { SHAPE_CUBOID = 0, SHAPE_ELLIPSOID = 1, SHAPE_ELLIPTIC_CYLINDER = 2 };

  static const NgcESolidShape SHAPE_CUBOID;
  static const NgcESolidShape SHAPE_ELLIPSOID;
  static const NgcESolidShape SHAPE_ELLIPTIC_CYLINDER;
};

/// Sphering of the PCA/MAF transform.
class NgcESpheringMode final : public NgcAKeyedEnum<NgcESpheringMode>
{
  NGC_KEYED_ENUM(NgcESpheringMode)

  enum class EValue { SDS = 0, DRS = 1 };

  static const NgcESpheringMode SDS;
  static const NgcESpheringMode DRS;
};

/// Statistics mode of the report formatter.
class NgcEStatMode final : public NgcAKeyedEnum<NgcEStatMode>
{
  NGC_KEYED_ENUM(NgcEStatMode)

  enum class EValue { MULTIVARIATE = 0, BIVARIATE = 1, UNIVARIATE = 2 };

  static const NgcEStatMode MULTIVARIATE;
  static const NgcEStatMode BIVARIATE;
  static const NgcEStatMode UNIVARIATE;
};

/// Category kept when compositing by domain. The default is CENTRAL.
class NgmELineRegulByDomainCatMode final : public NgcAKeyedEnum<NgmELineRegulByDomainCatMode>
{
  NGC_KEYED_ENUM(NgmELineRegulByDomainCatMode)

  enum class EValue { FIRST = 0, MAJORITY = 1, CENTRAL = 2, LAST = 3, RANDOM = 4 };

  static const NgmELineRegulByDomainCatMode FIRST;
  static const NgmELineRegulByDomainCatMode MAJORITY;
  static const NgmELineRegulByDomainCatMode CENTRAL;
  static const NgmELineRegulByDomainCatMode LAST;
  static const NgmELineRegulByDomainCatMode RANDOM;
};

/// Treatment of the residual sample in compositing. The default is MERGE.
class NgmELineRegulByDomainResidualMode final
    : public NgcAKeyedEnum<NgmELineRegulByDomainResidualMode>
{
  NGC_KEYED_ENUM(NgmELineRegulByDomainResidualMode)

  enum class EValue { KEEP = 0, REMOVE = 1, MERGE = 2, SPREAD = 3 };

  static const NgmELineRegulByDomainResidualMode KEEP;
  static const NgmELineRegulByDomainResidualMode REMOVE;
  static const NgmELineRegulByDomainResidualMode MERGE;
  static const NgmELineRegulByDomainResidualMode SPREAD;
};
