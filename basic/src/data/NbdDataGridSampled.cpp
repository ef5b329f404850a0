#include "basic/data/NbdDataGridSampled.h"

NbdDataGridSampled::NbdDataGridSampled() = default;

NbdDataGridSampled::~NbdDataGridSampled() = default;

NbdDataGridSampled *NbdDataGridSampled::makeCopy() const
{
  return new NbdDataGridSampled(*this);
}
