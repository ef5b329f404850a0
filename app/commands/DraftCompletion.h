#pragma once

namespace orvenal {

class Console;
class JobDraft;

/// What the options of a step leave open, and the program can say.

/// A fit that options ask for has variograms.
void completeFit(JobDraft &draft);

/// A neighborhood of which options give numbers is a moving one.
void completeNeighborhood(JobDraft &draft);

/// A mask that an option gives has the samples' names of coordinates.
void completeMask(JobDraft &draft);

/// The columns that options name, or have to name, against those of the data file; a UsageError
/// lists them.
void checkColumns(const JobDraft &draft);

/// A grid of which only the cells are known is laid over the samples, and printed.
void layGridOver(JobDraft &draft, Console &console);

}  // namespace orvenal
