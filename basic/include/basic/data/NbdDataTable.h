#pragma once

#include "basic/base/NbbASerializable.h"
#include "basic/base/NbbIDebuggable.h"
#include "basic/data/Nbd.h"
#include "basic/data/NbdVariableDetails.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>
#include <vector>

class NbdAVariable;
class NbdAVariableNumeric;
class NbdEVarRole;
class NbdMacroIndex;
class NbdMacroIndexInfo;
class NbdVariableAlpha;
class NbdVariableDouble;
class NbdVariableEnum;
class NbdVariableFloat;
class NbdVariableInt32;
class NbdVariableInt64;
class NbdVariableMulti;
class NbdVariableSelection;

/// Samples in rows and variables in columns. A column is a variable and the role that it plays; the
/// index of a column within its role counts the columns of that role in table order. Coordinates
/// are the double variables of the roles X, Y and Z.
///
/// A value: copies are independent (their columns share memory until written). Const protects the
/// columns, not their values: lookups are const and return writable variables that belong to the
/// table.
///
/// Lookups return null when there is no such column or its variable is of another class; those
/// whose name ends in Ref throw an NbeProgrammingError that names role and index.
///
/// All columns have one value per sample. Who changes the length of a single variable calls
/// adjustNSamples() afterwards.
class NbdDataTable : public NbbASerializable, public NbbIDebuggable
{
public:
  NbdDataTable();
  NbdDataTable(const NbdDataTable &other);
  NbdDataTable(NbdDataTable &&other) noexcept;
  NbdDataTable &operator=(const NbdDataTable &other);
  NbdDataTable &operator=(NbdDataTable &&other) noexcept;
  ~NbdDataTable() override;

  /// The variables of `other`, with `nSamples` new values each.
  void initFromTable(const NbdDataTable &other, int nSamples = 0);
  /// Every value becomes that of a new sample.
  void initialize();

  // Lookup by role and index within the role.

  NbdAVariable *getVar(const QString &role, int index = 0) const;
  /// Enumerated variables too: their codes.
  NbdAVariableNumeric *getVarNumeric(const QString &role, int index = 0) const;
  NbdVariableDouble *getVarDouble(const QString &role, int index = 0) const;
  NbdVariableFloat *getVarFloat(const QString &role, int index = 0) const;
  NbdVariableInt32 *getVarInt32(const QString &role, int index = 0) const;
  NbdVariableInt64 *getVarInt64(const QString &role, int index = 0) const;
  NbdVariableAlpha *getVarAlpha(const QString &role, int index = 0) const;
  NbdVariableEnum *getVarEnum(const QString &role, int index = 0) const;
  NbdVariableMulti *getVarMulti(const QString &role, int index = 0) const;
  NbdVariableSelection *getVarSelection(const QString &role, int index = 0) const;

  NbdAVariable &getVarRef(const QString &role, int index = 0) const;
  NbdAVariableNumeric &getVarNumericRef(const QString &role, int index = 0) const;
  NbdVariableDouble &getVarDoubleRef(const QString &role, int index = 0) const;
  NbdVariableFloat &getVarFloatRef(const QString &role, int index = 0) const;
  NbdVariableInt32 &getVarInt32Ref(const QString &role, int index = 0) const;
  NbdVariableInt64 &getVarInt64Ref(const QString &role, int index = 0) const;
  NbdVariableAlpha &getVarAlphaRef(const QString &role, int index = 0) const;
  NbdVariableEnum &getVarEnumRef(const QString &role, int index = 0) const;
  NbdVariableMulti &getVarMultiRef(const QString &role, int index = 0) const;
  NbdVariableSelection &getVarSelectionRef(const QString &role, int index = 0) const;

  /// All variables of a role, in order of index; those of other classes are left out.
  QList<NbdAVariable *> getVars(const QString &role) const;
  QList<NbdAVariableNumeric *> getVarsNumeric(const QString &role) const;
  QList<NbdVariableDouble *> getVarsDouble(const QString &role) const;
  QList<NbdVariableFloat *> getVarsFloat(const QString &role) const;
  QList<NbdVariableInt32 *> getVarsInt32(const QString &role) const;
  QList<NbdVariableInt64 *> getVarsInt64(const QString &role) const;
  QList<NbdVariableAlpha *> getVarsAlpha(const QString &role) const;
  QList<NbdVariableEnum *> getVarsEnum(const QString &role) const;
  QList<NbdVariableMulti *> getVarsMulti(const QString &role) const;
  QList<NbdVariableSelection *> getVarsSelection(const QString &role) const;

  /// The coordinates; null when the table has none.
  NbdVariableDouble *getX() const;
  NbdVariableDouble *getY() const;
  NbdVariableDouble *getZ() const;

  // Other lookups: the first such column in table order.

  NbdAVariable *getVarByName(const QString &name) const;
  NbdAVariableNumeric *getVarNumericByName(const QString &name) const;
  NbdAVariable *getVarByRoleAndName(const QString &role, const QString &name) const;
  NbdAVariableNumeric *getVarNumericByRoleAndName(const QString &role, const QString &name) const;
  /// The realization of a macro variable that is held as one variable per realization.
  NbdAVariable *getVarByMacroIndex(const QString &role, const QString &name,
                                   const NbdMacroIndex &index) const;
  NbdAVariableNumeric *getVarNumericByStructuralRole(const NbdEVarRole &role) const;
  NbdVariableInt64 *getVarInt64ByStructuralRole(const NbdEVarRole &role) const;

