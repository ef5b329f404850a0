#include "geos/data/NgdVariableRules.h"

#include "basic/base/NbbDebug.h"
#include "basic/error/NbeAssertion.h"
#include "basic/provider/NbpIProviderR.h"
#include "geos/data/NgdADataSet.h"
#include "geos/data/NgdVariableDescriptor.h"

namespace {

void checkValid(const QString &id, const QString &role)
{
  if (id.isEmpty())
    NBE_FAIL(QStringLiteral("Dataset id '") + id + QStringLiteral("' is invalid"));
  if (role.isEmpty())
    NBE_FAIL(QStringLiteral("Role '") + role + QStringLiteral("' is invalid"));
}

void printDataSet(const char *title, const NgdADataSet &dataSet)
{
  NbbDebug::printError(QLatin1String(title));
  NbbDebug::printError(dataSet.debug(0));
}

bool containsAll(const QList<NbdMacroIndex> &indices, const QList<NbdMacroIndex> &wanted)
{
  for (const NbdMacroIndex &index : wanted) {
    if (!indices.contains(index))
      return false;
  }
  return true;
}

/// Realizations that a write-only or read-write macro lacks are created; one that is only read must
/// have them.
bool mustHaveRealizations(const NgdVariableDescriptor &descriptor)
{
  return descriptor.getAccessType() == Nbd::ACCESS_READ && !descriptor.isTemporary();
}

/// Calls action(descriptor) for every macro of a role and stores what it changed.
template <class Action>
void updateMacros(NgdADataSet &dataSet, const QString &role, Action action)
{
  for (int index = 0; index < dataSet.getRoleCount(role); ++index) {
    NgdVariableDescriptor descriptor = dataSet.getDataDescriptor(role, index);
    if (descriptor.isMacro()) {
      action(descriptor);
      dataSet.setDataDescriptor(role, index, descriptor);
    }
  }
}

QList<NgdVariableDescriptor> macrosOf(const NgdADataSet &dataSet, const QString &role)
{
  QList<NgdVariableDescriptor> macros;
  for (const NgdVariableDescriptor &descriptor : dataSet.getVariableDescriptors(role)) {
    if (descriptor.isMacro())
      macros << descriptor;
  }
  return macros;
}

}  // namespace

bool NgdVariableRules::_DatasetRole::operator<(const _DatasetRole &other) const
{
  return id != other.id ? id < other.id : role < other.role;
}

bool NgdVariableRules::_DatasetRole::operator==(const _DatasetRole &other) const
{
  return id == other.id && role == other.role;
}

QString NgdVariableRules::_DatasetRole::toString() const
{
  return QStringLiteral("'%1/%2'").arg(id, role);
}

void NgdVariableRules::registerDataSet(const QString &id, NgdADataSet *dataSet)
{
  checkValid(id, QStringLiteral("DUMMY_ROLE"));
  if (!dataSet)
    NBE_FAIL(QStringLiteral("Can't register null dataset with id '") + id + QStringLiteral("'"));
  _dataSets[id] = dataSet;
}

void NgdVariableRules::registerRole(const QString &id, const QString &role, Nbd::EAccessType access,
                                    Nbd::EVariableType type)
{
  _register({id, role}, access, type, KIND_VARIABLE);
}

void NgdVariableRules::registerRoleMacro(const QString &id, const QString &role,
                                         Nbd::EAccessType access, Nbd::EVariableType type)
{
  _register({id, role}, access, type, KIND_MACRO);
}

void NgdVariableRules::registerRoleVariableOrMacro(const QString &id, const QString &role,
                                                   Nbd::EAccessType access, Nbd::EVariableType type)
{
  _register({id, role}, access, type, KIND_EITHER);
}

void NgdVariableRules::_register(const _DatasetRole &key, Nbd::EAccessType access,
                                 Nbd::EVariableType type, _Kind kind)
{
  checkValid(key.id, key.role);
  QStringList &roles = _roles[key.id];
  if (!roles.contains(key.role))
    roles << key.role;
  _accesses[key] = access;
  _types[key] = type;
  _kinds[key] = kind;
}

