#include "app/style/ApplicationStyle.h"

#include "app/style/Drawing.h"
#include "app/style/Typography.h"
#include "desktop/Palette.h"

#include <QApplication>
#include <QMenuBar>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>
#include <QToolTip>
#include <algorithm>
#include <cstdint>

namespace zarnet {

namespace {

constexpr int scrollBarExtent = 14;
constexpr int scrollKnobWidth = 6;
constexpr int shortestScrollKnob = 32;

/// The toolkit's plain style with a flat menu bar, slim scroll bars, and roomier menus and lists.
class ApplicationStyle : public QProxyStyle {
 public:
  ApplicationStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override {
    switch (element) {
      case CE_MenuBarEmptyArea:
        return drawBar(option->rect, painter, option->palette);
      case CE_MenuBarItem:
        return drawBarItem(option, painter);
      default:
        return QProxyStyle::drawControl(element, option, painter, widget);
    }
  }

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
    if (element == PE_FrameFocusRect) return;  // the ring around the focused control stands in for it
    if (element == PE_PanelMenuBar) return;
    QProxyStyle::drawPrimitive(element, option, painter, widget);
  }

  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override {
    if (control != CC_ScrollBar) return QProxyStyle::drawComplexControl(control, option, painter, widget);
    QRectF knob = subControlRect(control, option, SC_ScrollBarSlider, widget);
    knob = option->state & State_Horizontal ? knob.adjusted(1, scrollBarExtent - scrollKnobWidth - 1, -1, -1)
                                            : knob.adjusted(scrollBarExtent - scrollKnobWidth - 1, 1, -1, -1);
    const bool active = option->state & (State_MouseOver | State_Sunken);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    drawBox(*painter, knob, scrollKnobWidth / 2.0,
            withOpacity(tokens(option->palette).text, active ? 0.4 : 0.25), {}, 0);
    painter->restore();
  }

  QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                       const QWidget* widget) const override {
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control != CC_ScrollBar || bar == nullptr)
      return QProxyStyle::subControlRect(control, option, part, widget);
    const bool upright = bar->orientation == Qt::Vertical;
    const int length = upright ? bar->rect.height() : bar->rect.width();
    const std::int64_t whole = std::int64_t{bar->maximum} - bar->minimum + bar->pageStep;
    const auto share =
        static_cast<int>(std::int64_t{length} * bar->pageStep / std::max(whole, std::int64_t{1}));
    const int knob = std::min(std::max(share, shortestScrollKnob), length);
    const int start = sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition, length - knob,
                                              bar->upsideDown);
    const auto stretch = [&](int from, int size) {
      const QPoint corner = bar->rect.topLeft() + (upright ? QPoint(0, from) : QPoint(from, 0));
      const QRect area(corner, upright ? QSize(bar->rect.width(), size) : QSize(size, bar->rect.height()));
      return upright ? area : visualRect(bar->direction, bar->rect, area);
    };
    switch (part) {
      case SC_ScrollBarGroove:
        return bar->rect;
      case SC_ScrollBarSlider:
        return stretch(start, knob);
      case SC_ScrollBarSubPage:
        return stretch(0, start);
      case SC_ScrollBarAddPage:
        return stretch(start + knob, length - start - knob);
      default:
        return {};
    }
  }

  QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                         const QWidget* widget) const override {
    QSize result = QProxyStyle::sizeFromContents(type, option, size, widget);
    if (type == CT_MenuBarItem) result = QSize(size.width() + 22, 31);
    if (type == CT_ItemViewItem) result.setHeight(std::max(result.height(), 28));
    return result;
  }

  int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override {
    switch (metric) {
      case PM_MenuBarHMargin:
        return 5;
      case PM_ScrollBarExtent:
        return scrollBarExtent;
      case PM_MenuBarVMargin:
      case PM_MenuBarPanelWidth:
      case PM_MenuBarItemSpacing:
        return 0;
      default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
  }

  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* data) const override {
    // A pop-up list that opens below its picker, like a list, not over it, like a menu.
    if (hint == SH_ComboBox_Popup) return 0;
    return QProxyStyle::styleHint(hint, option, widget, data);
  }

 private:
  static void drawBar(const QRect& area, QPainter* painter, const QPalette& palette) {
    const Tokens colour = tokens(palette);
    painter->fillRect(area, colour.menuBar);
    painter->fillRect(QRect(area.left(), area.bottom(), area.width(), 1), colour.hairline);
  }

  static void drawBarItem(const QStyleOption* option, QPainter* painter) {
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (item == nullptr) return;
    drawBar(option->rect, painter, option->palette);
    const Tokens colour = tokens(option->palette);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (option->state & (State_Selected | State_Sunken)) {
      drawBox(*painter, QRectF(option->rect).adjusted(2, 4, -2, -5), 6, withOpacity(colour.text, 0.08), {},
              0);
    }
    painter->setPen(colour.text);
    painter->drawText(option->rect, Qt::AlignCenter | Qt::TextShowMnemonic | Qt::TextSingleLine, item->text);
    painter->restore();
  }
};

}  // namespace

void applyApplicationStyle() {
  QApplication::setStyle(new ApplicationStyle);
  QApplication::setFont(textFont(TextStyle::callout));
  QToolTip::setFont(textFont(TextStyle::caption));
}

}  // namespace zarnet
