#pragma once

#include "desktop/Sheets.h"

#include <QFileDialog>
#include <filesystem>

class QLineEdit;

namespace zarnet {

/// The panel in which the user says where a new file goes. The file that it names is the one that its name
/// field shows, letter by letter, in the folder shown or in one that is typed before it; the toolkit's own
/// panel reads quotation marks and a leading colon as more than a name.
///
/// A name longer than file systems take is cut at a character, its extension kept, and shown so before it is
/// taken. A name without an extension gets the panel's. Before a file is named that exists the user is asked.
class SaveDialog : public QFileDialog {
  Q_OBJECT

 public:
  SaveDialog(QWidget* parent, const SavePanel& panel);

  /// The chosen location, once the dialog was accepted.
  const std::filesystem::path& chosen() const { return location; }

 protected:
  void accept() override;

 private:
  const QString offered;
  QLineEdit* field;
  std::filesystem::path location;
};

/// A file name of at most as many bytes as every file system takes while the file is being written: a longer
/// one loses characters, as a reader counts them, before its extension.
QString fittingFileName(const QString& name);

}  // namespace zarnet
