#include "data/private/NgdBufferColumns.h"

#include "basic/data/NbdAData.h"
#include "basic/data/NbdAVariable.h"
#include "basic/error/NbeAssertion.h"
#include "basic/provider/NbpIProviderR.h"
#include "geos/data/NgdADataSet.h"

#include <QMultiHash>
#include <QPair>

namespace {

using NameAndIndex = QPair<QString, NbdMacroIndex>;

/// Finds the bindings of columns that come in about the order in which they were created.
class BindingFinder
{
public:
  explicit BindingFinder(const NgdBufferColumns::Bindings &bindings)
      : _bindings(bindings), _current(bindings.end())
  {
  }

  /// The binding of that name, the one in the same role before others; null when there is none.
  const NgdVariableDescriptor *find(const QString &role, const QString &name)
  {
    if (_current == _bindings.end() || _current.key() != role) {
      _current = _bindings.find(role);
      _index = 0;
    }
    if (_current != _bindings.end()) {
      // The binding of the column before (another realization) or the next one.
      const QList<NgdVariableDescriptor> &inRole = *_current;
      for (int step = 0; step < inRole.size(); ++step) {
        const int index = (_index + step) % inRole.size();
        if (inRole[index].getName() == name && !NgdBufferColumns::isWithoutColumn(inRole[index])) {
          _index = index;
          return &inRole[index];
        }
      }
    }
    return _findElsewhere(name);
  }

private:
  const NgdVariableDescriptor *_findElsewhere(const QString &name) const
  {
    for (const QList<NgdVariableDescriptor> &inRole : _bindings) {
      for (const NgdVariableDescriptor &binding : inRole) {
        if (binding.getName() == name && !NgdBufferColumns::isWithoutColumn(binding))
          return &binding;
      }
    }
    return nullptr;
  }

  const NgdBufferColumns::Bindings &_bindings;
  NgdBufferColumns::Bindings::const_iterator _current;
  int _index = 0;
};

/// Whether a role binds a name, and only for reading.
bool isReadOnlyBinding(const NgdBufferColumns::Bindings &bindings, const QString &role,
                       const QString &name)
{
  const auto inRole = bindings.find(role);
  if (inRole == bindings.end())
    return false;
  bool isBound = false;
  for (const NgdVariableDescriptor &descriptor : *inRole) {
    if (descriptor.getName() != name)
      continue;
    if (descriptor.getAccessType() != Nbd::ACCESS_READ)
      return false;
    isBound = true;
  }
  return isBound;
}

QMultiHash<NameAndIndex, NbdAVariable *> getWritableColumns(
    const NgdBufferColumns::Bindings &bindings, const NbdDataTable &table)
{
  QMultiHash<NameAndIndex, NbdAVariable *> columns;
  for (int rank = 0; rank < table.getNVariables(); ++rank) {
    NbdAVariable *variable = table.getVarByRank(rank);
    if (!isReadOnlyBinding(bindings, table.getRoleByRank(rank), variable->getName()))
      columns.insert({variable->getName(), variable->getMacroIndex()}, variable);
  }
  return columns;
}

NbdAVariable *findOnly(const QMultiHash<NameAndIndex, NbdAVariable *> &columns, const QString &name,
                       const NbdMacroIndex &index)
{
  const QList<NbdAVariable *> found = columns.values({name, index});
  if (found.size() > 1)
    NBE_FAIL_AT(QStringLiteral("data\\NgdADataSet"),
                QStringLiteral("NgdADataSet::saveFromBuffer: found more than one variable with "
                               "name '%1'.")
                    .arg(name));
  return found.isEmpty() ? nullptr : found.first();
}

void appendRealizations(QVector<NgdBufferColumn> &columns, const NbpIProviderR &provider,
                        const NgdVariableDescriptor &macro, NbdAVariable &variable)
{
  const QList<NbdMacroIndex> indices = variable.getRealizationIndices();
  for (int rank = 0; rank < indices.size(); ++rank)
    columns.append({provider.getRealizationId(macro.getProviderVarId(), indices[rank]),
                    macro.getName(), &variable, rank});
}

void appendSavedMacro(QVector<NgdBufferColumn> &columns, const NbpIProviderR &provider,
                      const QMultiHash<NameAndIndex, NbdAVariable *> &writable,
                      const NgdVariableDescriptor &macro, const NbdAData &buffer)
{
  NbdAVariable *multi = findOnly(writable, macro.getName(), NbdMacroIndex());
  if (multi && multi->isMultiRealizations()) {
    appendRealizations(columns, provider, macro, *multi);
    return;
  }
  for (const NbdMacroIndex &index : NgdBufferColumns::getIndices(macro, buffer))
    columns.append({provider.getRealizationId(macro.getProviderVarId(), index), macro.getName(),
                    findOnly(writable, macro.getName(), index), 0});
}

}  // namespace

