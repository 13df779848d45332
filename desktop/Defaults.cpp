#include "desktop/Defaults.h"

#include "desktop/AtomicFile.h"
#include "system/FileHandle.h"
#include "system/FileSystem.h"
#include "system/PlatformError.h"

#include <QByteArray>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QStandardPaths>
#include <utility>

namespace zarnet {

namespace {

/// More than any file of ours; anything longer is damaged.
constexpr qsizetype longestFile = 1 << 20;

QJsonObject stored(const std::filesystem::path& path) {
  try {
    FileHandle file = FileHandle::openForReading(path);
    QByteArray bytes(longestFile, Qt::Uninitialized);
    bytes.truncate(static_cast<qsizetype>(file.read(bytes.data(), longestFile)));
    return QJsonDocument::fromJson(bytes).object();
  } catch (const PlatformError&) {
    return {};
  }
}

void store(const std::filesystem::path& path, const QString& key, const QJsonValue& value) {
  QJsonObject values = stored(path);
  values.insert(key, value);
  try {
    createFolders(path.parent_path());
    writeAtomically(path, QJsonDocument(values).toJson().toStdString());
  } catch (const PlatformError&) {
    // A setting that cannot be kept still holds until the program ends.
  }
}

}  // namespace

std::filesystem::path Defaults::standardFile() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  return std::filesystem::path(QFile::encodeName(folder).toStdString()) / "zarnet" / "defaults.json";
}

Defaults::Defaults(std::filesystem::path location) : file(std::move(location)) {}

std::optional<bool> Defaults::boolean(const QString& key) const {
  const QJsonValue value = stored(file).value(key);
  return value.isBool() ? std::optional(value.toBool()) : std::nullopt;
}

std::optional<QString> Defaults::text(const QString& key) const {
  const QJsonValue value = stored(file).value(key);
  return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

void Defaults::setBoolean(const QString& key, bool value) const {
  store(file, key, value);
}

void Defaults::setText(const QString& key, const QString& value) const {
  store(file, key, value);
}

}  // namespace zarnet
