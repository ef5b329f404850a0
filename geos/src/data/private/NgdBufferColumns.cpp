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

/// The binding of that name, the one in the same role before others; null when there is none.
const NgdVariableDescriptor *findBinding(const QMultiHash<QString, NgdVariableDescriptor> &byRole,
                                         const QString &role, const QString &name)
{
  const NgdVariableDescriptor *found = nullptr;
  for (auto binding = byRole.begin(); binding != byRole.end(); ++binding) {
    if (binding->getName() != name || NgdBufferColumns::isWithoutColumn(*binding))
      continue;
    if (binding.key() == role)
      return &*binding;
    found = &*binding;
  }
  return found;
}

QMultiHash<QString, NgdVariableDescriptor> getBindingsByRole(const NgdADataSet &dataSet)
{
  QMultiHash<QString, NgdVariableDescriptor> bindings;
  for (const QString &role : dataSet.getAllRoles()) {
    for (const NgdVariableDescriptor &descriptor : dataSet.getVariableDescriptors(role))
      bindings.insert(role, descriptor);
  }
  return bindings;
}

/// The roles in which a data set binds a name for reading only.
bool isReadOnlyBinding(const NgdADataSet &dataSet, const QString &role, const QString &name)
{
  bool isBound = false;
  for (const NgdVariableDescriptor &descriptor : dataSet.getVariableDescriptors(role)) {
    if (descriptor.getName() != name)
      continue;
    if (descriptor.getAccessType() != Nbd::ACCESS_READ)
      return false;
    isBound = true;
  }
  return isBound;
}

QMultiHash<NameAndIndex, NbdAVariable *> getWritableColumns(const NgdADataSet &dataSet,
                                                            const NbdDataTable &table)
{
  QMultiHash<NameAndIndex, NbdAVariable *> columns;
  for (int rank = 0; rank < table.getNVariables(); ++rank) {
    NbdAVariable *variable = table.getVarByRank(rank);
    if (!isReadOnlyBinding(dataSet, table.getRoleByRank(rank), variable->getName()))
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

void appendSavedMacro(QVector<NgdBufferColumn> &columns, const NgdADataSet &dataSet,
                      const QMultiHash<NameAndIndex, NbdAVariable *> &writable,
                      const NgdVariableDescriptor &macro, const NbdAData &buffer)
{
  const QSharedPointer<NbpIProviderR> provider = dataSet.getDataProvider();
  NbdAVariable *multi = findOnly(writable, macro.getName(), NbdMacroIndex());
  if (multi && multi->isMultiRealizations()) {
    appendRealizations(columns, *provider, macro, *multi);
    return;
  }
  for (const NbdMacroIndex &index : NgdBufferColumns::getIndices(macro, buffer))
    columns.append({provider->getRealizationId(macro.getProviderVarId(), index), macro.getName(),
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

QVector<NgdBufferColumn> NgdBufferColumns::findLoaded(const NgdADataSet &dataSet,
                                                      const NbdAData &buffer)
{
  const NbpIProviderR &provider = *dataSet.getDataProvider();
  const NbdDataTable &table = buffer.getDataTableConst();
  const QMultiHash<QString, NgdVariableDescriptor> bindings = getBindingsByRole(dataSet);
  QVector<NgdBufferColumn> columns;
  for (int rank = 0; rank < table.getNVariables(); ++rank) {
    NbdAVariable *variable = table.getVarByRank(rank);
    const NgdVariableDescriptor *binding =
        findBinding(bindings, table.getRoleByRank(rank), variable->getName());
    if (!binding)
      continue;
    if (binding->isMacro())
      appendRealizations(columns, provider, *binding, *variable);
    else
      columns.append({binding->getProviderVarId(), binding->getName(), variable, 0});
  }
  return columns;
}

QVector<NgdBufferColumn> NgdBufferColumns::findSaved(const NgdADataSet &dataSet,
                                                     const NbdAData &buffer)
{
  const QMultiHash<NameAndIndex, NbdAVariable *> writable =
      getWritableColumns(dataSet, buffer.getDataTableConst());
  QVector<NgdBufferColumn> columns;
  for (const QString &role : dataSet.getAllRoles()) {
    for (const NgdVariableDescriptor &descriptor : dataSet.getVariableDescriptors(role)) {
      if (descriptor.getAccessType() == Nbd::ACCESS_READ || isWithoutColumn(descriptor))
        continue;
      if (descriptor.isMacro())
        appendSavedMacro(columns, dataSet, writable, descriptor, buffer);
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
