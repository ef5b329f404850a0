#pragma once

#include "geos/fit/NgmAOptimizable.h"

/// An optimizable whose parameters make an object of type `Object`. An object of the caller's, when
/// one was set, follows the current parameters.
template <class Object>
class NgmAOptimizable_impl : public NgmAOptimizable
{
public:
  /// The object is not owned and outlives the optimizable; null for none.
  void setObjectToOptimize(Object *object) { _object = object; }

protected:
  NgmAOptimizable_impl() = default;

  /// The object for these parameters.
  virtual Object _applyParams(const NgmOptParamList &params) const = 0;

  void _updateOptimizable(const NgmOptParamList &params) override
  {
    if (_object)
      *_object = _applyParams(params);
  }

private:
  Object *_object = nullptr;
};
