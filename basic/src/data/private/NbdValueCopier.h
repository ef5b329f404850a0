#pragma once

#include "basic/data/NbdIVariableVisitor.h"
#include "basic/data/NbdValueConversion.h"
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

/// Copies n values of the visited variable, from position `first` on, to `out` as values of type T.
/// isDone() tells afterwards whether there is such a conversion.
template <class T>
class NbdValueCopier : public NbdIVariableVisitor
{
public:
  NbdValueCopier(int first, int n, T *out) : _first(first), _n(n), _out(out) {}

  bool isDone() const { return _isDone; }

  void visit(const NbdVariableDouble &variable) override { _copy(variable.getArrayConst()); }
  void visit(const NbdVariableFloat &variable) override { _copy(variable.getArrayConst()); }
  void visit(const NbdVariableInt32 &variable) override { _copy(variable.getArrayConst()); }
  void visit(const NbdVariableInt64 &variable) override { _copy(variable.getArrayConst()); }
  void visit(const NbdVariableSelection &variable) override { _copy(variable.getArrayConst()); }
  void visit(const NbdVariableEnum &variable) override { _copy(variable.getArrayConst()); }
  void visit(const NbdVariableAlpha &variable) override { _copy(variable.getArrayConst()); }
  void visit(const NbdVariablePoint3D &variable) override { _copy(variable.getArrayConst()); }
  void visit(const NbdVariableColor &variable) override { _copy(variable.getArrayConst()); }
  void visit(const NbdVariableMulti &variable) override
  {
    if (variable.getNRealizations() > 0)
      _copy(variable.getArrayConst(variable.getCurrentRealizationRank()));
  }

private:
  template <class From>
  void _copy(const From *in)
  {
    if constexpr (nbdIsConvertible<T, From>) {
      nbdConvertArray(in + _first, _n, _out);
      _isDone = true;
    } else {
      Q_UNUSED(in)
    }
  }

  int _first;
  int _n;
  T *_out;
  bool _isDone = false;
};
