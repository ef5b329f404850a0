#include "basic/data/NbdMacroIndexInfo.h"

#include "basic/data/NbdMacroIndex.h"
#include "basic/error/NbeAssertion.h"

#include <QDataStream>
#include <QSet>

bool NbdMacroIndexInfo::isConsistent(const NbdMacroIndex &index) const
{
  return _type == NbdEMacroIndexType::INTEGER ? index.isInteger() : index.isText();
}

void NbdMacroIndexInfo::checkConsistency(const QList<NbdMacroIndex> &indices) const
{
  QSet<NbdMacroIndex> known;
  for (const NbdMacroIndex &index : indices) {
    if (!isConsistent(index))
      NBE_FAIL(QStringLiteral("macro index '%1' is not of type %2")
                   .arg(index.toString(), _type.getKeyString()));
    if (known.contains(index))
      NBE_FAIL(QStringLiteral("macro index '%1' comes twice").arg(index.toString()));
    known.insert(index);
  }
}

QDataStream &operator<<(QDataStream &stream, const NbdMacroIndexInfo &info)
{
  return stream << qint8(info.getType().getValue()) << info.getName();
}

QDataStream &operator>>(QDataStream &stream, NbdMacroIndexInfo &info)
{
  qint8 type = 0;
  QString name;
  stream >> type >> name;
  if (type == NbdEMacroIndexType::E_INTEGER)
    info = NbdMacroIndexInfo(NbdEMacroIndexType::INTEGER, name);
  else if (type == NbdEMacroIndexType::E_STRING)
    info = NbdMacroIndexInfo(NbdEMacroIndexType::STRING, name);
  else
    stream.setStatus(QDataStream::ReadCorruptData);
  return stream;
}
