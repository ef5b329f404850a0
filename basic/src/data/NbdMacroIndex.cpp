#include "basic/data/NbdMacroIndex.h"

#include "basic/data/NbdMacroIndexInfo.h"

#include <QDataStream>
#include <QHash>

NbdMacroIndex NbdMacroIndex::fromString(const QString &text, const NbdMacroIndexInfo &info)
{
  if (info.getType() == NbdEMacroIndexType::STRING)
    return text.isEmpty() ? NbdMacroIndex() : NbdMacroIndex(text);
  bool isInteger = false;
  const int index = text.toInt(&isInteger);
  return isInteger ? NbdMacroIndex(index) : NbdMacroIndex();
}

QString NbdMacroIndex::toString() const
{
  return _kind == INTEGER ? QString::number(_integer) : _text;
}

QString NbdMacroIndex::toString(const NbdMacroIndexInfo &) const
{
  return toString();
}

bool NbdMacroIndex::operator<(const NbdMacroIndex &other) const
{
  if (_kind != other._kind)
    return _kind < other._kind;
  return _kind == INTEGER ? _integer < other._integer : _text < other._text;
}

QDataStream &operator<<(QDataStream &stream, const NbdMacroIndex &index)
{
  return stream << qint8(index._kind) << qint32(index._integer) << index._text;
}

QDataStream &operator>>(QDataStream &stream, NbdMacroIndex &index)
{
  qint8 kind = 0;
  qint32 integer = 0;
  QString text;
  stream >> kind >> integer >> text;
  switch (kind) {
    case NbdMacroIndex::INVALID:
      index = NbdMacroIndex();
      break;
    case NbdMacroIndex::INTEGER:
      index = NbdMacroIndex(integer);
      break;
    case NbdMacroIndex::TEXT:
      index = NbdMacroIndex(text);
      break;
    default:
      stream.setStatus(QDataStream::ReadCorruptData);
  }
  return stream;
}

uint qHash(const NbdMacroIndex &index, uint seed)
{
  return index.isText() ? qHash(index.getText(), seed) : qHash(index.getInteger(), seed);
}
