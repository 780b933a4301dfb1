// Draws every screen of the flow in every state as PNG files, without a display and without a
// backend, with drawn specimens before the cameras: for eyes, not for tests.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtGui/QPixmap>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include "examples/enduser/DemoCameras.h"
#include "examples/enduser/UsableButton.h"
#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/UIAccessibility.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIKeyboard.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UIStoryboardScene.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UITextField.h"
#include "platform/uikit/UIViewController.h"
#include "platform/uikit/UIWindow.h"
#include "sdk/core/Kestrova.h"
#include "sdk/flow/CheckEmailViewController.h"
#include "sdk/flow/ChooseCitizenViewController.h"
#include "sdk/flow/ChooseDocumentTypeViewController.h"
#include "sdk/flow/DocumentTableViewController.h"
#include "sdk/flow/Flow.h"
#include "sdk/flow/MoveHeadViewController.h"
#include "sdk/flow/ScanBacksideViewController.h"
#include "sdk/flow/ScanIDInstructionsViewController.h"
#include "sdk/ui/Extensions.h"
#include "sdk/ui/SpinnerView.h"

namespace kestrova {
namespace {

struct Size {
  const char* name;
  int width;
  int height;
};
constexpr Size kSizes[] = {{"375x667", 375, 667},   {"320x568", 320, 568},  {"430x932", 430, 932},
                           {"667x375", 667, 375},   {"480x272", 480, 272},  {"800x480", 800, 480},
                           {"820x1180", 820, 1180}, {"1280x800", 1280, 800}};

// The flow over a plain host's window, at one of its screens.
class Stage {
 public:
  Stage(const Size& size, const std::string& scene) {
    host_.resize(size.width, size.height);
    host_.setStyleSheet("background: #EEF1F6");
    host_.show();
    wrapper_ = UIViewController::wrapping(host_);
    auto flow = makeFlow();
    if (!flow) {
      std::fprintf(stderr, "%s\n", flow.error().localizedDescription.c_str());
      // NOLINTNEXTLINE(concurrency-mt-unsafe): there is one thread.
      std::exit(1);
    }
    wrapper_->present(flow.value(), false);
    navigation_ =
        std::dynamic_pointer_cast<UINavigationController>(flow.value()->children().front());
    screen_ = navigation_->topViewController();
    if (scene != "ChooseCitizen") {
      screen_ = screen_->scene()->instantiate(scene).value();
      navigation_->pushViewController(screen_, false);
    }
    settle(0.5);
  }
  ~Stage() { wrapper_->dismiss(false); }
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;

  template <typename Screen>
  Screen& screen() {
    return dynamic_cast<Screen&>(*screen_);
  }

  // Lets the cameras work until the text is on what lies over the screen.
  void waitFor(std::string_view text) {
    waitUntil(text, [&] {
      const auto over = screen_->presentedViewController();
      return over && accessibilityTree(*over->view()).find(text) != std::string::npos;
    });
  }
  // As waitFor, with a button that can be used.
  std::shared_ptr<UIButton> waitForButton(std::string_view label) {
    std::shared_ptr<UIButton> button;
    waitUntil(label, [&] {
      const auto over = screen_->presentedViewController();
      return over && (button = usableButton(*over->view(), label));
    });
    return button;
  }

  static void settle(double seconds) {
    AnimationClock::shared().advance(seconds);
    for (int round = 0; round < 5; ++round) QCoreApplication::processEvents();
  }

  // Whatever stands before the cameras of this run.
  void look(const std::filesystem::path& face, const std::filesystem::path& document) {
    DemoCameras cameras;
    cameras.face = face;
    cameras.front = cameras.back = document;
    cameras.use(wrapper_);
  }

  void save(const std::filesystem::path& file, double keyboard) {
    QPixmap picture = host_.grab();
    if (keyboard > 0) {
      QPainter painter(&picture);
      painter.fillRect(QRectF(0, host_.height() - keyboard, host_.width(), keyboard),
                       QColor(0xD1, 0xD5, 0xDB));
    }
    picture.save(QString::fromStdString(file.string()));
  }

 private:
  static void waitUntil(std::string_view what, const std::function<bool()>& condition) {
    constexpr double kStep = 0.02;
    constexpr int kMost = 2000;
    for (int step = 0; step < kMost; ++step) {
      if (condition()) return;
      AnimationClock::shared().advance(kStep);
      QTest::qWait(2);
    }
    std::fprintf(stderr, "never seen: %s\n", std::string(what).c_str());
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing else ends the process.
    std::exit(1);
  }

