#pragma once

#include <QImage>
#include <QString>
#include <filesystem>
#include <optional>
#include <string>

namespace zarnet {

/// One imported track. Two songs with equal `id` are the same track, whatever their other fields. Cheap to
/// copy: texts and the picture are shared.
struct Song {
  std::string id;             ///< the file's location, absolute, with "." and ".." resolved by name and links
                              ///< left alone; the exact bytes, since two names may look alike as text
  std::filesystem::path url;  ///< the file as it was handed in
  QString title;              ///< `TrackMetadata::displayTitle`: on screen, in answers, in export file names
  QString detail;             ///< `AudioInfo::summary`
  double duration = 0;        ///< seconds, in (0, 1200]
  QString trackTitle;
  std::optional<QString> artist;
  std::optional<QString> album;
  std::optional<QImage> artwork;  ///< at most 256 pixels along the longer side
};

}  // namespace zarnet
