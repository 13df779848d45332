#include "media/ChunkTags.h"

#include "media/ByteOrder.h"
#include "media/Id3Frames.h"

#include <algorithm>
#include <functional>
#include <span>
#include <string>

namespace zarnet {

namespace {

constexpr std::uint32_t unknownSize = 0xFFFF'FFFF;
constexpr const char* macText = "macintosh";

/// A named stretch of a file: where its content lies.
struct Chunk {
  std::string id;
  std::int64_t start;
  std::int64_t end;
};

using Visit = std::function<void(const Chunk&)>;

/// As much of a chunk's content as a text may have.
std::string text(TagFile& file, const Chunk& chunk) {
  return file.bytes(chunk.start, std::min(chunk.end - chunk.start, longestText));
}

enum class ByteOrder { little, big };

/// Visits the chunks that a RIFF or IFF file or list has between two places.
void eachChunk(TagFile& file, std::int64_t start, std::int64_t end, ByteOrder order, const Visit& visit) {
  std::int64_t longDataSize = 0;
  while (start + 8 <= end) {
    const std::string header = file.bytes(start, 8);
    if (header.size() < 8) return;
    start += 8;
    const std::string id = header.substr(0, 4);
    const std::uint32_t stated = order == ByteOrder::big ? loadBigEndian<std::uint32_t>(&header[4])
                                                         : loadLittleEndian<std::uint32_t>(&header[4]);
    const bool isLong = stated == unknownSize && id == "data" && longDataSize > 0;
    const std::int64_t size = std::min(isLong ? longDataSize : std::int64_t{stated}, end - start);
    if (id == "ds64") {
      const std::string longSize = file.bytes(start + 8, 8);
      if (longSize.size() == 8) longDataSize = loadLittleEndian<std::int64_t>(longSize.data());
    }
    visit({id, start, start + size});
    start += size;
    // Some writers forget to pad a chunk of odd size; no chunk's name begins with NUL.
    if (size % 2 != 0 && file.bytes(start, 1) == std::string(1, '\0')) ++start;
  }
}

/// Reads the ID3v2 chunks of a RIFF or IFF file and visits all others.
void eachOuterChunk(TagFile& file, ByteOrder order, FoundTags& tags, const Visit& visit) {
  constexpr std::int64_t header = 12;
  eachChunk(file, header, file.size(), order, [&](const Chunk& chunk) {
    if (chunk.id != "id3 " && chunk.id != "ID3 ") return visit(chunk);
    readId3(file, chunk.start, chunk.end, tags);
  });
}

/// Visits the atoms that an MPEG-4 file has between two places.
void eachAtom(TagFile& file, std::int64_t start, std::int64_t end, const Visit& visit) {
  while (start + 8 <= end) {
    const std::string header = file.bytes(start, 16);
    if (header.size() < 8) return;
    std::int64_t headerSize = 8;
    std::int64_t size = loadBigEndian<std::uint32_t>(header.data());
    if (size == 0) size = end - start;
    if (size == 1 && header.size() == 16) {
      headerSize = 16;
      size = loadBigEndian<std::int64_t>(&header[8]);
    }
    const std::int64_t next = start + std::min(size, end - start);
    if (next < start + headerSize) return;
    visit({header.substr(4, 4), start + headerSize, next});
    start = next;
  }
}

/// Where the atoms within an atom begin. The files of one family put four bytes before those of "meta".
std::int64_t firstInside(TagFile& file, const Chunk& atom) {
  if (atom.id != "meta" || file.bytes(atom.start + 4, 4) == "hdlr") return atom.start;
  return atom.start + 4;
}

/// Visits the atoms at the end of a path of names.
void eachAtom(TagFile& file, std::int64_t start, std::int64_t end, std::span<const char* const> path,
              const Visit& visit) {
  eachAtom(file, start, end, [&](const Chunk& atom) {
    if (atom.id != path.front()) return;
    if (path.size() == 1) return visit(atom);
    eachAtom(file, firstInside(file, atom), atom.end, path.subspan(1), visit);
  });
}

/// Appends the value of an item's "data" atom to whatever field the item is.
void readItem(TagFile& file, const std::string& item, const Chunk& data, FoundTags& tags) {
  enum : std::uint32_t { untyped = 0, utf8 = 1, utf16 = 2 };
  const std::string type = file.bytes(data.start, 4);
  const Chunk value{data.id, std::min(data.start + 8, data.end), data.end};
  if (type.size() < 4) return;
  if (item == "covr") {
    tags.pictures.push_back({value.start, value.end - value.start});
    return;
  }
  TagFields& own = tags.texts.own;
  std::vector<std::string>& texts = item == "\251nam"   ? own.title
                                    : item == "\251ART" ? own.artist
                                                        : own.album;
  switch (loadBigEndian<std::uint32_t>(type.data())) {
    case untyped:
    case utf8:
      return appendText(texts, text(file, value), windowsText);
    case utf16:
      return appendText(texts, decoded(text(file, value), "UTF-16BE"));
    default:
      return;
  }
}

}  // namespace

void readWaveTags(TagFile& file, FoundTags& tags) {
  TagFields& info = tags.texts.info;
  eachOuterChunk(file, ByteOrder::little, tags, [&](const Chunk& list) {
    if (list.id != "LIST" || file.bytes(list.start, 4) != "INFO") return;
    eachChunk(file, list.start + 4, list.end, ByteOrder::little, [&](const Chunk& chunk) {
      if (chunk.id == "INAM") appendText(info.title, text(file, chunk), windowsText);
      if (chunk.id == "IART") appendText(info.artist, text(file, chunk), windowsText);
      if (chunk.id == "IPRD") appendText(info.album, text(file, chunk), windowsText);
    });
  });
}

void readAiffTags(TagFile& file, FoundTags& tags) {
  TagFields& info = tags.texts.info;
  eachOuterChunk(file, ByteOrder::big, tags, [&](const Chunk& chunk) {
    if (chunk.id == "NAME") appendText(info.title, text(file, chunk), macText);
    if (chunk.id == "AUTH") appendText(info.artist, text(file, chunk), macText);
  });
}

void readMpeg4Tags(TagFile& file, FoundTags& tags) {
  constexpr const char* list[] = {"moov", "udta", "meta", "ilst"};
  eachAtom(file, 0, file.size(), list, [&](const Chunk& items) {
    eachAtom(file, items.start, items.end, [&](const Chunk& item) {
      if (item.id != "\251nam" && item.id != "\251ART" && item.id != "\251alb" && item.id != "covr") return;
      constexpr const char* values[] = {"data"};
      eachAtom(file, item.start, item.end, values,
               [&](const Chunk& data) { readItem(file, item.id, data, tags); });
    });
  });
}

}  // namespace zarnet
