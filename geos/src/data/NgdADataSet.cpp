#include "geos/data/NgdADataSet.h"

#include "basic/base/NbbDebug.h"
#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdDataPoints.h"
#include "basic/data/NbdEVarRole.h"
#include "basic/data/NbdVarTypeFlags.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableEnum.h"
#include "basic/data/NbdVariableFactory.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/data/NbdVariableSelection.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeUserError.h"
#include "basic/geom/NbgEDimension.h"
#include "basic/geom/NbgGeomCuboid.h"
#include "basic/interval/NbiIntervalIntLargeDisjoint.h"
#include "basic/interval/NbiIntervalIntLargeMoving.h"
#include "basic/provider/NbpIProviderW.h"
#include "data/private/NgdBufferColumns.h"

#include <QLocale>
#include <QObject>
#include <QSaveFile>

#include <limits>

namespace {

void printDataSet(const char *title, const NgdADataSet &dataSet)
{
  NbbDebug::printError(QLatin1String(title));
  NbbDebug::printError(dataSet.debug(0));
}

QString accessError(const QString &name, const QString &id, const QString &reason)
{
  return QStringLiteral("Error when accessing variable name '%1' and id '%2'.\nReason: %3.")
      .arg(name, id, reason);
}

QString accessError(const NgdVariableDescriptor &descriptor, const QString &reason)
{
  const QString name = descriptor.getName(), id = descriptor.getProviderVarId();
  if (!descriptor.isMacro())
    return accessError(name, id, reason);
  return QStringLiteral("Error when accessing macro variable name '%1' and id '%2'.\nReason: %3.")
      .arg(name, id, reason);
}

/// The fewest digits that give the number back exactly.
QString shortestText(float value)
{
  int nDigits = std::numeric_limits<float>::digits10;
  QString text = QString::number(double(value), 'g', nDigits);
  while (text.toFloat() != value && nDigits < std::numeric_limits<float>::max_digits10)
    text = QString::number(double(value), 'g', ++nDigits);
  return text;
}

/// Floating-point numbers with the digits that give them back exactly.
QString valueText(const NbdAVariable &variable, int position)
{
  const QVariant value = variable.getVariant(position);
  if (value.userType() == QMetaType::Float)
    return shortestText(value.toFloat());
  const bool isFloating = value.userType() == QMetaType::Double;
  return isFloating ? QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest)
                    : NbbGlobal::toString(value);
}

/// Whether the run still has to create the variable.
bool isPending(const NgdVariableDescriptor &descriptor)
{
  return descriptor.isTemporary() && descriptor.getProviderVarId().isEmpty();
}

}  // namespace

const QString NgdADataSet::MEMORY_SELECTION_CONTEXT = QStringLiteral("memory selection");

NgdADataSet::NgdADataSet() = default;

NgdADataSet::~NgdADataSet()
{
  _closeOpened();
}

NgdADataSet::NgdADataSet(const NgdADataSet &other)
    : NbbIDebuggable(other),
      _provider(other._provider),
      _variables(other._variables),
      _opened(other._opened),
      _maxDimension(other._maxDimension),
      _sampleSizeBits(other._sampleSizeBits)
{
}

NgdADataSet &NgdADataSet::operator=(const NgdADataSet &other)
{
  if (this == &other)
    return *this;
  if (!_temporaryVariables.isEmpty())
    NbbDebug::printWarning(QStringLiteral("Remaining temporary variables may not be deleted"));
  if (!_temporaryMacros.isEmpty())
    NbbDebug::printWarning(QStringLiteral("Remaining temporary macros may not be deleted"));
  _closeOpened();
  _provider = other._provider;
  _variables = other._variables;
  _opened = other._opened;
  _maxDimension = other._maxDimension;
  _sampleSizeBits = other._sampleSizeBits;
  _temporaryVariables.clear();
  _temporaryMacros.clear();
  return *this;
}

bool NgdADataSet::mustBeUnique(const QString &role) const
{
  return Nbd::Role::isCoordinate(role) || Nbd::Role::isSN(role);
}

NbiIntervalIntLargeDisjoint NgdADataSet::_tuneLoadInBufferInterval(
    const NbiIntervalIntLargeDisjoint &ranks) const
{
  return ranks;
}

void NgdADataSet::setDataProvider(NbpIProviderR &provider)
{
  setDataProvider(QSharedPointer<NbpIProviderR>(&provider, [](NbpIProviderR *) {}));
}

