#pragma once

#include <QWidget>

namespace zarnet {

/// The content of the acknowledgements window: the program's name, what it is, the credits, and below them
/// what encodes AAC where the platform's encoder does not. 440 × 230.
class NativeAcknowledgements : public QWidget {
  Q_OBJECT

 public:
  /// `standIn` tells that the stand-in for the platform's converter encodes AAC.
  explicit NativeAcknowledgements(bool standIn, QWidget* parent = nullptr);
};

/// The content of the about panel: icon, name and versions. An empty build version is left out.
class AboutPanel : public QWidget {
  Q_OBJECT

 public:
  AboutPanel(const QString& version, const QString& build, QWidget* parent = nullptr);
};

}  // namespace zarnet
