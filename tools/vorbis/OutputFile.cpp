#include "tools/vorbis/OutputFile.h"

#include "tools/support/Tool.h"

namespace zarnet {

namespace {
constexpr std::size_t bufferBytes = std::size_t{1} << 18;
}

OutputFile::OutputFile(const std::filesystem::path& location)
    : path(location), file(FileHandle::createForWriting(location)) {}

OutputFile::~OutputFile() {
  if (!finished) removeUnfinished(path);
}

void OutputFile::writeAt(std::int64_t offset, const void* source, std::size_t bytes) {
  file.writeAt(offset, source, bytes);
}

void OutputFile::finish() {
  file.close();
  finished = true;
}

OutputPart::OutputPart(OutputFile& target, std::int64_t begin) : file(target), offset(begin) {
  buffer.reserve(bufferBytes);
}

void OutputPart::append(const void* source, std::size_t bytes) {
  if (buffer.size() + bytes > bufferBytes) finish();
  const auto* first = static_cast<const std::byte*>(source);
  buffer.insert(buffer.end(), first, first + bytes);
}

void OutputPart::finish() {
  file.writeAt(offset, buffer.data(), buffer.size());
  offset += static_cast<std::int64_t>(buffer.size());
  buffer.clear();
}

}  // namespace zarnet