bool NgdBufferColumns::isWithoutColumn(const NgdVariableDescriptor &descriptor)
{
  const Nbd::EVariableType type = descriptor.getVariableType();
  return type == Nbd::TYPE_RESERVED_64 || type == Nbd::TYPE_RESERVED_128 ||
         descriptor.getContext() == NgdADataSet::MEMORY_SELECTION_CONTEXT;
}

QList<NbdMacroIndex> NgdBufferColumns::getIndices(const NgdVariableDescriptor &descriptor,
                                                  const NbdAData &buffer)
{
  if (!descriptor.isMacro())
    return {NbdMacroIndex()};
  if (!descriptor.isMultiByPiece())
    return descriptor.getIndices();
  QList<NbdMacroIndex> indices;
  for (int rank : buffer.getMacroRanks())
    indices << descriptor.getIndices().at(rank);
  return indices;
}

QVector<NgdBufferColumn> NgdBufferColumns::findLoaded(const Bindings &bindings,
                                                      const NbpIProviderR &provider,
                                                      const NbdAData &buffer)
{
  const NbdDataTable &table = buffer.getDataTableConst();
  BindingFinder finder(bindings);
  QVector<NgdBufferColumn> columns;
  columns.reserve(table.getNVariables());
  for (int rank = 0; rank < table.getNVariables(); ++rank) {
    NbdAVariable *variable = table.getVarByRank(rank);
    const NgdVariableDescriptor *binding =
        finder.find(table.getRoleByRank(rank), variable->getName());
    if (!binding)
      continue;
    if (binding->isMacro())
      appendRealizations(columns, provider, *binding, *variable);
    else
      columns.append({binding->getProviderVarId(), binding->getName(), variable, 0});
  }
  return columns;
}

QVector<NgdBufferColumn> NgdBufferColumns::findSaved(const Bindings &bindings,
                                                     const NbpIProviderR &provider,
                                                     const NbdAData &buffer)
{
  const QMultiHash<NameAndIndex, NbdAVariable *> writable =
      getWritableColumns(bindings, buffer.getDataTableConst());
  QVector<NgdBufferColumn> columns;
  for (const QList<NgdVariableDescriptor> &inRole : bindings) {
    for (const NgdVariableDescriptor &descriptor : inRole) {
      if (descriptor.getAccessType() == Nbd::ACCESS_READ || isWithoutColumn(descriptor))
        continue;
      if (descriptor.isMacro())
        appendSavedMacro(columns, provider, writable, descriptor, buffer);
      else
        columns.append({descriptor.getProviderVarId(), descriptor.getName(),
                        findOnly(writable, descriptor.getName(), NbdMacroIndex()), 0});
    }
  }
  for (const NgdBufferColumn &column : qAsConst(columns)) {
    if (!column.variable)
      NBE_FAIL_AT(QStringLiteral("data\\NgdADataSet"),
                  QStringLiteral("variable with name '%1' was not found.").arg(column.name));
  }
  return columns;
}
