#include "platform/uikit/TextLine.h"

#include "platform/graphics/NSLayoutManager.h"
#include "platform/graphics/NSTextStorage.h"

namespace kestrova::platform {

void TextLine::lay(const NSAttributedString& text, double width, NSLayoutManager& manager) {
  NSTextStorage(text).addLayoutManager(manager);
  NSTextContainer container;
  container.size = {width, kUnbounded};
  container.lineFragmentPadding = 0;
  container.maximumNumberOfLines = 1;
  container.lineBreakMode = NSLineBreakMode::byTruncatingTail;
  manager.addTextContainer(container);
}

}  // namespace kestrova::platform
