#include "model/TrackMetadata.h"

#include "desktop/Thumbnail.h"
#include "media/MediaTagReader.h"
#include "system/DisplayText.h"

#include <chrono>
#include <string>
#include <vector>

namespace zarnet {

namespace {

constexpr int artworkSide = 256;

/// A text as it may be shown, or nothing when that leaves none.
std::optional<QString> cleaned(const std::string& utf8) {
  QString text;
  for (const char32_t character : QString::fromStdString(utf8).toUcs4()) {
    const QChar::Category category = QChar::category(character);
    const bool isInvisible = category == QChar::Other_Control || category == QChar::Other_Format;
    text += QChar::fromUcs4(isInvisible ? U' ' : character);
  }
  text = text.trimmed();
  return text.isEmpty() ? std::nullopt : std::optional(text);
}

/// The first value that cleaning leaves something of, in the order of preference of the sources.
std::optional<QString> value(const MediaTags& tags, std::vector<std::string> TagFields::*field) {
  for (const TagFields* source : {&tags.own, &tags.id3, &tags.info}) {
    for (const std::string& text : source->*field) {
      if (std::optional<QString> result = cleaned(text)) return result;
    }
  }
  return std::nullopt;
}

}  // namespace

QString TrackMetadata::displayTitle() const {
  return artist ? *artist + QStringLiteral(" - ") + title : title;
}

TrackMetadata trackMetadata(const MediaTags& tags, const std::filesystem::path& url) {
  const QString name = QString::fromStdString(displayText(url.stem()));
  return {value(tags, &TagFields::title).value_or(name), value(tags, &TagFields::artist),
          value(tags, &TagFields::album)};
}

TrackMetadata importedTrackMetadata(const std::filesystem::path& url) {
  return trackMetadata(readMediaTags(url), url);
}

std::optional<QImage> importedTrackArtwork(const std::filesystem::path& url) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(2);
  std::optional<QImage> artwork;
  eachPicture(url, [&](const std::string& encoded) {
    artwork = thumbnail(encoded, artworkSide);
    return artwork || std::chrono::steady_clock::now() > end;
  });
  return artwork;
}

}  // namespace zarnet
