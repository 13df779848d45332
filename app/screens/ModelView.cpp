#include "app/screens/ModelView.h"

#include <QMetaObject>
#include <QScopedValueRollback>
#include <utility>

namespace zarnet {

ModelView::ModelView(NativeModel& ofModel, QWidget* parent)
    : QWidget(parent),
      model(ofModel),
      subscription(model.willChange.subscribe([this](const Property& property) { changed(property); })) {}

void ModelView::follow(std::function<void()> follower) {
  follower();
  followers.push_back(std::move(follower));
}

void ModelView::followPosition(std::function<void()> follower) {
  follower();
  positionFollowers.push_back(std::move(follower));
}

void ModelView::changed(const Property& property) {
  const bool first = !dirty && !positionDirty;
  (&property == &model.position ? positionDirty : dirty) = true;
  if (first) QMetaObject::invokeMethod(this, &ModelView::refresh, Qt::QueuedConnection);
}

void ModelView::refresh() {
  if (isHidden()) return;
  const QScopedValueRollback running(refreshing, true);
  const bool all = std::exchange(dirty, false);
  if (all) {
    for (const auto& follower : followers)
      follower();
  }
  if (std::exchange(positionDirty, false) || all) {
    for (const auto& follower : positionFollowers)
      follower();
  }
}

bool ModelView::focusNextPrevChild(bool next) {
  return !refreshing && QWidget::focusNextPrevChild(next);
}

void ModelView::showEvent(QShowEvent* event) {
  refresh();
  QWidget::showEvent(event);
}

}  // namespace zarnet
