#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "platform/dispatch/DispatchBlock.h"
#include "platform/foundation/Export.h"
#include "platform/uikit/UIResponder.h"

namespace kestrova::platform {

// The page of this application in the system's settings.
inline constexpr std::string_view UIApplicationOpenSettingsURLString = "app-settings:";

// The process's interface: the toolkit's application object, the host's own or one that main()
// makes. Drains the main queue in the application's loop. Main thread.
class KESTROVA_EXPORT UIApplication : public UIResponder {
 public:
  // For a host without an application object: makes it, calls `didFinishLaunching` in its loop, and
  // returns the exit status when the loop has ended.
  static int main(int argc, char** argv, const std::function<void()>& didFinishLaunching);
  // Whether the process has an application object with an interface. Attaches the main queue to its
  // loop when it first finds one.
  static bool exists();
  static const std::shared_ptr<UIApplication>& shared();

  // Opens a web page in the user's browser, or the settings page by the handler that the host has
  // set. Without a handler one line says so.
  void open(std::string_view url, const std::map<std::string, std::string>& options = {},
            const std::function<void(bool opened)>& completionHandler = {});
  bool openURL(std::string_view url);
  // Who opens the settings page; empty for nobody.
  std::function<void()> openSettings;
  // Who opens web pages instead of the desktop; for kiosks without a browser, and tests.
  std::function<bool(std::string_view url)> openPage;

  // Runs `block` when the application object goes, before the toolkit does: for views that are held
  // in static objects.
  static void atExit(DispatchBlock block);
};

}  // namespace kestrova::platform
