#include "system/Text.h"

#include "system/FileHandle.h"
#include "system/PlatformError.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <memory>

#include <unicode/ubrk.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

namespace zarnet {

namespace {

constexpr std::size_t tailLimit = std::size_t{64} << 10;

/// Length in bytes of the character that starts at `position`: 0 when the bytes there are no character, and
/// also when the text ends in the middle of one, which `cutShort` then tells.
std::size_t characterLength(std::string_view text, std::size_t position, bool& cutShort) {
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data()) + position;
  const std::size_t left = text.size() - position;
  cutShort = false;
  if (bytes[0] < 0x80) return 1;
  const auto available = static_cast<std::int32_t>(left < U8_MAX_LENGTH ? left : U8_MAX_LENGTH);
  std::int32_t next = 0;
  UChar32 character = 0;
  U8_NEXT(bytes, next, available, character);
  if (character >= 0) return static_cast<std::size_t>(next);
  // The macro stops at the first byte that does not fit; only the end of the text makes it stop there.
  cutShort = next == available && available < U8_COUNT_TRAIL_BYTES(bytes[0]) + 1;
  return 0;
}

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

std::string displayText(const std::filesystem::path& path) {
  const std::string& bytes = path.native();
  std::string text;
  for (std::size_t position = 0; position < bytes.size();) {
    bool cutShort = false;
    const std::size_t length = characterLength(bytes, position, cutShort);
    if (length == 0) {
      text += "\uFFFD";
      ++position;
    } else {
      text.append(bytes, position, length);
      position += length;
    }
  }
  return text;
}

std::string quotedName(const std::filesystem::path& path) {
  const std::filesystem::path named = path.has_filename() ? path : path.parent_path();
  return "“" + displayText(named.has_filename() ? named.filename() : named) + "”";
}

std::string formatG(double value) {
  std::array<char, 32> text;
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 6);
  return {text.data(), end.ptr};
}

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
