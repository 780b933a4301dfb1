#include "platform/graphics/NSLayoutManager.h"

#include <algorithm>
#include <utility>

#include <QtGui/QFont>
#include <QtGui/QGuiApplication>
#include <QtGui/QPainter>
#include <QtGui/QTextLayout>

#include "platform/graphics/QtBridge.h"

namespace kestrova::platform {

namespace {

constexpr double kDefaultFontSize = 12;
// More than any screen has; Qt's layout counts in 32 bits.
constexpr double kMaximumLength = 1e6;

QTextOption option(const NSTextContainer& container, NSTextAlignment alignment) {
  QTextOption option;
  switch (container.lineBreakMode) {
    case NSLineBreakMode::byCharWrapping:
      option.setWrapMode(QTextOption::WrapAnywhere);
      break;
    case NSLineBreakMode::byClipping:
      option.setWrapMode(QTextOption::NoWrap);
      break;
    default:
      option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  }
  option.setAlignment(alignment == NSTextAlignment::left     ? Qt::AlignLeft
                      : alignment == NSTextAlignment::center ? Qt::AlignHCenter
                                                             : Qt::AlignRight);
  return option;
}

QList<QTextLayout::FormatRange> formats(const NSAttributedString& text) {
  QList<QTextLayout::FormatRange> formats;
  for (const auto& run : text.runs()) {
    QTextCharFormat format;
    if (run.attributes.font) format.setFont(QtBridge::font(*run.attributes.font));
    format.setForeground(
        QtBridge::color(run.attributes.foregroundColor.value_or(UIColor::black())));
    formats.push_back(
        {static_cast<int>(run.range.location), static_cast<int>(run.range.length), format});
  }
  return formats;
}

}  // namespace

// Qt counts characters as we do, in UTF-16 code units.
struct NSLayoutManager::Layout {
  Layout(const NSAttributedString& source, const NSTextContainer& container);

  std::unique_ptr<QTextLayout> make(const QString& content) const;
  void truncate();
  // The room of a line, more than its text where the container asks for it.
  QRectF box(const QTextLine& line) const;
  // The line of a layout at a height, counted from 0, of those that are shown.
  int lineAt(double y) const;
  int characterAt(QPointF point) const;
  void draw(QPainter& painter, QPointF origin) const;