void NgdVariableRules::_checkRegister(const _DatasetRole &key, const QString &context) const
{
  checkValid(key.id, key.role);
  if (!_roles.value(key.id).contains(key.role))
    NBE_FAIL(QStringLiteral("Role ") + key.toString() +
             QStringLiteral(" should be registered before ") + context);
}

void NgdVariableRules::addRuleCount(const QString &id, const QString &role, int min, int max)
{
  const _DatasetRole key{id, role};
  _checkRegister(key, QStringLiteral("adding cardinality rules"));
  if (max >= 0 && max < min)
    NBE_FAIL(QStringLiteral("Incompatible cardinality rules for role ") + key.toString() +
             QStringLiteral(": minimum was %1 while maximum was %2").arg(min).arg(max));
  _counts[key] = _Count{min, max};
}

void NgdVariableRules::addRuleCountMatch(const QString &id1, const QString &role1,
                                         const QString &id2, const QString &role2)
{
  const _DatasetRole key{id1, role1}, reference{id2, role2};
  _checkRegister(key, QStringLiteral("adding cardinality rules"));
  _checkRegister(reference, QStringLiteral("adding cardinality rules"));
  _countMatches[key] = reference;
}

void NgdVariableRules::setRuleMacroIndexInfo(const QString &id, const QString &role,
                                             const NbdMacroIndexInfo &info)
{
  const _DatasetRole key{id, role};
  _checkRegister(key, QStringLiteral("adding macro index info rule"));
  if (_macroIndexInfos.contains(key))
    NBE_FAIL(QStringLiteral("Role ") + key.toString() +
             QStringLiteral(" have already defined macro index info rule"));
  _macroIndexInfos[key] = info;
}

void NgdVariableRules::setRuleMacroIndices(const QString &id, const QString &role,
                                           const QList<NbdMacroIndex> &indices)
{
  const _DatasetRole key{id, role};
  _checkRegister(key, QStringLiteral("adding macro indices rule"));
  if (_macroIndices.contains(key))
    NBE_FAIL(QStringLiteral("Role ") + key.toString() +
             QStringLiteral(" have already defined macro indices rule"));
  _macroIndices[key] = indices;
}

void NgdVariableRules::setRuleMacroByPiece(const QString &id, const QString &role, bool byPiece)
{
  const _DatasetRole key{id, role};
  _checkRegister(key, QStringLiteral("adding macro by piece rule"));
  if (_macroByPieces.contains(key))
    NBE_FAIL(QStringLiteral("Role ") + key.toString() +
             QStringLiteral(" have already defined macro by piece rule"));
  _macroByPieces[key] = byPiece;
}

void NgdVariableRules::setLinkTo(const QString &id, const QString &role, const QString &refId,
                                 const QString &refRole)
{
  const _DatasetRole key{id, role};
  _checkRegister(key, QStringLiteral("adding link rule"));
  if (_links.contains(key))
    NBE_FAIL(QStringLiteral("Role ") + key.toString() + QStringLiteral(" have already a link"));
  _links[key] = _DatasetRole{refId, refRole};
}

bool NgdVariableRules::isRegistered(const QString &id, const QString &role) const
{
  return _roles.value(id).contains(role);
}

bool NgdVariableRules::isLinked(const QString &id, const QString &role) const
{
  return _links.contains(_DatasetRole{id, role});
}

Nbd::ELoopPolicy NgdVariableRules::getLoopPolicy() const
{
  return _hasMacroByPiece() ? Nbd::LOOP_ON_INDICES : Nbd::LOOP_NONE;
}

bool NgdVariableRules::_hasMacroByPiece() const
{
  return _macroByPieces.values().contains(true);
}

int NgdVariableRules::getNIndicesForLoop() const
{
  if (_loopIndices.isEmpty())
    NBE_FAIL(QStringLiteral("no valid indices"));
  return _loopIndices.size();
}

