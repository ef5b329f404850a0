#pragma once

#include "basic/base/NbbIDebuggable.h"
#include "basic/data/Nbd.h"
#include "geos/data/NgdVariableDescriptor.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QSharedPointer>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class NbdAData;
class NbdAVariable;
class NbdDataPoints;
class NbdEVarRole;
class NbgBox;
class NbgGeomCuboid;
class NbiIntervalIntLarge;
class NbiIntervalIntLargeDisjoint;
class NbiIntervalIntSmallO64;
class NbpIProviderR;
class NbpIProviderW;
class NgdABufferManager;

/// A data file as a calculator sees it: the provider that holds its values, and which variables
/// play which role.
///
/// Variables of one role are addressed by their index, in order of assignment. A data set is a
/// value: copies share the provider and own their role bindings. Copies of an open data set read
/// and write, but the one that opened the variables closes them, at the latest when it is
/// destroyed. It is not locked; calculators serialise loads and saves on shared data sets.
class NgdADataSet : public NbbIDebuggable
{
public:
  /// How many coordinates a data set exposes.
  enum MaxDim { DIM_0 = 0, DIM_1 = 1, DIM_2 = 2, DIM_3 = 3 };

  /// Context of the descriptor of a selection that its provider holds in memory.
  static const QString MEMORY_SELECTION_CONTEXT;

  ~NgdADataSet() override;

  /// A new copy; the caller owns it.
  NgdADataSet *clone() const { return _clone(); }

protected:
  virtual NgdADataSet *_clone() const = 0;

public:
  virtual qint64 getNSamples() const = 0;

  /// Extends `box` with the selected samples.
  virtual void updateBoundingBox(NbgBox &box) const = 0;

  virtual void setDataProvider(QSharedPointer<NbpIProviderR> provider) = 0;

  /// A manager that cuts the data set into buffers; the variables must be open. The caller owns it.
  virtual NgdABufferManager *createBufferManager() const = 0;

  virtual bool isGrid() const { return false; }
  virtual bool isLine() const { return false; }

  /// X, Y, Z and SN take one variable only.
  virtual bool mustBeUnique(const QString &role) const;

  /// Writes a buffer made by this data set's own manager back to the ranks it came from.
  virtual void saveFromBufferInParent(const NbdAData &buffer) const = 0;

protected:
  /// The ranks to load of those asked for; all of them by default.
  virtual NbiIntervalIntLargeDisjoint _tuneLoadInBufferInterval(
      const NbiIntervalIntLargeDisjoint &ranks) const;

public:
  /// The provider outlives the data set and its copies.
  void setDataProvider(NbpIProviderR &provider);
  QSharedPointer<NbpIProviderR> getDataProvider() const { return _provider; }
  QSharedPointer<NbpIProviderW> getDataProviderW() const;
  bool isWriter() const;

  void setMaxDimension(MaxDim dimension);
  MaxDim getMaxDimension() const { return _maxDimension; }

  /// The smaller of the maximum dimension and the provider's; 0 without provider.
  int getNDimensions() const;

  /// Bytes of one sample in a buffer; variables must be open.
  int getSampleSizeBytes() const;

  /// Binds the variable of that provider id to a role, behind those already bound. An enumerated
  /// variable is read as its integer codes when `enumAsInteger` is set.
  void assignVariable(const QString &role, const QString &id, bool enumAsInteger = false);
  void assignMacro(const QString &role, const QString &id);

  /// Declares a variable that a run creates (open for writing) and deletes at its end.
  void assignTemporaryVariable(const QString &role, const QString &name, Nbd::EVariableType type);
  void assignTemporaryMacro(const QString &role, const QString &name, Nbd::EVariableType type);

  void clearRole(const QString &role);
  void clearRoles(const QStringList &roles);
  void clearAllRoles();
  void clearOtherRoles(const QStringList &keep);
  void replaceRole(const QString &oldRole, const QString &newRole);
  void replaceRoles(const QStringList &oldRoles, const QString &newRole);

  /// Moves one variable to the end of another role.
  void replaceVariableRole(const QString &oldRole, int index, const QString &newRole);

  QStringList getAllRoles() const;
  bool hasVariableId(const QString &id) const;
  bool hasVariableName(const QString &name) const;
  bool hasVariablesWithRole(const QString &role) const;
  bool hasMacroVariables() const;
  bool hasMacroVariablesWithRole(const QString &role) const;
  int getNVariables() const;

  /// Number of variables bound to a role.
  int getRoleCount(const QString &role) const;

  QString getVariableName(const QString &role, int index) const;
  QString getVariableId(const QString &role, int index) const;
  QString getVariableId(const QString &role, const QString &name) const;
  QStringList getVariableNames(const QString &role) const;
  QStringList getVariableIds(const QString &role) const;
  QList<NgdVariableDescriptor> getVariableDescriptors(const QString &role) const;
  QList<NbdVariableDetails> getVariableDetails(const QString &role) const;

  /// Realizations of the role's first variable; 0 when nothing is bound.
  int getNRealizationsWithRole(const QString &role) const;
  NbdEnumCatalog getCatalog(const QString &role, int index) const;

