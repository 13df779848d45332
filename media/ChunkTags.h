#pragma once

#include "media/MediaTags.h"

#include <taglib/tiostream.h>

namespace zarnet {

// Tags of the containers that are a sequence of named chunks. Only what leads to a tag is read; damage ends
// the reading and nothing raises.

/// RIFF WAVE, also with 64-bit sizes (RF64, BW64): the list of INFO texts and an ID3v2 chunk.
void readWaveTags(TagLib::IOStream& file, MediaTags& tags);

/// AIFF and AIFF-C: the text chunks and an ID3v2 chunk.
void readAiffTags(TagLib::IOStream& file, MediaTags& tags);

/// MPEG-4: the items of every "ilst" atom in the places where one belongs. TagLib's own reader follows atoms
/// into each other for as long as the stack lasts.
void readMpeg4Tags(TagLib::IOStream& file, MediaTags& tags);

}  // namespace zarnet
