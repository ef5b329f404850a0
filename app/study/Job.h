#pragma once

#include "app/io/TableReader.h"
#include "app/study/CrossValidation.h"
#include "app/study/Duplicates.h"
#include "app/study/GridSection.h"
#include "app/study/KrigingRequest.h"
#include "app/study/ModelFit.h"
#include "app/study/NeighborhoodRequest.h"
#include "app/study/VariogramRequest.h"
#include "basic/geom/NbgGeomGrid.h"
#include "geos/vmodel/NgmVModel.h"

#include <QByteArray>
#include <QPair>
#include <QString>
#include <QStringList>

#include <optional>
#include <set>

namespace orvenal {

/// A file of points of a job, and which of its columns are coordinates.
struct JobTable
{
  QString file;   ///< absolute path
  QString shown;  ///< as the job names it
  QString path;   ///< JSON path of the object that describes it
  TableFormat format;
  QString x;
  QString y;
  QString z;  ///< empty in two dimensions
};

/// The variable that a job is about.
struct JobVariable : Column
{
  QString name;  ///< after the transform
  QString unit;

  /// "log zinc [log(mg/kg)]"
  QString getLabel() const;
};

/// Files that a job writes, absolute; empty where one is not wanted.
struct JobOutput
{
  QStringList grids;
  QString dataMap;
  QString dataHistogram;
  QString estimateMap;  ///< of sections, for a grid of three dimensions
  QString deviationMap;
  QList<SectionRequest> sections;  ///< empty for the usual ones
  QString variogramTable;
  QString variogramPicture;
  QString variogramMap;
  QString variogramCloud;
  QString fittedModel;
  QString crossValidationTable;
  QString crossValidationPicture;
  QString crossValidationMap;
  QString report;
  QString results;
  bool overwrite = false;  ///< files of an earlier run are replaced

  QStringList getFiles() const;

  /// The same with the places of their names in the job: "output.maps.estimate".
  QList<QPair<QString, QString>> getPlacedFiles() const;
};

/// Parts of a study that can be run alone.
enum class Step { STATISTICS, VARIOGRAM, FIT, CROSS_VALIDATION, KRIGING, REPORT };
using Steps = std::set<Step>;

/// A study as a job file describes it, in the terms of the libraries: angles are converted,
/// defaults filled in and paths made absolute.
struct Job
{
  QString file;
  QByteArray text;  ///< the file's bytes
  QString title;
  JobTable data;
  DuplicatePolicy duplicates = DuplicatePolicy::KEEP;
  QString crs;         ///< as given; empty without one
  QString lengthUnit;  ///< of coordinates; empty when it is not known
  JobVariable variable;
  QList<JobVariable> covariates;  ///< variables that help to estimate the first one
  std::optional<VariogramRequest> variogram;
  std::optional<FitRequest> fit;  ///< in place of the model, and before what needs one
  QString modelFile;              ///< absolute path of the model's own file, if it has one
  bool hasModel = false;
  NgmVModel model{1};
  bool hasGrid = false;  ///< what is kriged; it comes with a model and a neighborhood
  NbgGeomGrid grid;
  std::optional<JobTable> mask;
  std::optional<JobTable> gridValues;  ///< points at the nodes with the columns that kriging needs
  KrigingRequest kriging;
  std::optional<JobTable> faults;                   ///< points of fault lines
  QString faultLine;                                ///< their column with the numbers of lines
  bool estimatesInsideFaults = true;                ///< inside closed lines
  std::optional<NeighborhoodRequest> neighborhood;  ///< empty for the unique one
  std::optional<CrossValidationRequest> crossValidation;
  JobOutput output;
  int threads = 0;    ///< 0 leaves it to the library
  qint64 memory = 0;  ///< bytes; 0 leaves it to the library

  /// The steps that the job asks for.
  Steps getSteps() const;

  /// Leaves out the outputs of all other steps.
  void keepOutputsOf(const Steps &steps);

  /// Columns that tell the lines of samples, see readSamples().
  QStringList getLineColumns() const;

  int getNVariables() const { return 1 + covariates.size(); }

  /// The variable to estimate for 0, then the covariates.
  const JobVariable &getVariable(int rank) const
  {
    return rank == 0 ? variable : covariates[rank - 1];
  }
  int getNDimensions() const { return data.z.isEmpty() ? 2 : 3; }
};

}  // namespace orvenal
