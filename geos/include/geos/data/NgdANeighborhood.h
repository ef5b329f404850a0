#pragma once

#include <QString>

class NgdADataSet;

/// The samples of a data set among which neighbors are searched: base of the search objects.
///
/// Loaded once before a run, then shared read-only by the contexts of all workers.
class NgdANeighborhood
{
public:
  /// `roleMain`: role of the variables that are interpolated.
  explicit NgdANeighborhood(const QString &roleMain);
  virtual ~NgdANeighborhood();
  NgdANeighborhood(const NgdANeighborhood &) = delete;
  NgdANeighborhood &operator=(const NgdANeighborhood &) = delete;

  virtual bool isMoving() const = 0;

  /// The data set is not owned; it outlives the search object and is open when data are loaded.
  void setDataset(const NgdADataSet *dataSet) { _dataSet = dataSet; }
  const NgdADataSet *getDataset() const { return _dataSet; }

  void setRoleMain(const QString &role) { _roleMain = role; }
  const QString &getRoleMain() const { return _roleMain; }

private:
  const NgdADataSet *_dataSet = nullptr;
  QString _roleMain;
};