void NgdADataSet::_setDataProvider(QSharedPointer<NbpIProviderR> provider)
{
  if (!provider)
    NBE_FAIL(QStringLiteral("Given provider is null."));

  closeAllVariables();
  _deleteTmpVariables();
  if (hasVariablesWithRole(Nbd::Role::SELECTION))
    NbbDebug::printWarning(QStringLiteral("User selection ignored"));
  clearRoles({Nbd::Role::SELECTION, Nbd::Role::X, Nbd::Role::Y, Nbd::Role::Z, Nbd::Role::SN});
  _sampleSizeBits = 0;
  _provider = provider;

  const NbdEVarRole *axes[] = {&NbdEVarRole::X, &NbdEVarRole::Y, &NbdEVarRole::Z};
  for (int axis = 0; axis < _maxDimension; ++axis)
    _assignStructural(*axes[axis]);
  _assignStructural(NbdEVarRole::SN);
}

void NgdADataSet::_assignStructural(const NbdEVarRole &role)
{
  const QString id = _provider->getStructuralRoleId(role);
  if (!id.isEmpty() && _provider->testVariable(id, NbdVarTypeFlags::ANY))
    assignVariable(role.toCalculatorRole(), id, false);
}

NbpIProviderR &NgdADataSet::_requireProvider() const
{
  if (!_provider)
    NBE_FAIL(QStringLiteral("Dataset provider is invalid."));
  return *_provider;
}

QSharedPointer<NbpIProviderW> NgdADataSet::getDataProviderW() const
{
  const QSharedPointer<NbpIProviderW> writer = _provider.dynamicCast<NbpIProviderW>();
  if (!writer)
    NBE_FAIL(QStringLiteral("current provider is not valid for writing!"));
  return writer;
}

bool NgdADataSet::isWriter() const
{
  return _requireProvider().isWriter();
}

void NgdADataSet::setMaxDimension(MaxDim dimension)
{
  _maxDimension = dimension;
  const QString roles[] = {Nbd::Role::X, Nbd::Role::Y, Nbd::Role::Z};
  for (int axis = dimension; axis < 3; ++axis)
    clearRole(roles[axis]);
}

int NgdADataSet::getNDimensions() const
{
  return _provider ? qMin(int(_maxDimension), _provider->getDimension().getNDim()) : 0;
}

int NgdADataSet::getSampleSizeBytes() const
{
  if (_sampleSizeBits == 0)
    NBE_FAIL(QStringLiteral("must be called after openAllVariables"));
  return (_sampleSizeBits - 1) / 8 + 1;
}

void NgdADataSet::assignVariable(const QString &role, const QString &id, bool enumAsInteger)
{
  const NbpIProviderR &provider = _requireProvider();
  NgdVariableDescriptor descriptor = _describe(id, false);
  if (descriptor.getVariableType() == Nbd::TYPE_ENUM) {
    NbdEnumCatalog catalog;
    if (provider.getCatalog(id, catalog))
      descriptor.setCatalog(catalog);
    if (enumAsInteger)
      descriptor.setVariableType(Nbd::TYPE_INT32);
  }
  _append(role, descriptor);
}

void NgdADataSet::assignMacro(const QString &role, const QString &id)
{
  const NbpIProviderR &provider = _requireProvider();
  NgdVariableDescriptor descriptor = _describe(id, true);
  NbdMacroIndexInfo info;
  QList<NbdMacroIndex> indices;
  if (!provider.getMacroIndexInfo(id, info) || !provider.getMacroIndices(id, indices))
    NBE_FAIL(accessError(descriptor, provider.getLastError()));
  descriptor.setIndices(info, indices);
  _append(role, descriptor);
}

NgdVariableDescriptor NgdADataSet::_describe(const QString &id, bool isMacro) const
{
  Nbd::EVariableType type = Nbd::TYPE_NONE;
  NbdVariableDetails details;
  if (_provider->isMacro(id) != isMacro || !_provider->getVariableType(id, type) ||
      !_provider->getDetails(id, details))
    NBE_FAIL(isMacro ? QStringLiteral("No macro variable with Id: ") + id
                     : QStringLiteral("No variable with Id: ") + id);

  NgdVariableDescriptor descriptor(details.getName());
  descriptor.setProviderVarId(id);
  descriptor.setVariableType(type);
  descriptor.setDetails(details);
  descriptor.setIsMacro(isMacro);
  return descriptor;
}

void NgdADataSet::_append(const QString &role, const NgdVariableDescriptor &descriptor)
{
  if (mustBeUnique(role) && hasVariablesWithRole(role))
    NBE_FAIL(QStringLiteral("Attempting to add variable with Id: ") +
             descriptor.getProviderVarId() + QStringLiteral(" with role ") + role +
             QStringLiteral(" to a data set which already contains the role ") + role);
  _variables[role] << descriptor;
}

void NgdADataSet::assignTemporaryVariable(const QString &role, const QString &name,
                                          Nbd::EVariableType type)
{
  _appendTemporary(role, name, type, false);
}

