#include "provider/private/NbpMemoryStorage.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdEVarRole.h"
#include "basic/data/NbdEVarType.h"
#include "basic/data/NbdVarTypeFlags.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableSelection.h"
#include "basic/error/NbeAssertion.h"
#include "provider/private/NbpMemoryColumn.h"
#include "provider/private/NbpServedColumns.h"

#include <algorithm>
#include <limits>

namespace {

[[noreturn]] void fail(const QString &text)
{
  throw NbeError(NbeError::STORAGE, text);
}

void checkBuffer(const NbdAVariable &values, int nPositions)
{
  if (values.getNValues() < nPositions)
    fail(QObject::tr("The buffer holds %1 values, %2 are needed.")
             .arg(values.getNValues())
             .arg(nPositions));
}

/// Buffers count in int.
void checkPositions(int position, qint64 n)
{
  if (position < 0)
    fail(QObject::tr("The first position in the buffer is negative."));
  if (n > std::numeric_limits<int>::max() - position)
    fail(QObject::tr("%1 samples are too many for one buffer.").arg(n));
}

const NbdEVarRole &coordinateRole(int axis)
{
  return axis == 0 ? NbdEVarRole::X : axis == 1 ? NbdEVarRole::Y : NbdEVarRole::Z;
}

}  // namespace

NbpMemoryStorage::NbpMemoryStorage(qint64 nSamples) : _nSamples(nSamples)
{
  if (nSamples < 0)
    NBE_FAIL(QStringLiteral("nSamples >= 0"));
  _addServed(NbdEVarRole::SN, std::make_unique<NbpSampleNumberColumn>());
}

NbpMemoryStorage::NbpMemoryStorage(const NbgGeomGrid &geometry)
    : NbpMemoryStorage(geometry.getGridSize())
{
  for (int axis = 0; axis < geometry.getNDim(); ++axis)
    _addServed(coordinateRole(axis), std::make_unique<NbpGridCoordinateColumn>(geometry, axis));
}

NbpMemoryStorage::~NbpMemoryStorage() = default;

QString NbpMemoryStorage::getLastError() const
{
  const QMutexLocker lock(&_mutex);
  const auto found = _errors.find(std::this_thread::get_id());
  return found == _errors.end() ? QString() : found->second;
}

void NbpMemoryStorage::_setError(const QString &text) const
{
  _errors[std::this_thread::get_id()] = text;
}

QStringList NbpMemoryStorage::getVariableIds() const
{
  QStringList ids;
  for (const auto &entry : _entries)
    if (!entry->served && !entry->indexInfo && !entry->macro)
      ids.append(entry->id);
  return ids;
}

QStringList NbpMemoryStorage::getMacroIds() const
{
  QStringList ids;
  for (const auto &entry : _entries)
    if (entry->indexInfo)
      ids.append(entry->id);
  return ids;
}

QString NbpMemoryStorage::getIdFromName(const QString &name) const
{
  const Entry *entry = _byName.value(name);
  if (!entry)
    fail(QObject::tr("There is no variable named %1.").arg(name));
  return entry->id;
}

QString NbpMemoryStorage::getStructuralRoleId(const NbdEVarRole &role) const
{
  const auto found = _structuralIds.find(role.getValue());
  if (found == _structuralIds.end())
    fail(QObject::tr("No variable plays the structural role %1.").arg(role.getKey()));
  return found->second;
}

bool NbpMemoryStorage::isMacro(const QString &id) const
{
  return _find(id).indexInfo != nullptr;
}

bool NbpMemoryStorage::testVariable(const QString &id, const NbdVarTypeFlags &flags) const
{
  const Entry &entry = _find(id);
  return !entry.indexInfo && flags.testFlag(NbdEVarType::fromUdVarType(entry.type));
}

bool NbpMemoryStorage::testMacro(const QString &id, const NbdVarTypeFlags &flags) const
{
  const Entry &entry = _find(id);
  return entry.indexInfo && flags.testFlag(NbdEVarType::fromUdVarType(entry.type));
}

