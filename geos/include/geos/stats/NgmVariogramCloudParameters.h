#pragma once

#include <QMap>

#include <utility>

/// How the clouds of pairs behind an experimental variogram are gathered: which extreme pairs are
/// kept one by one, and the image that counts all of them.
class NgmVariogramCloudParameters
{
public:
  /// Axes of the image.
  enum Axis { DISTANCE = 0, VALUE = 1 };

  /// The pairs of the largest and smallest values kept per lag; 0, none, by default. Without upper
  /// ones no lower ones are kept either.
  int getNMaxUpperOutliers() const { return _nMaxUpper; }
  void setNMaxUpperOutliers(int n) { _nMaxUpper = n; }
  int getNMaxLowerOutliers() const { return _nMaxLower; }
  void setNMaxLowerOutliers(int n) { _nMaxLower = n; }

  /// How many pairs a lag may hold on the way, 1000 by default; more cost memory, fewer time.
  int getNMaxOutliersCalc() const { return _nMaxCalc; }
  void setNMaxOutliersCalc(int n) { _nMaxCalc = n; }

  /// Whether the image is wanted, by default.
  bool isDisplayImage() const { return _displayImage; }
  void setDisplayImage(bool display) { _displayImage = display; }

  /// Cells of the image along distances and values, 100 each by default.
  int getNx() const { return _nx; }
  int getNy() const { return _ny; }
  void setImageSize(int nx, int ny);

  /// Range of the image along an axis. Without one, NbbGlobal::D_FFFF, it reaches to the largest
  /// distance of the direction, and over all values that the statistics of the variables allow.
  double getMin(int axis) const;
  double getMax(int axis) const;
  void setRange(int axis, double min, double max);

private:
  int _nMaxUpper = 0;
  int _nMaxLower = 0;
  int _nMaxCalc = 1000;
  bool _displayImage = true;
  int _nx = 100;
  int _ny = 100;
  QMap<int, std::pair<double, double>> _ranges;
};
