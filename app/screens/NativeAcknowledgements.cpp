#include "app/screens/NativeAcknowledgements.h"

#include "app/widgets/Text.h"

#include <QGuiApplication>
#include <QIcon>
#include <QLabel>
#include <QVBoxLayout>

namespace zarnet {

NativeAcknowledgements::NativeAcknowledgements(bool standIn, QWidget* parent) : QWidget(parent) {
  setFixedSize(440, 230);
  auto* credits =
      new Text(TextStyle::callout, QStringLiteral("AAC: Apple AudioToolbox\n"
                                                  "MP3: LAME 3.100 (LGPL), " ZARNET_LAME_ADDRESS "\n"
                                                  "Ogg Vorbis: Xiph.Org (BSD)"));
  credits->setSelectable(true);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(28, 28, 28, 28);
  column->setSpacing(10);
  column->addWidget(new Text(TextStyle::trackTitle, QStringLiteral("Zarnet")));
  column->addWidget(new Text(TextStyle::body, QStringLiteral("Blind audio preference comparisons.")));
  column->addSpacing(6);
  column->addWidget(credits);
  if (standIn) {
    auto* caption =
        new Text(TextStyle::caption, QStringLiteral("Here AAC is encoded by FFmpeg’s libavcodec."));
    caption->setSecondary(true);
    column->addWidget(caption);
  }
  column->addStretch(1);
}

AboutPanel::AboutPanel(const QString& version, const QString& build, QWidget* parent) : QWidget(parent) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(48, 28, 48, 32);
  column->setSpacing(8);
  if (const QIcon icon = QGuiApplication::windowIcon(); !icon.isNull()) {
    auto* picture = new QLabel;
    picture->setPixmap(icon.pixmap(QSize(96, 96), devicePixelRatioF()));
    column->addWidget(picture, 0, Qt::AlignHCenter);
  }
  auto* name = new Text(TextStyle::title, QStringLiteral("Zarnet"));
  auto* versions =
      new Text(TextStyle::callout, QStringLiteral("Version ") + version +
                                       (build.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(build)));
  versions->setSecondary(true);
  for (Text* text : {name, versions}) {
    text->setAlignment(Qt::AlignHCenter);
    column->addWidget(text);
  }
  column->setSizeConstraint(QLayout::SetFixedSize);
}

}  // namespace zarnet
