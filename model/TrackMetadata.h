#pragma once

#include "media/MediaTags.h"

#include <QImage>
#include <QString>
#include <filesystem>
#include <optional>

namespace zarnet {

/// A file's tags, cleaned.
struct TrackMetadata {
  QString title;  ///< never empty for a file with a name: without a tag it is that name without extension
  std::optional<QString> artist;
  std::optional<QString> album;

  /// "Artist - Title", or the title alone without an artist.
  QString displayTitle() const;
};

/// The title, artist and album of a file. Each is the first of these that leaves any text once it has been
/// cleaned: the container's own fields, ID3 frames (TIT2, TPE1, TALB), plain info keys. Cleaning replaces
/// each control or format character (Unicode categories Cc and Cf) by one space, keeps inner runs of spaces
/// and trims white space at both ends. Never fails: what cannot be read is absent. Any thread, not for the
/// interface's.
TrackMetadata importedTrackMetadata(const std::filesystem::path& url);
/// The same from the tags of the file `url`.
TrackMetadata trackMetadata(const MediaTags& tags, const std::filesystem::path& url);

/// The first picture in a file's tags that can be decoded, in the order of the file, as a thumbnail of at
/// most 256 pixels along its longer side, upright and never enlarged. None when there is no such picture, or
/// when two seconds have gone into pictures that are none. Never fails. Any thread, not for the interface's.
std::optional<QImage> importedTrackArtwork(const std::filesystem::path& url);

}  // namespace zarnet
