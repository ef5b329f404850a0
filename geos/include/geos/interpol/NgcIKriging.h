#pragma once

class NgmVModel;

/// What can be set on every kriging calculator besides the settings of an interpolation.
class NgcIKriging
{
public:
  virtual ~NgcIKriging() = default;

  /// The model is copied.
  virtual void setVarioModel(const NgmVModel &model) = 0;
  virtual const NgmVModel &getVarioModel() const = 0;
};
