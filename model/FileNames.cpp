#include "model/FileNames.h"

#include <QLocale>

namespace zarnet {

QString exportFileName(QString title, const QString& codec, std::int64_t rate,
                       const std::filesystem::path& encoded) {
  return title.replace(u'/', u'-') + QStringLiteral(" - ") + codec + u' ' + QString::number(rate) +
         QStringLiteral(" kbps.") + fileExtension(encoded);
}

QString resultsFileName(const QDateTime& now) {
  return QStringLiteral("Zarnet Results ") +
         QLocale::c().toString(now.toLocalTime(), QStringLiteral("yyyy-MM-dd HH-mm-ss")) +
         QStringLiteral(".png");
}

QString fileExtension(const std::filesystem::path& file) {
  return QString::fromStdString(file.extension().string()).mid(1);
}

}  // namespace zarnet
