#pragma once

class QWidget;

namespace kestrova::platform {

class UIView;

// How views are told to assistive technology by the toolkit. Main thread.
struct AccessibleView {
  // The toolkit asks us for the objects of our views from now on; once for each application
  // object.
  static void install();
  // The line edit in the widget of a text field stands for the field.
  static void registerEditor(QWidget& lineEdit);
  // Tells assistive technology, where there is any, that the view's name or state is another.
  static void nameChanged(const UIView& view);
  static void stateChanged(const UIView& view);
  static void focusGained(const UIView& view);
};

}  // namespace kestrova::platform
