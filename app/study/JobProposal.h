#pragma once

#include <QString>

class QDir;

namespace orvenal {

class Console;

/// Columns that the user has named; empty where they are to be guessed.
struct JobWishes
{
  QString x;
  QString y;
  QString z;
  QString variable;
};

/// The text of a job, with comments, for a data file: guessed coordinates and variable, a grid over
/// the samples in round numbers, and all steps that the samples allow. Names of files are relative
/// to `folder`. A file without columns for coordinates or variable is a UsageError that lists the
/// columns.
QString proposeJob(const QString &dataFile, const QDir &folder, const JobWishes &wishes,
                   Console &console);

}  // namespace orvenal
