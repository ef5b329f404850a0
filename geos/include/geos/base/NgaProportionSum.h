#pragma once

#include "basic/base/NbbIDebuggable.h"
#include "geos/base/NgaIAdditive.h"

#include <QMap>

class NbcProportions;

/// Running counts and weights of the categories of one variable. The undefined value is a category
/// of its own, NbbGlobal::I32_FFFF.
class NgaProportionSum : public NgaIAdditive, public NbbIDebuggable
{
public:
  void addCategory(int category, double weight = 1.);

  /// The same as addCategory() for each of `n` categories, with weight 1.
  void addCategories(int n, const int *categories);

  void doSum(const NgaIAdditive &other) override;
  NgaProportionSum *clone() const override { return new NgaProportionSum(*this); }
  QString debug(int level) const override;

  qint64 getCount(int category) const { return _categories.value(category).count; }
  double getWeight(int category) const { return _categories.value(category).weight; }
  qint64 getTotalCount() const { return _totalCount; }
  double getTotalWeight() const { return _totalWeight; }

  /// Counts, weights and the shares of the defined categories in their total weight.
  void fill(NbcProportions &record) const;

private:
  struct Category
  {
    qint64 count = 0;
    double weight = 0.;
  };

  void _add(int category, qint64 count, double weight);

  QMap<int, Category> _categories;
  qint64 _totalCount = 0;
  double _totalWeight = 0.;
};
