#pragma once

#include "media/FlacFile.h"

#include <cstdint>
#include <exception>
#include <memory>
#include <vector>

#include <FLAC/stream_decoder.h>

namespace zarnet {

/// Decodes FLAC frames with the format's own library, block by block. Not thread-safe.
class FlacDecoder {
 public:
  enum class Step {
    block,          ///< there is a block of samples
    damage,         ///< the same, but what should lie right before it is damaged or missing
    changedFormat,  ///< rate, channels or depth are no longer those of the header
    end,
  };

  /// `frames` delivers coded frames, the first of which may lie behind other bytes.
  FlacDecoder(const FlacHeader& header, ByteSource frames);
  FlacDecoder(const FlacDecoder&) = delete;
  FlacDecoder& operator=(const FlacDecoder&) = delete;

  /// Goes to the next block. Damage that no whole block follows is not told. Raises what `frames` raises, and
  /// std::bad_alloc.
  Step next();

  /// Samples of the present block, full scale ±1.0: exact up to 24 bits, rounded to nearest beyond.
  const float* plane(std::uint32_t channel) const { return planes[channel].data(); }
  std::int64_t blockFrames() const { return count; }
  /// The place in the stream that the present block states for itself, frames.
  std::int64_t blockStart() const { return start; }

  /// At the end of the stream: whether all samples since its start fit the checksum of the header. True when
  /// the header has none. Nothing else may be called afterwards.
  bool matchesChecksum();

 private:
  struct Deleter {
    void operator()(FLAC__StreamDecoder* decoder) const { FLAC__stream_decoder_delete(decoder); }
  };

  static FLAC__StreamDecoderReadStatus read(const FLAC__StreamDecoder*, FLAC__byte* target,
                                            std::size_t* bytes, void* self);
  static FLAC__StreamDecoderWriteStatus write(const FLAC__StreamDecoder*, const FLAC__Frame* frame,
                                              const FLAC__int32* const* samples, void* self);
  static void fail(const FLAC__StreamDecoder*, FLAC__StreamDecoderErrorStatus, void* self);
  std::size_t deliver(std::byte* target, std::size_t bytes);
  bool take(const FLAC__Frame& frame, const FLAC__int32* const* samples);

  const FlacHeader header;
  const ByteSource source;
  std::size_t headerBytesRead = 0;  ///< by the library
  std::exception_ptr failure;       ///< of the source, on its way through the library
  // In the present step:
  bool taken = false;  ///< a block was
  bool damaged = false;
  bool changed = false;
  std::vector<std::vector<float>> planes;
  std::int64_t count = 0;
  std::int64_t start = 0;
  std::unique_ptr<FLAC__StreamDecoder, Deleter> library;
};

}  // namespace zarnet