void NgdADataSet::assignTemporaryMacro(const QString &role, const QString &name,
                                       Nbd::EVariableType type)
{
  _appendTemporary(role, name, type, true);
}

void NgdADataSet::_appendTemporary(const QString &role, const QString &name,
                                   Nbd::EVariableType type, bool isMacro)
{
  if (Nbd::Role::isCoordinate(role) || Nbd::Role::isSN(role))
    NBE_FAIL(QStringLiteral("Coordinate or SN can't be temporary."));
  NgdVariableDescriptor descriptor(name);
  descriptor.setProviderVarId(QString());
  descriptor.setVariableType(type);
  descriptor.setAccessType(Nbd::ACCESS_WRITE);
  descriptor.setTemporary(true);
  descriptor.setIsMacro(isMacro);
  if (isMacro)
    descriptor.setIndices(NbdMacroIndexInfo(), {});
  _append(role, descriptor);
}

void NgdADataSet::clearRole(const QString &role)
{
  _variables.remove(role);
}

void NgdADataSet::clearRoles(const QStringList &roles)
{
  for (const QString &role : roles)
    clearRole(role);
}

void NgdADataSet::clearAllRoles()
{
  _variables.clear();
}

void NgdADataSet::clearOtherRoles(const QStringList &keep)
{
  for (const QString &role : getAllRoles()) {
    if (!keep.contains(role))
      clearRole(role);
  }
}

void NgdADataSet::replaceRole(const QString &oldRole, const QString &newRole)
{
  if (!_variables.contains(oldRole))
    NBE_FAIL(QStringLiteral("invalid old role"));
  if (_variables.contains(newRole))
    NBE_FAIL(QStringLiteral("newRole already exists"));
  _variables[newRole] = _variables.take(oldRole);
}

void NgdADataSet::replaceRoles(const QStringList &oldRoles, const QString &newRole)
{
  if (_variables.contains(newRole))
    NBE_FAIL(QStringLiteral("newRole '%1' already exists").arg(newRole));
  QList<NgdVariableDescriptor> descriptors;
  for (const QString &role : oldRoles)
    descriptors << _variables.take(role);
  if (!descriptors.isEmpty())
    _variables[newRole] = descriptors;
}

void NgdADataSet::replaceVariableRole(const QString &oldRole, int index, const QString &newRole)
{
  if (_opened)
    NBE_FAIL(QStringLiteral("cannot replace variable role while variables are opened."));
  const NgdVariableDescriptor descriptor = getDataDescriptor(oldRole, index);
  if (newRole == oldRole)
    return;
  _append(newRole, descriptor);
  _variables[oldRole].removeAt(index);
  if (_variables[oldRole].isEmpty())
    _variables.remove(oldRole);
}

QStringList NgdADataSet::getAllRoles() const
{
  return _variables.keys();
}

template <class Predicate>
bool NgdADataSet::_hasVariable(Predicate matches) const
{
  for (const QList<NgdVariableDescriptor> &descriptors : _variables) {
    for (const NgdVariableDescriptor &descriptor : descriptors) {
      if (matches(descriptor))
        return true;
    }
  }
  return false;
}

bool NgdADataSet::hasVariableId(const QString &id) const
{
  return _hasVariable(
      [&](const NgdVariableDescriptor &variable) { return variable.getProviderVarId() == id; });
}

bool NgdADataSet::hasVariableName(const QString &name) const
{
  return _hasVariable(
      [&](const NgdVariableDescriptor &variable) { return variable.getName() == name; });
}

bool NgdADataSet::hasVariablesWithRole(const QString &role) const
{
  return getRoleCount(role) > 0;
}

bool NgdADataSet::hasMacroVariables() const
{
  return _hasVariable([](const NgdVariableDescriptor &variable) { return variable.isMacro(); });
}

bool NgdADataSet::hasMacroVariablesWithRole(const QString &role) const
{
  for (const NgdVariableDescriptor &descriptor : _variables.value(role)) {
    if (descriptor.isMacro())
      return true;
  }
  return false;
}

int NgdADataSet::getNVariables() const
{
  int n = 0;
  for (const QList<NgdVariableDescriptor> &descriptors : _variables)
    n += descriptors.size();
  return n;
}

int NgdADataSet::getRoleCount(const QString &role) const
{
  return _variables.value(role).size();
}

QString NgdADataSet::getVariableName(const QString &role, int index) const
{
  return getDataDescriptor(role, index).getName();
}

QString NgdADataSet::getVariableId(const QString &role, int index) const
{
  return getDataDescriptor(role, index).getProviderVarId();
}

