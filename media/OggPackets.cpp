#include "media/OggPackets.h"

#include "media/ByteOrder.h"
#include "system/DisplayText.h"
#include "system/PlatformError.h"

#include <algorithm>
#include <new>

namespace zarnet {

namespace {

constexpr long pieceBytes = 64L * 1024;

int serialNumberOf(const FileHandle& file, std::int64_t page) {
  constexpr std::int64_t place = 14;
  std::byte bytes[4] = {};
  file.readAt(page + place, bytes, sizeof bytes);
  return loadLittleEndian<int>(bytes);
}

}  // namespace

OggPackets::OggPackets(const FileHandle& source, std::int64_t firstPage, std::int64_t offset)
    : file(source),
      position(offset),
      serialNumber(serialNumberOf(source, firstPage)),
      started(offset != firstPage) {
  ogg_sync_init(&pages);
  if (ogg_stream_init(&packets, serialNumber) != 0) throw std::bad_alloc();
}

OggPackets::~OggPackets() {
  ogg_stream_clear(&packets);
  ogg_sync_clear(&pages);
}

std::size_t OggPackets::read(std::byte* target, std::size_t bytes) {
  std::size_t done = 0;
  while (done < bytes && (!rest.empty() || nextFrame())) {
    const std::size_t count = std::min(bytes - done, rest.size());
    std::copy_n(rest.begin(), count, target + done);
    rest = rest.subspan(count);
    done += count;
  }
  return done;
}

bool OggPackets::nextFrame() {
  constexpr unsigned char startOfFrame = 0xFF;  // no metadata block starts with it
  for (;;) {
    ogg_packet packet;
    const int result = ogg_stream_packetout(&packets, &packet);
    if (result == 0 && !nextPage()) return false;
    if (result <= 0 || packet.bytes == 0 || packet.packet[0] != startOfFrame) continue;
    rest = std::as_bytes(std::span(packet.packet, static_cast<std::size_t>(packet.bytes)));
    return true;
  }
}

bool OggPackets::nextPage() {
  for (;;) {
    ogg_page page;
    const int result = ogg_sync_pageout(&pages, &page);
    if (result == 0 && !fill()) return false;
    if (result <= 0) continue;
    const bool first = ogg_page_bos(&page) != 0;
    if (first && started) {
      throw PlatformError(quotedName(file.location()) +
                          " could not be decoded: It holds several streams one behind the other.");
    }
    started = !first;
    if (ogg_page_serialno(&page) != serialNumber) continue;
    if (ogg_stream_pagein(&packets, &page) == 0) return true;
  }
}

bool OggPackets::fill() {
  char* target = ogg_sync_buffer(&pages, pieceBytes);
  if (!target) throw std::bad_alloc();
  const std::size_t count = file.readAt(position, target, pieceBytes);
  position += static_cast<std::int64_t>(count);
  ogg_sync_wrote(&pages, static_cast<long>(count));
  return count > 0;
}

}  // namespace zarnet
