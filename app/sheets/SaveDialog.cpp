#include "app/sheets/SaveDialog.h"

#include "app/sheets/Sheet.h"

#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QTextBoundaryFinder>

namespace zarnet {

namespace {

/// 255 bytes, as most file systems allow, less the seven that a file's name has more while it is written.
constexpr qsizetype longestName = 248;
/// A longer last part of a name is no extension.
constexpr qsizetype longestExtension = 16;

std::filesystem::path pathOf(const QString& name) {
  return QFile::encodeName(name).toStdString();
}

}  // namespace

QString fittingFileName(const QString& name) {
  const qsizetype dot = name.lastIndexOf(u'.');
  const QString extension = dot > 0 && name.size() - dot <= longestExtension ? name.mid(dot) : QString();
  const qsizetype room = longestName - extension.toUtf8().size();
  QString stem = name.chopped(extension.size());
  stem.truncate(longestName + 1);  // no more than this can fit, and what follows looks at all of it
  QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, stem);
  characters.toEnd();
  while (stem.toUtf8().size() > room)
    stem.truncate(characters.toPreviousBoundary());
  return stem + extension;
}

SaveDialog::SaveDialog(QWidget* parent, const SavePanel& panel)
    : QFileDialog(parent, panel.title), offered(fittingFileName(panel.name)) {
  setOption(DontUseNativeDialog);  // its name field could not be read
  setAcceptMode(AcceptSave);
  setFileMode(AnyFile);
  if (!panel.extension.isEmpty()) {
    setNameFilter(QStringLiteral("%1 (*.%2 *.%1)").arg(panel.extension.toUpper(), panel.extension));
    setDefaultSuffix(panel.extension);
  }
  setDirectory(QDir::homePath());
  field = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
  field->setText(offered);
}

void SaveDialog::accept() {
  const QString text = field->text();
  const QString typed = text.startsWith(QStringLiteral("~/")) ? QDir::homePath() + text.mid(1) : text;
  location = pathOf(directory().absolutePath()) / pathOf(typed);
  std::error_code unknown;
  if (std::filesystem::is_directory(location, unknown)) {
    setDirectory(QFile::decodeName(location.c_str()));
    return field->setText(offered);
  }

  const qsizetype start = text.lastIndexOf(u'/') + 1;
  QString name = text.mid(start);
  if (name.isEmpty()) return;
  if (!name.contains(u'.') && !defaultSuffix().isEmpty()) name += u'.' + defaultSuffix();
  const QString fitting = fittingFileName(name);
  field->setText(text.left(start) + fitting);
  if (fitting != name) return;
  location.replace_filename(pathOf(name));

  if (!std::filesystem::exists(location, unknown)) return done(Accepted);
  auto* question = new AlertSheet(this, QStringLiteral("“%1” already exists.").arg(name),
                                  QStringLiteral("Do you want to replace it?"),
                                  {QStringLiteral("Cancel"), QStringLiteral("Replace")});
  connect(question, &QDialog::finished, this, [this](int button) {
    if (button == 1) done(Accepted);
  });
  question->open();
}

}  // namespace zarnet
