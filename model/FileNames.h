#pragma once

#include <QDateTime>
#include <QString>
#include <cstdint>
#include <filesystem>

namespace zarnet {

/// The name under which an encoding is offered for export: "Band - Song-Live - MP3 320 kbps.mp3" for the
/// title "Band - Song/Live". Every "/" of the title becomes "-" and everything else stays, so that the name
/// may be one that a file system refuses. `rate` is in kbps; the extension is that of `encoded`.
QString exportFileName(QString title, const QString& codec, std::int64_t rate,
                       const std::filesystem::path& encoded);

/// The name under which a results image is offered: "Zarnet Results 2026-11-16 09-04-05.png", in the local
/// time of `now`, whatever the user's locale.
QString resultsFileName(const QDateTime& now);

/// The extension of a file's name, without its full stop.
QString fileExtension(const std::filesystem::path& file);

}  // namespace zarnet
