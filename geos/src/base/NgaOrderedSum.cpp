#include "geos/base/NgaOrderedSum.h"

#include "basic/error/NbeAssertion.h"
#include "geos/base/NgaIAdditive.h"

NgaOrderedSum::NgaOrderedSum() = default;
NgaOrderedSum::~NgaOrderedSum() = default;

void NgaOrderedSum::clear()
{
  _pending.clear();
}

void NgaOrderedSum::add(qint64 rank, std::unique_ptr<NgaIAdditive> partial)
{
  if (rank < 0)
    NBE_FAIL(QStringLiteral("No buffer was taken for this partial result."));
  qint64 first = rank;
  int level = 0;
  for (;;) {
    const qint64 length = qint64(1) << level;
    const bool isRight = (first / length) % 2 == 1;
    const auto sibling = _pending.find({isRight ? first - length : first + length, level});
    if (sibling == _pending.end())
      break;
    if (isRight) {
      sibling->second->doSum(*partial);
      partial = std::move(sibling->second);
      first -= length;
    } else {
      partial->doSum(*sibling->second);
    }
    _pending.erase(sibling);
    ++level;
  }
  std::unique_ptr<NgaIAdditive> &node = _pending[{first, level}];
  if (node)
    node->doSum(*partial);
  else
    node = std::move(partial);
}

void NgaOrderedSum::flushInto(NgaIAdditive &total)
{
  for (const auto &node : _pending)
    total.doSum(*node.second);
  _pending.clear();
}
