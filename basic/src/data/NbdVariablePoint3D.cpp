#include "basic/data/NbdVariablePoint3D.h"

#include "basic/data/NbdIVariableMutator.h"
#include "basic/data/NbdIVariableVisitor.h"

NbdVariablePoint3D::NbdVariablePoint3D(const NbdVariableDetails &details)
    : NbdAVariable_impl(details)
{
}

NbdVariablePoint3D::NbdVariablePoint3D(const QString &name)
    : NbdVariablePoint3D(NbdVariableDetails(name))
{
}

Nbd::EVariableType NbdVariablePoint3D::getVariableType() const
{
  return Nbd::TYPE_POINT;
}

std::unique_ptr<NbdAVariable> NbdVariablePoint3D::clone() const
{
  return std::make_unique<NbdVariablePoint3D>(*this);
}

void NbdVariablePoint3D::acceptVisitor(NbdIVariableVisitor &visitor) const
{
  visitor.visit(*this);
}

void NbdVariablePoint3D::acceptMutator(NbdIVariableMutator &mutator)
{
  mutator.mutate(*this);
}

QString NbdVariablePoint3D::getText(int position) const
{
  return isUndefined(position) ? NbbGlobal::STR_NA : getValue(position).toString();
}
