#pragma once

#include <cstddef>
#include <memory>

#include "platform/graphics/CGGeometry.h"
#include "platform/graphics/NSAttributedString.h"
#include "platform/graphics/NSTextContainer.h"

namespace kestrova::platform {

// Lays out the text of the storage that it is added to in one container. Labels are drawn through
// it, so that what lies under a point is what is seen there. Characters without a font are of the
// system's, 12 points, those without a colour black. Main thread; in a process without a
// QGuiApplication there is no layout.
class NSLayoutManager {
 public:
  NSLayoutManager();
  NSLayoutManager(const NSLayoutManager&) = delete;
  NSLayoutManager& operator=(const NSLayoutManager&) = delete;
  ~NSLayoutManager();

  // Takes the place of the container given before.
  void addTextContainer(const NSTextContainer& container);

  // The UTF-16 index of the character at `point` of the container, of the nearest where there is
  // none. 0 for an empty text, NSNotFound without a layout.
  std::size_t characterIndex(CGPoint point) const;
  // What the laid-out text covers of the container; empty without a layout.
  CGRect usedRect() const;
  // Whether characters of the text are left out.
  bool isTruncated() const;

 private:
  friend class NSTextStorage;
  friend struct QtBridge;
  struct Layout;

  void setText(std::shared_ptr<const NSAttributedString> text);
  const Layout* layout() const;

  std::shared_ptr<const NSAttributedString> text_;
  NSTextContainer container_;
  // Made when it is needed.
  mutable std::unique_ptr<const Layout> layout_;
};

}  // namespace kestrova::platform
