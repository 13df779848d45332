#pragma once

#include "media/TagFile.h"
#include "media/TagValues.h"

namespace zarnet {

// Tags of the containers that are a sequence of named chunks. Only what leads to a tag is read; damage ends
// the reading and nothing raises.

/// RIFF WAVE, also with 64-bit sizes (RF64, BW64): the list of INFO texts and an ID3v2 chunk.
void readWaveTags(TagFile& file, FoundTags& tags);

/// AIFF and AIFF-C: the text chunks and an ID3v2 chunk.
void readAiffTags(TagFile& file, FoundTags& tags);

/// MPEG-4: the items of every "ilst" atom in the places where one belongs.
void readMpeg4Tags(TagFile& file, FoundTags& tags);

}  // namespace zarnet
