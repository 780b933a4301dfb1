#include "platform/uikit/DesignerFile.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <utility>

#include <QtCore/QXmlStreamReader>
#include <QtCore/QXmlStreamWriter>

#include "platform/foundation/FileManager.h"
#include "platform/foundation/JSONValue.h"
#include "platform/uikit/UIClassRegistry.h"

namespace kestrova::platform {

namespace {

// The toolkit's classes that people drag from Designer's box of widgets.
const std::map<std::string, std::string, std::less<>> kPlainClasses{{"QWidget", "UIView"},
                                                                    {"QFrame", "UIView"},
                                                                    {"QLabel", "UILabel"},
                                                                    {"QPushButton", "UIButton"},
                                                                    {"QLineEdit", "UITextField"}};
// What places an object, and the kind of its value.
const std::map<std::string, std::string, std::less<>> kPlacing{{"geometry", "rect"},
                                                               {"minimumSize", "size"},
                                                               {"maximumSize", "size"},
                                                               {"sizePolicy", "sizepolicy"}};
// Written by Designer without being asked.
constexpr std::array kUnused{"windowTitle", "frameShape", "frameShadow"};
constexpr std::array kValues{"string", "cstring", "bool", "number", "double", "enum", "set"};
constexpr std::array kLayouts{"QVBoxLayout", "QHBoxLayout", "QGridLayout", "QFormLayout"};
constexpr std::array kLayoutProperties{"leftMargin",     "topMargin", "rightMargin",
                                       "bottomMargin",   "spacing",   "horizontalSpacing",
                                       "verticalSpacing"};
constexpr std::array kStretches{"stretch", "rowstretch", "columnstretch", "rowminimumheight",
                                "columnminimumwidth"};
constexpr std::array kCells{"row", "column", "rowspan", "colspan"};
constexpr std::array kLengths{"x", "y", "width", "height", "horstretch", "verstretch"};
constexpr std::array kPolicies{"Fixed",     "Minimum", "Maximum",         "Preferred",
                               "Expanding", "Ignored", "MinimumExpanding"};
// The toolkit's own for "no limit".
constexpr int kNoLimit = 16777215;
constexpr int kMostCells = 100;

template <typename List>
bool contains(const List& list, std::string_view text) {
  return std::find(list.begin(), list.end(), text) != list.end();
}

bool isNumber(QStringView text, int least, int most) {
  bool isInt = false;
  const int number = text.trimmed().toInt(&isInt);
  return isInt && number >= least && number <= most;
}

std::string utf8(QStringView text) {
  return text.toUtf8().toStdString();
}

}  // namespace

class DesignerFile::Parser {
 public:
  Parser(std::string_view bytes, std::vector<DesignerObject>& objects, NibFaults& faults)
      : in_(QByteArray(bytes.data(), qsizetype(bytes.size()))),
        out_(&form_),
        objects_(objects),
        faults_(faults) {}

  std::string run() {
    out_.writeStartElement("ui");
    out_.writeAttribute("version", "4.0");
    if (in_.readNextStartElement() && in_.name() != u"ui") fault("it is no file of Designer");
    while (in_.readNextStartElement()) topElement();
    out_.writeEndElement();
    while (!in_.atEnd()) in_.readNext();
    if (in_.hasError()) {
      fault("line ", std::to_string(in_.lineNumber()), ": ", utf8(in_.errorString()));
    } else if (objects_.empty()) {
      fault("it has no widget");
    }
    return form_.toStdString();
  }

 private:
  using Cells = std::set<std::pair<int, int>>;

  template <typename... Part>
  void fault(const Part&... parts) {
    // A file that is no file of Designer would fill the screen.
    constexpr std::size_t kMost = 50;
    if (faults_.count() >= kMost) return;
    std::string what;
    (what.append(parts), ...);
    faults_.add(std::move(what));
  }

  std::string attribute(const char* name) {
    return utf8(in_.attributes().value(QLatin1String(name)));
  }

  void topElement() {
    const auto tag = in_.name();
    if (tag == u"widget" && objects_.empty()) return nested(&Parser::widget);
    if (tag == u"widget") fault("it has more than one widget at the top");
    if (tag == u"tabstops") fault("tab stops are not used: the order is that of the widgets");
    if (tag == u"connections") {
      if (!in_.readNextStartElement()) return;
      fault("connections are not used: name an action");
      in_.skipCurrentElement();
    }
    in_.skipCurrentElement();
  }

  void nested(void (Parser::*element)()) {
    if (depth_ >= kMaximumDepth) {
      fault("widgets and layouts are too deep within each other");
      return in_.skipCurrentElement();
    }
    ++depth_;
    (this->*element)();
    --depth_;
  }

  void copyAttribute(const char* name) {
    const auto attributes = in_.attributes();
    const QLatin1String key(name);
    if (attributes.hasAttribute(key)) {
      out_.writeAttribute(QString(key), attributes.value(key).toString());
    }
  }