void NgdVariableRules::checkConsistency()
{
  _checkRoles();
  _updateVariableInfos();
  _updateMacroInfos();
}

void NgdVariableRules::openAllVariables()
{
  for (NgdADataSet *dataSet : qAsConst(_dataSets))
    dataSet->openAllVariables();
}

void NgdVariableRules::closeAllVariables()
{
  for (NgdADataSet *dataSet : qAsConst(_dataSets))
    dataSet->closeAllVariables();
}

void NgdVariableRules::deleteTmpVariables()
{
  for (NgdADataSet *dataSet : qAsConst(_dataSets))
    dataSet->_deleteTmpVariables();
}

void NgdVariableRules::_checkRoles() const
{
  for (auto roles = _roles.begin(); roles != _roles.end(); ++roles) {
    if (!_dataSets.contains(roles.key()))
      NBE_FAIL(QStringLiteral("The dataset '") + roles.key() +
               QStringLiteral("' is referenced but not defined."));
    for (const QString &role : roles.value()) {
      const _DatasetRole key{roles.key(), role};
      _checkCount(key);
      _checkCountMatch(key);
      _checkKind(key);
    }
  }
}

void NgdVariableRules::_checkCount(const _DatasetRole &key) const
{
  const auto rule = _counts.find(key);
  const NgdADataSet &dataSet = *_dataSets[key.id];
  const int n = dataSet.getRoleCount(key.role);
  if (rule == _counts.end() || (n >= rule->min && (rule->max == -1 || n <= rule->max)))
    return;
  printDataSet("NgdVariableRules::_checkRoles error: dataset is:", dataSet);
  NBE_FAIL(QStringLiteral("In the dataset '%1' the number of variables associated to role '%2' is "
                          "invalid.\n"
                          "Number of variables = %3\n"
                          "Expected number = [%4,%5]")
               .arg(key.id, key.role, QString::number(n), QString::number(rule->min),
                    rule->max == -1 ? QStringLiteral("INF") : QString::number(rule->max)));
}

void NgdVariableRules::_checkCountMatch(const _DatasetRole &key) const
{
  const auto rule = _countMatches.find(key);
  if (rule == _countMatches.end())
    return;
  if (!_dataSets.contains(rule->id))
    NBE_FAIL(QStringLiteral("An invalid reference has been found for the rule 'MustMatch'\n"
                            "The missing referenced dataset is '%1'")
                 .arg(rule->id));

  const NgdADataSet &reference = *_dataSets[rule->id];
  if (_dataSets[key.id]->getRoleCount(key.role) == reference.getRoleCount(rule->role))
    return;
  printDataSet("NgdVariableRules::_checkRoles error: dataset_ref is:", reference);
  NBE_FAIL(QStringLiteral("In the dataset '%1' the number of variables with role '%2' is not equal "
                          "to the number of variable with role %3 in the dataset '%4'")
               .arg(key.id, key.role, rule->role, rule->id));
}

void NgdVariableRules::_checkKind(const _DatasetRole &key) const
{
  const _Kind kind = _kinds[key];
  const NgdADataSet &dataSet = *_dataSets[key.id];
  if (kind == KIND_EITHER)
    return;
  for (const NgdVariableDescriptor &descriptor : dataSet.getVariableDescriptors(key.role)) {
    if (descriptor.isMacro() == (kind == KIND_MACRO))
      continue;
    printDataSet("NgdVariableRules::_checkRoles error: dataset is:", dataSet);
    NBE_FAIL(QStringLiteral(" In the dataset '%1' Variable of invalid type assigned to role '%2'. "
                            "Expected type: %3")
                 .arg(key.id, key.role,
                      kind == KIND_MACRO ? QStringLiteral("macro-variable")
                                         : QStringLiteral("variable")));
  }
}

template <class Action>
void NgdVariableRules::_forEachBoundRole(Action action) const
{
  for (auto dataSet = _dataSets.begin(); dataSet != _dataSets.end(); ++dataSet) {
    for (const QString &role : _roles.value(dataSet.key())) {
      if ((*dataSet)->hasVariablesWithRole(role))
        action(**dataSet, _DatasetRole{dataSet.key(), role});
    }
  }
}

