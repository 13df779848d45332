#include "app/widgets/Accessibility.h"

#include "app/widgets/Artwork.h"
#include "app/widgets/ClockText.h"
#include "app/widgets/Picker.h"
#include "app/widgets/SideCard.h"
#include "app/widgets/Slider.h"
#include "app/widgets/Spinner.h"
#include "app/widgets/SymbolView.h"
#include "app/widgets/Text.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QAccessibleWidget>
#include <cmath>

namespace zarnet {

namespace {

/// A button that says whether it is the selected one; pressing it is its one action.
class SelectableInterface : public QAccessibleWidget {
 public:
  explicit SelectableInterface(SelectableButton* button) : QAccessibleWidget(button, QAccessible::Button) {}

  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.selectable = true;
    state.selected = button()->isSelected();
    return state;
  }
  QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
  void doAction(const QString& name) override {
    if (name == pressAction()) return button()->click();
    QAccessibleWidget::doAction(name);
  }

 private:
  SelectableButton* button() const { return static_cast<SelectableButton*>(widget()); }
};

/// A slider whose value is an amount, not what the toolkit counts.
class SliderInterface : public QAccessibleWidget, public QAccessibleValueInterface {
 public:
  explicit SliderInterface(Slider* slider) : QAccessibleWidget(slider, QAccessible::Slider) {}

  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
  }
  QVariant currentValue() const override { return slider()->value() / Slider::resolution; }
  void setCurrentValue(const QVariant& value) override {
    slider()->setValue(static_cast<int>(std::lround(value.toDouble() * Slider::resolution)));
  }
  QVariant maximumValue() const override { return slider()->maximum() / Slider::resolution; }
  QVariant minimumValue() const override { return 0.0; }
  QVariant minimumStepSize() const override { return slider()->singleStep() / Slider::resolution; }

 private:
  Slider* slider() const { return static_cast<Slider*>(widget()); }
};

/// A picker that is called by its label and described by its choice; the toolkit's own names it by the
/// choice. Its one child is the list of its entries, shown or not.
class PickerInterface : public QAccessibleWidget {
 public:
  explicit PickerInterface(Picker* picker) : QAccessibleWidget(picker, QAccessible::ComboBox) {}

  int childCount() const override { return 1; }
  QAccessibleInterface* child(int index) const override {
    return index == 0 ? QAccessible::queryAccessibleInterface(picker()->view()) : nullptr;
  }
  int indexOfChild(const QAccessibleInterface* child) const override {
    return child != nullptr && child->object() == picker()->view() ? 0 : -1;
  }
  QString text(QAccessible::Text kind) const override {
    if (kind == QAccessible::Value || kind == QAccessible::Description) return picker()->currentText();
    return QAccessibleWidget::text(kind);
  }
  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.expandable = true;
    state.expanded = picker()->view()->isVisible();
    return state;
  }
  QStringList actionNames() const override { return {showMenuAction(), setFocusAction()}; }
  void doAction(const QString& name) override {
    if (name == showMenuAction()) return picker()->showPopup();
    QAccessibleWidget::doAction(name);
  }

 private:
  Picker* picker() const { return static_cast<Picker*>(widget()); }
};

/// Something for the eye only, which screen readers pass over.
class DecorationInterface : public QAccessibleWidget {
 public:
  explicit DecorationInterface(QWidget* widget) : QAccessibleWidget(widget, QAccessible::Graphic) {}

  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.invisible = true;
    return state;
  }
};

/// Roles of what is known here by name only, or is nothing but a role.
QAccessibleInterface* groupFor(const QString& type, QWidget* widget) {
  if (type == u"zarnet::Popover") return new QAccessibleWidget(widget, QAccessible::Dialog);
  if (type == u"zarnet::Screen") return new QAccessibleWidget(widget, QAccessible::Pane);
  if (type == u"zarnet::SegmentedPicker") return new QAccessibleWidget(widget, QAccessible::Grouping);
  // The frame of a window that is not the main one.
  if (type == u"QWidget" && widget->isWindow()) return new QAccessibleWidget(widget, QAccessible::Dialog);
  return nullptr;
}

QAccessibleInterface* interfaceFor(const QString& type, QObject* object) {
  if (auto* button = qobject_cast<SelectableButton*>(object)) return new SelectableInterface(button);
  if (auto* slider = qobject_cast<Slider*>(object)) return new SliderInterface(slider);
  if (auto* picker = qobject_cast<Picker*>(object)) return new PickerInterface(picker);
  if (auto* text = qobject_cast<Text*>(object)) return new QAccessibleWidget(text, QAccessible::StaticText);
  if (auto* clock = qobject_cast<ClockText*>(object))
    return new QAccessibleWidget(clock, QAccessible::StaticText);
  if (auto* spinner = qobject_cast<Spinner*>(object))
    return new QAccessibleWidget(spinner, QAccessible::ProgressBar);
  if (auto* artwork = qobject_cast<Artwork*>(object))
    return new QAccessibleWidget(artwork, QAccessible::Graphic);
  if (auto* symbol = qobject_cast<SymbolView*>(object)) return new DecorationInterface(symbol);
  auto* widget = qobject_cast<QWidget*>(object);
  return widget != nullptr ? groupFor(type, widget) : nullptr;
}

}  // namespace

void nameFor(QWidget& widget, const QString& name) {
  if (widget.accessibleName() != name) widget.setAccessibleName(name);
}

void announce([[maybe_unused]] QWidget& widget, [[maybe_unused]] const QString& text) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
  QAccessibleAnnouncementEvent event(&widget, text);
  QAccessible::updateAccessibility(&event);
#endif
}

void installAccessibility() {
  QAccessible::installFactory(interfaceFor);
}

}  // namespace zarnet
