#include "geos/NgcEnumGlobal.h"

#include <QObject>

// Registries before instances: the constructors of the instances fill them.
NGC_KEYED_ENUM_REGISTRY(NgcEConnectMode, DELAUNAY_3D, ".\\NgcEnumGlobal")
NGC_KEYED_ENUM_REGISTRY(NgcECutoffMode, CUTOFF_REPLACE, ".\\NgcEnumGlobal")
NGC_KEYED_ENUM_REGISTRY(NgcEFaultsMode, CALCULATE_INSIDE, ".\\NgcEnumGlobal")
NGC_KEYED_ENUM_REGISTRY(NgcEGibbsGenerationMode, DETERMINISTIC, ".\\NgcEnumGlobal")
NGC_KEYED_ENUM_REGISTRY(NgcEInterpolType, INVERSE_DISTANCES, ".\\NgcEnumGlobal")
NGC_KEYED_ENUM_REGISTRY(NgcEKrigingMode, ORDINARY_KRIGING, ".\\NgcEnumGlobal")
NGC_KEYED_ENUM_REGISTRY(NgcEMafSelectionMode, KEEP_ALL, "stats\\NgmMafModelTransform")
NGC_KEYED_ENUM_REGISTRY(NgcEMafTransfoMode, SPC_TO_MAF, "stats\\NgmMafModelTransform")
NGC_KEYED_ENUM_REGISTRY(NgcEMovNeighMode, FROM_ELLIPSOID, ".\\NgcEnumGlobal")
NGC_KEYED_ENUM_REGISTRY(NgcENeighborhoodErrorCode, NEIGH_SUCCESS, ".\\NgcEnumGlobal")
NGC_KEYED_ENUM_REGISTRY(NgcEPcSelectionMode, KEEP_ALL, "stats\\NgmPcaModelTransform")
NGC_KEYED_ENUM_REGISTRY(NgcEPotentialFunction, POTENTIAL, ".\\NgcEnumGlobal")
NGC_KEYED_ENUM_REGISTRY(NgcEReductionMode, EXHAUSTIVE, ".\\NgcEnumGlobal")
NGC_KEYED_ENUM_REGISTRY(NgcERejectionAuxVarOption, AUX_VAR_KEEP_TARGET, ".\\NgcEnumGlobal")
NGC_KEYED_ENUM_REGISTRY(NgcERejectionMode, REJECTION_BY_TARGET, ".\\NgcEnumGlobal")
NGC_KEYED_ENUM_REGISTRY(NgcEResourceClassification, RESOURCE_INFERRED, ".\\NgcEnumGlobal")
NGC_KEYED_ENUM_REGISTRY(NgcESolidShape, SHAPE_CUBOID, ".\\NgcEnumGlobal")
NGC_KEYED_ENUM_REGISTRY(NgcESpheringMode, SDS, "stats\\NgmPcaModelTransform")
NGC_KEYED_ENUM_REGISTRY(NgcEStatMode, MULTIVARIATE, ".\\NgcEnumGlobal")
NGC_KEYED_ENUM_REGISTRY(NgmELineRegulByDomainCatMode, CENTRAL, ".\\NgcEnumGlobal")
NGC_KEYED_ENUM_REGISTRY(NgmELineRegulByDomainResidualMode, MERGE, ".\\NgcEnumGlobal")

NGC_KEYED_ENUM_ITEM(NgcEConnectMode, MOVING_NEIGHBORHOOD, QObject::tr("Moving Neighborhood"))
NGC_KEYED_ENUM_ITEM(NgcEConnectMode, DELAUNAY_3D, QObject::tr("Delaunay 3D"))

NGC_KEYED_ENUM_ITEM(NgcECutoffMode, CUTOFF_REPLACE, QObject::tr("Cap"))
NGC_KEYED_ENUM_ITEM(NgcECutoffMode, CUTOFF_REMOVE, QObject::tr("Remove sample"))
NGC_KEYED_ENUM_ITEM(NgcECutoffMode, CUTOFF_IGNORE, QObject::tr("Ignore"))

NGC_KEYED_ENUM_ITEM(NgcEFaultsMode, CALCULATE_INSIDE, QObject::tr("Calculate inside"))
NGC_KEYED_ENUM_ITEM(NgcEFaultsMode, CALCULATE_INSIDE_IGNORING_POLYGON,
                    QObject::tr("Calculate inside ignoring polygon"))
NGC_KEYED_ENUM_ITEM(NgcEFaultsMode, DO_NOT_CALCULATE_INSIDE, QObject::tr("Do not calculate inside"))
NGC_KEYED_ENUM_ITEM(NgcEFaultsMode, IGNORE_POYGONAL_STATUS, QObject::tr("Ignore polygonal status"))

