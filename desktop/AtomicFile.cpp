#include "desktop/AtomicFile.h"

#include "system/DisplayText.h"
#include "system/PlatformError.h"

#include <QFile>
#include <QSaveFile>
#include <string>

#include <fcntl.h>

namespace zarnet {

void writeAtomically(const std::filesystem::path& path, std::string_view bytes) {
  const QByteArray location = QByteArray::fromStdString(path.native());
  const QString name = QFile::decodeName(location);
  const auto fail = [&](const std::string& reason) {
    throw PlatformError(quotedName(path) + " could not be written: " + reason + ".");
  };
  if (QFile::encodeName(name) != location) fail("Its location is not valid Unicode text");
  QSaveFile file(name);
  const auto size = static_cast<qint64>(bytes.size());
  if (!file.open(QIODevice::WriteOnly)) fail(file.errorString().toStdString());
  // Of a write that fits in part the library tells no reason; the system does when it is asked for the room.
  const int refusal = size > 0 ? posix_fallocate(file.handle(), 0, size) : 0;
  if (refusal != 0) throw systemError(path, "could not be written", refusal);
  if (file.write(bytes.data(), size) != size || !file.commit()) fail(file.errorString().toStdString());
}

}  // namespace zarnet
