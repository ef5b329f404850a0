#include "basic/provider/NbpAMemoryProviderBase.h"

#include "basic/data/NbdEnumCatalog.h"
#include "basic/data/NbdMacroIndexInfo.h"
#include "basic/data/NbdVariableSelection.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "basic/provider/NbpIProviderGridR.h"
#include "basic/provider/NbpIProviderGridW.h"
#include "basic/provider/NbpIProviderObjectW.h"
#include "provider/private/NbpMemoryColumn.h"
#include "provider/private/NbpMemoryStorage.h"

namespace {

/// A column that takes over the values.
template <class Values>
std::unique_ptr<NbpAMemoryColumn> toColumn(Values &values)
{
  return std::visit([](auto &vector) { return makeColumn(std::move(vector)); }, values);
}

}  // namespace

template <class I>
NbpAMemoryProviderBase<I>::NbpAMemoryProviderBase(qint64 nSamples)
    : _storage(std::make_unique<NbpMemoryStorage>(nSamples))
{
}

template <class I>
NbpAMemoryProviderBase<I>::NbpAMemoryProviderBase(const NbgGeomGrid &geometry)
    : _storage(std::make_unique<NbpMemoryStorage>(geometry))
{
}

template <class I>
NbpAMemoryProviderBase<I>::~NbpAMemoryProviderBase() = default;

template <class I>
QString NbpAMemoryProviderBase<I>::addVariableEnum(const QString &name, std::vector<qint16> codes,
                                                   const NbdEnumCatalog &catalog,
                                                   const NbdVariableDetails &details)
{
  return _storage->call([&] {
    return _storage->addVariable(name, makeEnumColumn(std::move(codes), catalog), details);
  });
}

template <class I>
QString NbpAMemoryProviderBase<I>::addEmptyVariableSimple(const QString &name,
                                                          Nbd::EVariableType type,
                                                          const NbdVariableDetails &details)
{
  return _storage->call([&] { return _storage->addEmptyVariable(name, type, details, nullptr); });
}

template <class I>
QString NbpAMemoryProviderBase<I>::addMacro(const QString &name, Nbd::EVariableType type,
                                            const NbdMacroIndexInfo &info,
                                            const NbdVariableDetails &details)
{
  return _storage->call([&] { return _storage->addMacro(name, type, info, details); });
}

template <class I>
QString NbpAMemoryProviderBase<I>::_addVariable(const QString &name, Values values,
                                                const NbdVariableDetails &details)
{
  return _storage->call([&] { return _storage->addVariable(name, toColumn(values), details); });
}

template <class I>
QString NbpAMemoryProviderBase<I>::_addRealization(const QString &macroId,
                                                   const NbdMacroIndex &index, Values values)
{
  return _storage->call([&] { return _storage->addRealization(macroId, index, toColumn(values)); });
}

template <class I>
QString NbpAMemoryProviderBase<I>::_addStructuralVariable(const NbdEVarRole &role,
                                                          const QString &name,
                                                          std::vector<double> values)
{
  return _storage->call(
      [&] { return _storage->addStructuralVariable(role, name, makeColumn(std::move(values))); });
}

template <class I>
bool NbpAMemoryProviderBase<I>::setSelection(const NbdVariableSelection &selection)
{
  std::vector<bool> flags(std::size_t(selection.getNValues()));
  for (std::size_t i = 0; i < flags.size(); ++i)
    flags[i] = selection.getBoolValue(int(i));
  return setSelection(flags);
}

template <class I>
bool NbpAMemoryProviderBase<I>::setSelection(const std::vector<bool> &flags)
{
  return _storage->call([&] {
    _storage->setSelection(std::vector<unsigned char>(flags.begin(), flags.end()));
    return true;
  });
}

template <class I>
QString NbpAMemoryProviderBase<I>::getLastError() const
{
  return _storage->getLastError();
}

template <class I>
qint64 NbpAMemoryProviderBase<I>::getSampleCount() const
{
  return _storage->call([&] { return _storage->getSampleCount(); });
}

template <class I>
QStringList NbpAMemoryProviderBase<I>::getVariableIds() const
{
  return _storage->call([&] { return _storage->getVariableIds(); });
}

template <class I>
QStringList NbpAMemoryProviderBase<I>::getMacroIds() const
{
  return _storage->call([&] { return _storage->getMacroIds(); });
}

template <class I>
QString NbpAMemoryProviderBase<I>::getIdFromName(const QString &name) const
{
  return _storage->call([&] { return _storage->getIdFromName(name); });
}

