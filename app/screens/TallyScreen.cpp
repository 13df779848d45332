#include "app/screens/TallyScreen.h"

#include "app/widgets/Accessibility.h"
#include "app/widgets/BareLayout.h"
#include "app/widgets/Button.h"
#include "app/widgets/RoundedPanel.h"
#include "app/widgets/Text.h"
#include "model/Wording.h"

namespace zarnet {

namespace {

QWidget* answerRow(const Vote& answer, const QString& codec, bool first) {
  auto* panel = new QWidget;
  auto* column = bareColumn(panel, 0);
  if (!first) column->addWidget(new Divider);
  auto* title = new Text(TextStyle::headline, answer.title);
  auto* sides = new Text(TextStyle::caption, sidesText(answer, codec));
  sides->setSecondary(true);
  auto* texts = new QVBoxLayout;
  texts->setSpacing(6);
  texts->addWidget(title);
  texts->addWidget(sides);
  auto* row = new QHBoxLayout;
  row->setContentsMargins(0, 6, 0, 6);
  row->setSpacing(24);
  row->addLayout(texts, 1);
  auto* wording = new Text(TextStyle::body, answer.preference());
  wording->setOverflow(Text::Overflow::elide);
  wording->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  row->addWidget(wording);
  column->addLayout(row);
  return panel;
}

}  // namespace

TallyScreen::TallyScreen(NativeModel& ofModel)
    : Screen(ofModel), save(new Button(Button::Kind::tall, QStringLiteral("Save results image…"))) {
  setAccessibleName(QStringLiteral("Your results"));
  auto* column = bareColumn(this, 20);

  auto* heading = new QVBoxLayout;
  heading->setSpacing(4);
  auto* summary = new Text(TextStyle::body);
  summary->setSecondary(true);
  heading->addWidget(new Text(TextStyle::largeTitle, QStringLiteral("Your results")));
  heading->addWidget(summary);
  column->addLayout(heading);

  auto* totals = new QHBoxLayout;
  totals->setSpacing(14);
  for (const Preference preference : {Preference::lossless, Preference::lossy, Preference::none})
    totals->addWidget(total(preferenceText(preference)), 1);
  column->addLayout(totals);
  column->addWidget(rows());

  auto* again = new Button(Button::Kind::prominent, QStringLiteral("New comparison"));
  connect(save, &QAbstractButton::clicked, this, [this] { model.saveResults(); });
  connect(again, &QAbstractButton::clicked, this, [this] { model.back(); });
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(12);
  buttons->addWidget(save);
  buttons->addWidget(again);
  buttons->addStretch(1);
  column->addLayout(buttons);

  follow([this, summary] {
    summary->setText(tallySummary(model.answers->size(), model.roundCodec, model.roundRate));
  });
}

QWidget* TallyScreen::firstFocus() const {
  return save;
}

QWidget* TallyScreen::rows() {
  auto* panel = new QWidget;
  auto* column = bareColumn(panel, 6);
  follow([this, panel, column, drawn = std::vector<QUuid>()]() mutable {
    std::vector<QUuid> answers;
    for (const Vote& answer : *model.answers)
      answers.push_back(answer.id);
    if (answers == drawn) return;
    drawn = answers;
    qDeleteAll(panel->findChildren<QWidget*>(Qt::FindDirectChildrenOnly));
    for (const Vote& answer : *model.answers)
      column->addWidget(answerRow(answer, model.roundCodec, column->count() == 0));
  });
  return panel;
}

QWidget* TallyScreen::total(const QString& label) {
  auto* box = new RoundedPanel(14);
  auto* column = new QVBoxLayout(box);
  column->setContentsMargins(18, 14, 18, 14);
  column->setSpacing(2);
  auto* number = new Text(TextStyle::largeTitle);
  auto* caption = new Text(TextStyle::body, label);
  caption->setSecondary(true);
  column->addWidget(number);
  column->addWidget(caption);
  follow([this, box, number, label] {
    box->setGlass(model.glass);
    number->setText(QString::number(preferenceCount(*model.answers, label)));
    nameFor(*box, label + QStringLiteral(": ") + number->text());
  });
  return box;
}

}  // namespace zarnet
