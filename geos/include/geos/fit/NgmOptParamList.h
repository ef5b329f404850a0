#pragma once

#include "geos/fit/NgmOptParam.h"

#include <QMap>
#include <QVector>

#include <cstddef>
#include <vector>

/// Parameters by what they control, in the order of their ids: nugget first, then structure by
/// structure sills, auxiliary parameters, ranges and angles.
class NgmOptParamList : public QMap<NgmOptParamId, NgmOptParam>
{
};

/// Walks over a list, or over those of its parameters whose ids are given; always in the order of
/// the list. The list must not gain or lose parameters meanwhile.
template <class List, class Iterator, class Param>
class NgmOptParamListWalk
{
public:
  explicit NgmOptParamListWalk(List &list, const QVector<NgmOptParamId> &ids = {})
  {
    for (Iterator it = list.begin(); it != list.end(); ++it) {
      if (ids.isEmpty() || ids.contains(it.key()))
        _items.push_back(it);
    }
  }

  bool hasNext() const { return _next < _items.size(); }

  /// Goes to the next parameter, which key() and value() then give.
  Param &next()
  {
    ++_next;
    return value();
  }

  const NgmOptParamId &key() const { return _items[_next - 1].key(); }
  Param &value() const { return *_items[_next - 1]; }

private:
  std::vector<Iterator> _items;
  std::size_t _next = 0;
};

using NgmOptParamListIterator =
    NgmOptParamListWalk<const NgmOptParamList, NgmOptParamList::const_iterator, const NgmOptParam>;
using NgmOptParamListMutableIterator =
    NgmOptParamListWalk<NgmOptParamList, NgmOptParamList::iterator, NgmOptParam>;