void NgdVariableRules::_createTmpVariables()
{
  _forEachBoundRole([this](NgdADataSet &dataSet, const _DatasetRole &key) {
    // A macro is created with the kind of indices that it will receive.
    updateMacros(dataSet, key.role, [&](NgdVariableDescriptor &macro) {
      NbdMacroIndexInfo info = macro.getMacroIndexInfo();
      const bool isPending = macro.isTemporary() && macro.getProviderVarId().isEmpty();
      if (isPending && _findIndexInfo(key, info))
        macro.setIndices(info, {});
    });
    dataSet._createTempVariables(key.role);
  });
}

bool NgdVariableRules::_findIndexInfo(_DatasetRole key, NbdMacroIndexInfo &info) const
{
  for (int step = 0; step <= _links.size() && _links.contains(key); ++step)
    key = _links[key];
  if (_macroIndexInfos.contains(key)) {
    info = _macroIndexInfos[key];
    return true;
  }
  const NgdADataSet *dataSet = _dataSets.value(key.id);
  const QList<NgdVariableDescriptor> macros =
      dataSet ? macrosOf(*dataSet, key.role) : QList<NgdVariableDescriptor>();
  if (macros.isEmpty())
    return false;
  info = macros.first().getMacroIndexInfo();
  return true;
}

void NgdVariableRules::_updateVariableInfos()
{
  _forEachBoundRole([this](NgdADataSet &dataSet, const _DatasetRole &key) {
    for (int index = 0; index < dataSet.getRoleCount(key.role); ++index) {
      NgdVariableDescriptor descriptor = dataSet.getDataDescriptor(key.role, index);
      descriptor.setAccessType(_accesses[key]);
      if (_types[key] != Nbd::TYPE_NONE)
        descriptor.setVariableType(_types[key]);
      dataSet.setDataDescriptor(key.role, index, descriptor);
    }
  });
}

void NgdVariableRules::_updateMacroInfos()
{
  _resetMacroDescriptors();
  for (const _DatasetRole &key : _macroIndexInfos.keys()) {
    _checkMacroRule(key, " has macro info rule but has not been declared as a macro",
                    " is linked and should not have macro index info rule");
    _checkMacroIndexInfo(key);
  }
  for (const _DatasetRole &key : _macroIndices.keys()) {
    _checkMacroRule(key, " has macro indices rule but has not been declared as a macro",
                    " is linked and should not have macro indices rule");
    _checkMacroIndices(key);
  }
  for (const _DatasetRole &key : _macroByPieces.keys())
    _checkMacroRule(key, " has macro by piece rule but has not been declared as a macro",
                    " is linked and should not have macro by piece rule");

  _updateRefMacroIndices();
  _updateRefMacroByPiece();
  _updateLinkedMacroInfos();
  _loopIndices.clear();
  if (_hasMacroByPiece())
    _buildIndicesLoopOnce();
}

bool NgdVariableRules::_isDeclaredMacro(const _DatasetRole &key) const
{
  const NgdADataSet *dataSet = _dataSets.value(key.id);
  const _Kind kind = _kinds.value(key, KIND_VARIABLE);
  return kind == KIND_MACRO ||
         (kind == KIND_EITHER && dataSet && dataSet->hasMacroVariablesWithRole(key.role));
}

void NgdVariableRules::_checkMacroRule(const _DatasetRole &key, const char *notMacro,
                                       const char *linked) const
{
  if (!_isDeclaredMacro(key))
    NBE_FAIL(QStringLiteral("Role ") + key.toString() + QLatin1String(notMacro));
  if (_links.contains(key))
    NBE_FAIL(QStringLiteral("Role ") + key.toString() + QLatin1String(linked));
}