  QWidget host_;
  std::shared_ptr<UIViewController> wrapper_;
  std::shared_ptr<UINavigationController> navigation_;
  std::shared_ptr<UIViewController> screen_;
};

struct State {
  const char* name;
  const char* scene;
  std::function<void(Stage&)> prepare = [](Stage&) {};
  bool hasKeyboard = false;
};

// Height of the on-screen keyboard, points; at most half of the window.
constexpr double kKeyboard = 260;

void select(UITableView& table, std::size_t row, UITableViewDelegate& told) {
  table.selectRow({row, 0}, false);
  told.tableViewDidSelectRowAt(table, {row, 0});
}

void darken(const std::filesystem::path& from, const std::filesystem::path& to) {
  QImage picture(QString::fromStdString(from.string()));
  QPainter(&picture).fillRect(picture.rect(), QColor(0, 0, 0, 220));
  picture.save(QString::fromStdString(to.string()));
}

std::vector<State> states(const std::filesystem::path& specimens) {
  const auto selfie = [=](Stage& stage, const std::filesystem::path& face) {
    stage.look(face, {});
    stage.screen<MoveHeadViewController>().recordSelfieVideo(nullptr);
  };
  const auto front = [=](Stage& stage, const std::filesystem::path& document) {
    stage.look({}, document);
    stage.screen<ScanIDInstructionsViewController>().takePhotoOfFrontDocument(nullptr);
    stage.waitForButton("Take photo");
  };
  const auto nationality = [](Stage& stage) -> ChooseCitizenViewController& {
    return stage.screen<ChooseCitizenViewController>();
  };
  return {
      {"01-nationality", "ChooseCitizen"},
      {"02-nationality-open", "ChooseCitizen",
       [=](Stage& stage) { nationality(stage).tapOnArrow(nullptr); }},
      {"03-nationality-searching", "ChooseCitizen",
       [=](Stage& stage) {
         auto& screen = nationality(stage);
         screen.shouldShowKeyboard = true;
         screen.tapOnArrow(nullptr);
         const auto field = screen.countryTextfield.lock();
         field->becomeFirstResponder();
         field->setText("un");
         screen.searchCountrylist("un");
       },
       true},
      {"04-nationality-chosen", "ChooseCitizen",
       [=](Stage& stage) {
         auto& screen = nationality(stage);
         screen.tableViewDidSelectRowAt(*screen.tableView.lock(), {2, 0});
       }},
      {"05-nationality-alert", "ChooseCitizen",
       [=](Stage& stage) { nationality(stage).startButton(nullptr); }},
      {"06-email", "CheckEmail"},
      {"07-email-keyboard", "CheckEmail",
       [](Stage& stage) {
         const auto field = stage.screen<CheckEmailViewController>().emailTextfield.lock();
         field->becomeFirstResponder();
         field->setText("ada@example.com");
       },
       true},
      {"08-email-sending", "CheckEmail",
       [](Stage& stage) {
         auto& screen = stage.screen<CheckEmailViewController>();
         const auto field = screen.emailTextfield.lock();
         field->becomeFirstResponder();
         field->setText("ada@example.com");
         screen.setWaiting(true);
       }},
      {"08-email-still-sending", "CheckEmail",
       [](Stage& stage) {
         stage.screen<CheckEmailViewController>().setWaiting(true);
         Stage::settle(kLongWait);
       }},
      {"09-selfie", "MoveHead"},
      {"10-selfie-refused", "MoveHead",
       [=](Stage& stage) {
         selfie(stage, specimens / "missing");
         stage.waitFor("We need access");
       }},
      {"10-selfie-starting", "MoveHead",
       [=](Stage& stage) {
         stage.look(specimens / "face.mov", {});
         stage.screen<MoveHeadViewController>().recordSelfieVideo(nullptr);
       }},
      {"10-selfie-no-camera", "MoveHead",
       [=](Stage& stage) {
         selfie(stage, specimens / "missing");
         stage.waitFor("We need access");
         stage.waitForButton("OK")->sendActions(UIControlEvents::touchUpInside);
       }},
      {"11-selfie-oval", "MoveHead",
       [=](Stage& stage) {
         selfie(stage, specimens / "face.mov");
         stage.waitFor("Put your face");
       }},
      {"12-selfie-dark", "MoveHead",
       [=](Stage& stage) {
         const QTemporaryDir night;
         const auto face = std::filesystem::path(night.filePath("face.png").toStdString());
         darken(specimens / "face" / "00.png", face);
         selfie(stage, face);
         stage.waitFor("It is dark here");
       }},
      {"13-selfie-turning", "MoveHead",
       [=](Stage& stage) {
         selfie(stage, specimens / "face.mov");
         stage.waitFor("Turn your head");
       }},
      {"14-selfie-sending", "MoveHead",
       [](Stage& stage) {
         stage.screen<MoveHeadViewController>().loadingView.lock()->setHidden(false);
       }},
      {"15-document", "ChooseDocumentType"},
      {"16-document-chosen", "ChooseDocumentType",
       [](Stage& stage) {
         auto& screen = stage.screen<ChooseDocumentTypeViewController>();
         auto& list = dynamic_cast<DocumentTableViewController&>(*screen.children().front());
         select(dynamic_cast<UITableView&>(*list.view()), 1, list);
       }},
      {"17-front", "ScanIDInstructions"},
      {"17-photo-page", "ScanIDInstructions",
       [](Stage& stage) {
         auto& screen = stage.screen<ScanIDInstructionsViewController>();
         screen.viewWillDisappear(false);
         screen.selectedDocumentType = "PASSPORT";
         screen.viewWillAppear(false);
       }},
      {"18-front-camera", "ScanIDInstructions",
       [=](Stage& stage) { front(stage, specimens / "licence-front.png"); }},
      {"19-front-taken", "ScanIDInstructions",
       [=](Stage& stage) {
         front(stage, specimens / "licence-front.png");
         stage.waitForButton("Take photo")->sendActions(UIControlEvents::touchUpInside);
         stage.waitForButton("Use photo");
       }},
      {"20-front-failed", "ScanIDInstructions",
       [=](Stage& stage) {
         const QTemporaryDir folder;
         const auto document = std::filesystem::path(folder.filePath("gone.png").toStdString());
         std::filesystem::copy_file(specimens / "passport.png", document);
         front(stage, document);
         std::filesystem::remove(document);
         stage.waitFor("disconnected");
       }},
      {"21-front-sending", "ScanIDInstructions",
       [](Stage& stage) {
         stage.screen<ScanIDInstructionsViewController>().loadingView.lock()->setHidden(false);
       }},
      {"22-back", "ScanBackside"},
      {"23-back-camera", "ScanBackside",
       [=](Stage& stage) {
         stage.look({}, specimens / "id-back.png");
         stage.screen<ScanBacksideViewController>().takePhotoOfBacksideDocument(nullptr);
         stage.waitForButton("Take photo");
       }},
      {"24-congratulations", "Congrats"},
      {"25-warning", "Warning"},
  };
}

}  // namespace
}  // namespace kestrova

