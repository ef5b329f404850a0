#include "app/io/TextFile.h"

#include "app/console/Interruption.h"
#include "basic/error/NbeUserError.h"

#include <QObject>

namespace orvenal {

TextFile::TextFile(const QString &path, const QString &shownName)
    : _file(path), _shownName(shownName)
{
  if (!_file.open(QIODevice::WriteOnly | QIODevice::Truncate))
    throw NbeUserError(
        QObject::tr("%1: cannot be written: %2").arg(_shownName, _file.errorString()));
}

void TextFile::flushSome()
{
  constexpr int enough = 1 << 20;
  if (_text.size() > enough)
    _flush();
}

void TextFile::finish()
{
  _flush();
  _file.close();
}

void TextFile::_flush()
{
  Interruption::check();
  if (_file.write(_text) != _text.size() || !_file.flush())
    throw NbeUserError(
        QObject::tr("%1: cannot be written: %2").arg(_shownName, _file.errorString()));
  _text.resize(0);
}

}  // namespace orvenal
