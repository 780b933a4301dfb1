#include "platform/uikit/NibLoader.h"

#include <algorithm>
#include <array>
#include <utility>

#include <QtWidgets/QLayout>
#include <QtWidgets/QWidget>

#include "platform/foundation/JSONValue.h"
#include "platform/foundation/Print.h"
#include "platform/uikit/DesignerProperties.h"
#include "platform/uikit/FormBuilder.h"
#include "platform/uikit/NSLayoutConstraint.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UITableViewDataSource.h"
#include "platform/uikit/UITableViewDelegate.h"
#include "platform/uikit/UITextField.h"

namespace kestrova::platform {

namespace {

// What is for the views together rather than for one.
constexpr std::array kConstraints{"heightConstraint", "widthConstraint"};
constexpr std::array kWiring{"action", "firstResponderAction", "delegate", "dataSource"};
constexpr auto kAutoresizing = "autoresizing";
// The one name of the file's owner.
constexpr auto kController = "controller";

template <typename List>
bool contains(const List& list, std::string_view name) {
  return std::find(list.begin(), list.end(), name) != list.end();
}

std::optional<UIViewAutoresizing> autoresizing(std::string_view text) {
  using enum UIViewAutoresizing;
  static constexpr std::array<std::pair<std::string_view, UIViewAutoresizing>, 6> kNames{
      {{"flexibleLeftMargin", flexibleLeftMargin},
       {"flexibleWidth", flexibleWidth},
       {"flexibleRightMargin", flexibleRightMargin},
       {"flexibleTopMargin", flexibleTopMargin},
       {"flexibleHeight", flexibleHeight},
       {"flexibleBottomMargin", flexibleBottomMargin}}};
  auto mask = none;
  while (!text.empty()) {
    const auto word = text.substr(0, text.find(' '));
    text.remove_prefix(std::min(text.size(), word.size() + 1));
    const auto found = std::find_if(kNames.begin(), kNames.end(),
                                    [&](const auto& each) { return each.first == word; });
    if (found == kNames.end()) return std::nullopt;
    mask = mask | found->second;
  }
  return mask;
}

// `now` takes the place of `before` among its superview's subviews and in the layout.
void exchange(UIView& before, const std::shared_ptr<UIView>& now) {
  QWidget& from = *before.widget();
  QWidget& to = *now->widget();
  to.setObjectName(from.objectName());
  // What the file says of the place goes before what the new view brings along.
  if (!from.minimumSize().isNull()) to.setMinimumSize(from.minimumSize());
  if (from.maximumSize() != QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX)) {
    to.setMaximumSize(from.maximumSize());
  }
  const QSizePolicy policy = from.sizePolicy();
  if (policy.horizontalPolicy() != QSizePolicy::Preferred ||
      policy.verticalPolicy() != QSizePolicy::Preferred) {
    to.setSizePolicy(policy);
  }
  const auto superview = before.superview();
  if (!superview) return;
  const auto& siblings = superview->subviews();
  const auto place = std::find_if(siblings.begin(), siblings.end(),
                                  [&](const auto& each) { return each.get() == &before; });
  superview->insertSubview(now, std::size_t(place - siblings.begin()));
  if (QLayout* const layout = superview->widget()->layout()) {
    const std::unique_ptr<QLayoutItem> old(layout->replaceWidget(&from, &to));
  }
  before.removeFromSuperview();
}

}  // namespace

std::shared_ptr<UIView> NibLoader::load(NibFaults& faults) {
  const auto views = buildForm(file_, faults_);
  for (const auto& view : views) {
    const auto* const designed = file_.object(view->widget()->objectName().toStdString());
    objects_.push_back({designed, view, {}});
    view->bind(objects_.back().bindings);
  }
  if (!objects_.empty()) {
    setProperties();
    replaceThemselves();
    autoresize();
    if (owner_) owner_->bind(ownerBindings_);
    connect(ownerBindings_);
    connect(objects_.front().bindings);
    for (const auto& object : objects_) {
      for (const auto& property : object.designed->properties) wire(property, object);
    }
  }
  if (!faults_.isEmpty()) {
    faults.add(file_.name(), faults_);
    disconnect(ownerBindings_);
    if (!objects_.empty()) disconnect(objects_.front().bindings);
    return nullptr;
  }
  if (owner_) owner_->setActions(std::move(ownerBindings_.actions));
  auto first = objects_.front().view;
  if (!objects_.front().isReplaced) {
    first->setActions(std::move(objects_.front().bindings.actions));
  }
  // The form has superviews before their subviews.
  for (auto object = objects_.rbegin(); object != objects_.rend(); ++object) {
    // What a view has put in its own place comes from elsewhere, awake.
    if (!object->isReplaced) object->view->awakeFromNib();
  }
  return first;
}

