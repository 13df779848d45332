#include "system/TextTail.h"

#include "system/Characters.h"
#include "system/FileHandle.h"
#include "system/PlatformError.h"

#include <cstdint>
#include <memory>
#include <string_view>

#include <unicode/ubrk.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

namespace zarnet {

namespace {

constexpr std::size_t tailLimit = std::size_t{64} << 10;

/// Moves `position` to the end of the text, or to a last character that is cut short. False when a byte on
/// the way is part of no character.
bool skipCharacters(std::string_view text, std::size_t& position) {
  while (position < text.size()) {
    bool cutShort = false;
    const std::size_t length = characterLength(text, position, cutShort);
    if (length == 0) return cutShort;
    position += length;
  }
  return true;
}

/// The last `limit` bytes of a file, without a character that is cut at the front. Empty unless the whole
/// file is UTF-8.
std::string lastBytes(FileHandle& file, std::size_t limit) {
  std::string window;
  std::size_t checked = 0;
  for (;;) {
    const std::size_t kept = window.size();
    window.resize(kept + limit);
    const std::size_t received = file.read(window.data() + kept, limit);
    window.resize(kept + received);
    if (!skipCharacters(window, checked)) return {};
    if (received == 0) break;
    if (window.size() > limit) {
      std::size_t cut = window.size() - limit;
      while (cut < checked && U8_IS_TRAIL(window[cut]))
        ++cut;
      window.erase(0, cut);
      checked -= cut;
    }
  }
  return checked == window.size() ? window : std::string();
}

struct CloseText {
  void operator()(UText* text) const { utext_close(text); }
};
struct CloseBreaks {
  void operator()(UBreakIterator* breaks) const { ubrk_close(breaks); }
};

/// Where the last `characters` grapheme clusters of a valid UTF-8 text begin.
std::size_t startOfLast(const std::string& text, std::size_t characters) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UText, CloseText> source(
      utext_openUTF8(nullptr, text.data(), static_cast<std::int64_t>(text.size()), &status));
  const std::unique_ptr<UBreakIterator, CloseBreaks> breaks(
      ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status));
  if (U_SUCCESS(status)) ubrk_setUText(breaks.get(), source.get(), &status);
  if (U_FAILURE(status)) return text.size();
  std::int32_t start = ubrk_last(breaks.get());
  for (std::size_t count = 0; count < characters && start > 0; ++count)
    start = ubrk_previous(breaks.get());
  return static_cast<std::size_t>(start);
}

}  // namespace

std::string tailOfTextFile(const std::filesystem::path& path, std::size_t characters) {
  try {
    FileHandle file = FileHandle::openForReading(path);
    const std::string text = lastBytes(file, tailLimit);
    return text.substr(startOfLast(text, characters));
  } catch (const PlatformError&) {
    return {};
  }
}

}  // namespace zarnet
