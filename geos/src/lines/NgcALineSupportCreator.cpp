#include "geos/lines/NgcALineSupportCreator.h"

#include "basic/data/NbdDataLines.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/provider/NbpIProviderObjectW.h"
#include "geos/data/NgdDataSetLines.h"

#include <QMutexLocker>

NgcALineSupportCreator::NgcALineSupportCreator() = default;

NgcALineSupportCreator::~NgcALineSupportCreator()
{
  _finish();
}

void NgcALineSupportCreator::setOutputDataSet(const NgdADataSet &dataSet)
{
  _setDataset(Nbd::Dataset::OUTPUT, dataSet);
}

NbdDataLines *NgcALineSupportCreator::getNewOutputLines(bool withCoordinates,
                                                        bool withSampleNumber) const
{
  auto lines = std::make_unique<NbdDataLines>();
  _getOutputLines()->createAllVariables(*lines, withCoordinates, withSampleNumber);
  return lines.release();
}

void NgcALineSupportCreator::saveLines(const NbdDataLines &lines)
{
  QMutexLocker lock(&_getMutex());
  _checkForProgressStop();
  const NgdDataSetLines &output = *_getOutputLines();
  if (const auto writer = output.getDataProvider().dynamicCast<NbpIProviderObjectW>()) {
    for (int index = 0; index < lines.getNLines(); ++index) {
      const NbdDataLines::Line line = lines.getLineRef(index);
      if (!writer->replaceObjectSamples(line.rank, line.count))
        NBE_FAIL(QStringLiteral("Error when creating the samples of line %1.\nReason: %2.")
                     .arg(QString::number(line.rank + 1), writer->getLastError()));
    }
  }
  output.saveFromBuffer(lines);
  if (_getProgressMode() == PROGRESS_UNSET)
    _setProgressMode(PROGRESS_ON_OUTPUT);
  if (_getProgressMode() == PROGRESS_ON_OUTPUT)
    _incrementCounter(1);
}

void NgcALineSupportCreator::_checkDatasets()
{
  NgcALineCalculator::_checkDatasets();
  if (!_getOutputLines())
    throw NbeProgrammingError(QStringLiteral("NgcALineSupportCreator: No output dataset defined."));
}

const NgdDataSetLines *NgcALineSupportCreator::_getOutputLines() const
{
  return dynamic_cast<const NgdDataSetLines *>(_getDataset(Nbd::Dataset::OUTPUT));
}
