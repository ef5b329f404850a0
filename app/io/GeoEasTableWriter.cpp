#include "app/io/GeoEasTableWriter.h"

#include "app/base/Suggestion.h"
#include "app/io/GeoEasText.h"
#include "basic/error/NbeUserError.h"

#include <QObject>

namespace orvenal {

GeoEasTableWriter::GeoEasTableWriter(const QString &path, const QString &shownName,
                                     const TableLayout &layout)
    : _file(path, shownName), _layout(layout)
{
  QStringList texts;
  QByteArray &head = _file.text();
  head = GeoEasText::title(_layout.title, _layout.undefinedMark) +
         QByteArray::number(_layout.columns.size()) + '\n';
  for (const TableLayout::Column &column : _layout.columns) {
    head += GeoEasText::name(column.name);
    if (column.isText)
      texts << column.name;
  }
  if (!texts.isEmpty())
    throw NbeUserError(
        QObject::tr("%1: GEO-EAS holds numbers only, but these columns are texts: %2")
            .arg(shownName, quotedList(texts)));
}

void GeoEasTableWriter::add(const TableRecord &record)
{
  QByteArray &text = _file.text();
  for (std::size_t i = 0; i < record.numbers.size(); ++i) {
    if (i > 0)
      text += ' ';
    GeoEasText::append(text, record.numbers[i], _layout.undefinedMark);
  }
  text += '\n';
  _file.flushSome();
}

}  // namespace orvenal