const NbdEnumCatalog &NbpMemoryStorage::getCatalog(const QString &id) const
{
  const Entry &entry = _find(id);
  const NbdEnumCatalog *catalog = entry.column ? entry.column->getCatalog() : nullptr;
  if (!catalog)
    fail(QObject::tr("Variable %1 has no categories.").arg(entry.name));
  return *catalog;
}

const NbdMacroIndexInfo &NbpMemoryStorage::getMacroIndexInfo(const QString &id) const
{
  return *_findMacro(id).indexInfo;
}

QList<NbdMacroIndex> NbpMemoryStorage::getMacroIndices(const QString &id) const
{
  QList<NbdMacroIndex> indices;
  for (const auto &realization : _findMacro(id).realizations)
    indices.append(realization.first);
  return indices;
}

QString NbpMemoryStorage::getRealizationId(const QString &macroId, const NbdMacroIndex &index) const
{
  const Entry &macro = _findMacro(macroId);
  const auto found = macro.realizations.find(index);
  if (found == macro.realizations.end())
    fail(QObject::tr("Variable %1 has no realization %2.").arg(macro.name, index.toString()));
  return found->second->id;
}

NbpMemoryStorage::Entry &NbpMemoryStorage::_find(const QString &id) const
{
  Entry *entry = _byId.value(id);
  if (!entry)
    fail(QObject::tr("There is no variable of id %1.").arg(id));
  return *entry;
}

NbpMemoryStorage::Entry &NbpMemoryStorage::_findMacro(const QString &id) const
{
  Entry &entry = _find(id);
  if (!entry.indexInfo)
    fail(QObject::tr("Variable %1 is not a macro variable.").arg(entry.name));
  return entry;
}

NbpMemoryStorage::Entry &NbpMemoryStorage::_findColumn(const QString &id) const
{
  Entry &entry = _find(id);
  if (!entry.column)
    fail(QObject::tr("%1 is a macro variable: its values are those of its realizations.")
             .arg(entry.name));
  return entry;
}

QString NbpMemoryStorage::addVariable(const QString &name, std::unique_ptr<NbpAMemoryColumn> column,
                                      const NbdVariableDetails &details, Lifetime lifetime)
{
  _checkName(name);
  _checkSize(*column, name);
  Entry &entry = _append(name, column->getType(), details);
  entry.column = std::move(column);
  entry.lifetime = lifetime;
  _byName.insert(name, &entry);
  return entry.id;
}

QString NbpMemoryStorage::addEmptyVariable(const QString &name, Nbd::EVariableType type,
                                           const NbdVariableDetails &details,
                                           const NbdEnumCatalog *catalog, Lifetime lifetime)
{
  auto column =
      type == Nbd::TYPE_ENUM && catalog
          ? makeEnumColumn(std::vector<qint16>(std::size_t(_nSamples), NbbGlobal::I16_FFFF),
                           *catalog)
          : makeColumn(type, _nSamples);
  return addVariable(name, std::move(column), details, lifetime);
}

QString NbpMemoryStorage::addStructuralVariable(const NbdEVarRole &role, const QString &name,
                                                std::unique_ptr<NbpAMemoryColumn> column)
{
  if (_structuralIds.count(role.getValue()) > 0)
    fail(QObject::tr("A variable plays the structural role %1 already.").arg(role.getKey()));
  const QString id = addVariable(name, std::move(column), NbdVariableDetails());
  _find(id).structural = true;
  _structuralIds[role.getValue()] = id;
  return id;
}

