#pragma once

#include "model/Song.h"

#include <QString>
#include <filesystem>
#include <stop_token>
#include <vector>

namespace zarnet {

/// What a batch of files has become.
struct ImportedSongs {
  std::vector<Song> songs;        ///< the accepted files, in the order given; one listed twice is here twice
  std::vector<QString> messages;  ///< why the others were refused, in the order given
};

/// Inspects files one after another and reads their tags and artwork; a refused one leaves its message and
/// the rest go on. Looks at `stop` between files and returns at once with what is there. Never raises for the
/// sake of a file. Any thread, not for the interface's.
ImportedSongs importSongs(const std::vector<std::filesystem::path>& urls, const std::stop_token& stop = {});

}  // namespace zarnet
