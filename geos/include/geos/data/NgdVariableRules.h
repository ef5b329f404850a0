#pragma once

#include "basic/data/Nbd.h"
#include "basic/data/NbdMacroIndex.h"
#include "basic/data/NbdMacroIndexInfo.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

class NgdADataSet;
class NgdVariableDescriptor;

/// What a calculator declares of the variables it needs, by data set and role, and the checks and
/// preparations that follow from it before a run.
///
/// A value type: it owns none of the data sets that it points to.
class NgdVariableRules
{
public:
  void registerDataSet(const QString &id, NgdADataSet *dataSet);

  /// The role takes plain variables, macro variables, or either.
  void registerRole(const QString &id, const QString &role, Nbd::EAccessType access,
                    Nbd::EVariableType type);
  void registerRoleMacro(const QString &id, const QString &role, Nbd::EAccessType access,
                         Nbd::EVariableType type);
  void registerRoleVariableOrMacro(const QString &id, const QString &role, Nbd::EAccessType access,
                                   Nbd::EVariableType type);

  /// The role must hold min to max variables; max -1 is unbounded.
  void addRuleCount(const QString &id, const QString &role, int min, int max);

  /// Both roles must hold the same number of variables.
  void addRuleCountMatch(const QString &id1, const QString &role1, const QString &id2,
                         const QString &role2);

  void setRuleMacroIndexInfo(const QString &id, const QString &role, const NbdMacroIndexInfo &info);
  void setRuleMacroIndices(const QString &id, const QString &role,
                           const QList<NbdMacroIndex> &indices);

  /// The macro is processed one realization at a time, in a loop over its indices.
  void setRuleMacroByPiece(const QString &id, const QString &role, bool byPiece);

  /// The macro takes its indices from the reference role.
  void setLinkTo(const QString &id, const QString &role, const QString &refId,
                 const QString &refRole);

  bool isRegistered(const QString &id, const QString &role) const;

  /// Whether setLinkTo() was called for the role.
  bool isLinked(const QString &id, const QString &role) const;

  Nbd::ELoopPolicy getLoopPolicy() const;
  int getNIndicesForLoop() const;

  /// The common indices of all macros processed by piece, in loop order.
  const QList<NbdMacroIndex> &getIndicesForLoop() const { return _loopIndices; }

  /// Runs the checks of the pre-run sequence, without creating or opening anything.
  void checkConsistency();

  void openAllVariables();
  void closeAllVariables();
  void deleteTmpVariables();

private:
  friend class NgcACalculator;
  friend class NgdVariableRulesRun;  // the tests' calculator

  /// A data set and one of its variable roles.
  struct _DatasetRole
  {
    QString id;
    QString role;

    bool operator<(const _DatasetRole &other) const;
    bool operator==(const _DatasetRole &other) const;

    /// 'id/role', as messages show it.
    QString toString() const;
  };

  struct _Count
  {
    int min = 0;
    int max = -1;
  };

  enum _Kind { KIND_VARIABLE = 1, KIND_MACRO = 2, KIND_EITHER = 3 };

  // The pre-run sequence, in the calculator's order.
  void _checkRoles() const;
  void _createTmpVariables();
  void _updateVariableInfos();
  void _updateMacroInfos();
  void _createMissingMacroRealizations();

  void _checkRegister(const _DatasetRole &key, const QString &context) const;
  void _checkCount(const _DatasetRole &key) const;
  void _checkCountMatch(const _DatasetRole &key) const;
  void _checkKind(const _DatasetRole &key) const;

  /// Declared as a macro, or as either with a macro bound to it.
  bool _isDeclaredMacro(const _DatasetRole &key) const;
  void _checkMacroRule(const _DatasetRole &key, const char *notMacro, const char *linked) const;
  void _checkMacroIndexInfo(const _DatasetRole &key) const;
  void _checkMacroIndices(const _DatasetRole &key) const;
  void _updateRefMacroIndices();
  void _updateRefMacroByPiece();
  void _updateLinkedMacroInfos();
  void _updateLinkedOf(const _DatasetRole &reference,
                       const QMap<_DatasetRole, QList<_DatasetRole>> &linkedOf);
  void _checkLink(const _DatasetRole &key, const _DatasetRole &reference) const;
  void _checkLinkCycle(const _DatasetRole &start) const;

  /// A macro of the reference role, all of which have the same indices.
  NgdVariableDescriptor _getCommonMacro(const _DatasetRole &reference) const;

  /// The kind of indices that rules or links give to the role's macros; false when none does.
  bool _findIndexInfo(_DatasetRole key, NbdMacroIndexInfo &info) const;
  void _resetMacroDescriptors();
  void _buildIndicesLoopOnce();
  QMap<_DatasetRole, QList<_DatasetRole>> _getMacroLinksMap() const;
  bool _hasMacroByPiece() const;

  /// action(data set, key) for every registered role that holds a variable.
  template <class Action>
  void _forEachBoundRole(Action action) const;

  void _register(const _DatasetRole &key, Nbd::EAccessType access, Nbd::EVariableType type,
                 _Kind kind);

  QMap<QString, NgdADataSet *> _dataSets;
  QMap<QString, QStringList> _roles;
  QMap<_DatasetRole, _Count> _counts;
  QMap<_DatasetRole, _DatasetRole> _countMatches;
  QMap<_DatasetRole, Nbd::EAccessType> _accesses;
  QMap<_DatasetRole, Nbd::EVariableType> _types;
  QMap<_DatasetRole, _Kind> _kinds;
  QMap<_DatasetRole, QList<NbdMacroIndex>> _macroIndices;
  QMap<_DatasetRole, NbdMacroIndexInfo> _macroIndexInfos;
  QMap<_DatasetRole, bool> _macroByPieces;
  QMap<_DatasetRole, _DatasetRole> _links;
  QList<NbdMacroIndex> _loopIndices;
};
