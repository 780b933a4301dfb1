#pragma once

#include <string_view>

#include "sandbox/Records.h"
#include "sandbox/console/Html.h"

namespace kestrova::sandbox {

// A request as an item of a timeline; `begin` is the time from which it counts, empty: none.
Html entryView(const Entry& entry, std::string_view begin);

// The name of the request's step, or its method and target where it has none that is known.
Html entryTitle(const Entry& entry);

// What is known of an uploaded file: pixels, bytes, names and digest.
Html uploadFacts(const Upload& upload);

}  // namespace kestrova::sandbox
