#pragma once

#include "basic/base/NbbIDebuggable.h"

#include <QtGlobal>

/// One pair of samples of a variogram cloud: its value, its distance and its two sample numbers.
class NgmPairsVariogramCloud : public NbbIDebuggable
{
public:
  NgmPairsVariogramCloud() = default;
  NgmPairsVariogramCloud(double value, double distance, qint64 sampleNumber1, qint64 sampleNumber2)
      : _value(value),
        _distance(distance),
        _sampleNumber1(sampleNumber1),
        _sampleNumber2(sampleNumber2)
  {
  }
  NgmPairsVariogramCloud(const NgmPairsVariogramCloud &) = default;
  NgmPairsVariogramCloud &operator=(const NgmPairsVariogramCloud &) = default;
  ~NgmPairsVariogramCloud() override;

  double getValue() const { return _value; }
  double getDistance() const { return _distance; }
  qint64 getSampleNumber1() const { return _sampleNumber1; }
  qint64 getSampleNumber2() const { return _sampleNumber2; }

  QString debug(int level) const override;

private:
  double _value = 0.;
  double _distance = 0.;
  qint64 _sampleNumber1 = 0;
  qint64 _sampleNumber2 = 0;
};
