#pragma once

#include <memory>
#include <string_view>
#include <utility>

#include "platform/foundation/Data.h"

namespace kestrova::platform {

// Bytes that several objects read; copies share them.
class CGDataProvider {
 public:
  explicit CGDataProvider(Data data) : data_(std::make_shared<const Data>(std::move(data))) {}

  std::string_view view() const { return data_->view(); }

 private:
  std::shared_ptr<const Data> data_;
};

}  // namespace kestrova::platform