NGC_KEYED_ENUM_ITEM(NgcEGibbsGenerationMode, DETERMINISTIC, QObject::tr("One per Interval"))
NGC_KEYED_ENUM_ITEM(NgcEGibbsGenerationMode, EXHAUSTIVE, QObject::tr("Exhaustive"))
NGC_KEYED_ENUM_ITEM(NgcEGibbsGenerationMode, ADAPTIVE, QObject::tr("Adaptive"))
NGC_KEYED_ENUM_ITEM(NgcEGibbsGenerationMode, HYBRID, QObject::tr("Hybrid"))
NGC_KEYED_ENUM_ITEM(NgcEGibbsGenerationMode, SURROUND, QObject::tr("Surround Contacts"))
NGC_KEYED_ENUM_ITEM(NgcEGibbsGenerationMode, MODERATE, QObject::tr("Moderate"))

NGC_KEYED_ENUM_ITEM(NgcEInterpolType, INVERSE_DISTANCES, QObject::tr("Inverse Distances"))
NGC_KEYED_ENUM_ITEM(NgcEInterpolType, NEAREST_NEIGHBOR, QObject::tr("Nearest Neighbor"))
NGC_KEYED_ENUM_ITEM(NgcEInterpolType, MOVING_AVERAGE, QObject::tr("Moving Average"))
NGC_KEYED_ENUM_ITEM(NgcEInterpolType, MOVING_MEDIAN, QObject::tr("Moving Median"))

NGC_KEYED_ENUM_ITEM(NgcEKrigingMode, ORDINARY_KRIGING, QObject::tr("Ordinary Kriging"))
NGC_KEYED_ENUM_ITEM(NgcEKrigingMode, SIMPLE_KRIGING, QObject::tr("Simple Kriging"))
NGC_KEYED_ENUM_ITEM(NgcEKrigingMode, UNIVERSAL_KRIGING, QObject::tr("Kriging with Drifts"))
NGC_KEYED_ENUM_ITEM(NgcEKrigingMode, RESCALED_COKRIGING, QObject::tr("Rescaled Cokriging"))

NGC_KEYED_ENUM_ITEM(NgcEMafSelectionMode, KEEP_ALL, QObject::tr("All"))
NGC_KEYED_ENUM_ITEM(NgcEMafSelectionMode, NON_AUTO, QObject::tr("Fixed number"))
NGC_KEYED_ENUM_ITEM(NgcEMafSelectionMode, PERCENT_VAR,
                    QObject::tr("Automatic number (percent of var)"))

NGC_KEYED_ENUM_ITEM(NgcEMafTransfoMode, SPC_TO_MAF, QObject::tr("SPC to MAF"))
NGC_KEYED_ENUM_ITEM(NgcEMafTransfoMode, PCA_TO_MAF, QObject::tr("PCA to MAF"))
NGC_KEYED_ENUM_ITEM(NgcEMafTransfoMode, RAW_TO_MAF, QObject::tr("Raw to MAF"))
NGC_KEYED_ENUM_ITEM(NgcEMafTransfoMode, MAF_TO_SPC, QObject::tr("MAF to SPC"))
NGC_KEYED_ENUM_ITEM(NgcEMafTransfoMode, MAF_TO_PCA, QObject::tr("MAF to PCA"))
NGC_KEYED_ENUM_ITEM(NgcEMafTransfoMode, MAF_TO_RAW, QObject::tr("MAF to Raw"))

NGC_KEYED_ENUM_ITEM(NgcEMovNeighMode, FROM_ELLIPSOID, QObject::tr("an ellipsoid"))
NGC_KEYED_ENUM_ITEM(NgcEMovNeighMode, FROM_BLOCK, QObject::tr("the target block"))

NGC_KEYED_ENUM_ITEM(NgcENeighborhoodErrorCode, NEIGH_SUCCESS,
                    QObject::tr("No Problem or Unique Neighborhood"))
NGC_KEYED_ENUM_ITEM(NgcENeighborhoodErrorCode, NEIGH_EMPTY_SECT,
                    QObject::tr("Too Many Consecutive Empty Sectors"))
NGC_KEYED_ENUM_ITEM(NgcENeighborhoodErrorCode, NEIGH_TOO_FAR,
                    QObject::tr("No Sample in the Rhomin Distance"))
NGC_KEYED_ENUM_ITEM(NgcENeighborhoodErrorCode, NEIGH_NOT_ENOUGH,
                    QObject::tr("Not Enough Samples Selected"))
