#include "basic/error/NbeUserError.h"
#include "geos/vmodel/NgmVModel.h"

#include <QByteArray>
#include <QDataStream>

#include <cstdint>
#include <cstdlib>

namespace {

QByteArray toBytes(const NgmVModel &model)
{
  QByteArray bytes;
  QDataStream stream(&bytes, QIODevice::WriteOnly);
  model.serialize(stream);
  return bytes;
}

}  // namespace

/// The binary form of a model. One that is read gives the same bytes when it is written and read
/// again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
  NgmVModel model(1);
  try {
    QDataStream stream(QByteArray(reinterpret_cast<const char *>(data), int(size)));
    model.unserialize(stream);
  } catch (const NbeUserError &) {
    return 0;
  }
  const QByteArray written = toBytes(model);
  NgmVModel again(1);
  QDataStream stream(written);
  again.unserialize(stream);
  if (toBytes(again) != written)
    std::abort();
  return 0;
}
