#include "platform/uikit/UITextField.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QtGui/QContextMenuEvent>
#include <QtGui/QGuiApplication>
#include <QtGui/QInputMethod>
#include <QtGui/QInputMethodEvent>
#include <QtGui/QKeyEvent>
#include <QtGui/QValidator>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>

#include "platform/graphics/NSAttributedString.h"
#include "platform/graphics/NSLayoutManager.h"
#include "platform/uikit/AccessibleView.h"
#include "platform/uikit/Canvas.h"
#include "platform/uikit/HostStyle.h"
#include "platform/uikit/TextEdit.h"
#include "platform/uikit/TextFieldLook.h"
#include "platform/uikit/TextLine.h"
#include "platform/uikit/UIKeyboard.h"
#include "platform/uikit/UITouch.h"
#include "platform/uikit/UIWindow.h"

namespace kestrova::platform {

namespace {

constexpr double kLeastHeight = 44;

std::weak_ptr<UITextField>& editedField() {
  static std::weak_ptr<UITextField> field;
  return field;
}

std::u16string_view view(const QString& text) {
  return {reinterpret_cast<const char16_t*>(text.utf16()), std::size_t(text.size())};
}

// False under a Wayland compositor without a seat, where Qt 6.4 dereferences the missing seat in
// every call of its input method. A compositor gives windows the focus only by a seat.
bool hasInputMethod() {
  return QGuiApplication::focusWindow() || !QGuiApplication::platformName().startsWith("wayland");
}

// A line has no breaks: what a paste brings becomes blanks.
QString onOneLine(QString text) {
  text.replace(QLatin1String("\r\n"), QLatin1String(" "));
  for (QChar& each : text) {
    if (each == u'\n' || each == u'\r' || each == QChar::LineSeparator ||
        each == QChar::ParagraphSeparator) {
      each = u' ';
    }
  }
  return text;
}

bool isPlainEnter(const QKeyEvent& event) {
  return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

// The name of a key that moves through a list or chooses from it; else empty.
std::string_view listKey(const QKeyEvent& event) {
  if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return {};
  switch (event.key()) {
    case Qt::Key_Up:
      return "Up";
    case Qt::Key_Down:
      return "Down";
    case Qt::Key_PageUp:
      return "PageUp";
    case Qt::Key_PageDown:
      return "PageDown";
    default:
      return isPlainEnter(event) ? "Return" : "";
  }
}

// Whether the key would change a text.
bool isTyping(const QKeyEvent& event) {
  if (event.matches(QKeySequence::Paste)) return true;
  if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return false;
  if (event.key() == Qt::Key_Backspace || event.key() == Qt::Key_Delete) return true;
  return !event.text().isEmpty() && event.text().at(0).isPrint();
}

}  // namespace

// Sees every change that a person makes, by keys, paste, undo, drop or input method.
class UITextField::Gate : public QValidator {
 public:
  explicit Gate(Editor& editor);
  State validate(QString& input, int& cursor) const override;

 private:
  Editor& editor_;
};

class UITextField::Editor : public QLineEdit {
 public:
  explicit Editor(UITextField& field)
      : QLineEdit(field.widget()), field_(&field), gate_(*this), known_(text()) {
    setFrame(false);
    setFocusPolicy(Qt::TabFocus);
    setValidator(&gate_);
    connect(this, &QLineEdit::textChanged, this, [this] { changed(); });
  }

  void forget() { field_ = nullptr; }
  // Where the next character goes, in the field's coordinates.
  CGRect caret() const {
    const QRect place = cursorRect().translated(pos());
    return {{double(place.center().x()), double(place.top())}, {1, double(place.height())}};
  }
  bool isComposing() const { return isComposing_; }

  void setByCode(const QString& wanted) {
    if (isAsking_) {
      override_ = wanted;
      known_ = wanted;
    } else {
      isByCode_ = true;
      setText(wanted);
      isByCode_ = false;
      // A text that is too long shows its beginning.
      if (!hasFocus()) home(false);
      known_ = text();
    }
    if (field_) field_->text_ = known_.toStdString();
  }

