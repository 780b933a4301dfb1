#pragma once

#include "sandbox/Store.h"
#include "sandbox/console/Page.h"

namespace kestrova::sandbox {

// The authentications that fit the query, a page of them, with the search that led there.
HttpAnswer listPage(const Frame& frame, const Store& store, const SummaryQuery& query);

// Whether an authentication is complete, deviated and the like, in a word.
Html stateOf(const Summary& summary);

// Its e-mail address, or what stands for one that never came.
Html emailOf(const Summary& summary);

}  // namespace kestrova::sandbox
