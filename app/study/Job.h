#pragma once

#include "app/io/CsvReader.h"
#include "basic/geom/NbgGeomGrid.h"
#include "geos/interpol/NgmNeighborhoodMoving.h"
#include "geos/vmodel/NgmVModel.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace orvenal {

/// A file of points of a job, and which of its columns are coordinates.
struct JobTable
{
  QString file;   ///< absolute path
  QString shown;  ///< as the job names it
  QString path;   ///< JSON path of the object that describes it
  CsvFormat format;
  QString x;
  QString y;
  QString z;  ///< empty in two dimensions
};

/// The variable that a job is about.
struct JobVariable
{
  enum Transform { NONE, LOG };

  QString column;
  Transform transform = NONE;
  QString name;  ///< after the transform
  QString unit;

  /// "log zinc [log(mg/kg)]"
  QString getLabel() const;
};

/// Files that a job writes, absolute; empty where one is not wanted.
struct JobOutput
{
  QStringList grids;
  QString estimateMap;
  QString deviationMap;
  QString report;

  QStringList getFiles() const;
};

/// A study as a job file describes it, in the terms of the libraries: angles are converted,
/// defaults filled in and paths made absolute.
struct Job
{
  QString file;
  QByteArray text;  ///< the file's bytes
  QString title;
  JobTable data;
  QString crs;         ///< as given; empty without one
  QString lengthUnit;  ///< of coordinates; empty when it is not known
  JobVariable variable;
  NbgGeomGrid grid;
  std::optional<JobTable> mask;
  NgmVModel model{1};
  std::optional<NgmNeighborhoodMoving> neighborhood;  ///< empty for the unique one
  JobOutput output;
  int threads = 0;    ///< 0 leaves it to the library
  qint64 memory = 0;  ///< bytes; 0 leaves it to the library

  int getNDimensions() const { return grid.getNDim(); }
};

}  // namespace orvenal
