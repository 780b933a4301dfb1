#include "sdk/ui/KestrovaButton.h"

#include <fstream>

#include <QtGui/QAccessible>
#include <QtWidgets/QVBoxLayout>

#include "platform/uikit/UIClassRegistry.h"
#include "platform/uikit/UIDevice.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UINib.h"
#include "platform/uikit/UIViewController.h"
#include "sdk/backend/BackendTransport.h"
#include "sdk/core/Kestrova.h"
#include "sdk/ui/KestrovaButtonHelper.h"
#include "sdk/ui/KestrovaButtonPlaceholder.h"
#include "sdk/ui/ViewClasses.h"
#include "tests/platform/uikit/Interface.h"
#include "tests/support/StandardOutput.h"
#include "tests/support/TemporaryDirectory.h"

namespace kestrova {
namespace {

using Lines = std::vector<std::string>;

class Button : public test::Interface {
 protected:
  Button() {
    // Nobody listens there.
    auto configuration = BackendTransport::defaultConfiguration();
    configuration.connectTo = std::string(KESTROVA_BACKEND_HOST) + ":127.0.0.1:1";
    configuration.honoursProxy = false;
    BackendTransport::replace(HTTPTransport::make(configuration));
    registerViewClasses();
    Kestrova::apiKey.reset();
  }
  ~Button() override {
    KestrovaButton::setContainer(nullptr);
    KestrovaButton::setStartFailureHandler(nullptr);
    UIDevice::current().setSystemVersion("");
    BackendTransport::replace(nullptr);
  }

