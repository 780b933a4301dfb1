#include "platform/uikit/FormBuilder.h"

#include <utility>

#include <QtCore/QBuffer>
#include <QtCore/QCoreApplication>
#include <QtUiTools/QUiLoader>
#include <QtWidgets/QLayout>
#include <QtWidgets/QWidget>

#include "platform/foundation/JSONValue.h"
#include "platform/uikit/UIClassRegistry.h"
#include "platform/uikit/UIStackView.h"

namespace kestrova::platform {

namespace {

using Views = std::vector<std::shared_ptr<UIView>>;

// Makes our views where the toolkit would make its widgets.
class FormBuilder : public QUiLoader {
 public:
  // Kept for the process: the toolkit looks for Designer's plugins, of the host's too, with each.
  static FormBuilder& shared() {
    static FormBuilder& builder = make();
    return builder;
  }

  Views build(const DesignerFile& file, NibFaults& faults) {
    faults_ = &faults;
    QByteArray form = QByteArray::fromRawData(file.form().data(), qsizetype(file.form().size()));
    QBuffer buffer(&form);
    buffer.open(QIODevice::ReadOnly);
    const QWidget* const root = load(&buffer);
    Views views = std::exchange(views_, {});
    if (root && views.size() == file.objects().size()) return views;
    faults.add("the toolkit cannot build it: " + errorString().toStdString());
    return {};
  }

  QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override {
    auto view = std::dynamic_pointer_cast<UIView>(UIClassRegistry::make(className.toStdString()));
    if (!view) {
      faults_->add("the class " + platform::quoted(className.toStdString()) + " of " +
                   name.toStdString() + " is no view");
      view = std::make_shared<UIView>();
    }
    QWidget* const widget = view->widget();
    widget->setObjectName(name);
    widget->setParent(parent);
    views_.push_back(std::move(view));
    return widget;
  }

  QLayout* createLayout(const QString& className, QObject* parent, const QString& name) override {
    QLayout* const layout = QUiLoader::createLayout(className, parent, name);
    if (layout && parent->isWidgetType()) {
      layout->setContentsMargins(0, 0, 0, 0);
      layout->setSpacing(0);
      // Whoever places the view has the last word on its size.
      layout->setSizeConstraint(QLayout::SetNoConstraint);
    }
    return layout;
  }

 private:
  static FormBuilder& make() {
    const QStringList paths = QCoreApplication::libraryPaths();
    QCoreApplication::setLibraryPaths({});
    auto builder = std::make_unique<FormBuilder>();
    QCoreApplication::setLibraryPaths(paths);
    // Never freed: the application object may go before the process's static objects.
    return *builder.release();
  }

  Views views_;
  NibFaults* faults_ = nullptr;
};

void addSubviews(const std::shared_ptr<UIView>& view) {
  const bool isStack = dynamic_cast<const UIStackView*>(view.get()) != nullptr;
  // A copy in the order of the screen: adding moves them.
  const QObjectList children = view->widget()->children();
  for (QObject* const child : children) {
    auto* const widget = qobject_cast<QWidget*>(child);
    const auto subview = widget ? UIView::of(widget) : nullptr;
    if (!subview) continue;
    QSizePolicy policy = widget->sizePolicy();
    policy.setRetainSizeWhenHidden(!isStack);
    widget->setSizePolicy(policy);
    view->addSubview(subview);
  }
}

}  // namespace

Views buildForm(const DesignerFile& file, NibFaults& faults) {
  auto views = FormBuilder::shared().build(file, faults);
  for (const auto& view : views) addSubviews(view);
  return views;
}

}  // namespace kestrova::platform
