#include "app/sheets/WindowSheets.h"

#include "app/sheets/SaveDialog.h"
#include "app/sheets/Sheet.h"

#include <QFile>
#include <QFileDialog>
#include <QStandardPaths>
#include <utility>

namespace zarnet {

namespace {

std::filesystem::path pathOf(const QString& name) {
  return QFile::encodeName(name).toStdString();
}

/// A name filter for these extensions, in either case: "Audio (*.wav *.WAV)".
QString filterOf(const QString& label, const std::vector<QString>& extensions) {
  QStringList patterns;
  for (const QString& extension : extensions) {
    patterns << QStringLiteral("*.") + extension << QStringLiteral("*.") + extension.toUpper();
  }
  return QStringLiteral("%1 (%2)").arg(label, patterns.join(u' '));
}

}  // namespace

WindowSheets::WindowSheets(QWidget* ofWindow) : window(ofWindow) {}

void WindowSheets::show(const OpenPanel& panel,
                        std::function<void(std::vector<std::filesystem::path>)> done) {
  auto* dialog = new QFileDialog(window, panel.title);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setFileMode(panel.choosesMultiple ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile);
  dialog->setNameFilter(filterOf(QStringLiteral("Lossless audio"), panel.extensions));
  dialog->setDirectory(QStandardPaths::writableLocation(QStandardPaths::MusicLocation));
  QObject::connect(dialog, &QDialog::finished, dialog, [dialog, done = std::move(done)](int result) {
    std::vector<std::filesystem::path> files;
    if (result == QDialog::Accepted) {
      for (const QString& name : dialog->selectedFiles())
        files.push_back(pathOf(name));
    }
    done(std::move(files));
  });
  dialog->open();
}

void WindowSheets::show(const SavePanel& panel,
                        std::function<void(std::optional<std::filesystem::path>)> done) {
  auto* dialog = new SaveDialog(window, panel);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  QObject::connect(dialog, &QDialog::finished, dialog, [dialog, done = std::move(done)](int result) {
    done(result == QDialog::Accepted ? std::optional(dialog->chosen()) : std::nullopt);
  });
  dialog->open();
}

void WindowSheets::show(const Alert& alert, std::function<void(std::optional<std::size_t>)> done) {
  auto* sheet = new AlertSheet(window, alert.message, alert.informativeText,
                               QStringList(alert.buttons.begin(), alert.buttons.end()));
  QObject::connect(sheet, &QDialog::finished, sheet, [done = std::move(done)](int button) {
    done(button < 0 ? std::nullopt : std::optional<std::size_t>(static_cast<std::size_t>(button)));
  });
  sheet->open();
}

}  // namespace zarnet
