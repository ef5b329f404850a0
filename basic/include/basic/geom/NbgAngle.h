#pragma once

class NbgEAngleUnit;

/// An angle, kept in degrees so that round values stay round.
class NbgAngle
{
public:
  constexpr NbgAngle() = default;
  NbgAngle(double value, const NbgEAngleUnit &unit);

  static constexpr NbgAngle fromDegrees(double degrees) { return NbgAngle(degrees); }
  static NbgAngle fromRadians(double radians);

  constexpr double getDegreeValue() const { return _degrees; }
  double getRadianValue() const;

  /// 180 degrees minus this angle.
  constexpr NbgAngle getSupplement() const { return NbgAngle(180. - _degrees); }

  /// Sine and cosine, exact (0, 1, -1) at the multiples of 90 degrees.
  double sine() const;
  double cosine() const;

private:
  constexpr explicit NbgAngle(double degrees) : _degrees(degrees) {}

  double _degrees = 0.;
};
