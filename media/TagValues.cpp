#include "media/TagValues.h"

#include <cstdint>
#include <utility>

#include <unicode/unistr.h>
#include <unicode/ustring.h>

namespace zarnet {

namespace {

std::string decoded(std::string_view bytes, const char* encoding) {
  std::string text;
  icu::UnicodeString(bytes.data(), static_cast<std::int32_t>(bytes.size()), encoding).toUTF8String(text);
  return text;
}

bool isUTF8(std::string_view bytes) {
  UErrorCode status = U_ZERO_ERROR;
  u_strFromUTF8(nullptr, 0, nullptr, bytes.data(), static_cast<std::int32_t>(bytes.size()), &status);
  return status != U_INVALID_CHAR_FOUND;
}

}  // namespace

void appendText(std::vector<std::string>& texts, std::string text) {
  if (text.size() <= longestText) texts.push_back(std::move(text));
}

void appendText(std::vector<std::string>& texts, const TagLib::ByteVector& bytes, const char* otherwise) {
  if (bytes.size() > longestText) return;
  std::string_view text(bytes.data(), bytes.size());
  text = text.substr(0, text.find('\0'));
  appendText(texts, isUTF8(text) ? std::string(text) : decoded(text, otherwise));
}

void appendUTF16(std::vector<std::string>& texts, const TagLib::ByteVector& bytes) {
  if (bytes.size() <= longestText) appendText(texts, decoded({bytes.data(), bytes.size()}, "UTF-16BE"));
}

void appendPicture(std::vector<std::string>& pictures, const TagLib::ByteVector& bytes) {
  if (bytes.size() <= largestPicture) pictures.emplace_back(bytes.data(), bytes.size());
}

}  // namespace zarnet
