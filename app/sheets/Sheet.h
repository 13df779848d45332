#pragma once

#include <QDialog>
#include <QString>
#include <QStringList>

class QScrollArea;

namespace zarnet {

class Text;

/// A small window that hangs from the main one and keeps it from being used meanwhile, never from running.
class Sheet : public QDialog {
  Q_OBJECT

 public:
  Sheet(QWidget* parent, int width);

 protected:
  /// Makes the sheet as high as its content. To be called whenever a text has changed.
  void fit();
  void paintEvent(QPaintEvent*) override;

 private:
  const int fixedWidth;
};

/// What is shown while a comparison is prepared: a turning wheel, the progress text, and "Cancel", which
/// Escape presses too. The user cannot dismiss it otherwise.
class BusySheet : public Sheet {
  Q_OBJECT

 public:
  explicit BusySheet(QWidget* parent);
  void setProgress(const QString& text);

  /// Escape and the window's close button ask for cancellation; the sheet stays until the work has ended.
  void reject() override { Q_EMIT cancelled(); }

 Q_SIGNALS:
  void cancelled();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  Text* progress;
};

/// A message with buttons, the first of which Return presses. A text that is long scrolls within half the
/// screen's height. `result()` is the position of the button that was pressed; −1 when it was
/// dismissed otherwise.
class AlertSheet : public Sheet {
  Q_OBJECT

 public:
  AlertSheet(QWidget* parent, const QString& message, const QString& informativeText,
             const QStringList& buttons);
  void setInformativeText(const QString& text);
  void reject() override { done(-1); }

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  Text* information;
  QScrollArea* scroll;
};

}  // namespace zarnet