  void widget() {
    const std::string written = attribute("class");
    const auto plain = kPlainClasses.find(written);
    DesignerObject object{
        plain == kPlainClasses.end() ? written : plain->second, attribute("name"), {}};
    if (objects_.size() >= kMaximumObjects) {
      fault("it has too many widgets");
      return in_.skipCurrentElement();
    }
    const std::string called = "the widget " + platform::quoted(object.name);
    if (object.name.empty()) fault("a ", object.className, " has no name");
    if (std::any_of(objects_.begin(), objects_.end(),
                    [&](const auto& each) { return each.name == object.name; })) {
      fault("two widgets are called ", platform::quoted(object.name));
    }
    if (!UIClassRegistry::contains(object.className)) {
      fault(called, " is of the unknown class ", platform::quoted(written));
    }
    out_.writeStartElement("widget");
    out_.writeAttribute("class", QString::fromStdString(object.className));
    out_.writeAttribute("name", QString::fromStdString(object.name));
    const std::size_t index = objects_.size();
    objects_.push_back(std::move(object));
    bool hasLayout = false;
    while (in_.readNextStartElement()) {
      const auto tag = in_.name();
      if (tag == u"property") {
        property(index);
      } else if (tag == u"widget") {
        nested(&Parser::widget);
      } else if (tag == u"layout" && !hasLayout) {
        hasLayout = true;
        nested(&Parser::layout);
      } else if (tag == u"zorder") {
        out_.writeTextElement("zorder", in_.readElementText());
      } else {
        if (tag != u"attribute") fault(called, " has a <", utf8(tag), "> too many");
        in_.skipCurrentElement();
      }
    }
    out_.writeEndElement();
  }

  void property(std::size_t index) {
    const std::string name = attribute("name");
    const std::string called =
        "the property " + platform::quoted(name) + " of " + objects_[index].name;
    const auto placing = kPlacing.find(name);
    bool hasValue = false;
    while (in_.readNextStartElement()) {
      const std::string kind = utf8(in_.name());
      hasValue = true;
      if (contains(kUnused, name)) {
        in_.skipCurrentElement();
      } else if (placing != kPlacing.end() && placing->second == kind) {
        place(name, kind, called);
      } else if (placing == kPlacing.end() && contains(kValues, kind)) {
        objects_[index].properties.push_back(
            {name, utf8(in_.readElementText(QXmlStreamReader::IncludeChildElements))});
      } else {
        fault(called, " has a value of the kind <", kind, ">, which is not used",
              (kind == "font" ? "; name a \"typeface\"" : ""));
        in_.skipCurrentElement();
      }
    }
    if (!hasValue) fault(called, " has no value");
  }

  // A rectangle, a size or a size policy.
  void place(const std::string& name, const std::string& kind, const std::string& called) {
    out_.writeStartElement("property");
    out_.writeAttribute("name", QString::fromStdString(name));
    out_.writeStartElement(QString::fromStdString(kind));
    for (const auto* side : {"hsizetype", "vsizetype"}) {
      if (kind != "sizepolicy") break;
      if (!contains(kPolicies, attribute(side))) fault(called, " is none of the toolkit's");
      copyAttribute(side);
    }
    while (in_.readNextStartElement()) {
      const QString part = in_.name().toString();
      const QString text = in_.readElementText(QXmlStreamReader::IncludeChildElements);
      if (!contains(kLengths, utf8(part)) || !isNumber(text, -kNoLimit, kNoLimit)) {
        fault(called, " has a ", utf8(part), " that makes no sense");
        continue;
      }
      out_.writeTextElement(part, text.trimmed());
    }
    out_.writeEndElement();
    out_.writeEndElement();
  }

  void layout() {
    const std::string kind = attribute("class");
    if (!contains(kLayouts, kind))
      fault("a layout is of the unknown class ", platform::quoted(kind));
    out_.writeStartElement("layout");
    copyAttribute("class");
    copyAttribute("name");
    for (const auto* name : kStretches) {
      const QString list = QString::fromStdString(attribute(name));
      if (list.isEmpty()) continue;
      const auto parts = list.split(u',');
      const bool makesSense = parts.size() <= kMostCells &&
                              std::all_of(parts.begin(), parts.end(), [](const auto& part) {
                                return isNumber(part, 0, kNoLimit);
                              });
      if (!makesSense) fault("a layout has a ", std::string(name), " that makes no sense");
      copyAttribute(name);
    }
    Cells taken;
    while (in_.readNextStartElement()) {
      if (in_.name() == u"item") {
        if (kind == "QGridLayout" || kind == "QFormLayout") {
          takeCells(kind == "QFormLayout", taken);
        }
        item();
      } else if (in_.name() == u"property") {
        measure(kLayoutProperties, "a layout");
      } else {
        fault("a layout has a <", utf8(in_.name()), ">");
        in_.skipCurrentElement();
      }
    }
    out_.writeEndElement();
  }