NGC_KEYED_ENUM_ITEM(NgcENeighborhoodErrorCode, NEIGH_NOT_ENOUGH_CODES,
                    QObject::tr("Not Enough Different Codes Selected"))
NGC_KEYED_ENUM_ITEM(NgcENeighborhoodErrorCode, NEIGH_MAX_IN_BLOCK,
                    QObject::tr("Maximum Number of Samples in the Block Reached"))
NGC_KEYED_ENUM_ITEM(NgcENeighborhoodErrorCode, NEIGH_PROXIMITY,
                    QObject::tr("One Point Selected in the Proximity Parallelepiped"))
NGC_KEYED_ENUM_ITEM(NgcENeighborhoodErrorCode, NEIGH_BLOCK_ONLY,
                    QObject::tr("Some Samples in the Block Only"))
NGC_KEYED_ENUM_ITEM(NgcENeighborhoodErrorCode, NEIGH_UNDEF_LGS, QObject::tr("LGS Undefined Value"))
NGC_KEYED_ENUM_ITEM(NgcENeighborhoodErrorCode, NEIGH_NO_SAMPLE, QObject::tr("No Sample Selected"))

NGC_KEYED_ENUM_ITEM(NgcEPcSelectionMode, KEEP_ALL, QObject::tr("All"))
NGC_KEYED_ENUM_ITEM(NgcEPcSelectionMode, NON_AUTO, QObject::tr("Fixed number"))
NGC_KEYED_ENUM_ITEM(NgcEPcSelectionMode, KAYSER_RULE, QObject::tr("Automatic number (Kayser rule)"))
NGC_KEYED_ENUM_ITEM(NgcEPcSelectionMode, PERCENT_VAR,
                    QObject::tr("Automatic number (percent of var)"))

NGC_KEYED_ENUM_ITEM(NgcEPotentialFunction, POTENTIAL, QObject::tr("Potential"))
NGC_KEYED_ENUM_ITEM(NgcEPotentialFunction, GRAD_NORM, QObject::tr("Norm of Gradient"))
NGC_KEYED_ENUM_ITEM(NgcEPotentialFunction, STDEV, QObject::tr("Standard Deviation"))
NGC_KEYED_ENUM_ITEM(NgcEPotentialFunction, VARIANCE, QObject::tr("Variance"))
NGC_KEYED_ENUM_ITEM(NgcEPotentialFunction, ESTIM_VALUE, QObject::tr("Norm Stdev. by Potential"))
NGC_KEYED_ENUM_ITEM(NgcEPotentialFunction, NORM_STDEV, QObject::tr("Norm Stdev. by Gradient"))
NGC_KEYED_ENUM_ITEM(NgcEPotentialFunction, IN_DOMAIN_PROBA, QObject::tr("Proba to be in Domain"))
NGC_KEYED_ENUM_ITEM(NgcEPotentialFunction, SIMULATION, QObject::tr("Simulation"))
NGC_KEYED_ENUM_ITEM(NgcEPotentialFunction, GRAD_CONTRIBUTION, QObject::tr("Gradient Contribution"))
NGC_KEYED_ENUM_ITEM(NgcEPotentialFunction, TAN_CONTRIBUTION, QObject::tr("Tangent Contribution"))
NGC_KEYED_ENUM_ITEM(NgcEPotentialFunction, POL_CONTRIBUTION, QObject::tr("Polarity Contribution"))
NGC_KEYED_ENUM_ITEM(NgcEPotentialFunction, ISO_CONTRIBUTION, QObject::tr("Isopot Contribution"))
NGC_KEYED_ENUM_ITEM(NgcEPotentialFunction, GIBBS_CONTRIBUTION, QObject::tr("Gibbs Contribution"))
NGC_KEYED_ENUM_ITEM(NgcEPotentialFunction, EXT_DRIFT_CONTRIBUTION,
                    QObject::tr("External Drift Contribution"))
NGC_KEYED_ENUM_ITEM(NgcEPotentialFunction, INT_DRIFT_CONTRIBUTION,
                    QObject::tr("Internal Drift Contribution"))
NGC_KEYED_ENUM_ITEM(NgcEPotentialFunction, DRIFTS_CONTRIBUTION, QObject::tr("Drifts Contribution"))
NGC_KEYED_ENUM_ITEM(NgcEPotentialFunction, KRIGED_ZONE, QObject::tr("Kriged Zone"))
NGC_KEYED_ENUM_ITEM(NgcEPotentialFunction, DISTANCE, QObject::tr("Distance to an Isopotential"))
NGC_KEYED_ENUM_ITEM(NgcEPotentialFunction, DISTANCE_GRAD,
                    QObject::tr("Distance to Isopotential 0 using Gradient"))

