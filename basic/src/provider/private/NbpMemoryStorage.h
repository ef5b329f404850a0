#pragma once

#include "basic/data/NbdMacroIndex.h"
#include "basic/data/NbdMacroIndexInfo.h"
#include "basic/data/NbdVariableDetails.h"
#include "basic/error/NbeError.h"
#include "basic/geom/NbgGeomGrid.h"
#include "provider/private/NbpAMemoryColumn.h"
#include "provider/private/NbpMemorySelection.h"
#include "provider/private/NbpServedColumns.h"

#include <QHash>
#include <QMutex>
#include <QObject>
#include <QStringList>

#include <map>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

class NbdEnumCatalog;
class NbdEVarRole;
class NbdVariableDouble;
class NbdVariableSelection;
class NbdVarTypeFlags;

/// What a memory provider holds: variables, macros, selection, and the lock of its calls.
///
/// Everything but call() and getLastError() is to be used inside call(); there a failure is an
/// NbeError, thrown before anything is changed.
class NbpMemoryStorage
{
public:
  explicit NbpMemoryStorage(qint64 nSamples);
  explicit NbpMemoryStorage(const NbgGeomGrid &geometry);
  ~NbpMemoryStorage();
  NbpMemoryStorage(const NbpMemoryStorage &) = delete;
  NbpMemoryStorage &operator=(const NbpMemoryStorage &) = delete;

  /// Runs `function` as one call of the provider: alone, with the error text of the calling thread
  /// cleared before. When it fails the text is kept and a value of 0 (false, empty) returned.
  template <typename Function>
  auto call(Function &&function) const -> std::invoke_result_t<Function>;

  QString getLastError() const;

  qint64 getSampleCount() const { return _nSamples; }

  // Catalogue.

  QStringList getVariableIds() const;
  QStringList getMacroIds() const;
  QString getIdFromName(const QString &name) const;
  QString getStructuralRoleId(const NbdEVarRole &role) const;
  bool isMacro(const QString &id) const;
  bool testVariable(const QString &id, const NbdVarTypeFlags &flags) const;
  bool testMacro(const QString &id, const NbdVarTypeFlags &flags) const;
  Nbd::EVariableType getVariableType(const QString &id) const { return _find(id).type; }
  const NbdVariableDetails &getDetails(const QString &id) const { return _find(id).details; }
  const NbdEnumCatalog &getCatalog(const QString &id) const;
  const NbdMacroIndexInfo &getMacroIndexInfo(const QString &id) const;
  QList<NbdMacroIndex> getMacroIndices(const QString &id) const;
  QString getRealizationId(const QString &macroId, const NbdMacroIndex &index) const;

  // Creation and deletion.

  enum Lifetime { PERMANENT, TEMPORARY };

  QString addVariable(const QString &name, std::unique_ptr<NbpAMemoryColumn> column,
                      const NbdVariableDetails &details, Lifetime lifetime = PERMANENT);
  QString addEmptyVariable(const QString &name, Nbd::EVariableType type,
                           const NbdVariableDetails &details, const NbdEnumCatalog *catalog,
                           Lifetime lifetime = PERMANENT);
  QString addStructuralVariable(const NbdEVarRole &role, const QString &name,
                                std::unique_ptr<NbpAMemoryColumn> column);
  QString addMacro(const QString &name, Nbd::EVariableType type, const NbdMacroIndexInfo &info,
                   const NbdVariableDetails &details, Lifetime lifetime = PERMANENT);
  QString addRealization(const QString &macroId, const NbdMacroIndex &index,
                         std::unique_ptr<NbpAMemoryColumn> column);
  /// The id of the realization if there is one, else of a new one with undefined values.
  QString requireRealization(const QString &macroId, const NbdMacroIndex &index);
  void deleteVariable(const QString &id);
  void deleteMacro(const QString &id);

  // Openings.

  void open(const QString &id, Nbd::EAccessType access);
  void close(const QString &id);
  bool isOpen(const QString &id) const;

  // Selection.

  bool hasSelection() const { return _selection.has_value() || !_selectionId.isEmpty(); }
  const QString &getSelectionId() const { return _selectionId; }
  void setSelectionId(const QString &id);
  void setSelection(std::vector<unsigned char> flags);
  void select(qint64 first, qint64 last, bool selected);
  qint64 getSelectedCount(qint64 first, qint64 last) const;

