#pragma once

class NbdAVariableNumeric;

/// A transformation of the values of one variable and its inverse, value by value.
///
/// Threads:  transforming is const; several threads may share one transformation
class NgmITransformation
{
public:
  virtual ~NgmITransformation() = default;

  /// A new copy; the caller owns it.
  NgmITransformation *clone() const { return _clone(); }

protected:
  virtual NgmITransformation *_clone() const = 0;

public:
  /// An undefined value stays undefined.
  virtual double transformValue(double value) const = 0;

  /// All values of a variable. Source and destination may be the same variable.
  virtual void transformValues(const NbdAVariableNumeric &in, NbdAVariableNumeric &out) const = 0;

  virtual double invTransformValue(double value) const = 0;
  virtual void invTransformValues(const NbdAVariableNumeric &in,
                                  NbdAVariableNumeric &out) const = 0;
};