QString NbpMemoryStorage::addMacro(const QString &name, Nbd::EVariableType type,
                                   const NbdMacroIndexInfo &info, const NbdVariableDetails &details,
                                   Lifetime lifetime)
{
  _checkName(name);
  // Several realizations in one variable is how a buffer holds a macro; here each has its column.
  const Nbd::EVariableType columnType = type == Nbd::TYPE_MULTI_FLOAT ? Nbd::TYPE_FLOAT : type;
  makeColumn(columnType, 0);  // fails for a type that has no column
  Entry &macro = _append(name, columnType, details);
  macro.indexInfo = std::make_unique<NbdMacroIndexInfo>(info);
  macro.lifetime = lifetime;
  _byName.insert(name, &macro);
  return macro.id;
}

QString NbpMemoryStorage::addRealization(const QString &macroId, const NbdMacroIndex &index,
                                         std::unique_ptr<NbpAMemoryColumn> column)
{
  Entry &macro = _findMacro(macroId);
  if (macro.realizations.count(index) > 0)
    fail(
        QObject::tr("Variable %1 already has a realization %2.").arg(macro.name, index.toString()));
  if (!macro.indexInfo->isConsistent(index))
    fail(QObject::tr("%2 is not an index of macro variable %1.").arg(macro.name, index.toString()));
  if (column->getType() != macro.type)
    fail(QObject::tr("The realizations of variable %1 are of another type.").arg(macro.name));
  _checkSize(*column, macro.name);
  Entry &entry = _append(macro.name, macro.type, macro.details);
  entry.column = std::move(column);
  entry.lifetime = macro.lifetime;
  entry.macro = &macro;
  entry.index = index;
  macro.realizations[index] = &entry;
  return entry.id;
}

QString NbpMemoryStorage::requireRealization(const QString &macroId, const NbdMacroIndex &index)
{
  const Entry &macro = _findMacro(macroId);
  const auto found = macro.realizations.find(index);
  if (found != macro.realizations.end())
    return found->second->id;
  return addRealization(macroId, index, makeColumn(macro.type, _nSamples));
}

void NbpMemoryStorage::deleteVariable(const QString &id)
{
  Entry &entry = _findColumn(id);
  _checkDeletable(entry);
  if (_selectionId == id)
    setSelectionId(QString());
  if (entry.macro)
    entry.macro->realizations.erase(entry.index);
  _erase(entry);
}

void NbpMemoryStorage::deleteMacro(const QString &id)
{
  Entry &macro = _findMacro(id);
  _checkDeletable(macro);
  for (const auto &realization : macro.realizations)
    _checkDeletable(*realization.second);
  while (!macro.realizations.empty())
    deleteVariable(macro.realizations.begin()->second->id);
  _erase(macro);
}

void NbpMemoryStorage::_checkName(const QString &name) const
{
  if (name.isEmpty())
    fail(QObject::tr("A variable needs a name."));
  if (_byName.contains(name))
    fail(QObject::tr("There is already a variable named %1.").arg(name));
}

void NbpMemoryStorage::_checkSize(const NbpAMemoryColumn &column, const QString &name) const
{
  if (column.getSize() != _nSamples)
    fail(QObject::tr("Variable %1 is given %2 values, the file has %3 samples.")
             .arg(name, QString::number(column.getSize()), QString::number(_nSamples)));
}

NbpMemoryStorage::Entry &NbpMemoryStorage::_append(const QString &name, Nbd::EVariableType type,
                                                   const NbdVariableDetails &details)
{
  auto entry = std::make_unique<Entry>();
  entry->id = QStringLiteral("v%1").arg(++_lastId);
  entry->name = name;
  entry->type = type;
  entry->details = details;
  entry->details.setName(name);
  _entries.push_back(std::move(entry));
  _byId.insert(_entries.back()->id, _entries.back().get());
  return *_entries.back();
}

void NbpMemoryStorage::_addServed(const NbdEVarRole &role, std::unique_ptr<NbpAMemoryColumn> column)
{
  Entry &entry = _append(role.getKey(), column->getType(), NbdVariableDetails());
  entry.column = std::move(column);
  entry.structural = true;
  entry.served = true;
  _structuralIds[role.getValue()] = entry.id;
}

