#pragma once

#include <QString>

namespace orvenal {

class JobDraft;

/// What the options of a step leave open, and the program can say.

/// A fit that options ask for has variograms.
void completeFit(JobDraft &draft);

/// A neighborhood of which options give numbers is a moving one.
void completeNeighborhood(JobDraft &draft);

/// What options leave out in cross-validation counts, whatever the job leaves out; a line or a
/// radius says that it is lines or balls.
void completeCrossValidation(JobDraft &draft);

/// Kriging from options needs a model and a neighborhood; a UsageError says how to give them.
void checkModelAndNeighborhood(const JobDraft &draft);

/// The coordinates of a data file by the names of its columns, when nothing names them and no
/// columns are x and y. What names them, in words; empty where there was nothing to do.
QString chooseCoordinates(JobDraft &draft);

/// A mask that an option gives has the samples' names of coordinates.
void completeMask(JobDraft &draft);

/// The columns that options name, or have to name, against those of the data file; a UsageError
/// lists them.
void checkColumns(const JobDraft &draft);

/// A grid of which only the cells are known is laid over the samples. What gives the same grid
/// again, in words; empty where there was nothing to do.
QString layGridOver(JobDraft &draft);

}  // namespace orvenal