  // Two items in one place would lie over each other; a form layout would lose one.
  void takeCells(bool isForm, Cells& taken) {
    const auto number = [this](const char* name, int otherwise) {
      const auto value = in_.attributes().value(QLatin1String(name));
      return isNumber(value, 0, kMostCells - 1) ? value.trimmed().toInt() : otherwise;
    };
    const int row = number("row", 0);
    int column = number("column", 0);
    int columns = number("colspan", 1);
    if (isForm) {
      // A label and a field, or one for both.
      column = columns > 1 ? 0 : std::min(column, 1);
      columns = std::min(columns, 2);
    }
    for (int r = row; r < row + number("rowspan", 1); ++r) {
      for (int c = column; c < column + columns; ++c) {
        if (taken.emplace(r, c).second) continue;
        return fault("a layout has two items in row ", std::to_string(r), ", column ",
                     std::to_string(c));
      }
    }
  }

  void item() {
    out_.writeStartElement("item");
    for (const auto* name : kCells) {
      const std::string cell = attribute(name);
      if (!cell.empty() && !isNumber(QString::fromStdString(cell), 0, kMostCells - 1)) {
        fault("a layout's item has a ", std::string(name), " that makes no sense");
      }
      copyAttribute(name);
    }
    copyAttribute("alignment");
    bool isFull = false;
    while (in_.readNextStartElement()) {
      const auto tag = in_.name();
      if (!std::exchange(isFull, true)) {
        if (tag == u"widget") {
          nested(&Parser::widget);
          continue;
        }
        if (tag == u"layout") {
          nested(&Parser::layout);
          continue;
        }
        if (tag == u"spacer") {
          spacer();
          continue;
        }
      }
      fault("a layout's item has a <", utf8(tag), "> too many");
      in_.skipCurrentElement();
    }
    if (!isFull) fault("a layout has an empty item");
    out_.writeEndElement();
  }

  void spacer() {
    static constexpr std::array kSpacerProperties{"orientation", "sizeType", "sizeHint"};
    out_.writeStartElement("spacer");
    copyAttribute("name");
    while (in_.readNextStartElement()) measure(kSpacerProperties, "a spacer");
    out_.writeEndElement();
  }

  // A property of a layout or spacer: a number, a name, or a size.
  template <typename List>
  void measure(const List& known, const std::string& whose) {
    const std::string name = attribute("name");
    const bool isKnown = in_.name() == u"property" && contains(known, name);
    if (!isKnown) {
      fault(whose, " has the unknown property ", platform::quoted(name));
      return in_.skipCurrentElement();
    }
    while (in_.readNextStartElement()) {
      const std::string kind = utf8(in_.name());
      if (kind == "size") {
        place(name, kind, whose);
        continue;
      }
      const QString text = in_.readElementText(QXmlStreamReader::IncludeChildElements);
      const bool isEnum = kind == "enum" && contains(kSpacerEnums, utf8(text));
      if (!isEnum && (kind != "number" || !isNumber(text, 0, kNoLimit))) {
        fault(whose, " has a ", name, " that makes no sense");
        continue;
      }
      out_.writeStartElement("property");
      out_.writeAttribute("name", QString::fromStdString(name));
      out_.writeTextElement(QString::fromStdString(kind), text.trimmed());
      out_.writeEndElement();
    }
  }

  static constexpr std::array kSpacerEnums{"Qt::Horizontal",
                                           "Qt::Vertical",
                                           "Qt::Orientation::Horizontal",
                                           "Qt::Orientation::Vertical",
                                           "QSizePolicy::Fixed",
                                           "QSizePolicy::Minimum",
                                           "QSizePolicy::Maximum",
                                           "QSizePolicy::Preferred",
                                           "QSizePolicy::Expanding",
                                           "QSizePolicy::MinimumExpanding",
                                           "QSizePolicy::Ignored"};

  QXmlStreamReader in_;
  QByteArray form_;
  QXmlStreamWriter out_;
  std::vector<DesignerObject>& objects_;
  NibFaults& faults_;
  int depth_ = 0;
};

DesignerFile DesignerFile::read(const std::filesystem::path& path, NibFaults& faults) {
  const std::string name = path.filename().string();
  std::string bytes;
  const auto done = FileManager::read(path, [&bytes](std::string_view block) -> Result<Done> {
    bytes.append(block);
    if (bytes.size() > kMaximumSize) return NSError{kNibErrorDomain, 1, "it is too large"};
    return Done{};
  });
  if (!done) {
    faults.add(name + ": " + done.error().localizedDescription);
    return {};
  }
  return parse(name, bytes, faults);
}

DesignerFile DesignerFile::parse(std::string name, std::string_view bytes, NibFaults& faults) {
  DesignerFile file;
  file.name_ = std::move(name);
  NibFaults own;
  file.form_ = Parser(bytes, file.objects_, own).run();
  faults.add(file.name_, own);
  return file;
}

const DesignerObject* DesignerFile::object(std::string_view name) const {
  const auto found = std::find_if(objects_.begin(), objects_.end(),
                                  [&](const auto& each) { return each.name == name; });
  return found == objects_.end() ? nullptr : &*found;
}

}  // namespace kestrova::platform
