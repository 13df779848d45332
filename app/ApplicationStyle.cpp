#include "app/ApplicationStyle.h"

#include "app/controls/Drawing.h"
#include "app/controls/Typography.h"
#include "desktop/Palette.h"

#include <QApplication>
#include <QMenuBar>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>
#include <QToolTip>

namespace zarnet {

namespace {

/// The toolkit's plain style with a flat menu bar and roomier menus and lists.
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
