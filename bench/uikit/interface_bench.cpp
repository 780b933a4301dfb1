// What the interface costs: drawing, typing, standing still, starting.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QWidget>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bench/Report.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UITableViewCell.h"
#include "platform/uikit/UITableViewDataSource.h"
#include "platform/uikit/UITextField.h"
#include "platform/uikit/UIViewController.h"
#include "platform/uikit/UIWindow.h"
#include "sdk/core/Kestrova.h"
#include "sdk/ui/Extensions.h"
#include "sdk/ui/SpinnerView.h"

namespace kestrova {
namespace {

using Clock = std::chrono::steady_clock;

double milliseconds(Clock::duration time) {
  return std::chrono::duration<double, std::milli>(time).count();
}

// A flag and a name.
class Row : public UITableViewCell {
 public:
  Row() : flag_(std::make_shared<UIImageView>()), name_(std::make_shared<UILabel>()) {
    flag_->setFrame({{16, 10}, {24, 24}});
    flag_->layer().setCornerRadius(12);
    flag_->setClipsToBounds(true);
    name_->setFrame({{56, 0}, {240, 44}});
    name_->setFont(UIFont::make("Exo-Regular", 17));
    addSubview(flag_);
    addSubview(name_);
  }
  void set(const std::string& code, const std::string& name) {
    const auto bundle = Kestrova::bundle();
    flag_->setImage(bundle ? UIImage::named(code, *bundle) : std::nullopt);
    name_->setText(name);
  }

 private:
  std::shared_ptr<UIImageView> flag_;
  std::shared_ptr<UILabel> name_;
};

// A screen as busy as the flow's busiest: texts, a field, a list of 250 rows, a spinner, a button.
class BusyScreen : public UIViewController, public UITableViewDataSource {
 public:
  std::shared_ptr<UITextField> field;

  void viewDidLoad() override {
    view()->setBackgroundColor(UIColor::white());
    const auto heading = std::make_shared<UILabel>();
    heading->setText("Where are you from?");
    heading->setFont(UIFont::make("Exo-SemiBold", 26));
    place(heading, {{24, 80}, {327, 32}});
    field = std::make_shared<UITextField>();
    field->layer().setBorderWidth(1.5);
    field->layer().setCornerRadius(8);
    field->setTextInset(16);
    place(field, {{24, 136}, {327, 52}});
    table_ = std::make_shared<UITableView>();
    table_->registerPrototype("row", [] { return std::make_shared<Row>(); });
    table_->dataSource = shared(this);
    place(table_, {{24, 200}, {327, 380}});
    place(std::make_shared<SpinnerView>(), {{24, 600}, {40, 40}});
    const auto button = std::make_shared<UIButton>();
    button->setTitle("Next");
    button->setBackgroundColor(UIColorExtensions::kestrovaBlue());
    button->layer().setCornerRadius(8);
    place(button, {{80, 599}, {271, 52}});
  }

  std::size_t tableViewNumberOfRowsInSection(UITableView&, std::size_t) override { return 250; }
  std::shared_ptr<UITableViewCell> tableViewCellForRowAt(UITableView& table,
                                                         const IndexPath& at) override {
    auto cell = table.dequeueReusableCell("row");
    static const char* const codes[] = {"de", "gb", "us", "fr", "es", "it", "pt", "se"};
    std::static_pointer_cast<Row>(cell)->set(codes[at.row % 8],
                                             "Country " + std::to_string(at.row));
    return cell;
  }

 private:
  void place(const std::shared_ptr<UIView>& each, const CGRect& frame) {
    each->setFrame(frame);
    view()->addSubview(each);
  }

