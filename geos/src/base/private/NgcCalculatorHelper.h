#pragma once

class NbdAData;
class NgdABufferManager;
class NgdADataSet;
class NgdVariableRules;

/// What parallel and sequential calculators do alike with buffers.
namespace NgcCalculatorHelper {

/// A new manager of the data set, which loops on macro indices when the rules ask for it; the
/// caller owns it.
NgdABufferManager *createManager(const NgdADataSet &dataSet, const NgdVariableRules &rules,
                                 bool needCoordinates, bool needSampleNumber);

/// Whether the buffer has samples and, if it has a selection, a selected one.
bool hasSelectedSamples(const NbdAData &buffer);

}  // namespace NgcCalculatorHelper