  QValidator::State judge(QString& input, int& cursor) {
    if (isByCode_ || !field_ || isAsking_ || input == known_) return QValidator::Acceptable;
    const auto field = shared(field_);
    input = onOneLine(input);
    const auto edit = TextEdit::between(view(known_), view(input), std::size_t(cursor));
    isAsking_ = true;
    const auto asked = field->delegate.lock();
    const bool may = !asked || asked->textFieldShouldChangeCharactersIn(
                                   *field, edit.range,
                                   QString::fromStdU16String(edit.replacement).toStdString());
    isAsking_ = false;
    if (override_) {
      // The delegate has set a text of its own.
      input = *std::exchange(override_, std::nullopt);
      cursor = int(input.size());
      return QValidator::Acceptable;
    }
    if (!may) return QValidator::Invalid;
    known_ = input;
    isByPerson_ = true;
    return QValidator::Acceptable;
  }

 protected:
  bool event(QEvent* event) override {
    const bool used = withoutHostStyle(*this, *event, [&] { return QLineEdit::event(event); });
    if (event->type() == QEvent::StyleChange && field_) field_->layoutSubviews();
    return used;
  }

  void keyPressEvent(QKeyEvent* event) override {
    const auto field = field_ ? shared(field_) : nullptr;
    if (!field) return QLineEdit::keyPressEvent(event);
    const auto asked = field->delegate.lock();
    const auto key = listKey(*event);
    // A held Enter submits once.
    if (event->isAutoRepeat() && isPlainEnter(*event)) return;
    const bool activates = isPlainEnter(*event) || event->key() == Qt::Key_Space;
    const auto window = field->window();
    if (window && window->ignoresKey(activates ? "Return" : "")) return;
    if (asked && !key.empty() && asked->textFieldKeyPressed(*field, key)) return;
    if (field->isEditing()) {
      if (!isPlainEnter(*event)) return QLineEdit::keyPressEvent(event);
      if (asked) asked->textFieldShouldReturn(*field);
      return;
    }
    if (event->matches(QKeySequence::Copy) || event->matches(QKeySequence::SelectAll)) {
      return QLineEdit::keyPressEvent(event);
    }
    if (isPlainEnter(*event) || event->key() == Qt::Key_Space) {
      field->becomeFirstResponder();
    } else if (!isTyping(*event)) {
      event->ignore();
    } else if (field->beginTyping() && field->editor_) {
      QLineEdit::keyPressEvent(event);
    }
  }

  void inputMethodEvent(QInputMethodEvent* event) override {
    isComposing_ = !event->preeditString().isEmpty();
    QLineEdit::inputMethodEvent(event);
    if (field_) field_->setNeedsDisplay();
  }

  void focusInEvent(QFocusEvent* event) override {
    // Sent before the caret's event; else a screen reader assumes that the field had the focus.
    if (field_) AccessibleView::focusGained(*field_);
    QLineEdit::focusInEvent(event);
    if (!field_) return;
    if (!field_->isEditing()) end(false);
    field_->setNeedsDisplay();
  }

  void focusOutEvent(QFocusEvent* event) override {
    QLineEdit::focusOutEvent(event);
    const bool comesBack = event->reason() == Qt::PopupFocusReason ||
                           event->reason() == Qt::MenuBarFocusReason ||
                           event->reason() == Qt::ActiveWindowFocusReason;
    if (field_ && !comesBack) field_->endEditing(true);
    if (!comesBack) home(false);
    if (field_) field_->setNeedsDisplay();
  }

  void hideEvent(QHideEvent* event) override {
    QLineEdit::hideEvent(event);
    if (field_ && !event->spontaneous()) field_->endEditing(true);
  }

  bool focusNextPrevChild(bool next) override {
    // One that may not end keeps the focus.
    if (field_ && isVisible() && !field_->endEditing(false)) return true;
    return QLineEdit::focusNextPrevChild(next);
  }

  void contextMenuEvent(QContextMenuEvent* event) override {
    QMenu* const menu = createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    TextFieldLook::applyToMenu(*menu);
    menu->popup(event->globalPos());
  }

 private:
  void changed() {
    if (!field_ || isByCode_) return;
    const auto field = shared(field_);
    field->setNeedsDisplay();
    if (!std::exchange(isByPerson_, false)) {
      // The toolkit does not take back an undo that was refused.
      if (text() != known_) setByCode(known_);
      return;
    }
    known_ = text();
    field->text_ = known_.toStdString();
    field->sendActions(UIControlEvents::editingChanged);
  }

