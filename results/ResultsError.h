#pragma once

#include <QString>
#include <exception>
#include <string>

namespace zarnet {

/// Why there is no results image.
class ResultsError : public std::exception {
 public:
  explicit ResultsError(QString sentence);

  const char* what() const noexcept override { return bytes.c_str(); }

  const QString message;  ///< a whole sentence for the user; `what()` is the same in UTF-8

  static constexpr const char* domain = "Zarnet.Results";
  static constexpr int code = 1;

 private:
  std::string bytes;
};

}  // namespace zarnet
