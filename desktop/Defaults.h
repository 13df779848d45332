#pragma once

#include <QString>
#include <filesystem>
#include <optional>

namespace zarnet {

/// The user's persistent settings: values that keep their type, under text keys, in one JSON file. Nothing is
/// held in memory, so every process sees what another has written. A file that is missing, unreadable or
/// damaged reads as one without values, and the next write replaces it. Nothing raises. Interface thread.
class Defaults {
 public:
  /// "zarnet/defaults.json" in the user's configuration folder ($XDG_CONFIG_HOME, else ~/.config).
  static std::filesystem::path standardFile();

  explicit Defaults(std::filesystem::path file = standardFile());

  /// The value under a key; none when there is none or when it has another type.
  std::optional<bool> boolean(const QString& key) const;
  std::optional<QString> text(const QString& key) const;

  /// Stores a value at once, with the others kept. What cannot be stored is lost without a word.
  void setBoolean(const QString& key, bool value) const;
  void setText(const QString& key, const QString& value) const;

 private:
  std::filesystem::path file;
};

}  // namespace zarnet