NGC_KEYED_ENUM_ITEM(NgcEReductionMode, EXHAUSTIVE, QObject::tr("Exhaustive Algorithm"))
NGC_KEYED_ENUM_ITEM(NgcEReductionMode, RANDOM, QObject::tr("Random Algorithm"))
NGC_KEYED_ENUM_ITEM(NgcEReductionMode, GENETIC, QObject::tr("Genetic Algorithm"))

NGC_KEYED_ENUM_ITEM(NgcERejectionAuxVarOption, AUX_VAR_KEEP_TARGET,
                    QObject::tr("Keep Auxiliary Variables Only at Target Point"))
NGC_KEYED_ENUM_ITEM(NgcERejectionAuxVarOption, AUX_VAR_KEEP_NOTHING,
                    QObject::tr("Ignore All Variables"))
NGC_KEYED_ENUM_ITEM(NgcERejectionAuxVarOption, AUX_VAR_KEEP_ALL,
                    QObject::tr("Keep Auxiliary Variables"))

NGC_KEYED_ENUM_ITEM(NgcERejectionMode, REJECTION_BY_TARGET, QObject::tr("Rejection by Target"))
NGC_KEYED_ENUM_ITEM(NgcERejectionMode, REJECTION_BY_LINE, QObject::tr("Rejection by Line"))
NGC_KEYED_ENUM_ITEM(NgcERejectionMode, REJECTION_BY_PARTITION,
                    QObject::tr("Rejection by Proximity"))

NGC_KEYED_ENUM_ITEM(NgcEResourceClassification, RESOURCE_MEASURED, QObject::tr("Measured"))
NGC_KEYED_ENUM_ITEM(NgcEResourceClassification, RESOURCE_INDICATED, QObject::tr("Indicated"))
NGC_KEYED_ENUM_ITEM(NgcEResourceClassification, RESOURCE_INFERRED, QObject::tr("Inferred"))

NGC_KEYED_ENUM_ITEM(NgcESolidShape, SHAPE_CUBOID, QObject::tr("Cuboid"))
NGC_KEYED_ENUM_ITEM(NgcESolidShape, SHAPE_ELLIPSOID, QObject::tr("Ellipsoid"))
NGC_KEYED_ENUM_ITEM(NgcESolidShape, SHAPE_ELLIPTIC_CYLINDER, QObject::tr("Elliptic Cylinder"))

NGC_KEYED_ENUM_ITEM(NgcESpheringMode, SDS, QObject::tr("Spectral Decomposition Sphering"))
NGC_KEYED_ENUM_ITEM(NgcESpheringMode, DRS, QObject::tr("Dimension Reduction Sphering"))

NGC_KEYED_ENUM_ITEM(NgcEStatMode, MULTIVARIATE, QObject::tr("Multivariate Statistics"))
NGC_KEYED_ENUM_ITEM(NgcEStatMode, BIVARIATE, QObject::tr("Bivariate Statistics"))
NGC_KEYED_ENUM_ITEM(NgcEStatMode, UNIVARIATE, QObject::tr("Univariate Statistics"))

NGC_KEYED_ENUM_ITEM(NgmELineRegulByDomainCatMode, FIRST, QObject::tr("First"))
NGC_KEYED_ENUM_ITEM(NgmELineRegulByDomainCatMode, MAJORITY, QObject::tr("Most Present"))
NGC_KEYED_ENUM_ITEM(NgmELineRegulByDomainCatMode, CENTRAL, QObject::tr("Central"))
NGC_KEYED_ENUM_ITEM(NgmELineRegulByDomainCatMode, LAST, QObject::tr("Last"))
NGC_KEYED_ENUM_ITEM(NgmELineRegulByDomainCatMode, RANDOM, QObject::tr("Random"))

NGC_KEYED_ENUM_ITEM(NgmELineRegulByDomainResidualMode, KEEP, QObject::tr("Keep residual sample"))
NGC_KEYED_ENUM_ITEM(NgmELineRegulByDomainResidualMode, REMOVE,
                    QObject::tr("Remove residual sample"))
NGC_KEYED_ENUM_ITEM(NgmELineRegulByDomainResidualMode, MERGE,
                    QObject::tr("Merge residual sample with previous one"))
NGC_KEYED_ENUM_ITEM(NgmELineRegulByDomainResidualMode, SPREAD,
                    QObject::tr("Spread residual sample in all others"))
