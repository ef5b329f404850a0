#include "app/io/CsvTableWriter.h"

#include "app/io/CsvText.h"

namespace orvenal {

CsvTableWriter::CsvTableWriter(const QString &path, const QString &shownName,
                               const TableLayout &layout)
    : _file(path, shownName), _layout(layout)
{
  QByteArray &text = _file.text();
  for (int i = 0; i < _layout.columns.size(); ++i) {
    if (i > 0)
      text += ',';
    text += CsvText::field(_layout.columns[i].name);
  }
  text += '\n';
}

void CsvTableWriter::add(const TableRecord &record)
{
  QByteArray &text = _file.text();
  for (int i = 0; i < _layout.columns.size(); ++i) {
    if (i > 0)
      text += ',';
    if (_layout.columns[i].isText)
      text += CsvText::field(record.texts[std::size_t(i)]);
    else
      CsvText::append(text, record.numbers[std::size_t(i)]);
  }
  text += '\n';
  _file.flushSome();
}

}  // namespace orvenal
