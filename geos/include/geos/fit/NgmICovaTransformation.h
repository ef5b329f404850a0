#pragma once

#include <memory>

/// A transformation between the covariances of a model and those that experimental curves show (for
/// a model of transformed variables, for example).
class NgmICovaTransformation
{
public:
  virtual ~NgmICovaTransformation() = default;

  virtual std::unique_ptr<NgmICovaTransformation> clone() const = 0;

  /// The covariance of variables i and j to be compared with the experimental one, for the model's
  /// covariance.
  virtual double transformCova(int i, int j, double covariance) const = 0;
};
