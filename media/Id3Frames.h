#pragma once

#include "media/MediaTags.h"

#include <taglib/id3v2framefactory.h>
#include <taglib/id3v2tag.h>
#include <taglib/tiostream.h>

namespace zarnet {

/// TagLib lets only frames name the type that it hands to frame factories.
struct FrameTypes : TagLib::ID3v2::Frame {
  using TagLib::ID3v2::Frame::Header;
};

/// Makes TagLib parse the frames of one tag that Zarnet reads (title, artist, album, pictures) and pass over
/// all others, and over compressed ones: chapters nest without limit, and a few bytes inflate to any size. A
/// tag of more than 10,000 frames is read no further.
class WantedFrames : public TagLib::ID3v2::FrameFactory {
 public:
  WantedFrames() = default;

 protected:
  bool updateFrame(FrameTypes::Header* header) const override;

 private:
  mutable int frames = 0;
};

/// Appends the texts and pictures of an ID3v2 tag that was read with `WantedFrames` to `tags`.
void appendId3Frames(const TagLib::ID3v2::Tag& tag, MediaTags& tags);

/// Reads the ID3v2 tag that begins at `offset`, if one does, and appends what it holds.
void readId3(TagLib::IOStream& file, long offset, MediaTags& tags);

}  // namespace zarnet