void NibLoader::setProperties() {
  const DesignerProperties setter(bundle_, colors_);
  for (auto& object : objects_) {
    for (const auto& property : object.designed->properties) {
      const auto& name = property.name;
      if (contains(kConstraints, name) || contains(kWiring, name) || name == kAutoresizing)
        continue;
      using Outcome = DesignerProperties::Outcome;
      const auto& own = object.bindings.properties;
      const auto found =
          std::find_if(own.begin(), own.end(), [&](const auto& each) { return each.name == name; });
      Outcome outcome = Outcome::set;
      if (found == own.end()) {
        outcome = setter.apply(property, *object.view);
      } else if (const auto number = designerNumber(property.text)) {
        found->set(*number);
      } else {
        outcome = Outcome::badValue;
      }
      const std::string& owner = object.designed->name;
      if (outcome == Outcome::unknown) {
        faults_.add(owner + ", a " + object.designed->className + ", has no property " +
                    platform::quoted(name));
      }
      if (outcome == Outcome::badValue) {
        faults_.add("the property " + platform::quoted(name) + " of " + owner + " cannot be " +
                    platform::quoted(property.text));
      }
    }
  }
}

void NibLoader::replaceThemselves() {
  for (auto object = objects_.rbegin(); object != objects_.rend(); ++object) {
    const auto before = object->view;
    const auto now = before->awakeAfter();
    if (!now || now == before) continue;
    exchange(*before, now);
    object->view = now;
    object->isReplaced = true;
    // The replacement has its own connections; these point into the discarded placeholder.
    object->bindings = {};
  }
  // What was in a view that has gone is gone too.
  std::erase_if(objects_, [this](const Object& object) {
    return !object.view->isDescendant(*objects_.front().view);
  });
  for (auto& object : objects_) {
    for (const auto& property : object.designed->properties) {
      if (contains(kConstraints, property.name)) setConstraint(property, object);
    }
  }
}

void NibLoader::setConstraint(const DesignerProperty& property, Object& object) {
  const bool isHeight = property.name == kConstraints[0];
  const QWidget& widget = *object.view->widget();
  const int least = isHeight ? widget.minimumHeight() : widget.minimumWidth();
  const int most = isHeight ? widget.maximumHeight() : widget.maximumWidth();
  const std::string called =
      "the constraint " + platform::quoted(property.text) + " of " + object.designed->name;
  if (least <= 0 && most >= QWIDGETSIZE_MAX) {
    return faults_.add(called + " needs a minimum or maximum length");
  }
  // "<identifier>", or "<identifier> <length that it gives way to>".
  const auto blank = property.text.find(' ');
  const std::string identifier = property.text.substr(0, blank);
  std::optional<double> givesWayTo;
  if (blank != std::string::npos) {
    givesWayTo = designerNumber(std::string_view(property.text).substr(blank + 1));
    if (!givesWayTo || *givesWayTo < 0) return faults_.add(called + " gives way to no length");
  }
  const auto constraint = std::make_shared<NSLayoutConstraint>(
      identifier,
      isHeight ? NSLayoutConstraint::Attribute::height : NSLayoutConstraint::Attribute::width,
      double(most < QWIDGETSIZE_MAX ? most : least), givesWayTo);
  if (!constraints_.try_emplace(identifier, constraint).second) {
    return faults_.add("two constraints are called " + platform::quoted(identifier));
  }
  object.view->addConstraint(constraint);
}