QString NgdADataSet::getVariableId(const QString &role, const QString &name) const
{
  for (const NgdVariableDescriptor &descriptor : _variables.value(role)) {
    if (descriptor.getName() == name)
      return descriptor.getProviderVarId();
  }
  return QString();
}

QStringList NgdADataSet::getVariableNames(const QString &role) const
{
  QStringList names;
  for (const NgdVariableDescriptor &descriptor : _variables.value(role))
    names << descriptor.getName();
  return names;
}

QStringList NgdADataSet::getVariableIds(const QString &role) const
{
  QStringList ids;
  for (const NgdVariableDescriptor &descriptor : _variables.value(role))
    ids << descriptor.getProviderVarId();
  return ids;
}

QList<NgdVariableDescriptor> NgdADataSet::getVariableDescriptors(const QString &role) const
{
  return _variables.value(role);
}

QList<NbdVariableDetails> NgdADataSet::getVariableDetails(const QString &role) const
{
  QList<NbdVariableDetails> details;
  for (const NgdVariableDescriptor &descriptor : _variables.value(role))
    details << descriptor.getDetails();
  return details;
}

int NgdADataSet::getNRealizationsWithRole(const QString &role) const
{
  const QList<NgdVariableDescriptor> descriptors = _variables.value(role);
  return descriptors.isEmpty() ? 0 : descriptors.first().getNRealizations();
}

NbdEnumCatalog NgdADataSet::getCatalog(const QString &role, int index) const
{
  return getDataDescriptor(role, index).getCatalog();
}

NgdVariableDescriptor NgdADataSet::getDataDescriptor(const QString &role, int index) const
{
  const auto descriptors = _variables.find(role);
  if (descriptors == _variables.end())
    NBE_FAIL(QStringLiteral("no role %1 in dataset").arg(role));
  if (index < 0 || index >= descriptors->size())
    NBE_FAIL(QStringLiteral("invalid rank = %1/%2 for role %3")
                 .arg(QString::number(index), QString::number(descriptors->size()), role));
  return descriptors->at(index);
}

NgdVariableDescriptor NgdADataSet::getDataDescriptorFromName(const QString &name) const
{
  for (const QList<NgdVariableDescriptor> &descriptors : _variables) {
    for (const NgdVariableDescriptor &descriptor : descriptors) {
      if (descriptor.getName() == name)
        return descriptor;
    }
  }
  NBE_FAIL(QStringLiteral("no variable named '%1' in dataset").arg(name));
}

void NgdADataSet::setDataDescriptor(const QString &role, int index,
                                    const NgdVariableDescriptor &descriptor)
{
  if (index < 0 || index >= getRoleCount(role))
    NBE_FAIL(QStringLiteral("invalid argument 'rank'."));
  _variables[role][index] = descriptor;
}

void NgdADataSet::setAccessType(const QString &role, Nbd::EAccessType access)
{
  const auto descriptors = _variables.find(role);
  if (descriptors == _variables.end())
    return;
  for (NgdVariableDescriptor &descriptor : *descriptors)
    descriptor.setAccessType(access);
}

void NgdADataSet::openAllVariables()
{
  NbpIProviderR &provider = _requireProvider();
  if (_opened)
    NBE_FAIL(QStringLiteral("called twice."));

  const QString selectionId = provider.getSelectionId();
  if (!selectionId.isEmpty())
    _openInProvider(_describe(selectionId, false));
  _sampleSizeBits = 0;
  for (const QList<NgdVariableDescriptor> &descriptors : qAsConst(_variables)) {
    for (const NgdVariableDescriptor &descriptor : descriptors)
      _openVariable(descriptor);
  }
  _opened = true;
}

void NgdADataSet::_openVariable(const NgdVariableDescriptor &descriptor)
{
  const bool hasNoStorage =
      descriptor.getVariableType() == Nbd::TYPE_RESERVED_64 && !descriptor.isMacro();
  if (!hasNoStorage && descriptor.getContext() != MEMORY_SELECTION_CONTEXT)
    _openInProvider(descriptor);
  _sampleSizeBits += descriptor.getBitLength();
}

void NgdADataSet::_openInProvider(const NgdVariableDescriptor &descriptor)
{
  const QString id = descriptor.getProviderVarId();
  if (!_provider->openVariable(id, descriptor.getAccessType())) {
    const QString text = accessError(descriptor, _provider->getLastError());
    _closeOpened();
    printDataSet("NgdADataSet::openAllVariables error: dataset is:", *this);
    NBE_FAIL(text);
  }
  _openedIds << id;
}

void NgdADataSet::closeAllVariables()
{
  _closeOpened();
  _opened = false;
}

void NgdADataSet::_closeOpened()
{
  for (const QString &id : qAsConst(_openedIds))
    _provider->closeVariable(id);
  _openedIds.clear();
}

