#include "platform/uikit/TextFieldLook.h"

#include <QtCore/QString>
#include <QtGui/QFont>
#include <QtGui/QPalette>
#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleFactory>
#include <QtWidgets/QWidget>

#include "platform/graphics/QtBridge.h"
#include "platform/graphics/UIColor.h"
#include "platform/graphics/UIFont.h"

namespace kestrova::platform {

namespace {

constexpr const char* kInk = "#101828";
constexpr const char* kTint = "#E8F0FF";
constexpr const char* kSelection = "#B9D1FF";
constexpr double kMenuFontSize = 15;

// Everything that a host's sheet may say about any widget is said again: the nearer sheet wins.
QString plainBox() {
  return QStringLiteral(
      "margin:0px!important;padding:0px!important;border:0px none transparent!important;"
      "border-radius:0px!important;border-image:none!important;outline:none!important;"
      "background:transparent!important;background-image:none!important;image:none!important;"
      "min-width:0px!important;min-height:0px!important;max-width:99999px!important;"
      "max-height:99999px!important;text-align:left!important;text-decoration:none!important;"
      "letter-spacing:0px!important;word-spacing:0px!important;");
}

QString fontRules(const QFont& font) {
  return QStringLiteral(
             "font-family:\"%1\"!important;font-size:%2px!important;font-weight:%3!important;"
             "font-style:normal!important;")
      .arg(font.families().value(0))
      .arg(font.pixelSize())
      .arg(int(font.weight()));
}

QString colorRules(const QColor& text, const char* selection) {
  return QStringLiteral(
             "color:%1!important;selection-color:%1!important;"
             "selection-background-color:%2!important;")
      .arg(text.name(QColor::HexArgb), QLatin1String(selection));
}

void useOwnStyle(QWidget& widget) {
  if (widget.testAttribute(Qt::WA_SetStyle)) return;
  QStyle* const style = QStyleFactory::create(QStringLiteral("Fusion"));
  style->setParent(&widget);
  widget.setStyle(style);
}

}  // namespace

void TextFieldLook::applyToEditor(QWidget& editor, const UIFont& font, const UIColor& color) {
  const QFont native = QtBridge::font(font);
  useOwnStyle(editor);
  editor.setFont(native);
  editor.setStyleSheet(
      QStringLiteral("QLineEdit{%1%2%3}")
          .arg(plainBox(), fontRules(native), colorRules(QtBridge::color(color), kSelection)));
}

void TextFieldLook::applyToMenu(QWidget& menu) {
  const QFont native = QtBridge::font(UIFont::systemFont(kMenuFontSize));
  const QColor ink(kInk);
  useOwnStyle(menu);
  menu.setFont(native);
  menu.setStyleSheet(
      QStringLiteral("QMenu{%1%2%3background:white!important;border:1px solid #D0D5DD!important;"
                     "padding:4px!important}"
                     "QMenu::item{%1color:%4!important;padding:6px 28px 6px 12px!important}"
                     "QMenu::item:selected{background:%5!important;color:%4!important}"
                     "QMenu::item:disabled{color:#98A2B3!important}"
                     "QMenu::separator{height:1px!important;background:#EAECF0!important;"
                     "margin:4px 0px!important}"
                     "QMenu::icon{width:0px!important}")
          .arg(plainBox(), fontRules(native), colorRules(ink, kSelection), QLatin1String(kInk),
               QLatin1String(kTint)));
}

}  // namespace kestrova::platform
