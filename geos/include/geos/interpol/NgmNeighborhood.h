#pragma once

#include "basic/base/NbbIDebuggable.h"
#include "geos/interpol/NgmNeighborhoodNestedParam.h"

#include <QList>

#include <memory>

class NgmNeighborhoodMoving;

/// A unique neighborhood, or a moving one with its fallback levels: a value that an application
/// keeps and hands to calculators. Unique by default.
class NgmNeighborhood : public NbbIDebuggable
{
public:
  NgmNeighborhood();
  explicit NgmNeighborhood(const NgmNeighborhoodMoving &parameters);
  NgmNeighborhood(const NgmNeighborhood &other);
  NgmNeighborhood &operator=(const NgmNeighborhood &other);
  ~NgmNeighborhood() override;

  /// Unique neighborhoods are equal; moving ones when parameters and levels are.
  bool operator==(const NgmNeighborhood &other) const;
  bool operator!=(const NgmNeighborhood &other) const { return !(*this == other); }

  bool isUnique() const { return _isUnique; }

  /// Drops the moving parameters and their levels.
  void setUnique();

  /// Keeps a copy; the levels stay.
  void setMoving(const NgmNeighborhoodMoving &parameters);

  /// Fails when the neighborhood is unique.
  const NgmNeighborhoodMoving &getNeighborhoodMoving() const;

  /// The fallback levels, tried in this order when the search before fails.
  const QList<NgmNeighborhoodNestedParam> &getNestedParams() const { return _nestedParams; }
  bool hasNestedParams() const { return !_nestedParams.isEmpty(); }
  void clearNestedParams() { _nestedParams.clear(); }
  void addNestedParam(const NgmNeighborhoodNestedParam &level) { _nestedParams << level; }

  QString debug(int level) const override;

private:
  bool _isUnique = true;
  std::unique_ptr<NgmNeighborhoodMoving> _moving;
  QList<NgmNeighborhoodNestedParam> _nestedParams;
};
