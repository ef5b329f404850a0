#pragma once

#include "app/commands/CommandOption.h"

#include <QList>
#include <QString>
#include <QStringList>

class QCommandLineParser;

namespace orvenal {

class JobDraft;

/// An option that sets a member of a job.
struct JobOption : CommandOption
{
  enum Group {
    DATA,
    VARIABLE,
    VARIOGRAM,
    FIT,
    MODEL,
    NEIGHBORHOOD,
    KRIGING,
    GRID,
    CROSS_VALIDATION,
    OUTPUT
  };

  enum Kind {
    TEXT,
    TEXTS,  ///< one per use of the option
    WORDS,  ///< separated by commas
    NUMBER,
    INTEGER,
    NUMBERS,     ///< separated by commas
    AXES,        ///< the same; a single one holds for all axes
    SWITCH_OFF,  ///< false
    UNIQUE,      ///< the word "unique"
    FILE,        ///< relative to the current folder
    FILES,       ///< one per use of the option
    VARIABLES,   ///< the variable, and covariates with every further use of the option
    STRUCTURES,  ///< structures of a model, one per use of the option
    NUMBER_OR_TEXT
  };

  Group jobGroup;
  Kind kind;
  QString path;          ///< of the member
  QStringList replaced;  ///< members that the option takes the place of
};

/// All options that set a member of a job, in the order in which they are shown.
const QList<JobOption> &jobOptions();

/// Those of some groups, as they are shown.
CommandOptions jobOptionsOf(const QList<JobOption::Group> &groups);

/// Sets what the command line gives. A value that is not of the option's kind is a UsageError.
void applyJobOptions(const QCommandLineParser &parser, const QList<JobOption::Group> &groups,
                     JobDraft &draft);

}  // namespace orvenal
