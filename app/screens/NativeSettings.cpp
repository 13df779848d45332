#include "app/screens/NativeSettings.h"

#include "app/widgets/FocusRing.h"
#include "app/widgets/RoundedPanel.h"
#include "app/widgets/SegmentedPicker.h"
#include "app/widgets/SymbolView.h"
#include "app/widgets/Text.h"
#include "app/widgets/Toggles.h"

#include <QHBoxLayout>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

namespace zarnet {

namespace {
const std::array<QString, 3> values = {QStringLiteral("system"), QStringLiteral("light"),
                                       QStringLiteral("dark")};
}

NativeSettings::NativeSettings(NativeModel& ofModel, QWidget* parent)
    : ModelView(ofModel, parent),
      theme(new SegmentedPicker({QStringLiteral("System"), QStringLiteral("Light"), QStringLiteral("Dark")})),
      glass(new Switch) {
  setFixedSize(480, 246);
  theme->setFixedWidth(250);
  theme->setAccessibleName(QStringLiteral("Theme"));
  glass->setAccessibleName(QStringLiteral("Liquid Glass"));
  connect(theme, &SegmentedPicker::picked, this, [this](int index) { model.appearance = values.at(index); });
  connect(glass, &QAbstractButton::toggled, this, [this](bool on) { model.glass = on; });

  auto* title = new QHBoxLayout;
  title->setSpacing(8);
  title->addWidget(new SymbolView(QStringLiteral("paintpalette"), {20, 20}, SymbolView::Ink::accent));
  title->addWidget(new Text(TextStyle::groupTitle, QStringLiteral("Appearance")));
  title->addStretch(1);

  auto* themeRow = new QHBoxLayout;
  themeRow->addWidget(new Text(TextStyle::body, QStringLiteral("Theme")));
  themeRow->addStretch(1);
  themeRow->addWidget(theme);

  auto* note =
      new Text(TextStyle::caption, QStringLiteral("Translucent surfaces. Turn off for better legibility."));
  note->setSecondary(true);
  auto* texts = new QVBoxLayout;
  texts->setSpacing(4);
  texts->addWidget(new Text(TextStyle::body, QStringLiteral("Liquid Glass")));
  texts->addWidget(note);
  auto* glassRow = new QHBoxLayout;
  glassRow->addLayout(texts);
  glassRow->addStretch(1);
  glassRow->addWidget(glass);

  auto* group = new RoundedPanel(12);
  auto* rows = new QVBoxLayout(group);
  rows->setContentsMargins(12, 12, 12, 12);
  rows->setSpacing(12);
  rows->addLayout(themeRow);
  rows->addWidget(new Divider);
  rows->addLayout(glassRow);

  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(24, 24, 24, 24);
  column->setSpacing(12);
  column->addLayout(title);
  column->addWidget(group);
  column->addStretch(1);
  new FocusRing(this);

  follow([this] {
    const auto* place = std::find(values.begin(), values.end(), *model.appearance);
    theme->choose(place == values.end() ? -1 : static_cast<int>(place - values.begin()));
    const QSignalBlocker quiet(glass);
    glass->setChecked(model.glass);
  });
}

}  // namespace zarnet
