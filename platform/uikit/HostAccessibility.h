#pragma once

class QAccessibleInterface;
class QObject;
class QWidget;

namespace kestrova::platform {

// Hides a host's window from assistive technology while a widget of ours covers it: only the cover
// is in the window's tree, and references to the host's own widgets that assistive technology has
// kept do nothing. Destruction restores the host's window. Main thread.
class HostAccessibility {
 public:
  // `cover` is a child of the host's window.
  explicit HostAccessibility(QWidget& cover);
  ~HostAccessibility();
  HostAccessibility(const HostAccessibility&) = delete;
  HostAccessibility& operator=(const HostAccessibility&) = delete;

  // True for widgets of a covered window that are not in the topmost cover, its menus included.
  static bool isCovered(const QWidget& widget);
  // A new accessible object for a widget that is covered or whose window is covered; null for all
  // others. The toolkit takes ownership.
  static QAccessibleInterface* standIn(QObject* object);
};

}  // namespace kestrova::platform
