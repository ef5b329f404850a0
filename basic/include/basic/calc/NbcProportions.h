#pragma once

#include "basic/base/NbbGlobal.h"
#include "basic/base/NbbIDebuggable.h"

#include <QList>
#include <QMap>

/// Proportions of the categories of one variable, by category code.
///
/// A record only: nothing is computed here. The undefined category is NbbGlobal::I32_FFFF; it has
/// its counts and weights, but getValues() leaves it out.
class NbcProportions : public NbbIDebuggable
{
public:
  ~NbcProportions() override;

  /// Number of samples of a category; 0 for an unknown one.
  void setNbUnits(int category, qint64 count);
  qint64 getNbUnits(int category) const { return _categories.value(category).count; }

  /// Number of samples of all categories, without the undefined one.
  qint64 getNbUnits() const;

  /// Sum of the weights of the samples of a category; 0 for an unknown one.
  void setWeightByCat(int category, double weight);
  double getWeightByCat(int category) const { return _categories.value(category).weight; }

  /// Share of a category, between 0 and 1; 0 for an unknown one.
  void setProportion(int category, double proportion);
  double getProportion(int category) const { return _categories.value(category).proportion; }

  /// The category codes, ascending, without the undefined one.
  QList<int> getValues() const;

  bool hasUndefined() const { return _categories.contains(NbbGlobal::I32_FFFF); }

  /// One line per category, indented by `level` times two blanks.
  QString debug(int level) const override;

private:
  struct Category
  {
    qint64 count = 0;
    double weight = 0.;
    double proportion = 0.;
  };

  QMap<int, Category> _categories;
};
