#include "basic/data/NbdVariableInt64.h"

#include "basic/data/NbdIVariableMutator.h"
#include "basic/data/NbdIVariableVisitor.h"

#include <algorithm>

NbdVariableInt64::NbdVariableInt64(const NbdVariableDetails &details)
    : NbdAVariableNumeric_impl(details)
{
}

NbdVariableInt64::NbdVariableInt64(const QString &name) : NbdVariableInt64(NbdVariableDetails(name))
{
}

Nbd::EVariableType NbdVariableInt64::getVariableType() const
{
  return Nbd::TYPE_INT64;
}

std::unique_ptr<NbdAVariable> NbdVariableInt64::clone() const
{
  return std::make_unique<NbdVariableInt64>(*this);
}

void NbdVariableInt64::acceptVisitor(NbdIVariableVisitor &visitor) const
{
  visitor.visit(*this);
}

void NbdVariableInt64::acceptMutator(NbdIVariableMutator &mutator)
{
  mutator.mutate(*this);
}

int NbdVariableInt64::findIntSorted(qint64 value) const
{
  const std::vector<qint64> &values = getVector();
  const auto found = std::lower_bound(values.begin(), values.end(), value);
  return found != values.end() && *found == value ? int(found - values.begin()) : -1;
}