  static std::shared_ptr<KestrovaButton> designed() {
    return UIViewExtensions::viewFromNib<KestrovaButton>();
  }
  // A screen of the host with the button in it.
  std::shared_ptr<UIViewController> screenWith(const std::shared_ptr<KestrovaButton>& button) {
    auto screen = std::make_shared<UIViewController>();
    button->setFrame({{40, 300}, {295, 52}});
    screen->view()->addSubview(button);
    window().setRootViewController(screen);
    settle();
    return screen;
  }
};

TEST_F(Button, ComesFromTheNibInItsStyle) {
  const auto button = designed();
  ASSERT_TRUE(button);
  const auto caption = button->label.lock();
  EXPECT_EQ(caption->font(), UIFont::make("Exo-SemiBold", 17));
  EXPECT_EQ(button->layer().cornerRadius(), 5);
  EXPECT_TRUE(button->layer().masksToBounds());
  EXPECT_EQ(button->layer().borderWidth(), 1);
  EXPECT_EQ(button->layer().borderColor(),
            UIColor::displayP3(213.0 / 255, 213.0 / 255, 213.0 / 255, 1));
  EXPECT_EQ(button->backgroundColor(), UIColor::white());
  int hidden = 0;
  for (const auto& subview : button->subviews()) hidden += subview->isHidden() ? 1 : 0;
  EXPECT_EQ(hidden, 1);
  EXPECT_EQ(button->accessibilityLabel(), caption->text());
  EXPECT_EQ(button->widget()->sizeHint().height(), 52);
  UIDevice::current().setSystemVersion("9.3");
  EXPECT_EQ(designed()->layer().borderColor(), UIColor(213.0 / 255, 213.0 / 255, 213.0 / 255, 1));
}

TEST_F(Button, TakesThePlaceOfAnEmptyOneInAHostsNib) {
  const test::TemporaryDirectory folder;
  std::ofstream(folder.path() / "Host.ui")
      << R"(<ui version="4.0"><widget class="QWidget" name="Host">)"
         R"(<widget class="KestrovaButton" name="empty"><property name="geometry">)"
         R"(<rect><x>20</x><y>30</y><width>280</width><height>44</height></rect></property></widget>)"
         R"(<widget class="KestrovaButton" name="own"><widget class="QLabel" name="text"/></widget>)"
         R"(</widget></ui>)";
  const auto host = UINib("Host", *Bundle::at(folder.path())).instantiate();
  ASSERT_TRUE(host) << host.error().localizedDescription;
  const auto& views = host.value().front()->subviews();
  ASSERT_EQ(views.size(), 2U);
  const auto button = std::dynamic_pointer_cast<KestrovaButton>(views[0]);
  ASSERT_TRUE(button->label.lock());
  EXPECT_EQ(button->frame(), (CGRect{{20, 30}, {280, 44}}));
  EXPECT_FALSE(button->translatesAutoresizingMaskIntoConstraints());
  EXPECT_EQ(views[1]->subviews().size(), 1U);
  place(host.value().front(), {{}, {375, 200}});
  const test::StandardOutput output;
  click(*button);
  EXPECT_EQ(output.lines(), Lines{"Super view and container are both nil."});
}

TEST_F(Button, TakesThePlaceOfAnEmptyOneThatIsANibsFirstObject) {
  const test::TemporaryDirectory folder;
  std::ofstream(folder.path() / "Host.ui")
      << R"(<ui version="4.0"><widget class="KestrovaButton" name="Host"/></ui>)";
  const auto host = UINib("Host", *Bundle::at(folder.path())).instantiate();
  ASSERT_TRUE(host) << host.error().localizedDescription;
  const auto button = std::dynamic_pointer_cast<KestrovaButton>(host.value().front());
  ASSERT_TRUE(button);
  ASSERT_TRUE(button->label.lock());
  EXPECT_EQ(button->label.lock()->font(), UIFont::make("Exo-SemiBold", 17));
  place(host.value().front(), {{}, {375, 52}});
  const test::StandardOutput output;
  click(*button);
  EXPECT_EQ(output.lines(), Lines{"Super view and container are both nil."});
}

TEST_F(Button, StartsFromItsOwnScreenElseFromTheContainer) {
  Kestrova::initialize("key");
  const auto screen = screenWith(designed());
  EXPECT_EQ(parentViewController(*screen->view()->subviews().front()), screen);
  const test::StandardOutput output;
  click(*screen->view()->subviews().front());
  advance(1);
  EXPECT_EQ(output.lines().front(), "Kestrova API key is: Optional(\"key\")");
  EXPECT_TRUE(screen->presentedViewController());
  screen->dismiss(false);
  advance(1);

  QWidget elsewhere;
  elsewhere.resize(400, 700);
  elsewhere.show();
  const auto container = UIViewController::wrapping(elsewhere);
  KestrovaButton::setContainer(container);
  click(*screen->view()->subviews().front());
  advance(1);
  EXPECT_FALSE(screen->presentedViewController());
  EXPECT_TRUE(container->presentedViewController());
}

TEST_F(Button, TellsTheHostThatATapCouldNotStart) {
  const auto button = designed();
  screenWith(button);
  int failures = 0;
  KestrovaButton::setStartFailureHandler([&](const KestrovaError& error) {
    EXPECT_EQ(error.error(), KestrovaErrors::notInitializedApiKey);
    ++failures;
    KestrovaButton::setStartFailureHandler(nullptr);
  });
  const test::StandardOutput output;
  click(*button);
  click(*button);
  EXPECT_EQ(failures, 1);
  const std::string why = "Kestrova: the verification cannot be started: notInitializedApiKey";
  EXPECT_EQ(output.lines(),
            (Lines{"Kestrova API key is: nil", why, "Kestrova API key is: nil", why}));
  EXPECT_THROW(button->buttonTapped(nullptr), KestrovaError);
}

TEST_F(Button, StandsInAHostsFormAsAPlaceholder) {
  Kestrova::initialize("key");
  QWidget form;
  auto* const column = new QVBoxLayout(&form);
  auto* const placeholder = new KestrovaButtonPlaceholder(&form);
  column->addStretch();
  column->addWidget(placeholder);
  form.resize(360, 500);
  const auto host = UIViewController::wrapping(form);
  form.show();
  settle();
  EXPECT_EQ(placeholder->height(), 52);
  const auto& button = placeholder->view();
  ASSERT_TRUE(button);
  EXPECT_EQ(button->bounds().size.width, placeholder->width());
  const test::StandardOutput output;
  click(*button);
  advance(1);
  EXPECT_TRUE(host->presentedViewController());
}

TEST_F(Button, ANibThatIsMissingIsOneLine) {
  const test::StandardOutput output;
  EXPECT_EQ(UIViewExtensions::viewFromNib<UILabel>(), nullptr);
  EXPECT_EQ(output.lines(), Lines{"Kestrova: the nib UILabel cannot be loaded: the bundle "
                                  "Kestrova.bundle has no nib UILabel"});
  const auto empty = std::make_shared<UILabel>();
  EXPECT_EQ(loadFromNibIfEmbeddedInDifferentNib(empty), empty);
}

TEST(ButtonAtExit, LetsItsContainerGoWithTheApplication) {
  int count = 1;
  char name[] = "test";
  char* arguments[] = {name, nullptr};
  std::weak_ptr<UIViewController> weak;
  for (int round = 0; round < 2; ++round) {
    const QApplication application(count, arguments);
    const auto container = std::make_shared<UIViewController>();
    container->view();
    KestrovaButton::setContainer(container);
    weak = container;
  }
  EXPECT_TRUE(weak.expired());
}

}  // namespace
}  // namespace kestrova
