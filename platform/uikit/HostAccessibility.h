#pragma once

class QAccessibleInterface;
class QObject;
class QWidget;

namespace kestrova::platform {

// Hides a host's window from assistive technology while a widget of ours covers it: only the cover
// is in the window's tree, and references to the host's own widgets that assistive technology has
// kept do nothing. Everything is as before when this ends. Main thread.
class HostAccessibility {
 public:
  // `cover` is a child of the host's window.
  explicit HostAccessibility(QWidget& cover);
  ~HostAccessibility();
  HostAccessibility(const HostAccessibility&) = delete;
  HostAccessibility& operator=(const HostAccessibility&) = delete;

  // True for widgets of a covered window that are not in the topmost cover, its menus included.
  static bool isCovered(const QWidget& widget);
  // A new object in place of the toolkit's for a widget that is covered or whose window is; null
  // for others. The toolkit takes it over.
  static QAccessibleInterface* standIn(QObject* object);
};

}  // namespace kestrova::platform