  UITextField* field_;
  Gate gate_;
  // The text that the delegate knows of.
  QString known_;
  std::optional<QString> override_;
  bool isByCode_ = false;
  bool isByPerson_ = false;
  bool isAsking_ = false;
  bool isComposing_ = false;
};

UITextField::Gate::Gate(Editor& editor) : editor_(editor) {}

QValidator::State UITextField::Gate::validate(QString& input, int& cursor) const {
  return editor_.judge(input, cursor);
}

UITextField::UITextField() : editor_(nullptr), font_(UIFont::systemFont(kFontSize)) {
  // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): the view's widget takes it over.
  editor_ = new Editor(*this);
  AccessibleView::registerEditor(*editor_);
  setFocusable(true);
  widget()->setFocusProxy(editor_);
  widget()->setCursor(Qt::IBeamCursor);
  addAction(UIControlEvents::touchUpInside, [](const std::shared_ptr<UIControl>& sender) {
    static_cast<UITextField&>(*sender).tapped();
  });
  UIKeyboard::shared().watch();
  applyLook();
  applyEditing();
}

UITextField::~UITextField() {
  if (editor_) editor_->forget();
}

void UITextField::widgetLost() {
  editor_->forget();
  editor_ = nullptr;
  isEditing_ = false;
}

void UITextField::setText(std::string_view text) {
  const auto wanted = QString::fromUtf8(text.data(), qsizetype(text.size()));
  if (editor_) {
    editor_->setByCode(wanted);
  } else {
    text_ = wanted.toStdString();
  }
  setNeedsDisplay();
}

void UITextField::setPlaceholder(std::string placeholder) {
  placeholder_ = std::move(placeholder);
  lookChanged();
  AccessibleView::nameChanged(*this);
}

void UITextField::setPlaceholderColor(const UIColor& color) {
  placeholderColor_ = color;
  lookChanged();
}

void UITextField::setFont(const std::optional<UIFont>& font) {
  font_ = font.value_or(UIFont::systemFont(kFontSize));
  applyLook();
  lookChanged();
}

void UITextField::setTextColor(const UIColor& color) {
  textColor_ = color;
  applyLook();
}

void UITextField::setTextInset(double inset) {
  textInset_ = inset;
  lookChanged();
}

void UITextField::setKeyboardType(UIKeyboardType type) {
  keyboardType_ = type;
  applyEditing();
}

void UITextField::setEnabled(bool enabled) {
  if (!enabled) endEditing(true);
  UIControl::setEnabled(enabled);
  if (editor_) editor_->setEnabled(enabled);
  AccessibleView::stateChanged(*this);
}

void UITextField::lookChanged() {
  drawn_.reset();
  setNeedsLayout();
  invalidateIntrinsicContentSize();
  setNeedsDisplay();
}

void UITextField::applyLook() {
  if (editor_) TextFieldLook::applyToEditor(*editor_, font_, textColor_);
}

void UITextField::applyEditing() {
  if (!editor_) return;
  Qt::InputMethodHints hints = Qt::ImhNone;
  if (keyboardType_ == UIKeyboardType::emailAddress) {
    hints = Qt::ImhEmailCharactersOnly | Qt::ImhNoAutoUppercase | Qt::ImhNoPredictiveText;
  }
  editor_->setInputMethodHints(hints);
  editor_->setReadOnly(!isEditing_);
  // A tap on a field that is not edited is the window's to give.
  editor_->setAttribute(Qt::WA_TransparentForMouseEvents, !isEditing_);
}

void UITextField::layoutSubviews() {
  if (!editor_) return;
  const int inset = int(std::lround(textInset_)) - TextFieldLook::kMargin;
  const CGSize size = bounds().size;
  editor_->setGeometry(inset, 0, std::max(0, int(std::lround(size.width)) - 2 * inset),
                       int(std::lround(size.height)));
}

std::shared_ptr<UITextField> UITextField::edited() {
  auto field = editedField().lock();
  return field && field->isEditing_ ? field : nullptr;
}

bool UITextField::becomeFirstResponder() {
  const auto self = shared(this);
  if (isEditing_) return true;
  if (isAsking_ || !isEnabled() || !editor_ || !isReachable()) return false;
  if (const auto asked = delegate.lock()) {
    isAsking_ = true;
    const bool may = asked->textFieldShouldBeginEditing(*this);
    isAsking_ = false;
    if (!may || !isEnabled() || !editor_ || !window()) return false;
  }
  const auto other = edited();
  if (other && other != self && !other->endEditing(false)) return false;
  if (isEditing_) return true;
  isEditing_ = true;
  editedField() = self;
  applyEditing();
  if (!editor_->hasFocus()) {
    editor_->setFocus(tapAt_ ? Qt::MouseFocusReason : Qt::OtherFocusReason);
    editor_->end(false);
  }
  if (const auto told = delegate.lock()) told->textFieldDidBeginEditing(*this);
  if (isEditing_) sendActions(UIControlEvents::editingDidBegin);
  if (isEditing_ && hasInputMethod()) QGuiApplication::inputMethod()->show();
  return isEditing_;
}

bool UITextField::beginTyping() {
  const auto self = shared(this);
  const auto asked = isEditing_ || !isEnabled() ? nullptr : delegate.lock();
  if (asked) asked->textFieldWillBeginTyping(*this);
  return becomeFirstResponder();
}

bool UITextField::endEditing(bool force) {
  if (!isEditing_) return true;
  const auto self = shared(this);
  // What is being composed belongs to the text.
  if (editor_ && editor_->hasFocus() && hasInputMethod()) {
    QGuiApplication::inputMethod()->commit();
  }
  if (const auto asked = delegate.lock(); asked && isEditing_ && !isAsking_) {
    isAsking_ = true;
    const bool may = asked->textFieldShouldEndEditing(*this);
    isAsking_ = false;
    if (!may && !force) return false;
  }
  if (!isEditing_) return true;
  isEditing_ = false;
  editedField().reset();
  applyEditing();
  if (editor_) editor_->deselect();
  if (const auto told = delegate.lock()) told->textFieldDidEndEditing(*this);
  sendActions(UIControlEvents::editingDidEnd);
  if (!edited() && hasInputMethod()) QGuiApplication::inputMethod()->hide();
  return true;
}

void UITextField::didMoveToWindow() {
  if (!window()) endEditing(true);
}

void UITextField::touchesEnded(const UITouch& touch) {
  const auto self = shared(this);
  tapAt_ = touch.location(*this);
  UIControl::touchesEnded(touch);
  tapAt_.reset();
}

void UITextField::tapped() {
  if (isEditing_) return;
  const bool begun = becomeFirstResponder();
  if (!editor_) return;
  // Who may not edit yet has the keys none the less, unless somebody else is typing.
  if (!begun && isEnabled() && !edited()) editor_->setFocus(Qt::MouseFocusReason);
  if (begun && tapAt_) {
    const QPoint at(int(std::lround(tapAt_->x)) - editor_->x(), editor_->height() / 2);
    editor_->setCursorPosition(editor_->cursorPositionAt(at));
  }
}

void UITextField::lay(NSLayoutManager& manager, const std::string& text, double width) const {
  const NSAttributedString line(text, {font_, placeholderColor_, NSTextAlignment::left});
  TextLine::lay(line, width, manager);
}

void UITextField::draw(Canvas& canvas) {
  // The line edit draws its caret only while it can be edited, but typing begins the editing.
  if (editor_ && editor_->hasFocus() && !isEditing_) canvas.fill(editor_->caret(), textColor_);
  if (!text_.empty() || placeholder_.empty() || (editor_ && editor_->isComposing())) return;
  const CGSize size = bounds().size;
  const double width = std::max(0.0, size.width - 2 * textInset_);
  if (!drawn_ || width != drawnWidth_) {
    drawn_ = std::make_unique<NSLayoutManager>();
    drawnWidth_ = width;
    lay(*drawn_, placeholder_, width);
  }
  canvas.draw(*drawn_,
              {textInset_, std::round((size.height - drawn_->usedRect().size.height) / 2)});
}

CGSize UITextField::sizeThatFits(CGSize) const {
  CGSize needed;
  for (const auto* const text : {&text_, &placeholder_}) {
    NSLayoutManager manager;
    lay(manager, *text, TextLine::kUnbounded);
    const CGSize used = manager.usedRect().size;
    needed = {std::max(needed.width, used.width), std::max(needed.height, used.height)};
  }
  return {std::ceil(needed.width) + 2 * textInset_, std::max(kLeastHeight, needed.height)};
}

std::string UITextField::accessibilityLabel() const {
  std::string set = UIView::accessibilityLabel();
  return set.empty() ? placeholder_ : set;
}

UIAccessibilityRole UITextField::accessibilityRole() const {
  return UIAccessibilityRole::textField;
}

}  // namespace kestrova::platform
