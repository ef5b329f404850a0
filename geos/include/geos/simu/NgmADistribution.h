#pragma once

#include "basic/base/NbbCloneable.h"
#include "geos/simu/NgmRandomNumberGenerator.h"

#include <QString>

#include <atomic>

class NbdAVariableNumeric;
class NbdVariableDetails;

/// A law: samples from its own random stream, density, distribution and quantile functions, and the
/// transformation between values and Gaussian values where the law has one.
///
/// Samples depend on seed, generator size and parameters only. Copies continue the same sequence. A
/// distribution is used by one thread at a time; its const operations may be called from several.
///
/// What a law does not define is 0 (samples, density, distribution function) or the identity
/// (transformations).
class NgmADistribution
{
public:
  using tSize = NgmRandomNumberGenerator::tSize;
  static constexpr tSize DEFAULT_SIZE = NgmRandomNumberGenerator::DEFAULT_SIZE;

  virtual ~NgmADistribution();

protected:
  virtual NgmADistribution *_clone() const = 0;

public:
  /// A new copy; the caller owns it.
  NgmADistribution *clone() const { return _clone(); }

  /// A sample of a law of real values.
  virtual double nextR();

  /// A sample of a law of integers.
  virtual qint64 nextI();

  /// Density.
  virtual double getDf(double value) const;

  /// Probability of a value not above `value`.
  virtual double getCdf(double value) const;

  /// The value that getCdf() takes to p. The base serves laws without a closed form: from both
  /// bounds of the law, the end whose probability is farther from p moves to the middle, until an
  /// end is within 0.001 of p. That is no bisection by sign: where the search leaves the quantile
  /// outside, it gives the end it closes in on. NbeProgrammingError for a law without a
  /// distribution function.
  virtual double getInvCdf(double p) const;

  /// No sample lies below (above).
  virtual double getLowerBound() const;
  virtual double getUpperBound() const;

  /// From a value, in the unit of `details`, to the value that the law describes, and back.
  virtual double getTransfo(double value, const NbdVariableDetails &details) const;
  virtual double getInvTransfo(double value, const NbdVariableDetails &details) const;

  /// Samples are taken with nextI(), not nextR().
  virtual bool givesInteger() const = 0;

  /// getCdf() is defined.
  virtual bool hasCdf() const = 0;

  /// Parameters for display, in the units of the law.
  virtual QString getParamInfo(const NbdVariableDetails &details) const = 0;

  NgmRandomNumberGenerator &generator() { return _generator; }
  const NgmRandomNumberGenerator &generator() const { return _generator; }

  /// Name of the law, with the serial number of the object when asked ("Gaussian 3").
  QString getName(bool withSerialNumber = false) const;

  /// Numbers drawn so far from the distribution's own generator.
  qint64 getNDrawn() const { return _nDrawn; }

  /// How many distributions the process had made when this one was; for messages only.
  qint64 getSerialNumber() const { return _serialNumber; }

  bool isTracing() const { return _trace; }

  /// Prints a line on the diagnostics channel while tracing.
  void trace(const QString &text) const;

  /// Chi-2 test of a sample against the law.
  ///
  /// Classes:  nClasses of the same probability under the law; neighbours are joined until each
  ///           expects at least minCount samples
  /// Result:   the statistic is not above its 95% quantile; false when less than two classes remain
  /// Fails:    NbeProgrammingError without a distribution function or with less than one class
  ///
  /// Undefined values do not count. The outputs (statistic, 95% quantile, degrees of freedom) may
  /// be null.
  bool isChi2TestSuccessfulForSample(const NbdAVariableNumeric &sample, int nClasses, int minCount,
                                     double *chi2, double *threshold, int *df) const;

protected:
  NgmADistribution(const QString &name, quint64 seed, tSize size, bool trace);
  NgmADistribution(const NgmADistribution &other);
  NgmADistribution &operator=(const NgmADistribution &other);

  /// The generator's next number; the first ten are traced.
  quint64 nextNumber()
  {
    const quint64 number = _generator.nextNumber();
    if (_trace)
      _traceNumber(number);
    ++_nDrawn;
    return number;
  }

private:
  void _traceStart() const;
  void _traceNumber(quint64 number);

  static std::atomic<qint64> _distNb;

  NgmRandomNumberGenerator _generator;
  qint64 _nDrawn = 0;
  qint64 _serialNumber = 0;
  bool _trace = false;
  QString _name;
};