void NgdADataSet::_createTempVariables(const QString &role)
{
  for (int index = 0; index < getRoleCount(role); ++index) {
    const NgdVariableDescriptor descriptor = _variables[role][index];
    if (isPending(descriptor) && descriptor.getAccessType() != Nbd::ACCESS_READ)
      _setTemporaryId(descriptor.getName(), _createTemporary(descriptor));
  }
}

QString NgdADataSet::_createTemporary(const NgdVariableDescriptor &descriptor)
{
  const QSharedPointer<NbpIProviderW> writer = getDataProviderW();
  const QString id =
      descriptor.isMacro()
          ? writer->createTemporaryMacro(descriptor.getName(), descriptor.getVariableType(),
                                         descriptor.getMacroIndexInfo(), descriptor.getDetails())
          : writer->createTemporaryVariable(descriptor.getName(), descriptor.getVariableType(),
                                            descriptor.getDetails());
  if (id.isEmpty())
    NBE_FAIL(accessError(descriptor, writer->getLastError()));
  (descriptor.isMacro() ? _temporaryMacros : _temporaryVariables) << id;
  return id;
}

void NgdADataSet::_setTemporaryId(const QString &name, const QString &id)
{
  for (QList<NgdVariableDescriptor> &descriptors : _variables) {
    for (NgdVariableDescriptor &descriptor : descriptors) {
      if (isPending(descriptor) && descriptor.getName() == name)
        descriptor.setProviderVarId(id);
    }
  }
}

void NgdADataSet::_createMissingMacroRealizations(const QString &role)
{
  for (const NgdVariableDescriptor &descriptor : _variables.value(role)) {
    if (!descriptor.isMacro() || descriptor.getAccessType() == Nbd::ACCESS_READ)
      continue;
    for (const NbdMacroIndex &index : descriptor.getIndices()) {
      const QString id = descriptor.getProviderVarId();
      if (!_requireProvider().getRealizationId(id, index).isEmpty())
        continue;
      const QSharedPointer<NbpIProviderW> writer = getDataProviderW();
      if (writer->createMacroRealization(id, index).isEmpty()) {
        const QString reason = writer->getLastError();
        printDataSet("NgdADataSet::createMacroRealizations error: dataset is:", *this);
        NBE_FAIL(QStringLiteral("Error when accessing macro variable with id '%1'.\nReason: %2.")
                     .arg(id, reason));
      }
    }
  }
}

void NgdADataSet::_deleteTmpVariables()
{
  // Part of the clean-up of a run: what cannot be deleted is left and told.
  const QSharedPointer<NbpIProviderW> writer = _provider.dynamicCast<NbpIProviderW>();
  for (const QString &id : qAsConst(_temporaryVariables)) {
    if (!writer || !writer->deleteVariable(id))
      NbbDebug::printWarning(QStringLiteral("Temporary variable '%1' is not deleted").arg(id));
  }
  for (const QString &id : qAsConst(_temporaryMacros)) {
    if (!writer || !writer->deleteMacro(id))
      NbbDebug::printWarning(QStringLiteral("Temporary macro '%1' is not deleted").arg(id));
  }
  for (QList<NgdVariableDescriptor> &descriptors : _variables) {
    for (NgdVariableDescriptor &descriptor : descriptors) {
      const QString id = descriptor.getProviderVarId();
      if (_temporaryVariables.contains(id) || _temporaryMacros.contains(id))
        descriptor.setProviderVarId(QString());
    }
  }
  _temporaryVariables.clear();
  _temporaryMacros.clear();
}

void NgdADataSet::createAllVariables(NbdAData &buffer, bool withCoordinates,
                                     bool withSampleNumber) const
{
  for (auto role = _variables.begin(); role != _variables.end(); ++role) {
    if ((Nbd::Role::isCoordinate(role.key()) && !withCoordinates) ||
        (Nbd::Role::isSN(role.key()) && !withSampleNumber))
      continue;
    for (const NgdVariableDescriptor &descriptor : role.value())
      _createVariables(role.key(), descriptor, buffer);
  }
}

