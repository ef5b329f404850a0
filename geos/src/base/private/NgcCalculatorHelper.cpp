#include "base/private/NgcCalculatorHelper.h"

#include "basic/data/NbdAData.h"
#include "geos/data/NgdABufferManager.h"
#include "geos/data/NgdADataSet.h"
#include "geos/data/NgdVariableRules.h"

NgdABufferManager *NgcCalculatorHelper::createManager(const NgdADataSet &dataSet,
                                                      const NgdVariableRules &rules,
                                                      bool needCoordinates, bool needSampleNumber)
{
  NgdABufferManager *manager = dataSet.createBufferManager();
  manager->setNeedCoordinates(needCoordinates);
  manager->setNeedSampleNumber(needSampleNumber);
  manager->setIndicesLoopPolicy(rules.getLoopPolicy());
  if (rules.getLoopPolicy() != Nbd::LOOP_NONE)
    manager->setLoopIndices(NbiIntervalIntSmall::fromLength(rules.getNIndicesForLoop()));
  return manager;
}

bool NgcCalculatorHelper::hasSelectedSamples(const NbdAData &buffer)
{
  return buffer.getNSamples() > 0 && (!buffer.getSelection() || buffer.getNSelected() > 0);
}