void NbpMemoryStorage::_checkDeletable(const Entry &entry) const
{
  if (entry.structural)
    fail(QObject::tr("Variable %1 plays a structural role: it cannot be deleted.").arg(entry.name));
  if (entry.lifetime == TEMPORARY)
    return;
  if (entry.nOpenings > 0 || (entry.macro && entry.macro->nOpenings > 0))
    fail(QObject::tr("Variable %1 is open: it cannot be deleted.").arg(entry.name));
  if (!_selectionId.isEmpty() && _selectionId == entry.id)
    fail(QObject::tr("Variable %1 is the selection: it cannot be deleted.").arg(entry.name));
}

void NbpMemoryStorage::_erase(const Entry &entry)
{
  if (_byName.value(entry.name) == &entry)
    _byName.remove(entry.name);
  _byId.remove(entry.id);
  const auto isEntry = [&entry](const std::unique_ptr<Entry> &other) {
    return other.get() == &entry;
  };
  _entries.erase(std::find_if(_entries.begin(), _entries.end(), isEntry));
}

bool NbpMemoryStorage::_isOpenForWriting(const Entry &entry)
{
  return entry.openForWriting || (entry.macro && entry.macro->openForWriting);
}

void NbpMemoryStorage::open(const QString &id, Nbd::EAccessType access)
{
  Entry &entry = _find(id);
  if (access != Nbd::ACCESS_READ) {
    if (entry.column && !entry.column->isWritable())
      fail(QObject::tr("Variable %1 can only be read.").arg(entry.name));
    entry.openForWriting = true;
  }
  ++entry.nOpenings;
}

void NbpMemoryStorage::close(const QString &id)
{
  Entry &entry = _find(id);
  if (entry.nOpenings > 0 && --entry.nOpenings == 0)
    entry.openForWriting = false;
}

bool NbpMemoryStorage::isOpen(const QString &id) const
{
  const Entry &entry = _find(id);
  return entry.nOpenings > 0 || (entry.macro && entry.macro->nOpenings > 0);
}

void NbpMemoryStorage::setSelectionId(const QString &id)
{
  if (!id.isEmpty()) {
    const Entry &entry = _findColumn(id);
    if (!NbdEVarType::fromUdVarType(entry.type).isNumeric())
      fail(QObject::tr("Variable %1 is not numeric: it cannot be a selection.").arg(entry.name));
  }
  _selectionId = id;
  _selection.reset();
}

void NbpMemoryStorage::setSelection(std::vector<unsigned char> flags)
{
  if (qint64(flags.size()) != _nSamples)
    fail(QObject::tr("The selection has %1 values, the file has %2 samples.")
             .arg(flags.size())
             .arg(_nSamples));
  _selectionId.clear();
  _selection.emplace(std::move(flags));
}

void NbpMemoryStorage::select(qint64 first, qint64 last, bool selected)
{
  checkRange(first, last);
  if (!_selectionId.isEmpty())
    fail(QObject::tr("The selection is variable %1: write to it to change it.")
             .arg(_find(_selectionId).name));
  if (!_selection)
    _selection.emplace(std::vector<unsigned char>(std::size_t(_nSamples), 1));
  if (first <= last)
    _selection->fill(first, last, selected);
}

qint64 NbpMemoryStorage::getSelectedCount(qint64 first, qint64 last) const
{
  checkRange(first, last);
  if (last < first)
    return 0;
  return hasSelection() ? _getSelection().count(first, last) : last - first + 1;
}

const NbpMemorySelection &NbpMemoryStorage::_getSelection() const
{
  if (!_selection)
    _selection.emplace(_find(_selectionId).column->getFlags());
  return *_selection;
}

void NbpMemoryStorage::checkRange(qint64 first, qint64 last) const
{
  if (first <= last && (first < 0 || last >= _nSamples))
    fail(QObject::tr("Ranks %1 to %2 are asked for, the file has %3 samples.")
             .arg(first)
             .arg(last)
             .arg(_nSamples));
}

