#include "media/TagValues.h"

#include <unicode/unistr.h>
#include <unicode/ustring.h>

namespace zarnet {

namespace {

constexpr std::size_t mostCharacters = 4096;
constexpr std::size_t mostValues = 100;

bool isUTF8(std::string_view bytes) {
  UErrorCode status = U_ZERO_ERROR;
  u_strFromUTF8(nullptr, 0, nullptr, bytes.data(), static_cast<std::int32_t>(bytes.size()), &status);
  return status != U_INVALID_CHAR_FOUND;
}

/// The first characters of a text in UTF-8.
std::string_view withinLimit(std::string_view text) {
  std::size_t characters = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool continues = (static_cast<unsigned char>(text[i]) & 0xC0) == 0x80;
    if (!continues && ++characters > mostCharacters) return text.substr(0, i);
  }
  return text;
}

}  // namespace

std::string decoded(std::string_view bytes, const char* encoding) {
  std::string text;
  icu::UnicodeString(bytes.data(), static_cast<std::int32_t>(bytes.size()), encoding).toUTF8String(text);
  return text;
}

void appendText(std::vector<std::string>& texts, std::string_view text) {
  if (!text.empty() && texts.size() < mostValues) texts.emplace_back(withinLimit(text));
}

void appendText(std::vector<std::string>& texts, std::string_view bytes, const char* otherwise) {
  const std::string_view text = withinLimit(bytes.substr(0, bytes.find('\0')));
  if (isUTF8(text)) return appendText(texts, text);
  appendText(texts, decoded(text, otherwise));
}

}  // namespace zarnet
