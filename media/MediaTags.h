#pragma once

#include <string>
#include <vector>

namespace zarnet {

/// The three tags that Zarnet shows, as one kind of source states them: values in the order of the file,
/// valid UTF-8, otherwise as they are stored (white space and control characters included). A text ends after
/// 4,096 characters; of a hundred values the rest is left out.
struct TagFields {
  std::vector<std::string> title;
  std::vector<std::string> artist;
  std::vector<std::string> album;

  bool operator==(const TagFields&) const = default;
};

/// What a media file says about itself, by kind of source.
struct MediaTags {
  TagFields own;   ///< the container's own fields: Vorbis comments, MPEG-4 items
  TagFields id3;   ///< ID3v2 frames TIT2, TPE1 and TALB, wherever they sit
  TagFields info;  ///< plain info keys: RIFF INFO, AIFF text chunks, the dictionary of any other container
};

}  // namespace zarnet
