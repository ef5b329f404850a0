#pragma once

#include "basic/geom/NbgGeomCuboid.h"
#include "geos/NgcEnumGlobal.h"
#include "geos/interpol/NgmSearchPartition.h"

#include <QList>
#include <QString>
#include <QVector>

class NbdDataPoints;
class NgdADataSet;

/// The samples of a data set among which neighbors are searched: base of the search objects.
///
/// Loaded once before a run, then shared read-only by the contexts of all workers.
///
/// Rejection leaves samples out around each target that is itself a sample (cross-validation); only
/// a moving neighborhood rejects.
class NgdANeighborhood
{
public:
  /// `roleMain`: role of the variables that are interpolated.
  explicit NgdANeighborhood(const QString &roleMain);
  virtual ~NgdANeighborhood();
  NgdANeighborhood(const NgdANeighborhood &) = delete;
  NgdANeighborhood &operator=(const NgdANeighborhood &) = delete;

  virtual bool isMoving() const = 0;

  /// Ranks, ascending, of the samples inside a rotated box, border included.
  virtual void selectDataFromBox(const NbgVector3D &center, const NbgVector3D &halfExtents,
                                 const NbgRotation &rotation, QVector<int> &ranks) const = 0;

  /// The data set is not owned; it outlives the search object and is open when data are loaded.
  void setDataset(const NgdADataSet *dataSet) { _dataSet = dataSet; }
  const NgdADataSet *getDataset() const { return _dataSet; }

  void setRoleMain(const QString &role) { _roleMain = role; }
  const QString &getRoleMain() const { return _roleMain; }

  /// Ranks of the realizations that loaded macro variables stand at; the first by default.
  void setMacroRanks(const QList<int> &ranks) { _macroRanks = ranks; }
  const QList<int> &getMacroRanks() const { return _macroRanks; }

  /// Only samples inside the cuboid are loaded.
  void setUseFilteringCuboid(bool use) { _useFilteringCuboid = use; }
  bool isUseFilteringCuboid() const { return _useFilteringCuboid; }
  void setFilteringCuboid(const NbgGeomCuboid &cuboid) { _filteringCuboid = cuboid; }
  const NbgGeomCuboid &getFilteringCuboid() const { return _filteringCuboid; }

  /// Each setter makes rejection active.
  void setRejectionMode(const NgcERejectionMode &mode);
  /// Index of the rejected variable among the main ones.
  void setRejectionVarIndex(int index);
  /// The mode becomes rejection by partition.
  void setRejectionPartition(const NgmSearchPartition &partition);
  /// What is kept of rejected samples. When rejection was not active, it becomes that by partition.
  void setRejectionAuxVarOption(const NgcERejectionAuxVarOption &option);

  bool isRejectionActive() const { return _rejectionActive; }
  const NgcERejectionMode &getRejectionMode() const { return _rejectionMode; }
  int getRejectionInterestVarIdx() const { return _rejectionVarIndex; }
  const NgmSearchPartition &getRejectionPartition() const { return _rejectionPartition; }
  const NgcERejectionAuxVarOption &getRejectionAuxVarOption() const { return _rejectionAuxVar; }

protected:
  /// Loads the samples of the data set, three coordinate columns and sample numbers included, as
  /// the filtering cuboid and the macro ranks say.
  void _loadSamples(NbdDataPoints &data) const;

private:
  const NgdADataSet *_dataSet = nullptr;
  QList<int> _macroRanks;
  NbgGeomCuboid _filteringCuboid;
  bool _useFilteringCuboid = false;
  QString _roleMain;
  bool _rejectionActive = false;
  NgcERejectionMode _rejectionMode = NgcERejectionMode::REJECTION_BY_TARGET;
  NgmSearchPartition _rejectionPartition;
  NgcERejectionAuxVarOption _rejectionAuxVar = NgcERejectionAuxVarOption::AUX_VAR_KEEP_NOTHING;
  int _rejectionVarIndex = 0;
};
