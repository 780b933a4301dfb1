#include <algorithm>
#include <string>
#include <vector>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QPluginLoader>

#include "doctor/Checks.h"
#include "platform/foundation/ProcessInfo.h"

namespace kestrova::doctor {

namespace {

constexpr auto kOnScreen = "qtvirtualkeyboard";
// What its plugin needs at run time and does not depend on, in Debian 12.
constexpr auto kPackage =
    "install the packages qt6-virtualkeyboard-plugin, qml6-module-qtquick-window, "
    "qml6-module-qtquick-layouts, qml6-module-qtqml-workerscript and "
    "qml6-module-qt-labs-folderlistmodel";

// The names under which the installed modules are chosen.
std::vector<std::string> modules() {
  std::vector<std::string> names;
  for (const auto& folder : QCoreApplication::libraryPaths()) {
    const QDir plugins(folder + "/platforminputcontexts");
    for (const auto& file : plugins.entryInfoList({"*.so"}, QDir::Files)) {
      const auto description = QPluginLoader(file.filePath()).metaData().value("MetaData");
      for (const auto& key : description.toObject().value("Keys").toArray()) {
        names.push_back(key.toString().toStdString());
      }
    }
  }
  return names;
}

}  // namespace

Findings checkInput(const Machine& /*machine*/) {
  int count = 1;
  std::string name = "kestrova-doctor";
  char* arguments[] = {name.data(), nullptr};
  const QCoreApplication application(count, arguments);
  const auto installed = modules();
  const auto has = [&](const std::string& module) {
    return std::find(installed.begin(), installed.end(), module) != installed.end();
  };
  const auto chosen = platform::ProcessInfo::environment("QT_IM_MODULE").value_or("");
  if (!chosen.empty()) {
    if (has(chosen)) return {{"input", Severity::ok, "input method " + chosen, {}}};
    return {{"input", Severity::warning,
             "QT_IM_MODULE names \"" + chosen + "\", which is not installed",
             chosen == kOnScreen ? "To have it, " + std::string(kPackage) + "."
                                 : "Install that input method, or unset QT_IM_MODULE."}};
  }
  if (has(kOnScreen)) {
    return {{"input",
             Severity::ok,
             "keyboard; the on-screen keyboard is installed (QT_IM_MODULE=qtvirtualkeyboard)",
             {}}};
  }
  return {{"input", Severity::note, "keyboard; there is no on-screen keyboard",
           std::string("For a touch screen without keys, ") + kPackage +
               " and set QT_IM_MODULE=qtvirtualkeyboard."}};
}

}  // namespace kestrova::doctor
