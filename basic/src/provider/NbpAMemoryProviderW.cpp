#include "basic/provider/NbpAMemoryProviderW.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAVariable.h"
#include "basic/data/NbdEnumCatalog.h"
#include "basic/data/NbdMacroIndexInfo.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "basic/provider/NbpIProviderGridW.h"
#include "basic/provider/NbpIProviderObjectW.h"
#include "provider/private/NbpMemoryStorage.h"

template <class I>
QString NbpAMemoryProviderW<I>::createVariable(const QString &name, Nbd::EVariableType type,
                                               const NbdVariableDetails &details,
                                               const NbdEnumCatalog *catalog)
{
  NbpMemoryStorage &storage = this->_getStorage();
  return storage.call([&] { return storage.addEmptyVariable(name, type, details, catalog); });
}

template <class I>
QString NbpAMemoryProviderW<I>::createTemporaryVariable(const QString &name,
                                                        Nbd::EVariableType type,
                                                        const NbdVariableDetails &details)
{
  NbpMemoryStorage &storage = this->_getStorage();
  return storage.call([&] {
    return storage.addEmptyVariable(name, type, details, nullptr, NbpMemoryStorage::TEMPORARY);
  });
}

template <class I>
QString NbpAMemoryProviderW<I>::createMacro(const QString &name, Nbd::EVariableType type,
                                            const NbdMacroIndexInfo &info,
                                            const NbdVariableDetails &details)
{
  return this->addMacro(name, type, info, details);
}

template <class I>
QString NbpAMemoryProviderW<I>::createTemporaryMacro(const QString &name, Nbd::EVariableType type,
                                                     const NbdMacroIndexInfo &info,
                                                     const NbdVariableDetails &details)
{
  NbpMemoryStorage &storage = this->_getStorage();
  return storage.call(
      [&] { return storage.addMacro(name, type, info, details, NbpMemoryStorage::TEMPORARY); });
}

template <class I>
QString NbpAMemoryProviderW<I>::createMacroRealization(const QString &macroId,
                                                       const NbdMacroIndex &index)
{
  NbpMemoryStorage &storage = this->_getStorage();
  return storage.call([&] { return storage.requireRealization(macroId, index); });
}

template <class I>
bool NbpAMemoryProviderW<I>::deleteVariable(const QString &id)
{
  NbpMemoryStorage &storage = this->_getStorage();
  return storage.call([&] {
    storage.deleteVariable(id);
    return true;
  });
}

template <class I>
bool NbpAMemoryProviderW<I>::deleteMacro(const QString &id)
{
  NbpMemoryStorage &storage = this->_getStorage();
  return storage.call([&] {
    storage.deleteMacro(id);
    return true;
  });
}

template <class I>
bool NbpAMemoryProviderW<I>::writeVariable(const QString &id, const NbiIntervalIntLarge &ranks,
                                           const NbdAVariable &values, int first)
{
  NbpMemoryStorage &storage = this->_getStorage();
  return storage.call([&] {
    NbpRuns runs;
    const int end = storage.appendSelectedRuns(ranks.getLower(), ranks.getUpper(), first, runs);
    storage.write(id, runs, end, values);
    return true;
  });
}

template <class I>
bool NbpAMemoryProviderW<I>::patchVariable(const QString &id, const NbdVariableInt64 &sampleNumbers,
                                           const NbdAVariable &values)
{
  NbpMemoryStorage &storage = this->_getStorage();
  return storage.call([&] {
    NbpRuns runs;
    const qint64 *const numbers = sampleNumbers.getArrayConst();
    const int n = sampleNumbers.getNValues();
    for (int position = 0; position < n; ++position) {
      const qint64 rank = numbers[position] - 1;
      if (numbers[position] < 1)
        continue;
      storage.checkRange(rank, rank);
      appendRun(runs, rank, position, 1);
    }
    storage.write(id, runs, n, values);
    return true;
  });
}

template <class I>
bool NbpAMemoryProviderW<I>::appendSamples(qint64 count)
{
  NbpMemoryStorage &storage = this->_getStorage();
  return storage.call([&] {
    if (!std::is_same_v<I, NbpIProviderW>)
      throw NbeError(NbeError::STORAGE, QObject::tr("Samples can be appended to points only."));
    if (count < 0)
      throw NbeError(NbeError::STORAGE,
                     QObject::tr("The number of samples to append is negative."));
    storage.replaceSamples(storage.getSampleCount(), 0, count);
    return true;
  });
}

template class NbpAMemoryProviderW<NbpIProviderW>;
template class NbpAMemoryProviderW<NbpIProviderGridW>;
template class NbpAMemoryProviderW<NbpIProviderObjectW>;
