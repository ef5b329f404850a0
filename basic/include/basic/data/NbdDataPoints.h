#pragma once

#include "basic/data/NbdAData.h"
#include "basic/interval/NbiIntervalIntSmallO64.h"

#include <QStringList>

class NbdVariableDouble;

/// A buffer of scattered samples. Coordinates are the table's double variables X, Y and Z.
class NbdDataPoints : public NbdAData
{
public:
  NbdDataPoints();
  NbdDataPoints(const NbdDataPoints &) = default;
  NbdDataPoints &operator=(const NbdDataPoints &) = default;
  ~NbdDataPoints() override;

  int getNSamples() const override;
  NbgVector3D getLocation(int position) const override;
  void getLocations(int first, int n, double *x, double *y, double *z) const override;
  NbdDataPoints *makeCopy() const override;

  /// Makes sure that the table has the coordinate columns X, Y and Z: new ones are 0. Sample sets
  /// handed to numeric code always have three.
  void ensureCoordinates();

  /// One coordinate (axis 0, 1 or 2), 0 when the table has no such column.
  double getCoord(int position, int axis) const;

  /// The coordinate column of an axis, or null.
  NbdVariableDouble *getCoordinates(int axis) const;

  void setCoordValue(int position, int axis, double value);
  void setCoordValues(int position, const NbgVector3D &location);

  /// Appends one sample at `location`, its other values undefined; returns its position.
  int appendSample(const NbgVector3D &location);

  /// Appends `count` samples with undefined values.
  void appendSamples(int count);

  /// Appends the samples of `other`; its variables are matched by role and index.
  void appendSamples(const NbdDataPoints &other);

  void clearSamples();
  void deleteVariables(const QStringList &roles);

  /// Mean Euclidean distance of the samples to `target`; undefined without samples.
  double getMeanDistanceFromTarget(const NbgVector3D &target) const;

  /// The ranks of the data set from which the buffer was loaded, selected or not.
  const NbiIntervalIntSmallO64 &getParentInterval() const { return _parentInterval; }
  void setParentInterval(const NbiIntervalIntSmallO64 &interval) { _parentInterval = interval; }

private:
  NbiIntervalIntSmallO64 _parentInterval;
};