template <class I>
QString NbpAMemoryProviderBase<I>::getStructuralRoleId(const NbdEVarRole &role) const
{
  return _storage->call([&] { return _storage->getStructuralRoleId(role); });
}

template <class I>
bool NbpAMemoryProviderBase<I>::isMacro(const QString &id) const
{
  return _storage->call([&] { return _storage->isMacro(id); });
}

template <class I>
bool NbpAMemoryProviderBase<I>::testVariable(const QString &id, const NbdVarTypeFlags &flags) const
{
  return _storage->call([&] { return _storage->testVariable(id, flags); });
}

template <class I>
bool NbpAMemoryProviderBase<I>::testMacro(const QString &id, const NbdVarTypeFlags &flags) const
{
  return _storage->call([&] { return _storage->testMacro(id, flags); });
}

template <class I>
bool NbpAMemoryProviderBase<I>::getVariableType(const QString &id, Nbd::EVariableType &type) const
{
  return _storage->call([&] {
    type = _storage->getVariableType(id);
    return true;
  });
}

template <class I>
bool NbpAMemoryProviderBase<I>::getDetails(const QString &id, NbdVariableDetails &details) const
{
  return _storage->call([&] {
    details = _storage->getDetails(id);
    return true;
  });
}

template <class I>
bool NbpAMemoryProviderBase<I>::getCatalog(const QString &id, NbdEnumCatalog &catalog) const
{
  return _storage->call([&] {
    catalog = _storage->getCatalog(id);
    return true;
  });
}

template <class I>
bool NbpAMemoryProviderBase<I>::getMacroIndexInfo(const QString &id, NbdMacroIndexInfo &info) const
{
  return _storage->call([&] {
    info = _storage->getMacroIndexInfo(id);
    return true;
  });
}

template <class I>
bool NbpAMemoryProviderBase<I>::getMacroIndices(const QString &id,
                                                QList<NbdMacroIndex> &indices) const
{
  return _storage->call([&] {
    indices = _storage->getMacroIndices(id);
    return true;
  });
}

template <class I>
QString NbpAMemoryProviderBase<I>::getRealizationId(const QString &macroId,
                                                    const NbdMacroIndex &index) const
{
  return _storage->call([&] { return _storage->getRealizationId(macroId, index); });
}

template <class I>
bool NbpAMemoryProviderBase<I>::openVariable(const QString &id, Nbd::EAccessType access)
{
  return _storage->call([&] {
    if (access != Nbd::ACCESS_READ && !this->isWriter())
      throw NbeError(NbeError::STORAGE, QObject::tr("The file can only be read."));
    _storage->open(id, access);
    return true;
  });
}

template <class I>
void NbpAMemoryProviderBase<I>::closeVariable(const QString &id)
{
  _storage->call([&] { _storage->close(id); });
}

template <class I>
bool NbpAMemoryProviderBase<I>::isVariableOpen(const QString &id) const
{
  return _storage->call([&] { return _storage->isOpen(id); });
}

template <class I>
bool NbpAMemoryProviderBase<I>::hasSelection() const
{
  return _storage->call([&] { return _storage->hasSelection(); });
}

template <class I>
QString NbpAMemoryProviderBase<I>::getSelectionId() const
{
  return _storage->call([&]() -> QString { return _storage->getSelectionId(); });
}

template <class I>
bool NbpAMemoryProviderBase<I>::setSelectionId(const QString &id)
{
  return _storage->call([&] {
    _storage->setSelectionId(id);
    return true;
  });
}

template <class I>
bool NbpAMemoryProviderBase<I>::select(const NbiIntervalIntLarge &ranks)
{
  return _storage->call([&] {
    _storage->select(ranks.getLower(), ranks.getUpper(), true);
    return true;
  });
}

template <class I>
bool NbpAMemoryProviderBase<I>::deselect(const NbiIntervalIntLarge &ranks)
{
  return _storage->call([&] {
    _storage->select(ranks.getLower(), ranks.getUpper(), false);
    return true;
  });
}

template <class I>
qint64 NbpAMemoryProviderBase<I>::getSelectedSampleCount(const NbiIntervalIntLarge &ranks) const
{
  return _storage->call(
      [&] { return _storage->getSelectedCount(ranks.getLower(), ranks.getUpper()); });
}

template class NbpAMemoryProviderBase<NbpIProviderW>;
template class NbpAMemoryProviderBase<NbpIProviderGridR>;
template class NbpAMemoryProviderBase<NbpIProviderGridW>;
template class NbpAMemoryProviderBase<NbpIProviderObjectW>;
