#pragma once

#include <string_view>

#include "sandbox/Store.h"
#include "sandbox/console/Page.h"

namespace kestrova::sandbox {

// One authentication, its requests in order of arrival from the id `after` on; 404 where there is
// no such authentication.
HttpAnswer timelinePage(const Frame& frame, const Store& store, std::string_view key,
                        std::int64_t after);

// The requests of no authentication below the id `before`, the latest first.
HttpAnswer straysPage(const Frame& frame, const Store& store, std::int64_t before);

// An uploaded file, as large as it is.
HttpAnswer uploadPage(const Frame& frame, const Store& store, const Entry& entry);

}  // namespace kestrova::sandbox
