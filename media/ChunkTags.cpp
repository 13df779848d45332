#include "media/ChunkTags.h"

#include "media/Id3Frames.h"
#include "media/TagValues.h"

#include <algorithm>
#include <functional>
#include <span>

namespace zarnet {

namespace {

using TagLib::ByteVector;
using TagLib::IOStream;

/// No honest file comes near; a made-up one is not followed to its end.
constexpr std::size_t mostChunks = 10'000;
constexpr unsigned int unknownSize = 0xFFFFFFFF;
constexpr const char* macText = "macintosh";

/// A named stretch of a file: where its content lies.
struct Chunk {
  ByteVector id;
  long start;
  long end;
};

using Visit = std::function<void(const Chunk&)>;

ByteVector bytesAt(IOStream& file, long offset, long count) {
  file.seek(offset);
  return file.readBlock(static_cast<TagLib::ulong>(std::max(count, 0L)));
}

/// A chunk's content, with no more than the one byte that shows that it is longer than `most`.
ByteVector content(IOStream& file, const Chunk& chunk, std::size_t most) {
  return bytesAt(file, chunk.start, std::min(chunk.end - chunk.start, static_cast<long>(most) + 1));
}

enum class ByteOrder { little, big };

/// Visits the chunks that a RIFF or IFF file or list has between two places.
void eachChunk(IOStream& file, long start, long end, ByteOrder order, const Visit& visit) {
  long longDataSize = 0;
  for (std::size_t count = 0; count < mostChunks && start + 8 <= end; ++count) {
    const ByteVector header = bytesAt(file, start, 8);
    if (header.size() < 8) return;
    start += 8;
    const ByteVector id = header.mid(0, 4);
    const unsigned int stated = header.toUInt(4, order == ByteOrder::big);
    const bool isLong = stated == unknownSize && id == "data" && longDataSize > 0;
    const long size = std::min(isLong ? longDataSize : long{stated}, end - start);
    if (id == "ds64") longDataSize = static_cast<long>(bytesAt(file, start + 8, 8).toLongLong(false));
    visit({id, start, start + size});
    start += size;
    // Some writers forget to pad a chunk of odd size; no chunk's name begins with NUL.
    if (size % 2 != 0 && bytesAt(file, start, 1) == ByteVector('\0')) ++start;
  }
}

/// Reads the first ID3v2 chunk of a RIFF or IFF file and visits all others. A tag states its own size and may
/// reach behind its chunk: if many were read, each might be the rest of the file.
void eachOuterChunk(IOStream& file, ByteOrder order, MediaTags& tags, const Visit& visit) {
  constexpr long header = 12;
  bool hasId3 = false;
  eachChunk(file, header, file.length(), order, [&](const Chunk& chunk) {
    if (chunk.id != "id3 " && chunk.id != "ID3 ") return visit(chunk);
    if (!hasId3) readId3(file, chunk.start, tags);
    hasId3 = true;
  });
}

/// Visits the atoms that an MPEG-4 file has between two places.
void eachAtom(IOStream& file, long start, long end, const Visit& visit) {
  for (std::size_t count = 0; count < mostChunks && start + 8 <= end; ++count) {
    const ByteVector header = bytesAt(file, start, 16);
    if (header.size() < 8) return;
    long headerSize = 8;
    long size = header.toUInt(0U, true);
    if (size == 0) size = end - start;
    if (size == 1) {
      headerSize = 16;
      size = static_cast<long>(header.toLongLong(8U, true));
    }
    const long next = start + std::min(size, end - start);
    if (next < start + headerSize) return;
    visit({header.mid(4, 4), start + headerSize, next});
    start = next;
  }
}

/// Where the atoms within an atom begin. The files of one family put four bytes before those of "meta".
long firstInside(IOStream& file, const Chunk& atom) {
  if (atom.id != "meta" || bytesAt(file, atom.start + 4, 4) == "hdlr") return atom.start;
  return atom.start + 4;
}

/// Visits the atoms at the end of a path of names.
void eachAtom(IOStream& file, long start, long end, std::span<const char* const> path, const Visit& visit) {
  eachAtom(file, start, end, [&](const Chunk& atom) {
    if (atom.id != path.front()) return;
    if (path.size() == 1) return visit(atom);
    eachAtom(file, firstInside(file, atom), atom.end, path.subspan(1), visit);
  });
}

/// Appends the value of an item's "data" atom to whatever field the item is.
void readItem(IOStream& file, const ByteVector& item, const Chunk& data, MediaTags& tags) {
  enum : unsigned int { untyped = 0, utf8 = 1, utf16 = 2 };
  const unsigned int type = bytesAt(file, data.start, 4).toUInt(true);
  const Chunk value{data.id, std::min(data.start + 8, data.end), data.end};
  if (item == "covr") return appendPicture(tags.pictures, content(file, value, largestPicture));

  std::vector<std::string>& texts = item == "\251nam"   ? tags.own.title
                                    : item == "\251ART" ? tags.own.artist
                                                        : tags.own.album;
  if (type == untyped || type == utf8) appendText(texts, content(file, value, longestText), windowsText);
  if (type == utf16) appendUTF16(texts, content(file, value, longestText));
}

}  // namespace

void readWaveTags(IOStream& file, MediaTags& tags) {
  eachOuterChunk(file, ByteOrder::little, tags, [&](const Chunk& chunk) {
    if (chunk.id != "LIST" || bytesAt(file, chunk.start, 4) != "INFO") return;
    eachChunk(file, chunk.start + 4, chunk.end, ByteOrder::little, [&](const Chunk& info) {
      const auto appendTo = [&](std::vector<std::string>& texts) {
        appendText(texts, content(file, info, longestText), windowsText);
      };
      if (info.id == "INAM") appendTo(tags.info.title);
      if (info.id == "IART") appendTo(tags.info.artist);
      if (info.id == "IPRD") appendTo(tags.info.album);
    });
  });
}

void readAiffTags(IOStream& file, MediaTags& tags) {
  eachOuterChunk(file, ByteOrder::big, tags, [&](const Chunk& chunk) {
    if (chunk.id == "NAME") appendText(tags.info.title, content(file, chunk, longestText), macText);
    if (chunk.id == "AUTH") appendText(tags.info.artist, content(file, chunk, longestText), macText);
  });
}

void readMpeg4Tags(IOStream& file, MediaTags& tags) {
  constexpr const char* list[] = {"moov", "udta", "meta", "ilst"};
  eachAtom(file, 0, file.length(), list, [&](const Chunk& items) {
    eachAtom(file, items.start, items.end, [&](const Chunk& item) {
      if (item.id != "\251nam" && item.id != "\251ART" && item.id != "\251alb" && item.id != "covr") return;
      constexpr const char* values[] = {"data"};
      eachAtom(file, item.start, item.end, values,
               [&](const Chunk& data) { readItem(file, item.id, data, tags); });
    });
  });
}

}  // namespace zarnet
