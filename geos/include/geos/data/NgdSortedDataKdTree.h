#pragma once

#include "basic/base/NbbIDebuggable.h"
#include "basic/geom/NbgRotation.h"
#include "basic/geom/NbgVector3D.h"

#include <QList>
#include <QString>
#include <QVector>

#include <memory>
#include <vector>

class NbdAVariable;
class NbdAVariableNumeric;
class NbdDataPoints;
class NbdVariableAlpha;
class NgdADataSet;
class NgdNearestSet;

/// Spatial index of samples: a kd-tree in a frame of its own, in which search ellipsoids may become
/// spheres. It only proposes: whoever asks measures the proposals from their raw coordinates.
class NgdSortedDataKdTree : public NbbIDebuggable
{
public:
  /// Ranks proposed by a query, and the scratch memory of queries. One per thread.
  struct Proposals
  {
    std::vector<int> ranks;
    std::vector<double> keys;
    int count = 0;
  };

  NgdSortedDataKdTree();
  ~NgdSortedDataKdTree() override;

  /// Number of coordinates used: 1 to 3.
  void setDimension(int nDimensions) { _nDimensions = nDimensions; }
  int getNDim() const { return _nDimensions; }

  /// Frame of the index: a point p stands at scale * worldToLocal(p - origin), component by
  /// component. To be set before the index is built.
  void setSystem(const NbgVector3D &origin, const NbgRotation &rotation,
                 const NbgVector3D &scale = NbgVector3D(1., 1., 1.));

  /// What loadData() takes of a data set beside coordinates and sample numbers: the variables of
  /// these roles (none by default), macro variables at the realizations of these ranks.
  void setNumericRole(const QString &role) { _numericRole = role; }
  void setAlphaRole(const QString &role) { _alphaRole = role; }
  void setMacroRanks(const QList<int> &ranks) { _macroRanks = ranks; }

  /// Loads the selected samples of an open data set, and indexes them. The data set is not owned.
  void loadData(const NgdADataSet *dataSet);

  /// Of the loaded samples; null and empty for an index that was built on samples held elsewhere.
  const NgdADataSet *getDataset() const { return _dataSet; }
  NbgVector3D getCoords(int rank) const;
  QList<NbdAVariable *> getVariables(const QString &role) const;
  QList<NbdAVariableNumeric *> getNumericVariables(const QString &role) const;
  QList<NbdVariableAlpha *> getAlphaVariables(const QString &role) const;
  QList<NbdAVariable *> getAllVars() const;

  /// Indexes the samples of `points` by rank. Fails when the index is already built or when the
  /// dimensions differ.
  void build(const NbdDataPoints &points);

  /// Drops the index and what was loaded; the settings stay.
  void clear();
  int getNData() const;

  /// Roughly how many samples a query within that squared distance in the frame would propose,
  /// were they spread evenly over the box around them.
  double estimateWithin(double squaredRadius) const;

  /// Proposes the samples nearest to `point` in the frame, at a squared distance up to
  /// `squaredRadius`, in no promised order: the `count` nearest of those with usable[rank] != 0
  /// (null: all), and every other one that rounding could make as near as the last of them.
  void proposeNearest(const NbgVector3D &point, int count, double squaredRadius,
                      const unsigned char *usable, Proposals &proposals) const;

  /// The same when nearness is the distance before scaling, while `squaredRadius` stays one of the
  /// frame: the nearest samples that an ellipsoid holds.
  void proposeNearestUnscaled(const NbgVector3D &point, int count, double squaredRadius,
                              const unsigned char *usable, Proposals &proposals) const;

  /// Proposes every sample within a squared distance, and those that rounding could bring there.
  void proposeWithin(const NbgVector3D &point, double squaredRadius, Proposals &proposals) const;

  /// Ranks of the `count` samples nearest to `point` in the frame, nearest first; equal distances
  /// in ascending rank.
  void knnSearch(const NbgVector3D &point, int count, QVector<int> &ranks) const;
  /// The same with their squared distances in the frame.
  void knnSearch(const NbgVector3D &point, int count, QVector<int> &ranks,
                 QVector<double> &squaredDistances) const;

  /// Ranks of all samples, nearest first, and their distances in the frame.
  void knnSearch(const NbgVector3D &point, QVector<int> &ranks) const;
  void knnSearch(const NbgVector3D &point, QVector<int> &ranks, QVector<double> &distances) const;

  /// Ranks, ascending, of the samples within `radius` of `point` in the frame, border included.
  void radiusSearch(const NbgVector3D &point, double radius, QVector<int> &ranks) const;

  QString debug(int level) const override;

private:
  class Index;
  template <int nDim>
  class IndexOfDimension;

  void _take(const NgdNearestSet &set, Proposals &proposals) const;
  void _findWithin(const NbgVector3D &local, double bound, Proposals &proposals) const;
  NbgVector3D _toFrame(const NbgVector3D &point) const;

  int _nDimensions = 3;
  NbgVector3D _origin;
  NbgRotation _rotation;
  NbgVector3D _scale;
  bool _identity = true;
  double _coordinateError = 0.;
  std::unique_ptr<Index> _index;

  QString _numericRole;
  QString _alphaRole;
  QList<int> _macroRanks;
  const NgdADataSet *_dataSet = nullptr;
  std::unique_ptr<NbdDataPoints> _loaded;
};
