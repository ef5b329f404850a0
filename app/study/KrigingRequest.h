#pragma once

#include "app/study/Column.h"
#include "app/study/Compass.h"
#include "basic/geom/NbgIntVector3D.h"

#include <QList>
#include <QString>

#include <optional>
#include <vector>

namespace orvenal {

/// A result of kriging besides estimate, standard deviation and variance.
struct ExtraOutput
{
  QString key;    ///< in jobs, and the name of its column in files
  QString role;   ///< under which the calculator writes it
  QString label;  ///< in reports
};

/// How a job wants the grid to be kriged. Columns are those of the samples and of the grid's
/// values.
struct KrigingRequest
{
  enum Mode { ORDINARY, SIMPLE, DRIFT, RESCALED };

  Mode mode = ORDINARY;
  std::vector<double> means;            ///< known, one per variable; or none
  QList<Column> localMeans;             ///< columns of samples and grid, one per variable; or none
  int driftDegree = 0;                  ///< of the polynomial drift
  QList<Column> externalDrifts;         ///< columns of samples and grid
  std::optional<NbgIntVector3D> block;  ///< discretization of the grid's cells, if they are blocks
  std::optional<Column> measurementError;  ///< of the samples: deviations of the variable's errors
  std::optional<double> constantError;     ///< in its place, the same for all samples
  QList<Column> collocated;                ///< columns of the grid, one per covariate; or none
  bool filterNugget = false;
  QList<int> filteredStructures;
  bool filterDrift = false;
  double productionVolume = 0.;  ///< of super kriging, with the mean; 0 without it
  double theoreticalMean = 0.;
  std::optional<Column> localAzimuth;  ///< of the grid: of the first axis of model and ellipsoid
  AngleConvention localAngles = AngleConvention::AZIMUTH;  ///< in which that column is given
  std::optional<Column> localFactor;                       ///< of the grid: of the ranges and radii
  QList<ExtraOutput> extras;

  /// Columns that are read besides variable and covariates.
  QList<Column> getSampleColumns() const;
  QList<Column> getGridColumns() const;

  bool isFiltering() const;
};

/// Name of the column of an error that is the same for all samples.
QString constantErrorName();

/// All results that can be asked for.
const QList<ExtraOutput> &extraOutputs();

}  // namespace orvenal
