#include "media/FlacTags.h"

#include "media/ByteOrder.h"

#include <algorithm>
#include <cctype>
#include <string>

namespace zarnet {

namespace {

/// Enough for the name of any comment that is read.
constexpr std::int64_t longestName = 32;

void readComment(TagFile& file, std::int64_t start, std::int64_t end, FoundTags& tags) {
  std::string name = file.bytes(start, std::min(end - start, longestName));
  name.resize(std::min(name.find('='), name.size()));
  std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::toupper(c); });
  const std::int64_t value = start + std::ssize(name) + 1;
  const auto appendTo = [&](std::vector<std::string>& texts) {
    appendText(texts, file.bytes(value, std::min(end - value, longestText)), windowsText);
  };
  if (name == "TITLE") appendTo(tags.texts.own.title);
  if (name == "ARTIST") appendTo(tags.texts.own.artist);
  if (name == "ALBUM") appendTo(tags.texts.own.album);
  if (name == "METADATA_BLOCK_PICTURE")
    tags.pictures.push_back({value, end - value, StoredPicture::Form::base64Block});
  if (name == "COVERART") tags.pictures.push_back({value, end - value, StoredPicture::Form::base64});
}

/// Reads comments. Each stands behind its size; before them stand, likewise, the name of the program that
/// wrote them, and their number.
void readComments(TagFile& file, std::int64_t start, std::int64_t end, FoundTags& tags) {
  const auto takeNumber = [&]() -> std::int64_t {
    const std::string bytes = file.bytes(start, std::min<std::int64_t>(end - start, 4));
    start += 4;
    return bytes.size() < 4 ? end : loadLittleEndian<std::uint32_t>(bytes.data());
  };
  start += takeNumber();
  for (std::int64_t left = takeNumber(); left > 0; --left) {
    const std::int64_t size = takeNumber();
    if (size > end - start) return;
    readComment(file, start, start + size, tags);
    start += size;
  }
}

void readPicture(TagFile& file, std::int64_t start, std::int64_t size, FoundTags& tags) {
  constexpr std::int64_t mostBeforePicture = 4096;
  const Stretch picture = pictureInBlock(file.bytes(start, std::min(size, mostBeforePicture)), size);
  tags.pictures.push_back({start + picture.offset, picture.size});
}

}  // namespace

void readFlacTags(TagFile& file, std::int64_t start, FoundTags& tags) {
  enum : unsigned { vorbisComment = 4, picture = 6 };
  bool hasComments = false;
  bool isLast = false;
  for (start += 4; !isLast;) {
    const std::string header = file.bytes(start, 4);
    if (header.size() < 4) return;
    const auto fields = loadBigEndian<std::uint32_t>(header.data());
    isLast = fields >> 31 != 0;
    const unsigned type = fields >> 24 & 0x7F;
    const std::int64_t size = fields & 0xFF'FFFF;
    start += 4;
    if (type == vorbisComment && !hasComments) readComments(file, start, start + size, tags);
    if (type == picture) readPicture(file, start, size, tags);
    hasComments = hasComments || type == vorbisComment;
    start += size;
  }
}

Stretch pictureInBlock(std::string_view head, std::int64_t size) {
  constexpr std::int64_t sizesAndColours = 16;
  std::int64_t place = 4;  // behind the kind of cover
  const auto takeNumber = [&]() -> std::int64_t {
    if (place + 4 > std::ssize(head)) return size;
    place += 4;
    return loadBigEndian<std::uint32_t>(&head[static_cast<std::size_t>(place - 4)]);
  };
  place += takeNumber();  // media type
  place += takeNumber();  // description
  place += sizesAndColours;
  const std::int64_t pictureSize = takeNumber();
  return place < size ? Stretch{place, std::min(pictureSize, size - place)} : Stretch{};
}

}  // namespace zarnet
