#pragma once

#include <QList>

#include <memory>
#include <vector>

class NbgARotationConvention;

/// The rotation conventions by number. Built once, on first use; read-only afterwards.
class NbgRotationConventionRegistry
{
public:
  static const NbgRotationConventionRegistry &instance();

  /// Null when the number is not known.
  const NbgARotationConvention *getConvention(int id) const;

  const NbgARotationConvention &getDefault() const { return *_conventions.front(); }

  QList<int> getIds() const;

private:
  NbgRotationConventionRegistry();
  ~NbgRotationConventionRegistry();

  std::vector<std::unique_ptr<const NbgARotationConvention>> _conventions;
};
