#include "media/MediaTagReader.h"

#include "media/ChunkTags.h"
#include "media/Id3Frames.h"
#include "media/LibAv.h"
#include "media/TagValues.h"
#include "system/FileHandle.h"

#include <algorithm>
#include <array>

#include <taglib/flacfile.h>
#include <taglib/flacpicture.h>
#include <taglib/tfilestream.h>
#include <taglib/xiphcomment.h>

namespace zarnet {

namespace {

using TagLib::ByteVector;
using TagLib::String;

bool isComplete(const TagFields& fields) {
  return !fields.title.empty() && !fields.artist.empty() && !fields.album.empty();
}

void appendComments(std::vector<std::string>& texts, const TagLib::Ogg::FieldListMap& comments,
                    const char* name) {
  for (const String& value : comments[name])
    appendText(texts, value.to8Bit(true));
}

void readFlacTags(TagLib::IOStream& stream, MediaTags& tags) {
  WantedFrames factory;
  TagLib::FLAC::File file(&stream, &factory, false);
  const auto appendPictures = [&](const TagLib::List<TagLib::FLAC::Picture*>& pictures) {
    for (const TagLib::FLAC::Picture* picture : pictures)
      appendPicture(tags.pictures, picture->data());
  };
  appendPictures(file.pictureList());
  // A damaged file may have either by its own account and yet none to give.
  if (TagLib::Ogg::XiphComment* own = file.xiphComment()) {
    const TagLib::Ogg::FieldListMap& comments = own->fieldListMap();
    appendComments(tags.own.title, comments, "TITLE");
    appendComments(tags.own.artist, comments, "ARTIST");
    appendComments(tags.own.album, comments, "ALBUM");
    appendPictures(own->pictureList());
  }
  if (const TagLib::ID3v2::Tag* id3 = file.ID3v2Tag()) appendId3Frames(*id3, tags);
}

void readDictionary(const AVDictionary* dictionary, TagFields& fields) {
  const auto append = [&](std::vector<std::string>& texts, const char* key) {
    const AVDictionaryEntry* entry = av_dict_get(dictionary, key, nullptr, 0);
    if (entry != nullptr) appendText(texts, ByteVector(entry->value), windowsText);
  };
  append(fields.title, "title");
  append(fields.artist, "artist");
  append(fields.album, "album");
}

/// What libav finds in a container that has no reader here.
void readInfo(const std::filesystem::path& path, MediaTags& tags) {
  const FileHandle source = FileHandle::openOrdinaryFile(path);
  const libav::InputFile file(source);
  readDictionary(file.context()->metadata, tags.info);
  readDictionary(file.audioStream()->metadata, tags.info);
}

/// Whether a FLAC stream begins at the start or right behind an ID3v2 tag.
bool isFlac(TagLib::IOStream& file, const ByteVector& head) {
  if (head.startsWith("fLaC")) return true;
  if (!head.startsWith("ID3")) return false;
  const TagLib::ID3v2::Header id3(head);
  file.seek(static_cast<long>(id3.completeTagSize()));
  return file.readBlock(4) == "fLaC";
}

bool isMpeg4(const ByteVector& firstAtom) {
  constexpr std::array first = {"ftyp", "moov", "mdat", "wide", "free", "skip"};
  return std::any_of(first.begin(), first.end(), [&](const char* name) { return firstAtom == name; });
}

void readTags(const std::filesystem::path& path, MediaTags& tags) {
  if (!std::filesystem::is_regular_file(path)) return;
  TagLib::FileStream file(path.c_str(), true);
  if (!file.isOpen()) return;
  const ByteVector head = file.readBlock(12);
  const ByteVector family = head.mid(0, 4);
  const ByteVector kind = head.mid(8, 4);
  if (isFlac(file, head)) return readFlacTags(file, tags);
  if ((family == "RIFF" || family == "RF64" || family == "BW64") && kind == "WAVE")
    return readWaveTags(file, tags);
  if (family == "FORM" && (kind == "AIFF" || kind == "AIFC")) return readAiffTags(file, tags);
  readId3(file, 0, tags);
  if (isMpeg4(head.mid(4, 4))) readMpeg4Tags(file, tags);
  if (!isComplete(tags.own)) readInfo(path, tags);
}

}  // namespace

MediaTags readMediaTags(const std::filesystem::path& path) {
  MediaTags tags;
  try {
    readTags(path, tags);
  } catch (const std::exception&) {  // what was found until then counts
  }
  return tags;
}

}  // namespace zarnet
