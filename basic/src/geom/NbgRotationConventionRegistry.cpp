#include "basic/geom/NbgRotationConventionRegistry.h"

#include "basic/geom/NbgRotationConventionDefault.h"
#include "basic/geom/NbgRotationConventionGeologist.h"

NbgRotationConventionRegistry::NbgRotationConventionRegistry()
{
  _conventions.push_back(std::make_unique<NbgRotationConventionDefault>());
  _conventions.push_back(std::make_unique<NbgRotationConventionGeologist>());
}

NbgRotationConventionRegistry::~NbgRotationConventionRegistry() = default;

const NbgRotationConventionRegistry &NbgRotationConventionRegistry::instance()
{
  static const NbgRotationConventionRegistry registry;
  return registry;
}

const NbgARotationConvention *NbgRotationConventionRegistry::getConvention(int id) const
{
  for (const auto &convention : _conventions) {
    if (convention->getId() == id)
      return convention.get();
  }
  return nullptr;
}

QList<int> NbgRotationConventionRegistry::getIds() const
{
  QList<int> ids;
  for (const auto &convention : _conventions)
    ids += convention->getId();
  return ids;
}