void NgdVariableRules::_resetMacroDescriptors()
{
  _forEachBoundRole([](NgdADataSet &dataSet, const _DatasetRole &key) {
    const QSharedPointer<NbpIProviderR> provider = dataSet.getDataProvider();
    updateMacros(dataSet, key.role, [&](NgdVariableDescriptor &macro) {
      NbdMacroIndexInfo info;
      QList<NbdMacroIndex> indices;
      macro.setMultiByPiece(false);
      if (provider && provider->getMacroIndexInfo(macro.getProviderVarId(), info) &&
          provider->getMacroIndices(macro.getProviderVarId(), indices))
        macro.setIndices(info, indices);
    });
  });
}

void NgdVariableRules::_checkMacroIndexInfo(const _DatasetRole &key) const
{
  const NgdADataSet *dataSet = _dataSets.value(key.id);
  if (!dataSet)
    return;
  for (const NgdVariableDescriptor &macro : macrosOf(*dataSet, key.role)) {
    if (!(macro.getMacroIndexInfo() == _macroIndexInfos[key]))
      NBE_FAIL(QStringLiteral("Wrong macro index info for macro '%1' for role %2")
                   .arg(macro.getName(), key.toString()));
  }
}

void NgdVariableRules::_checkMacroIndices(const _DatasetRole &key) const
{
  const NgdADataSet *dataSet = _dataSets.value(key.id);
  if (!dataSet)
    return;
  for (const NgdVariableDescriptor &macro : macrosOf(*dataSet, key.role)) {
    if (mustHaveRealizations(macro) && !containsAll(macro.getIndices(), _macroIndices[key]))
      NBE_FAIL(QStringLiteral("Wrong list of macro indices for macro '%1' for role %2")
                   .arg(macro.getName(), key.toString()));
  }
}

void NgdVariableRules::_updateRefMacroIndices()
{
  _forEachBoundRole([this](NgdADataSet &dataSet, const _DatasetRole &key) {
    if (!_macroIndexInfos.contains(key) && !_macroIndices.contains(key))
      return;
    updateMacros(dataSet, key.role, [&](NgdVariableDescriptor &macro) {
      macro.setIndices(_macroIndexInfos.value(key, macro.getMacroIndexInfo()),
                       _macroIndices.value(key, macro.getIndices()));
    });
  });
}

void NgdVariableRules::_updateRefMacroByPiece()
{
  _forEachBoundRole([this](NgdADataSet &dataSet, const _DatasetRole &key) {
    const bool byPiece = _macroByPieces.value(key, false);
    updateMacros(dataSet, key.role,
                 [&](NgdVariableDescriptor &macro) { macro.setMultiByPiece(byPiece); });
  });
}

QMap<NgdVariableRules::_DatasetRole, QList<NgdVariableRules::_DatasetRole>>
NgdVariableRules::_getMacroLinksMap() const
{
  QMap<_DatasetRole, QList<_DatasetRole>> linkedOf;
  for (auto link = _links.begin(); link != _links.end(); ++link) {
    _checkLinkCycle(link.key());
    // A role that takes plain variables or macros and holds no macro has nothing to be linked.
    if (_kinds.value(link.key()) == KIND_EITHER && !_isDeclaredMacro(link.key()))
      continue;
    _checkLink(link.key(), link.value());
    linkedOf[link.value()] << link.key();
  }
  return linkedOf;
}

void NgdVariableRules::_checkLink(const _DatasetRole &key, const _DatasetRole &reference) const
{
  const NgdADataSet *dataSet = _dataSets.value(reference.id);
  if (!_isDeclaredMacro(key))
    NBE_FAIL(QStringLiteral("Linked role %1 has not been declared as a macro").arg(key.toString()));
  if (!dataSet || !dataSet->hasVariablesWithRole(reference.role))
    NBE_FAIL(QStringLiteral("Reference role %1 is not available in the dataset '%2' while being "
                            "used as a reference for a macro link")
                 .arg(reference.toString(), reference.id));
  if (!_isDeclaredMacro(reference))
    NBE_FAIL(QStringLiteral("Reference role %1 has not been declared as a macro")
                 .arg(reference.toString()));
}

