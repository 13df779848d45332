#include "desktop/AtomicFile.h"
#include "model/FileNames.h"
#include "model/NativeModel.h"
#include "results/ResultsImage.h"
#include "system/FileHandle.h"

#include <string>

namespace zarnet {

namespace {

std::string wholeFile(const std::filesystem::path& path) {
  FileHandle file = FileHandle::openForReading(path);
  std::string content(static_cast<std::size_t>(file.size()), '\0');
  content.resize(file.read(content.data(), content.size()));
  return content;
}

}  // namespace

void NativeModel::exportAudio() {
  if (busy || !exportURL || window == nullptr) return;
  player.pause();
  const std::filesystem::path encoded = *exportURL;
  offerFile({.title = QStringLiteral("Export Converted Audio"),
             .name = exportName,
             .extension = fileExtension(encoded)},
            [encoded] { return wholeFile(encoded); });
}

QByteArray NativeModel::resultsPNG() const {
  std::vector<TrackResult> results;
  results.reserve(answers->size());
  for (const Vote& answer : *answers)
    results.push_back({answer.title, answer.choice, answer.lossless});
  return renderResultsPNG(results, roundCodec, roundRate, roundMatch);
}

void NativeModel::saveResults() {
  if (window == nullptr) return;
  try {
    offerFile({.title = QStringLiteral("Save Results Image"),
               .name = resultsFileName(QDateTime::currentDateTime()),
               .extension = QStringLiteral("png")},
              [image = resultsPNG().toStdString()] { return image; });
  } catch (const std::exception& failure) {
    fail(failure);
  }
}

void NativeModel::offerFile(const SavePanel& panel, std::function<std::string()> content) {
  window->show(panel, [this, here = std::weak_ptr(alive), content = std::move(content)](
                          const std::optional<std::filesystem::path>& destination) {
    if (here.expired() || !destination) return;
    try {
      writeAtomically(*destination, content());
    } catch (const std::exception& failure) {
      fail(failure);
    }
  });
}

}  // namespace zarnet