  /// Columns by their rank in the table; null (empty) outside 0 .. getNVariables() - 1.
  NbdAVariable *getVarByRank(int rank) const;
  QString getRoleByRank(int rank) const;
  /// Rank in the table of a column; -1 when there is none.
  int getAbsoluteRank(const QString &role, int index) const;

  QList<NbdAVariable *> getAllVars() const;
  /// The role of every column, in table order.
  QStringList getAllRoles() const;
  /// The roles that occur, in text order.
  QStringList getUniqueRoles() const;
  int getRoleCount(const QString &role) const { return _ranksByRole.value(role).size(); }
  bool hasRole(const QString &role) const { return _ranksByRole.contains(role); }

  int getNVariables() const { return int(_columns.size()); }
  int getNSamples() const { return _nSamples; }

  // Columns.

  /// New columns with the values of new samples: undefined, true in a selection.
  NbdAVariable *createVariableSimple(const QString &role, Nbd::EVariableType type,
                                     const NbdVariableDetails &details = NbdVariableDetails());
  NbdAVariableNumeric *createVariableNumeric(
      const QString &role, const NbdVariableDetails &details = NbdVariableDetails(),
      Nbd::EVariableType type = Nbd::TYPE_DOUBLE);
  NbdVariableMulti *createVariableMulti(const QString &role, const NbdVariableDetails &details,
                                        const QList<NbdMacroIndex> &indices,
                                        const NbdMacroIndexInfo &info);
  NbdVariableAlpha *createVariableAlpha(const QString &role,
                                        const NbdVariableDetails &details = NbdVariableDetails());
  NbdVariableSelection *createVariableSelection(
      const QString &role, const NbdVariableDetails &details = NbdVariableDetails());

  /// Adds a variable behind the others; the table takes it. One without values gets those of new
  /// samples; a table without columns takes the number of samples from it. NbeProgrammingError when
  /// the numbers differ.
  NbdAVariable *addVariable(const QString &role, std::unique_ptr<NbdAVariable> variable);
  /// The same for a copy of `variable`.
  NbdAVariable *addVariable(const QString &role, const NbdAVariable &variable);
  /// The same at a rank of the table.
  NbdAVariable *insertVariable(int rank, const QString &role,
                               std::unique_ptr<NbdAVariable> variable);

  /// Gives the column at a rank another role. NbeProgrammingError outside the table, here and
  /// below.
  void setVariableRole(int rank, const QString &role);
  void deleteVariable(const QString &role, int index);
  void deleteColumnByRank(int rank);
  /// Removes all columns and samples.
  void clearTable();

  // Samples.

  /// New samples have undefined values (true in selections).
  void setNSamples(int n);
  /// Brings all columns to the length of the longest.
  void adjustNSamples();
  void appendSamples(int count);
  /// Appends the samples of `other`. Its variables are matched by role and index; the columns that
  /// it lacks get the values of new samples.
  void appendSamples(const NbdDataTable &other);
  void removeSample(int sample) { removeSamples(sample, 1); }
  void removeSamples(int first, int count);
  /// Removes all samples and keeps the columns.
  void clearSamples() { setNSamples(0); }
  void reserve(int nSamples);

  /// Copies the values of one sample of `other` to one of this table, which may be the same.
  /// Variables are matched by role and index; columns that `other` lacks are left as they are.
  void copyLine(const NbdDataTable &other, int otherSample, int sample);

  /// A table of the same columns with these samples in this order.
  NbdDataTable extractSamples(const QVector<int> &samples) const;

  /// Sorts the samples by the values of one variable, stable, undefined values last.
  /// NbeProgrammingError when it has not one value per sample.
  void sort(const NbdAVariable &variable, bool ascending);
  /// Keeps the samples whose flag, one per sample, is not 0.
  void compress(const unsigned char *keep);
  void compress(const NbdVariableSelection &keep);

  /// Makes all values independent of copies of the table at once.
  void detachData();

  /// One line per column: role, index, name, type.
  QString debug(int level) const override;
  /// The values, one line per sample under a line of names, separated by tabs.
  QString toString() const;

protected:
  QList<unsigned int> _serializedVersions() const override;
  unsigned int _currentSerializedVersion() const override;
  void _serialize(QDataStream &stream) const override;
  void _unserialize(QDataStream &stream, unsigned int version) override;
  bool _hasValidFirstVersion() const override { return true; }

private:
  struct Column
  {
    QString role;
    std::unique_ptr<NbdAVariable> variable;
  };

  void _checkRank(int rank) const;
  void _checkLengths() const;
  void _checkSamples(int first, int count) const;
  void _fitVariable(NbdAVariable &variable);
  void _updateRanks();

  std::vector<Column> _columns;
  QMap<QString, QVector<int>> _ranksByRole;
  int _nSamples = 0;
};
