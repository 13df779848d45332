#include "app/style/Typography.h"

#include <QFontDatabase>
#include <QGuiApplication>

namespace zarnet {

namespace {

struct Face {
  int pixels;
  QFont::Weight weight;
};

Face faceOf(TextStyle style) {
  switch (style) {
    case TextStyle::largeTitle:
      return {30, QFont::Bold};
    case TextStyle::sideLetter:
      return {42, QFont::Medium};
    case TextStyle::trackTitle:
      return {28, QFont::Bold};
    case TextStyle::title:
      return {22, QFont::DemiBold};
    case TextStyle::verdict:
      return {18, QFont::DemiBold};
    case TextStyle::artist:
      return {17, QFont::Medium};
    case TextStyle::groupTitle:
      return {16, QFont::DemiBold};
    case TextStyle::answer:
      return {15, QFont::Medium};
    case TextStyle::headline:
      return {15, QFont::DemiBold};
    case TextStyle::body:
      return {14, QFont::Normal};
    case TextStyle::button:
      return {13, QFont::Medium};
    case TextStyle::prominent:
      return {14, QFont::DemiBold};
    case TextStyle::callout:
      return {13, QFont::Normal};
    case TextStyle::caption:
      return {12, QFont::Normal};
  }
  Q_UNREACHABLE();
}

const QString& family() {
  static const QString name = QFontDatabase::hasFamily(QStringLiteral("Inter"))
                                  ? QStringLiteral("Inter")
                                  : QGuiApplication::font().family();
  return name;
}

}  // namespace

QFont textFont(TextStyle style) {
  const Face face = faceOf(style);
  QFont font(family());
  font.setPixelSize(face.pixels);
  font.setWeight(face.weight);
  if (face.pixels >= 28) font.setLetterSpacing(QFont::AbsoluteSpacing, -0.3);
  return font;
}

}  // namespace zarnet