int main(int count, char** arguments) {
  using namespace kestrova;
  if (count < 3) {
    std::fprintf(stderr, "usage: kestrova-screens SPECIMENS DIRECTORY [SIZE]\n");
    return 2;
  }
  const std::string wanted = count > 3 ? arguments[3] : "";
  qputenv("QT_QPA_PLATFORM", "offscreen");
  if (!qEnvironmentVariableIsSet("QT_SCALE_FACTOR")) qputenv("QT_SCALE_FACTOR", "2");
  QApplication application(count, arguments);
  UIFontExtensions::loadMyFonts();
  AnimationClock::shared().useManualTime();
  for (const auto& size : kSizes) {
    if (!wanted.empty() && wanted != size.name) continue;
    const auto folder = std::filesystem::path(arguments[2]) / size.name;
    std::filesystem::create_directories(folder);
    for (const auto& state : states(arguments[1])) {
      Stage stage(size, state.scene);
      state.prepare(stage);
      const double keyboard = state.hasKeyboard ? std::min(kKeyboard, size.height / 2.0) : 0;
      if (state.hasKeyboard) {
        UIKeyboard::shared().inputMethodChanged(
            true, {{0, size.height - keyboard}, {double(size.width), keyboard}});
      }
      Stage::settle(1);
      Stage::settle(1);
      stage.save(folder / (std::string(state.name) + ".png"), keyboard);
      UIKeyboard::shared().inputMethodChanged(false, {});
    }
  }
  return 0;
}