void NgdADataSet::_createVariables(const QString &role, const NgdVariableDescriptor &descriptor,
                                   NbdAData &buffer) const
{
  NbdDataTable &table = buffer.getDataTable();
  const NbdMacroIndexInfo info = descriptor.getMacroIndexInfo();
  const QList<NbdMacroIndex> indices = NgdBufferColumns::getIndices(descriptor, buffer);
  Nbd::EVariableType type = descriptor.getVariableType();
  if (type == Nbd::TYPE_RESERVED_64 || type == Nbd::TYPE_RESERVED_128)
    return;
  if (type == Nbd::TYPE_MULTI_FLOAT && descriptor.isMacro() && !descriptor.isMultiByPiece()) {
    table.createVariableMulti(role, descriptor.getDetails(), indices, info);
    return;
  }

  // One realization of a multi-realization variable is a variable of floats.
  if (type == Nbd::TYPE_MULTI_FLOAT)
    type = Nbd::TYPE_FLOAT;
  for (const NbdMacroIndex &index : indices) {
    std::unique_ptr<NbdAVariable> variable =
        NbdVariableFactory::createVariable(type, descriptor.getDetails());
    if (type == Nbd::TYPE_ENUM)
      static_cast<NbdVariableEnum &>(*variable).setCatalog(descriptor.getCatalog());
    if (descriptor.isMacro())
      variable->setMacroIndex(info, index);
    table.addVariable(role, std::move(variable));
  }
}

void NgdADataSet::_requireOpened() const
{
  if (!_opened)
    NBE_FAIL(QStringLiteral("Method openAllVariables() should be called before."));
}

void NgdADataSet::_checkRanks(const NbiIntervalIntLargeDisjoint &ranks) const
{
  _requireOpened();
  if (getNSamples() == 0)
    NBE_FAIL(QStringLiteral("empty dataset."));
  if (ranks.isEmpty() || ranks.at(0).getLower() < 0 ||
      ranks.at(ranks.count() - 1).getUpper() >= getNSamples())
    NBE_FAIL(QStringLiteral("Invalid interval given"));
}

void NgdADataSet::_loadColumns(const NbdAData &buffer, const _Transfer &transfer) const
{
  for (const NgdBufferColumn &column :
       NgdBufferColumns::findLoaded(_variables, *_provider, buffer)) {
    column.variable->setCurrentRealizationRank(column.realization);
    if (!transfer(column.id, *column.variable))
      NBE_FAIL(accessError(column.name, column.id, _provider->getLastError()));
    column.variable->setCurrentRealizationRank(0);
  }
}

void NgdADataSet::_saveColumns(const NbdAData &buffer, const _Transfer &transfer) const
{
  for (const NgdBufferColumn &column :
       NgdBufferColumns::findSaved(_variables, *_provider, buffer)) {
    column.variable->setCurrentRealizationRank(column.realization);
    if (!transfer(column.id, *column.variable))
      NBE_FAIL(accessError(column.name, column.id, _provider->getLastError()));
    column.variable->setCurrentRealizationRank(0);
  }
}

void NgdADataSet::loadInBuffer(const NbiIntervalIntSmallO64 &ranks, NbdDataPoints &buffer) const
{
  const NbiIntervalIntLargeDisjoint interval({ranks.getLower(), ranks.getUpper()});
  _checkRanks(interval);
  _loadInBuffer(interval, buffer);
  buffer.setParentInterval(ranks);
}

void NgdADataSet::loadInBuffer(const NbiIntervalIntLargeDisjoint &ranks,
                               NbdDataPoints &buffer) const
{
  _checkRanks(ranks);
  _loadInBuffer(_tuneLoadInBufferInterval(ranks), buffer);
}

void NgdADataSet::_loadInBuffer(const NbiIntervalIntLargeDisjoint &ranks,
                                NbdDataPoints &buffer) const
{
  QVector<int> firsts(1, 0);
  for (int rank = 0; rank < ranks.count(); ++rank) {
    const qint64 next = firsts.last() + _provider->getSelectedSampleCount(ranks.at(rank));
    if (next > std::numeric_limits<int>::max())
      NBE_FAIL(QStringLiteral("Invalid interval given"));
    firsts << int(next);
  }

  buffer.setNDimensions(getNDimensions());
  buffer.setParentInterval(NbiIntervalIntSmallO64());
  buffer.setResizedTo(firsts.last());
  _loadColumns(buffer, [&](const QString &id, NbdAVariable &variable) {
    bool isRead = true;
    for (int rank = 0; isRead && rank < ranks.count(); ++rank)
      isRead = _provider->readVariable(id, ranks.at(rank), variable, firsts[rank]);
    return isRead;
  });
}

void NgdADataSet::loadInBufferFromCuboid(const NbgGeomCuboid &cuboid, NbdDataPoints &buffer) const
{
  if (isGrid() || isLine())
    NBE_FAIL(QStringLiteral("Available only for points dataset"));
  if (!_opened)
    NBE_FAIL(QStringLiteral("method openAllVariables should be called before"));

  const NbiIntervalIntLargeDisjoint inside = _findRanksInside(cuboid);
  _loadInBuffer(inside, buffer);
  for (const NbdAVariable *variable : buffer.getDataTableConst().getAllVars()) {
    if (variable->getNValues() != buffer.getNSamples())
      NBE_FAIL(
          QStringLiteral("after reading, all the variables do not have the same number of "
                         "values"));
  }
}