void NibLoader::autoresize() {
  bool isLaidOut = false;
  for (const auto& object : objects_) {
    for (const auto& property : object.designed->properties) {
      if (property.name != kAutoresizing) continue;
      const auto mask = autoresizing(property.text);
      const auto superview = object.view->superview();
      if (!mask || !superview) {
        faults_.add(
            "the property " + platform::quoted(property.name) + " of " + object.designed->name +
            (mask ? " needs a superview" : " cannot be " + platform::quoted(property.text)));
        continue;
      }
      // The size that the superview has in Designer.
      if (!std::exchange(isLaidOut, true)) objects_.front().view->layoutIfNeeded();
      object.view->setAutoresizing(*mask, superview->bounds().size);
    }
  }
}

NibLoader::Object* NibLoader::object(std::string_view name) {
  const auto found = std::find_if(objects_.begin(), objects_.end(),
                                  [&](const auto& each) { return each.designed->name == name; });
  return found == objects_.end() ? nullptr : &*found;
}

void NibLoader::connect(const UIBindings& bindings) {
  for (const auto& outlet : bindings.outlets) {
    const auto* const target = object(outlet.name);
    if (!target) {
      faults_.add("the outlet " + platform::quoted(outlet.name) + " is missing");
    } else if (!outlet.connect(target->view)) {
      faults_.add("the outlet " + platform::quoted(outlet.name) +
                  " is of another class: " + target->designed->className);
    }
  }
  for (const auto& outlet : bindings.constraintOutlets) {
    const auto found = constraints_.find(outlet.name);
    if (found != constraints_.end()) {
      outlet.connect(found->second);
    } else {
      faults_.add("the constraint " + platform::quoted(outlet.name) + " is missing");
    }
  }
}

void NibLoader::disconnect(const UIBindings& bindings) {
  for (const auto& outlet : bindings.outlets) outlet.connect(nullptr);
  for (const auto& outlet : bindings.constraintOutlets) outlet.connect(nullptr);
}

const UIResponder::Action* NibLoader::action(std::string_view name) const {
  for (const auto* bindings : {&ownerBindings_, &objects_.front().bindings}) {
    const auto found = bindings->actions.find(name);
    if (found != bindings->actions.end()) return &found->second;
  }
  return nullptr;
}

void NibLoader::wire(const DesignerProperty& property, const Object& object) {
  const std::string& name = property.name;
  const std::string& text = property.text;
  if (!contains(kWiring, name)) return;
  const std::string called = "the " + name + " of " + object.designed->name;
  // Whether the owner can be what `slot` takes, which it is then.
  const auto give = [&]<typename Role>(std::weak_ptr<Role>& slot) {
    const auto role = std::dynamic_pointer_cast<Role>(owner_);
    if (text == kController && role) {
      slot = role;
    } else {
      faults_.add(called + " cannot be " + platform::quoted(text));
    }
  };
  if (name == "action" || name == "firstResponderAction") {
    auto* const control = dynamic_cast<UIControl*>(object.view.get());
    if (!control) return faults_.add(called + ": it is no control");
    if (name == "action") {
      const auto* const call = action(text);
      if (!call) return faults_.add(called + ": there is no action " + platform::quoted(text));
      return control->addAction(UIControlEvents::touchUpInside, *call);
    }
    return control->addAction(
        UIControlEvents::touchUpInside, [text](const std::shared_ptr<UIControl>& sender) {
          if (sender->tryToPerform(text, sender)) return;
          print("Kestrova: nobody performs the action " + platform::quoted(text));
        });
  }
  auto* const table = dynamic_cast<UITableView*>(object.view.get());
  auto* const field = dynamic_cast<UITextField*>(object.view.get());
  if (name == "dataSource" && table) {
    // It may have been laid out with nobody to ask.
    table->setNeedsLayout();
    return give(table->dataSource);
  }
  if (name == "delegate" && table) return give(table->delegate);
  if (name == "delegate" && field) return give(field->delegate);
  faults_.add(object.designed->name + ", a " + object.designed->className + ", has no property " +
              platform::quoted(name));
}

std::shared_ptr<UIView> viewNamed(const UIView& root, std::string_view name) {
  if (root.widget() && root.widget()->objectName().toStdString() == name) {
    return UIView::of(root.widget());
  }
  for (const auto& subview : root.subviews()) {
    if (subview->viewController()) continue;
    if (auto found = viewNamed(*subview, name)) return found;
  }
  return nullptr;
}

}  // namespace kestrova::platform
