#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zarnet::test {

// The pieces of tagged files, byte for byte.

std::string bigEndian(std::uint64_t number, int bytes);
std::string littleEndian(std::uint64_t number, int bytes);

/// A chunk of a RIFF or IFF file, padded to an even size.
std::string riffChunk(std::string_view id, std::string_view content);
std::string iffChunk(std::string_view id, std::string_view content);

/// A WAVE or AIFF file around these chunks. There is no sound in it.
std::string waveFile(std::string_view chunks);
std::string aiffFile(std::string_view chunks);

/// An atom of an MPEG-4 file.
std::string atom(std::string_view id, std::string_view content);
/// An item of its list, with one "data" atom of that type (1 is UTF-8, 2 UTF-16, 13 JPEG).
std::string listItem(std::string_view id, std::uint32_t type, std::string_view value);
/// An MPEG-4 file around the items.
std::string mpeg4File(std::string_view items);

/// A frame of an ID3v2 tag of version 2.`version` and the tag around frames. `flags` are the frame's two
/// bytes.
std::string id3Frame(int version, std::string_view id, std::string_view content, std::uint16_t flags = 0);
std::string id3Tag(int version, std::string_view frames);
/// The content of a text frame in UTF-8 and of a picture frame.
std::string id3Text(std::string_view text);
std::string id3Picture(std::string_view picture, char kind = 3);

/// A metadata block of a FLAC file: comments ("KEY=value") and pictures.
std::string flacComments(const std::vector<std::string>& comments);
std::string flacPicture(std::string_view picture, std::uint32_t kind = 3);
/// A FLAC file with these blocks and no sound.
std::string flacFile(std::string_view blocks);

}  // namespace zarnet::test