  // Values.

  /// An error when a range that is not empty leaves the file.
  void checkRange(qint64 first, qint64 last) const;

  /// Appends the selected ranks of a range, standing at `position` and behind; returns the position
  /// behind the last.
  int appendSelectedRuns(qint64 first, qint64 last, int position, NbpRuns &runs) const;

  /// Appends a range whose samples all have a position, leaving out the ranks that are not
  /// selected when `selectedOnly` is set.
  int appendRuns(qint64 first, qint64 last, bool selectedOnly, int position, NbpRuns &runs) const;

  /// `nPositions` is what the runs need in `values`. Where columns are given by axis, null ones are
  /// skipped.
  void read(const QString &id, const NbpRuns &runs, int nPositions, NbdAVariable &values) const;
  void write(const QString &id, const NbpRuns &runs, int nPositions, const NbdAVariable &values);

  void readFlags(const NbpRuns &runs, int nPositions, NbdVariableSelection &selection) const;

  /// Coordinates that are kept as variables; axes beyond `nDimensions` receive 0.
  void readCoordinates(int nDimensions, const NbpRuns &runs, int nPositions,
                       const NbpCoordinateColumns &columns) const;
  void checkBuffers(int nPositions, const NbpCoordinateColumns &columns) const;

  /// Gives n samples from `rank` on in place of nOld, all values undefined; they are selected
  /// unless the selection is a numeric variable.
  void replaceSamples(qint64 rank, qint64 nOld, qint64 n);

private:
  /// A variable, a macro (without column) or a realization of one.
  struct Entry
  {
    QString id;
    QString name;
    Nbd::EVariableType type = Nbd::TYPE_NONE;
    NbdVariableDetails details;
    std::unique_ptr<NbpAMemoryColumn> column;
    std::unique_ptr<NbdMacroIndexInfo> indexInfo;  ///< of a macro
    std::map<NbdMacroIndex, Entry *> realizations;
    Entry *macro = nullptr;  ///< of a realization
    NbdMacroIndex index;
    Lifetime lifetime = PERMANENT;
    bool structural = false;
    bool served = false;  ///< not stored, not in the lists of the catalogue
    int nOpenings = 0;
    bool openForWriting = false;
  };

  static bool _isOpenForWriting(const Entry &entry);

  Entry &_find(const QString &id) const;
  Entry &_findMacro(const QString &id) const;
  Entry &_findColumn(const QString &id) const;
  void _checkName(const QString &name) const;
  void _checkSize(const NbpAMemoryColumn &column, const QString &name) const;
  Entry &_append(const QString &name, Nbd::EVariableType type, const NbdVariableDetails &details);
  void _addServed(const NbdEVarRole &role, std::unique_ptr<NbpAMemoryColumn> column);
  void _checkDeletable(const Entry &entry) const;
  void _erase(const Entry &entry);
  const NbpMemorySelection &_getSelection() const;
  void _setError(const QString &text) const;

  mutable QMutex _mutex;
  mutable std::map<std::thread::id, QString> _errors;
  qint64 _nSamples;
  int _lastId = 0;
  std::vector<std::unique_ptr<Entry>> _entries;  ///< in order of creation
  QHash<QString, Entry *> _byId;
  QHash<QString, Entry *> _byName;
  std::map<int, QString> _structuralIds;
  QString _selectionId;
  mutable std::optional<NbpMemorySelection>
      _selection;  ///< in memory, or the flags of _selectionId
};

template <typename Function>
auto NbpMemoryStorage::call(Function &&function) const -> std::invoke_result_t<Function>
{
  const QMutexLocker lock(&_mutex);
  _errors.erase(std::this_thread::get_id());
  try {
    return function();
  } catch (const NbeError &error) {
    _setError(error.getMessage());
  } catch (const std::bad_alloc &) {
    _setError(QObject::tr("There is not enough memory."));
  } catch (const std::length_error &) {
    _setError(QObject::tr("There is not enough memory."));
  }
  return std::invoke_result_t<Function>();
}
