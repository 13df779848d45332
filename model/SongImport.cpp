#include "model/SongImport.h"

#include "audio/AudioInfo.h"
#include "model/TrackMetadata.h"
#include "system/FileSystem.h"
#include "system/UserError.h"

namespace zarnet {

namespace {

Song importedSong(const std::filesystem::path& url) {
  const AudioInfo info = inspectAudio(url);
  const TrackMetadata metadata = importedTrackMetadata(url);
  Song song;
  song.id = standardized(absolutePath(url)).native();
  song.url = url;
  song.title = metadata.displayTitle();
  song.detail = QString::fromStdString(info.summary());
  song.duration = info.duration;
  song.trackTitle = metadata.title;
  song.artist = metadata.artist;
  song.album = metadata.album;
  song.artwork = importedTrackArtwork(url);
  return song;
}

}  // namespace

ImportedSongs importSongs(const std::vector<std::filesystem::path>& urls, const std::stop_token& stop) {
  ImportedSongs imported;
  for (const std::filesystem::path& url : urls) {
    if (stop.stop_requested()) break;
    try {
      imported.songs.push_back(importedSong(url));
    } catch (const std::exception& error) {
      imported.messages.push_back(QString::fromStdString(errorDescription(error)));
    }
  }
  return imported;
}

}  // namespace zarnet
