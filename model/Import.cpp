#include "model/NativeModel.h"
#include "system/UserError.h"

#include <QStringList>
#include <algorithm>
#include <iterator>
#include <string>
#include <unordered_set>
#include <utility>

namespace zarnet {

void NativeModel::importFiles(std::vector<std::filesystem::path> files) {
  if (!listEditable()) return;
  importing = true;
  inBackground(importThread, importing, [this, files = std::move(files)](const std::stop_token& stop) {
    ImportedSongs imported;
    try {
      imported = importSongs(files, stop);
    } catch (const std::exception& failure) {
      imported.messages.push_back(QString::fromStdString(errorDescription(failure)));
    }
    interfaceThread.post([this, imported = std::move(imported), stop]() mutable {
      if (stop.stop_requested()) {
        importing = false;
      } else {
        merge(std::move(imported));
      }
    });
  });
}

void NativeModel::merge(ImportedSongs imported) {
  std::unordered_set<std::string> known;
  for (const Song& song : *playlist)
    known.insert(song.id);
  std::erase_if(imported.songs, [&](const Song& song) { return !known.insert(song.id).second; });
  if (!imported.songs.empty()) {
    playlist.change(
        [&](std::vector<Song>& songs) { std::ranges::move(imported.songs, std::back_inserter(songs)); });
  }
  importing = false;
  if (imported.messages.empty()) return;
  error = QStringList(imported.messages.begin(), imported.messages.end()).join(QStringLiteral("\n\n"));
}

void NativeModel::choose() {
  if (!listEditable() || window == nullptr) return;
  OpenPanel panel;
  panel.title = QStringLiteral("Choose lossless audio");
  panel.choosesMultiple = true;
  panel.extensions = {"aif", "aiff", "wav", "flac", "m4a", "caf", "alac"};
  window->show(panel, [this, here = std::weak_ptr(alive)](std::vector<std::filesystem::path> files) {
    if (!here.expired() && !files.empty()) importFiles(std::move(files));
  });
}

void NativeModel::remove(const Song& song) {
  if (!listEditable()) return;
  playlist.change([id = song.id](std::vector<Song>& songs) {
    std::erase_if(songs, [&](const Song& other) { return other.id == id; });
  });
}

void NativeModel::clearSongs() {
  if (listEditable()) playlist = {};
}

}  // namespace zarnet