void NgdVariableRules::_checkLinkCycle(const _DatasetRole &start) const
{
  // A start that leads into a cycle without being part of it never comes back to itself.
  _DatasetRole key = start;
  for (int step = 0; step < _links.size() && _links.contains(key); ++step) {
    const _DatasetRole next = _links[key];
    if (next == start)
      NBE_FAIL(QStringLiteral("Detected a cycle between role %1 and %2")
                   .arg(start.toString(), key.toString()));
    key = next;
  }
}

void NgdVariableRules::_updateLinkedMacroInfos()
{
  const QMap<_DatasetRole, QList<_DatasetRole>> linkedOf = _getMacroLinksMap();
  // References that are not linked themselves come first; the others when theirs is done.
  for (auto reference = linkedOf.begin(); reference != linkedOf.end(); ++reference) {
    if (!_links.contains(reference.key()))
      _updateLinkedOf(reference.key(), linkedOf);
  }
}

void NgdVariableRules::_updateLinkedOf(const _DatasetRole &reference,
                                       const QMap<_DatasetRole, QList<_DatasetRole>> &linkedOf)
{
  const QList<_DatasetRole> linked = linkedOf.value(reference);
  if (linked.isEmpty())
    return;
  const NgdVariableDescriptor model = _getCommonMacro(reference);
  for (const _DatasetRole &key : linked) {
    updateMacros(*_dataSets[key.id], key.role, [&](NgdVariableDescriptor &macro) {
      if (mustHaveRealizations(macro) && !containsAll(macro.getIndices(), model.getIndices()))
        NBE_FAIL(QStringLiteral("Missing indices for macro '%1' for linked role %2")
                     .arg(macro.getName(), key.toString()));
      macro.setIndices(model.getMacroIndexInfo(), model.getIndices());
      macro.setMultiByPiece(model.isMultiByPiece());
    });
    _updateLinkedOf(key, linkedOf);
  }
}

NgdVariableDescriptor NgdVariableRules::_getCommonMacro(const _DatasetRole &reference) const
{
  const QList<NgdVariableDescriptor> macros = macrosOf(*_dataSets[reference.id], reference.role);
  for (const NgdVariableDescriptor &macro : macros) {
    if (!(macro.getIndices() == macros.first().getIndices()))
      NBE_FAIL(QStringLiteral("Role %1 is used as reference but not all macros have same macro "
                              "indices")
                   .arg(reference.toString()));
    if (!(macro.getMacroIndexInfo() == macros.first().getMacroIndexInfo()))
      NBE_FAIL(QStringLiteral("Role %1 is used as reference but not all macros have same macro "
                              "index info")
                   .arg(reference.toString()));
  }
  return macros.first();
}

void NgdVariableRules::_buildIndicesLoopOnce()
{
  bool isFirst = true;
  _forEachBoundRole([&](NgdADataSet &dataSet, const _DatasetRole &key) {
    for (const NgdVariableDescriptor &macro : macrosOf(dataSet, key.role)) {
      if (!macro.isMultiByPiece())
        continue;
      if (isFirst)
        _loopIndices = macro.getIndices();
      for (int rank = _loopIndices.size() - 1; rank >= 0; --rank) {
        if (!macro.getIndices().contains(_loopIndices[rank]))
          _loopIndices.removeAt(rank);
      }
      isFirst = false;
    }
  });
  if (_loopIndices.isEmpty())
    NBE_FAIL(QStringLiteral("There are no common indices in your multi-realization variables."));

  _forEachBoundRole([&](NgdADataSet &dataSet, const _DatasetRole &key) {
    updateMacros(dataSet, key.role, [&](NgdVariableDescriptor &macro) {
      if (macro.isMultiByPiece())
        macro.setIndices(macro.getMacroIndexInfo(), _loopIndices);
    });
  });
}

void NgdVariableRules::_createMissingMacroRealizations()
{
  _forEachBoundRole([](NgdADataSet &dataSet, const _DatasetRole &key) {
    dataSet._createMissingMacroRealizations(key.role);
  });
}
