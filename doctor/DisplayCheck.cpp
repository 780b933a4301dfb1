#include <string_view>

#include <QtGui/QFont>
#include <QtGui/QGuiApplication>
#include <QtGui/QRawFont>
#include <QtGui/QScreen>

#include "doctor/Checks.h"

namespace kestrova::doctor {

namespace {

// Points that the flow's narrowest layout takes.
constexpr int kLeastWidth = 320;
constexpr int kLeastHeight = 480;

Finding finding(Severity severity, std::string found, std::string advice = {}) {
  return {"display", severity, std::move(found), std::move(advice)};
}

Finding screenFinding(const QScreen& screen) {
  const auto size = screen.size();
  const auto name = screen.name().isEmpty() ? std::string("screen") : screen.name().toStdString();
  const auto text = name + ": " + std::to_string(size.width()) + " x " +
                    std::to_string(size.height()) + " points, scale " +
                    QString::number(screen.devicePixelRatio()).toStdString();
  if (size.width() >= kLeastWidth && size.height() >= kLeastHeight) {
    return finding(Severity::ok, text);
  }
  return finding(Severity::warning, text + ", which is too small",
                 "Choose a larger screen or a smaller scale (QT_SCALE_FACTOR).");
}

}  // namespace

Findings checkDisplay(const Machine& /*machine*/) {
  int count = 1;
  std::string name = "kestrova-doctor";
  char* arguments[] = {name.data(), nullptr};
  const QGuiApplication application(count, arguments);
  Findings findings;
  const auto platform = QGuiApplication::platformName().toStdString();
  if (platform == "offscreen" || platform == "minimal" || platform == "vnc") {
    findings.push_back(
        finding(Severity::warning,
                "display platform " + platform + ": " + "nobody in front of this machine sees it",
                "Unset QT_QPA_PLATFORM where a screen is connected."));
  } else {
    findings.push_back(finding(Severity::ok, "display platform " + platform));
  }
  for (const auto* screen : QGuiApplication::screens()) {
    findings.push_back(screenFinding(*screen));
  }
  if (QGuiApplication::screens().isEmpty()) {
    findings.push_back(finding(Severity::failure, "there is no screen", "Connect one."));
  }
  // The system names its generic families even where it has none.
  if (QRawFont::fromFont(QFont()).fontTable("cmap").isEmpty()) {
    findings.push_back(finding(Severity::warning, "the system has no typefaces",
                               "Install some (fonts-dejavu-core): names of countries and people "
                               "need letters that the flow's own do not have."));
  }
  return findings;
}

}  // namespace kestrova::doctor