int NbpMemoryStorage::appendSelectedRuns(qint64 first, qint64 last, int position,
                                         NbpRuns &runs) const
{
  const qint64 n = getSelectedCount(first, last);
  checkPositions(position, n);
  if (n > 0 && hasSelection())
    _getSelection().appendRuns(first, last, true, position, runs);
  else
    appendRun(runs, first, position, int(n));
  return position + int(n);
}

int NbpMemoryStorage::appendRuns(qint64 first, qint64 last, bool selectedOnly, int position,
                                 NbpRuns &runs) const
{
  checkRange(first, last);
  if (last < first)
    return position;
  checkPositions(position, last - first + 1);
  if (selectedOnly && hasSelection())
    return _getSelection().appendRuns(first, last, false, position, runs);
  const int n = int(last - first + 1);
  appendRun(runs, first, position, n);
  return position + n;
}

void NbpMemoryStorage::read(const QString &id, const NbpRuns &runs, int nPositions,
                            NbdAVariable &values) const
{
  const Entry &entry = _findColumn(id);
  checkBuffer(values, nPositions);
  entry.column->read(runs, values);
}

void NbpMemoryStorage::write(const QString &id, const NbpRuns &runs, int nPositions,
                             const NbdAVariable &values)
{
  Entry &entry = _findColumn(id);
  if (!_isOpenForWriting(entry))
    fail(QObject::tr("Variable %1 is not open for writing.").arg(entry.name));
  checkBuffer(values, nPositions);
  entry.column->write(runs, values);
  if (id == _selectionId)
    _selection.reset();
}

void NbpMemoryStorage::readFlags(const NbpRuns &runs, int nPositions,
                                 NbdVariableSelection &selection) const
{
  selection.resizeAndFill(nPositions);
  unsigned char *const flags = selection.getArray();
  for (const NbpRun &run : runs) {
    if (hasSelection())
      std::copy_n(_getSelection().getFlags() + run.rank, run.length, flags + run.position);
    else
      std::fill_n(flags + run.position, run.length, static_cast<unsigned char>(1));
  }
}

void NbpMemoryStorage::readCoordinates(int nDimensions, const NbpRuns &runs, int nPositions,
                                       const NbpCoordinateColumns &columns) const
{
  checkBuffers(nPositions, columns);
  const Entry *entries[3] = {};
  for (int axis = 0; axis < nDimensions; ++axis)
    if (columns[axis])
      entries[axis] = &_findColumn(getStructuralRoleId(coordinateRole(axis)));
  for (int axis = 0; axis < 3; ++axis) {
    if (entries[axis])
      entries[axis]->column->read(runs, *columns[axis]);
    else if (columns[axis])
      for (const NbpRun &run : runs)
        std::fill_n(columns[axis]->getArray() + run.position, run.length, 0.);
  }
}

void NbpMemoryStorage::checkBuffers(int nPositions, const NbpCoordinateColumns &columns) const
{
  for (const NbdVariableDouble *column : columns)
    if (column)
      checkBuffer(*column, nPositions);
}

void NbpMemoryStorage::replaceSamples(qint64 rank, qint64 nOld, qint64 n)
{
  if (n > std::numeric_limits<qint64>::max() - (_nSamples - nOld))
    fail(QObject::tr("%1 samples are too many for one file.").arg(n));
  const qint64 nSamples = _nSamples - nOld + n;
  for (const auto &entry : _entries)
    if (entry->column)
      entry->column->reserve(nSamples);
  const bool inMemory = _selection && _selectionId.isEmpty();
  if (inMemory)
    _selection->reserve(nSamples);

  for (const auto &entry : _entries)
    if (entry->column)
      entry->column->replace(rank, nOld, n);
  if (inMemory)
    _selection->replace(rank, nOld, n);
  else
    _selection.reset();
  _nSamples = nSamples;
}
