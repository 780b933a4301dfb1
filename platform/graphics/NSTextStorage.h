#pragma once

#include <memory>
#include <utility>

#include "platform/graphics/NSAttributedString.h"
#include "platform/graphics/NSLayoutManager.h"

namespace kestrova::platform {

// A text to be laid out.
class NSTextStorage {
 public:
  explicit NSTextStorage(NSAttributedString text)
      : text_(std::make_shared<const NSAttributedString>(std::move(text))) {}

  // The manager shares the text and may outlive the storage.
  void addLayoutManager(NSLayoutManager& manager) const { manager.setText(text_); }

 private:
  std::shared_ptr<const NSAttributedString> text_;
};

}  // namespace kestrova::platform