  std::shared_ptr<UITableView> table_;
};

void drawAndType() {
  const auto window = UIWindow::make({375, 667});
  const auto screen = std::make_shared<BusyScreen>();
  window->setRootViewController(screen);
  window->makeKeyAndVisible();
  for (int round = 0; round < 20; ++round) QCoreApplication::processEvents();

  std::vector<double> redraws;
  for (int round = 0; round < 200; ++round) {
    const auto start = Clock::now();
    window->widget()->repaint();
    redraws.push_back(milliseconds(Clock::now() - start));
  }
  bench::report("full redraw at 750 x 1334 pixels, median", bench::median(redraws), "ms", 4);

  screen->field->becomeFirstResponder();
  std::vector<double> keys;
  for (int round = 0; round < 200; ++round) {
    QWidget* const target = QApplication::focusWidget();
    const char letter = char('a' + round % 26);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_A + round % 26, {},
                    QString(QChar::fromLatin1(letter)));
    const auto start = Clock::now();
    QCoreApplication::sendEvent(target, &press);
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    keys.push_back(milliseconds(Clock::now() - start));
    if (screen->field->text().size() > 20) screen->field->setText("");
    QCoreApplication::processEvents();
  }
  bench::report("a keystroke's redraw, median", bench::median(keys), "ms", 1);
}

// Voluntary context switches of the process while its loop runs for a while with nothing to do.
long switchesInTenSeconds() {
  rusage before{};
  rusage after{};
  QTimer::singleShot(std::chrono::seconds(10), Qt::PreciseTimer, [] { QCoreApplication::exit(0); });
  ::getrusage(RUSAGE_SELF, &before);
  QCoreApplication::exec();
  ::getrusage(RUSAGE_SELF, &after);
  return after.ru_nvcsw - before.ru_nvcsw;
}

void standStill() {
  const auto settle = [] {
    QTimer::singleShot(std::chrono::seconds(1), [] { QCoreApplication::exit(0); });
    QCoreApplication::exec();
  };
  auto bare = std::make_unique<QLabel>("Nothing moves");
  bare->show();
  settle();
  const long theirs = switchesInTenSeconds();
  bare.reset();
  const auto window = UIWindow::make({375, 667});
  const auto controller = std::make_shared<UIViewController>();
  const auto label = std::make_shared<UILabel>();
  label->setText("Nothing moves");
  controller->view()->addSubview(label);
  // A spinner that cannot be seen costs nothing.
  const auto spinner = std::make_shared<SpinnerView>(CGRect{{20, 20}, {40, 40}});
  spinner->setHidden(true);
  controller->view()->addSubview(spinner);
  window->setRootViewController(controller);
  window->makeKeyAndVisible();
  settle();
  const long ours = switchesInTenSeconds();
  std::printf("%-46s %9ld, of a bare window %ld\n", "voluntary switches in 10 s", ours, theirs);
  bench::report("those that are ours", double(std::max(0L, ours - theirs)), "", 0);
}

double secondsToRun(const std::filesystem::path& program) {
  const auto start = Clock::now();
  const pid_t child = ::fork();
  if (child == 0) {
    ::execl(program.c_str(), program.c_str(), nullptr);
    ::_exit(127);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    std::fprintf(stderr, "%s failed\n", program.c_str());
    std::exit(1);
  }
  return milliseconds(Clock::now() - start);
}

void start(const std::filesystem::path& folder) {
  std::vector<double> ours;
  std::vector<double> bare;
  for (int round = 0; round < 25; ++round) {
    bare.push_back(secondsToRun(folder / "first_frame_bare"));
    ours.push_back(secondsToRun(folder / "first_frame_ours"));
  }
  const double mine = bench::median(ours);
  const double theirs = bench::median(bare);
  std::printf("%-46s %9.2f ms, of a bare window %.2f ms\n", "process start to first frame, median",
              mine, theirs);
  bench::report("ratio", mine / theirs, "", 2);
}

}  // namespace
}  // namespace kestrova

int main(int count, char** arguments) {
  ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
  ::setenv("QT_SCALE_FACTOR", "2", 0);
  QApplication application(count, arguments);
  kestrova::UIFontExtensions::loadMyFonts();
  kestrova::drawAndType();
  kestrova::standStill();
  kestrova::start(std::filesystem::path(arguments[0]).parent_path());
  return kestrova::bench::allMet ? 0 : 1;
}
