#include "media/MediaTagReader.h"

#include "media/ChunkTags.h"
#include "media/FlacTags.h"
#include "media/Id3Frames.h"
#include "media/LibAv.h"
#include "media/TagFile.h"
#include "media/TagValues.h"

#include <algorithm>
#include <array>
#include <limits>

namespace zarnet {

namespace {

bool isComplete(const TagFields& fields) {
  return !fields.title.empty() && !fields.artist.empty() && !fields.album.empty();
}

bool isMpeg4(const std::string& firstAtom) {
  constexpr std::array first = {"ftyp", "moov", "mdat", "wide", "free", "skip"};
  return std::any_of(first.begin(), first.end(), [&](const char* name) { return firstAtom == name; });
}

/// Reads what has a reader here. Returns whether that is all there is.
bool readTags(TagFile& file, FoundTags& tags) {
  const std::string head = file.bytes(0, 12);
  if (head.size() < 12) return true;
  const std::string family = head.substr(0, 4);
  const std::string kind = head.substr(8, 4);
  if ((family == "RIFF" || family == "RF64" || family == "BW64") && kind == "WAVE") {
    readWaveTags(file, tags);
    return true;
  }
  if (family == "FORM" && (kind == "AIFF" || kind == "AIFC")) {
    readAiffTags(file, tags);
    return true;
  }
  if (isMpeg4(head.substr(4, 4))) readMpeg4Tags(file, tags);
  constexpr int mostTags = 16;
  FoundTags id3;
  std::int64_t start = 0;
  for (int i = 0; i < mostTags; ++i)
    start = readId3(file, start, file.size(), id3);
  const bool isFlac = file.bytes(start, 4) == "fLaC";
  if (isFlac) readFlacTags(file, start, tags);
  tags.texts.id3 = std::move(id3.texts.id3);
  tags.pictures.insert(tags.pictures.end(), id3.pictures.begin(), id3.pictures.end());
  return isFlac || isComplete(tags.texts.own);
}

void readDictionary(const AVDictionary* dictionary, TagFields& fields) {
  const auto append = [&](std::vector<std::string>& texts, const char* key) {
    const AVDictionaryEntry* entry = av_dict_get(dictionary, key, nullptr, 0);
    if (entry != nullptr) appendText(texts, entry->value, windowsText);
  };
  append(fields.title, "title");
  append(fields.artist, "artist");
  append(fields.album, "album");
}

/// What libav finds in a container that has no reader here.
void readInfo(const FileHandle& handle, TagFields& info) {
  const libav::InputFile file(handle);
  readDictionary(file.context()->metadata, info);
  readDictionary(file.audioStream()->metadata, info);
}

std::string fromBase64(std::string_view text) {
  std::string bytes;
  std::uint32_t bits = 0;
  int count = 0;
  for (const char letter : text) {
    constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const std::size_t digit = digits.find(letter);
    if (digit == std::string_view::npos) break;
    bits = bits << 6 | static_cast<std::uint32_t>(digit);
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> count);
  }
  return bytes;
}

/// The picture as it was before it came into the tag.
std::string encodedPicture(const FileHandle& handle, const StoredPicture& picture) {
  std::string stored(static_cast<std::size_t>(picture.size), '\0');
  stored.resize(handle.readAt(picture.offset, stored.data(), stored.size()));
  switch (picture.form) {
    case StoredPicture::Form::plain:
      break;
    case StoredPicture::Form::escaped:
      unescape(stored);
      break;
    case StoredPicture::Form::base64:
      return fromBase64(stored);
    case StoredPicture::Form::base64Block: {
      const std::string block = fromBase64(stored);
      const auto [offset, size] = pictureInBlock(block, std::ssize(block));
      return block.substr(static_cast<std::size_t>(offset), static_cast<std::size_t>(size));
    }
  }
  return stored;
}

}  // namespace

MediaTags readMediaTags(const std::filesystem::path& path) {
  FoundTags tags;
  try {
    const FileHandle handle = FileHandle::openOrdinaryFile(path);
    TagFile file(handle);
    if (!readTags(file, tags)) readInfo(handle, tags.texts.info);
  } catch (const std::exception&) {  // what was found until then counts
  }
  return tags.texts;
}

void eachPicture(const std::filesystem::path& path, const std::function<bool(const std::string&)>& take) {
  std::int64_t bytesLeft = std::int64_t{128} << 20;
  try {
    const FileHandle handle = FileHandle::openOrdinaryFile(path);
    TagFile file(handle);
    FoundTags tags;
    readTags(file, tags);
    for (const StoredPicture& picture : tags.pictures) {
      if (picture.size <= 0 || picture.size > bytesLeft) continue;
      bytesLeft -= picture.size;
      if (take(encodedPicture(handle, picture))) return;
    }
  } catch (const std::exception&) {  // what was found until then counts
  }
}

}  // namespace zarnet
