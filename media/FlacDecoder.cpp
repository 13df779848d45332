#include "media/FlacDecoder.h"

#include "media/SampleConversion.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace zarnet {

namespace {

constexpr std::size_t startBytes = 8 + FlacHeader::blockBytes;

/// A file's start as the library is to see it: with no other metadata.
std::array<std::byte, startBytes> startOfStream(const FlacHeader& header) {
  constexpr unsigned char lastBlockOf34Bytes[] = {'f', 'L', 'a', 'C', 0x80, 0, 0, 34};
  std::array<std::byte, startBytes> bytes;
  std::memcpy(bytes.data(), lastBlockOf34Bytes, sizeof lastBlockOf34Bytes);
  std::copy(header.block.begin(), header.block.end(), bytes.begin() + sizeof lastBlockOf34Bytes);
  return bytes;
}

}  // namespace

FlacDecoder::FlacDecoder(const FlacHeader& streamHeader, ByteSource frames)
    : header(streamHeader),
      source(std::move(frames)),
      planes(streamHeader.channels),
      library(FLAC__stream_decoder_new()) {
  if (!library) throw std::bad_alloc();
  FLAC__stream_decoder_set_md5_checking(library.get(), 1);
  const auto status = FLAC__stream_decoder_init_stream(library.get(), read, nullptr, nullptr, nullptr,
                                                       nullptr, write, nullptr, fail, this);
  if (status != FLAC__STREAM_DECODER_INIT_STATUS_OK) throw std::bad_alloc();
}

FlacDecoder::Step FlacDecoder::next() {
  taken = damaged = changed = false;
  while (!taken) {
    const bool going = FLAC__stream_decoder_process_single(library.get()) != 0;
    if (failure) std::rethrow_exception(failure);
    if (taken) break;
    const FLAC__StreamDecoderState state = FLAC__stream_decoder_get_state(library.get());
    if (state == FLAC__STREAM_DECODER_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
    if (!going || state == FLAC__STREAM_DECODER_END_OF_STREAM || state == FLAC__STREAM_DECODER_ABORTED)
      return Step::end;
  }
  return changed ? Step::changedFormat : damaged ? Step::damage : Step::block;
}

bool FlacDecoder::matchesChecksum() {
  return FLAC__stream_decoder_finish(library.get()) != 0;
}

FLAC__StreamDecoderReadStatus FlacDecoder::read(const FLAC__StreamDecoder*, FLAC__byte* target,
                                                std::size_t* bytes, void* self) {
  auto& decoder = *static_cast<FlacDecoder*>(self);
  try {
    *bytes = decoder.deliver(reinterpret_cast<std::byte*>(target), *bytes);
    return *bytes > 0 ? FLAC__STREAM_DECODER_READ_STATUS_CONTINUE
                      : FLAC__STREAM_DECODER_READ_STATUS_END_OF_STREAM;
  } catch (...) {
    decoder.failure = std::current_exception();
    return FLAC__STREAM_DECODER_READ_STATUS_ABORT;
  }
}

std::size_t FlacDecoder::deliver(std::byte* target, std::size_t bytes) {
  if (headerBytesRead == startBytes) return source(target, bytes);
  const auto head = startOfStream(header);
  bytes = std::min(bytes, head.size() - headerBytesRead);
  std::copy_n(head.begin() + static_cast<std::ptrdiff_t>(headerBytesRead), bytes, target);
  headerBytesRead += bytes;
  return bytes;
}

FLAC__StreamDecoderWriteStatus FlacDecoder::write(const FLAC__StreamDecoder*, const FLAC__Frame* frame,
                                                  const FLAC__int32* const* samples, void* self) {
  auto& decoder = *static_cast<FlacDecoder*>(self);
  try {
    return decoder.take(*frame, samples) ? FLAC__STREAM_DECODER_WRITE_STATUS_CONTINUE
                                         : FLAC__STREAM_DECODER_WRITE_STATUS_ABORT;
  } catch (...) {
    decoder.failure = std::current_exception();
    return FLAC__STREAM_DECODER_WRITE_STATUS_ABORT;
  }
}

/// False when the library is not to go on.
bool FlacDecoder::take(const FLAC__Frame& frame, const FLAC__int32* const* samples) {
  changed = frame.header.sample_rate != header.sampleRate || frame.header.channels != header.channels ||
            frame.header.bits_per_sample != header.bits;
  // In place of missing frames, however many, the library passes silence before the one that it decoded.
  const bool missing = taken;
  taken = true;
  damaged = damaged || missing;
  if (changed || missing) return false;
  count = frame.header.blocksize;
  start = static_cast<std::int64_t>(frame.header.number.sample_number);
  for (std::uint32_t channel = 0; channel < header.channels; ++channel) {
    auto& plane = planes[channel];
    plane.resize(static_cast<std::size_t>(count));
    convertIntegers(samples[channel], header.bits, count, plane.data());
  }
  return true;
}

void FlacDecoder::fail(const FLAC__StreamDecoder*, FLAC__StreamDecoderErrorStatus, void* self) {
  static_cast<FlacDecoder*>(self)->damaged = true;
}

}  // namespace zarnet
