#pragma once

#include <functional>

class QEvent;
class QSize;
class QWidget;

namespace kestrova::platform {

// For the event() of a widget that draws itself: runs `handle`, the toolkit's own handling, and
// undoes what the style sheet of a host's application does to the widget: the ground, and the
// limits of its size, which are to be `least` and `most`, without them none.
bool withoutHostStyle(QWidget& widget, const QEvent& event, const std::function<bool()>& handle,
                      const QSize& least, const QSize& most);
bool withoutHostStyle(QWidget& widget, const QEvent& event, const std::function<bool()>& handle);

}  // namespace kestrova::platform
