#pragma once

#include "basic/data/NbdIVariableMutator.h"
#include "basic/data/NbdIVariableVisitor.h"
#include "basic/data/NbdVariableAlpha.h"
#include "basic/data/NbdVariableColor.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableEnum.h"
#include "basic/data/NbdVariableFloat.h"
#include "basic/data/NbdVariableInt32.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/data/NbdVariableMulti.h"
#include "basic/data/NbdVariablePoint3D.h"
#include "basic/data/NbdVariableSelection.h"

/// Calls `function` with the values of a variable: a pointer of its storage type, to the current
/// realization of a multi-realization variable.
template <class Function>
void withArray(const NbdAVariable &variable, const Function &function)
{
  struct Visitor : NbdIVariableVisitor
  {
    explicit Visitor(const Function &given) : call(given) {}
    void visit(const NbdVariableDouble &v) override { call(v.getArrayConst()); }
    void visit(const NbdVariableFloat &v) override { call(v.getArrayConst()); }
    void visit(const NbdVariableInt32 &v) override { call(v.getArrayConst()); }
    void visit(const NbdVariableInt64 &v) override { call(v.getArrayConst()); }
    void visit(const NbdVariableSelection &v) override { call(v.getArrayConst()); }
    void visit(const NbdVariableEnum &v) override { call(v.getArrayConst()); }
    void visit(const NbdVariableMulti &v) override
    {
      call(v.getArrayConst(v.getCurrentRealizationRank()));
    }
    void visit(const NbdVariableAlpha &v) override { call(v.getArrayConst()); }
    void visit(const NbdVariablePoint3D &v) override { call(v.getArrayConst()); }
    void visit(const NbdVariableColor &v) override { call(v.getArrayConst()); }
    const Function &call;
  };
  Visitor visitor(function);
  variable.acceptVisitor(visitor);
}

/// The same for writing.
template <class Function>
void withArray(NbdAVariable &variable, const Function &function)
{
  struct Mutator : NbdIVariableMutator
  {
    explicit Mutator(const Function &given) : call(given) {}
    void mutate(NbdVariableDouble &v) override { call(v.getArray()); }
    void mutate(NbdVariableFloat &v) override { call(v.getArray()); }
    void mutate(NbdVariableInt32 &v) override { call(v.getArray()); }
    void mutate(NbdVariableInt64 &v) override { call(v.getArray()); }
    void mutate(NbdVariableSelection &v) override { call(v.getArray()); }
    void mutate(NbdVariableEnum &v) override { call(v.getArray()); }
    void mutate(NbdVariableMulti &v) override { call(v.getArray(v.getCurrentRealizationRank())); }
    void mutate(NbdVariableAlpha &v) override { call(v.getArray()); }
    void mutate(NbdVariablePoint3D &v) override { call(v.getArray()); }
    void mutate(NbdVariableColor &v) override { call(v.getArray()); }
    const Function &call;
  };
  Mutator mutator(function);
  variable.acceptMutator(mutator);
}
