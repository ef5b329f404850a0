#pragma once

#include "basic/geom/NbgVector3D.h"

#include <memory>

/// Faults across which samples are not used: lines in the horizontal plane, the closed ones being
/// fault polygons too. A value: copies share what they hold. Empty by default.
class NgmNeighborhoodFaultSet
{
public:
  /// What a set of faults answers. Faults have indices from 0.
  class NgmIFaultSet
  {
  public:
    virtual ~NgmIFaultSet() = default;

  protected:
    friend class NgmNeighborhoodFaultSet;

    virtual bool _isEmpty() const = 0;
    virtual bool _isInside(const NbgVector3D &point) const = 0;
    virtual int _isInsideFaultId(const NbgVector3D &point) const = 0;
    virtual bool _isInLineOfSight(const NbgVector3D &from, const NbgVector3D &to,
                                  int excludedFault) const = 0;
  };

  NgmNeighborhoodFaultSet() = default;

  /// Takes the faults.
  explicit NgmNeighborhoodFaultSet(std::unique_ptr<const NgmIFaultSet> faults)
      : _faults(std::move(faults))
  {
  }

  bool isEmpty() const { return !_faults || _faults->_isEmpty(); }

  /// Inside a fault polygon, its border included.
  bool isInside(const NbgVector3D &point) const { return _faults && _faults->_isInside(point); }

  /// Index of the first fault polygon around the point, or -1.
  int isInsideFaultId(const NbgVector3D &point) const
  {
    return _faults ? _faults->_isInsideFaultId(point) : -1;
  }

  /// The segment meets no fault; that of index `excludedFault` is not tested (-1: all are).
  bool isInLineOfSight(const NbgVector3D &from, const NbgVector3D &to, int excludedFault) const
  {
    return !_faults || _faults->_isInLineOfSight(from, to, excludedFault);
  }

private:
  std::shared_ptr<const NgmIFaultSet> _faults;
};