NbiIntervalIntLargeDisjoint NgdADataSet::_findRanksInside(const NbgGeomCuboid &cuboid) const
{
  const qint64 windowLength = 1 << 16;
  NbiIntervalIntLargeDisjoint inside;
  NbiIntervalIntLargeMoving window(NbiIntervalIntLarge::fromLength(getNSamples()), windowLength);
  NbdVariableDouble x, y, z;
  NbdVariableDouble *const coordinates[] = {&x, &y, &z};
  NbdVariableSelection selection;
  while (window.hasNext()) {
    const NbiIntervalIntLarge ranks = window.next();
    const int n = int(_provider->getSelectedSampleCount(ranks));
    for (NbdVariableDouble *coordinate : coordinates)
      coordinate->resizeAndFill(n);
    if (!_provider->readCoordinates(ranks, &x, &y, &z, 0) ||
        !_provider->readSelection(ranks, selection))
      NBE_FAIL(accessError(QStringLiteral("coordinates"), QString(), _provider->getLastError()));
    for (int axis = getNDimensions(); axis < 3; ++axis)
      coordinates[axis]->setAllValues(0.);

    const unsigned char *selected = selection.getArrayConst();
    for (int offset = 0, position = 0; offset < int(ranks.getLength()); ++offset) {
      if (!selected[offset])
        continue;
      const NbgVector3D point(x.getValueAsType(position), y.getValueAsType(position),
                              z.getValueAsType(position));
      const qint64 rank = ranks.getLower() + offset;
      if (cuboid.isIncluded(point))
        inside.merge(NbiIntervalIntLarge(rank, rank));
      ++position;
    }
  }
  return inside;
}

void NgdADataSet::loadAllPointsInBuffer(NbdDataPoints &buffer) const
{
  if (getNSamples() > std::numeric_limits<int>::max())
    NBE_FAIL(QStringLiteral("Too many data to load whole dataset"));
  loadInBuffer(NbiIntervalIntSmallO64::fromLength(int(getNSamples())), buffer);
}

void NgdADataSet::loadAllData(NbdDataPoints &buffer, bool withCoordinates,
                              bool withSampleNumber) const
{
  createAllVariables(buffer, withCoordinates, withSampleNumber);
  loadAllPointsInBuffer(buffer);
}

void NgdADataSet::saveFromBuffer(const NbiIntervalIntSmallO64 &ranks,
                                 const NbdDataPoints &buffer) const
{
  saveFromBufferDisjoint(NbiIntervalIntLargeDisjoint({ranks.getLower(), ranks.getUpper()}), buffer);
}

void NgdADataSet::saveFromBufferDisjoint(const NbiIntervalIntLargeDisjoint &ranks,
                                         const NbdDataPoints &buffer) const
{
  _checkRanks(ranks);
  if (getSelectedSampleCount(ranks) != buffer.getNSamples())
    NBE_FAIL(QStringLiteral("the interval selects %1 samples, the buffer holds %2")
                 .arg(getSelectedSampleCount(ranks))
                 .arg(buffer.getNSamples()));
  const QSharedPointer<NbpIProviderW> writer = getDataProviderW();
  _saveColumns(buffer, [&](const QString &id, NbdAVariable &variable) {
    int first = 0;
    for (int rank = 0; rank < ranks.count(); ++rank) {
      if (!writer->writeVariable(id, ranks.at(rank), variable, first))
        return false;
      first += int(_provider->getSelectedSampleCount(ranks.at(rank)));
    }
    return true;
  });
}

void NgdADataSet::patchFromBuffer(const NbdDataPoints &buffer) const
{
  const NbdVariableInt64 *sampleNumbers = buffer.getVariableSN();
  if (!sampleNumbers)
    NBE_FAIL(QStringLiteral("the buffer holds no sample numbers"));
  const QSharedPointer<NbpIProviderW> writer = getDataProviderW();
  _saveColumns(buffer, [&](const QString &id, NbdAVariable &variable) {
    return writer->patchVariable(id, *sampleNumbers, variable);
  });
}

qint64 NgdADataSet::getSelectedSampleCount(const NbiIntervalIntLargeDisjoint &ranks) const
{
  const NbpIProviderR &provider = _requireProvider();
  qint64 count = 0;
  for (int rank = 0; rank < ranks.count(); ++rank)
    count += provider.getSelectedSampleCount(ranks.at(rank));
  return count;
}