  NSTextContainer container;
  QString string;
  QList<QTextLayout::FormatRange> ranges;
  QTextOption style;
  double width = 0;
  std::unique_ptr<QTextLayout> text;
  int lineCount = 0;
  bool isCut = false;
  // Takes the place of the last line that is shown, where that ends in an ellipsis.
  std::unique_ptr<QTextLayout> tail;
};

NSLayoutManager::Layout::Layout(const NSAttributedString& source, const NSTextContainer& area)
    : container(area),
      string(QString::fromStdString(source.string())),
      ranges(formats(source)),
      style(option(area, source.attributes(0).alignment.value_or(NSTextAlignment::left))),
      width(std::clamp(area.size.width - 2 * area.lineFragmentPadding, 0.0, kMaximumLength)) {
  // Line breaks of a text are to Qt the ends of its paragraphs, of which a layout holds one.
  string.replace(u'\n', QChar::LineSeparator);
  text = make(string);
  const int limit = static_cast<int>(
      std::min<std::size_t>(area.maximumNumberOfLines == 0 ? SIZE_MAX : area.maximumNumberOfLines,
                            static_cast<std::size_t>(text->lineCount())));
  // A line of which the container shows less than half is left out, the first one never.
  while (lineCount < limit) {
    if (lineCount > 0 && text->lineAt(lineCount).rect().center().y() > area.size.height) break;
    ++lineCount;
  }
  isCut = lineCount < text->lineCount();
  if (area.lineBreakMode == NSLineBreakMode::byTruncatingTail && isCut) truncate();
}

std::unique_ptr<QTextLayout> NSLayoutManager::Layout::make(const QString& content) const {
  auto layout =
      std::make_unique<QTextLayout>(content, QtBridge::font(UIFont::systemFont(kDefaultFontSize)));
  layout->setTextOption(style);
  layout->setFormats(ranges);
  double y = 0;
  layout->beginLayout();
  for (auto line = layout->createLine(); line.isValid(); line = layout->createLine()) {
    line.setLeadingIncluded(true);
    line.setLineWidth(width);
    const double height = std::max(line.height(), container.minimumLineHeight);
    line.setPosition({container.lineFragmentPadding, y + (height - line.height()) / 2});
    y += height;
  }
  layout->endLayout();
  return layout;
}

QRectF NSLayoutManager::Layout::box(const QTextLine& line) const {
  // Unlike its rectangle, a line's height includes the leading.
  const double height = std::max(line.height(), container.minimumLineHeight);
  return {line.x(), line.y() - (height - line.height()) / 2, line.width(), height};
}

void NSLayoutManager::Layout::truncate() {
  const auto last = text->lineAt(lineCount - 1);
  const int start = last.textStart();
  const auto paragraph = string.indexOf(QChar::LineSeparator, start);
  int fits = start;
  int tooLong = static_cast<int>(paragraph < 0 ? string.size() : paragraph) + 1;
  // The whole text up to the cut is laid out, so that ranges and bidirectional text stay as they
  // are; the cut line is the last of it where the ellipsis fits.
  while (tooLong - fits > 1) {
    int cut = fits + (tooLong - fits) / 2;
    while (cut > fits && !text->isValidCursorPosition(cut)) --cut;
    if (cut == fits) {
      tooLong = fits + (tooLong - fits) / 2;
      continue;
    }
    auto candidate = make(string.left(cut) + QChar(0x2026));
    if (candidate->lineCount() <= lineCount) {
      fits = cut;
      // A word that is cut short may fit the line before: better the whole of it and no ellipsis.
      if (candidate->lineCount() == lineCount) tail = std::move(candidate);
    } else {
      tooLong = cut;
    }
  }
}

int NSLayoutManager::Layout::lineAt(double y) const {
  int line = 0;
  while (line + 1 < lineCount && box(text->lineAt(line)).bottom() <= y) ++line;
  return line;
}

int NSLayoutManager::Layout::characterAt(QPointF point) const {
  const int index = lineAt(point.y());
  const bool isTail = tail && index == lineCount - 1;
  const auto& shown = isTail ? *tail : *text;
  const auto line = shown.lineAt(index);
  // The last character of the line stands for what lies behind it: a line break or the ellipsis.
  int end = line.textStart() + line.textLength();
  if (isTail || (end > line.textStart() && string.at(end - 1) == QChar::LineSeparator)) --end;
  const int last = end > line.textStart() ? shown.previousCursorPosition(end) : line.textStart();
  return std::clamp(line.xToCursor(point.x(), QTextLine::CursorOnCharacter), line.textStart(),
                    last);
}

void NSLayoutManager::Layout::draw(QPainter& painter, QPointF origin) const {
  for (int i = 0; i < lineCount; ++i) {
    (tail && i == lineCount - 1 ? tail : text)->lineAt(i).draw(&painter, origin);
  }
}

NSLayoutManager::NSLayoutManager() = default;
NSLayoutManager::~NSLayoutManager() = default;

void NSLayoutManager::addTextContainer(const NSTextContainer& container) {
  container_ = container;
  layout_.reset();
}

void NSLayoutManager::setText(std::shared_ptr<const NSAttributedString> text) {
  text_ = std::move(text);
  layout_.reset();
}

const NSLayoutManager::Layout* NSLayoutManager::layout() const {
  if (!layout_ && text_ && qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
    layout_ = std::make_unique<const Layout>(*text_, container_);
  }
  return layout_.get();
}

std::size_t NSLayoutManager::characterIndex(CGPoint point) const {
  const auto* const made = layout();
  if (!made) return NSNotFound;
  if (made->lineCount == 0) return 0;
  return static_cast<std::size_t>(made->characterAt({point.x, point.y}));
}

CGRect NSLayoutManager::usedRect() const {
  const auto* const made = layout();
  QRectF used;
  for (int i = 0; made && i < made->lineCount; ++i) {
    const bool isTail = made->tail && i == made->lineCount - 1;
    const auto line = (isTail ? made->tail : made->text)->lineAt(i);
    const auto text = line.naturalTextRect();
    const auto room = made->box(line);
    used |= QRectF(text.x(), room.y(), text.width(), room.height());
  }
  return {{used.x(), used.y()}, {used.width(), used.height()}};
}

bool NSLayoutManager::isTruncated() const {
  const auto* const made = layout();
  return made && made->isCut;
}

void QtBridge::paint(const NSLayoutManager& manager, QPainter& painter, CGPoint origin) {
  if (const auto* const made = manager.layout()) made->draw(painter, {origin.x, origin.y});
}

}  // namespace kestrova::platform