  NgdVariableDescriptor getDataDescriptor(const QString &role, int index) const;
  NgdVariableDescriptor getDataDescriptorFromName(const QString &name) const;
  void setDataDescriptor(const QString &role, int index, const NgdVariableDescriptor &descriptor);
  void setAccessType(const QString &role, Nbd::EAccessType access);

  bool isOpened() const { return _opened; }
  void openAllVariables();
  void closeAllVariables();

  /// Adds to the table of `buffer` one variable per binding (or per realization).
  void createAllVariables(NbdAData &buffer, bool withCoordinates, bool withSampleNumber) const;

  /// Loads the selected samples of the given ranks; the buffer is resized to them.
  void loadInBuffer(const NbiIntervalIntSmallO64 &ranks, NbdDataPoints &buffer) const;
  void loadInBuffer(const NbiIntervalIntLargeDisjoint &ranks, NbdDataPoints &buffer) const;

  /// Loads the samples inside a cuboid; points only.
  void loadInBufferFromCuboid(const NbgGeomCuboid &cuboid, NbdDataPoints &buffer) const;

  /// Loads every selected sample of the data set.
  void loadAllPointsInBuffer(NbdDataPoints &buffer) const;
  void loadAllData(NbdDataPoints &buffer, bool withCoordinates, bool withSampleNumber) const;

  void saveFromBuffer(const NbiIntervalIntSmallO64 &ranks, const NbdDataPoints &buffer) const;
  void saveFromBufferDisjoint(const NbiIntervalIntLargeDisjoint &ranks,
                              const NbdDataPoints &buffer) const;

  /// Writes the buffer's values at the sample numbers it holds.
  void patchFromBuffer(const NbdDataPoints &buffer) const;

  qint64 getSelectedSampleCount(const NbiIntervalIntLargeDisjoint &ranks) const;

  QString debug(int level) const override;

  /// Prints `count` values of a variable on the debug channel.
  void dumpVariable(const QString &role, int index, const QString &title, qint64 first,
                    int count) const;
  void exportVariableToCSV(const QString &role, const QString &path, int index,
                           bool withCoordinates) const;

protected:
  NgdADataSet();
  NgdADataSet(const NgdADataSet &other);
  NgdADataSet &operator=(const NgdADataSet &other);

  void _setDataProvider(QSharedPointer<NbpIProviderR> provider);

  /// Binds a variable behind the others of its role.
  void _append(const QString &role, const NgdVariableDescriptor &descriptor);

  /// The provider; a programming error without one.
  NbpIProviderR &_requireProvider() const;
  void _requireOpened() const;

  /// Calls transfer(id, variable) for every column of the buffer that the data set fills (saves); a
  /// programming error with the provider's reason when it returns false.
  using _Transfer = std::function<bool(const QString &id, NbdAVariable &variable)>;
  void _loadColumns(const NbdAData &buffer, const _Transfer &transfer) const;
  void _saveColumns(const NbdAData &buffer, const _Transfer &transfer) const;

private:
  friend class NgdVariableRules;
  friend class NgdDataSetPoints;

  // Steps of a run, for the variable rules.
  void _createTempVariables(const QString &role);
  void _createMissingMacroRealizations(const QString &role);
  void _deleteTmpVariables();

  void _assignStructural(const NbdEVarRole &role);
  NgdVariableDescriptor _describe(const QString &id, bool isMacro) const;
  void _appendTemporary(const QString &role, const QString &name, Nbd::EVariableType type,
                        bool isMacro);
  template <class Predicate>
  bool _hasVariable(Predicate matches) const;
  void _openVariable(const NgdVariableDescriptor &descriptor);
  void _openInProvider(const NgdVariableDescriptor &descriptor);
  void _closeOpened();
  QString _createTemporary(const NgdVariableDescriptor &descriptor);
  void _setTemporaryId(const QString &name, const QString &id);
  void _createVariables(const QString &role, const NgdVariableDescriptor &descriptor,
                        NbdAData &buffer) const;
  void _loadInBuffer(const NbiIntervalIntLargeDisjoint &ranks, NbdDataPoints &buffer) const;
  void _checkRanks(const NbiIntervalIntLargeDisjoint &ranks) const;
  NbiIntervalIntLargeDisjoint _findRanksInside(const NbgGeomCuboid &cuboid) const;

  /// The selected values of a range; those of the first realization of a macro.
  std::unique_ptr<NbdAVariable> _readValues(const NgdVariableDescriptor &descriptor,
                                            const NbiIntervalIntLarge &ranks) const;
  QByteArray _toCsvLines(const NgdVariableDescriptor &descriptor, const NbiIntervalIntLarge &ranks,
                         bool withCoordinates, bool is3D) const;

  QSharedPointer<NbpIProviderR> _provider;
  QMap<QString, QList<NgdVariableDescriptor>> _variables;
  bool _opened = false;
  MaxDim _maxDimension = DIM_3;
  int _sampleSizeBits = 0;
  QStringList _openedIds;  ///< what this data set opened and has to close; copies have none
  QStringList _temporaryVariables;
  QStringList _temporaryMacros;
};