QString NgdADataSet::debug(int) const
{
  QStringList texts;
  for (auto role = _variables.begin(); role != _variables.end(); ++role) {
    for (const NgdVariableDescriptor &descriptor : role.value()) {
      const QString name = descriptor.getName(), id = descriptor.getProviderVarId();
      texts << (descriptor.isMacro()
                    ? QStringLiteral("%1{%2}/%3(%4)")
                          .arg(role.key(), QString::number(descriptor.getNRealizations()), name, id)
                    : QStringLiteral("%1/%2(%3)").arg(role.key(), name, id));
    }
  }
  return QStringLiteral("Nb Var : %1 [").arg(getNVariables()) + texts.join(' ') + ']';
}

void NgdADataSet::dumpVariable(const QString &role, int index, const QString &title, qint64 first,
                               int count) const
{
  const NgdVariableDescriptor descriptor = getDataDescriptor(role, index);
  NbbDebug::print(QStringLiteral("\n Starting Debug ****************************************"));
  NbbDebug::print(title);
  for (qint64 rank = first; rank < first + count && rank < getNSamples(); ++rank) {
    const auto values = _readValues(descriptor, NbiIntervalIntLarge(rank, rank));
    if (values->getNValues() > 0)
      NbbDebug::print(QStringLiteral("[%1] = %2").arg(rank).arg(valueText(*values, 0)));
  }
  NbbDebug::print(QStringLiteral("\n Ending Debug ******************************************"));
}

std::unique_ptr<NbdAVariable> NgdADataSet::_readValues(const NgdVariableDescriptor &descriptor,
                                                       const NbiIntervalIntLarge &ranks) const
{
  NbpIProviderR &provider = _requireProvider();
  QString id = descriptor.getProviderVarId();
  if (descriptor.isMacro() && descriptor.getNRealizations() > 0)
    id = provider.getRealizationId(id, descriptor.getIndices().first());
  const Nbd::EVariableType type = descriptor.getVariableType() == Nbd::TYPE_MULTI_FLOAT
                                      ? Nbd::TYPE_FLOAT
                                      : descriptor.getVariableType();

  auto values = NbdVariableFactory::createVariable(type, descriptor.getDetails());
  values->resizeAndFill(int(provider.getSelectedSampleCount(ranks)));
  if (!provider.openVariable(id, Nbd::ACCESS_READ))
    NBE_FAIL(accessError(descriptor, provider.getLastError()));
  const bool isRead = provider.readVariable(id, ranks, *values, 0);
  const QString reason = provider.getLastError();
  provider.closeVariable(id);
  if (!isRead)
    NBE_FAIL(accessError(descriptor, reason));
  return values;
}

void NgdADataSet::exportVariableToCSV(const QString &role, const QString &path, int index,
                                      bool withCoordinates) const
{
  const NgdVariableDescriptor descriptor = getDataDescriptor(role, index);
  const bool is3D = getNDimensions() == 3;
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly))
    throw NbeUserError(QObject::tr("Cannot write file '%1': %2.").arg(path, file.errorString()));

  const QString header = !withCoordinates ? QStringLiteral("%1\n")
                         : is3D           ? QStringLiteral("X,Y,Z,%1\n")
                                          : QStringLiteral("X,Y,%1\n");
  file.write(header.arg(descriptor.getName()).toUtf8());
  const qint64 windowLength = 1 << 16;
  NbiIntervalIntLargeMoving window(NbiIntervalIntLarge::fromLength(getNSamples()), windowLength);
  while (window.hasNext())
    file.write(_toCsvLines(descriptor, window.next(), withCoordinates, is3D));
  if (!file.commit())
    throw NbeUserError(QObject::tr("Cannot write file '%1': %2.").arg(path, file.errorString()));
}

QByteArray NgdADataSet::_toCsvLines(const NgdVariableDescriptor &descriptor,
                                    const NbiIntervalIntLarge &ranks, bool withCoordinates,
                                    bool is3D) const
{
  const auto values = _readValues(descriptor, ranks);
  const int n = values->getNValues();
  NbdVariableDouble x, y, z;
  for (NbdVariableDouble *coordinate : {&x, &y, &z})
    coordinate->resizeAndFill(n);
  if (withCoordinates && !_provider->readCoordinates(ranks, &x, &y, &z, 0))
    NBE_FAIL(accessError(QStringLiteral("coordinates"), QString(), _provider->getLastError()));

  QString lines;
  for (int position = 0; position < n; ++position) {
    const QString value = valueText(*values, position);
    const QString xText = valueText(x, position), yText = valueText(y, position);
    if (!withCoordinates)
      lines += value + '\n';
    else if (is3D)
      lines += QStringLiteral("%1,%2,%3,%4\n").arg(xText, yText, valueText(z, position), value);
    else
      lines += QStringLiteral("%1,%2,%3\n").arg(xText, yText, value);
  }
  return lines.toUtf8();
}
