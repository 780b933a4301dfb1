#pragma once

#include <string>
#include <string_view>

#include "sandbox/Http.h"
#include "sandbox/console/Html.h"

namespace kestrova::sandbox {

enum class Tab { authentications, scenarios };

// What every page shows besides its content.
struct Frame {
  std::string revision;       // empty: the page does not follow what arrives
  std::size_t scenarios = 0;  // that play
};

// A page of the console. The title is text.
HttpAnswer page(const Frame& frame, Tab tab, std::string_view title, const Html& content,
                int status = 200);

// A page with nothing but a heading and a sentence.
HttpAnswer notice(const Frame& frame, std::string_view title, Markup sentence, int status);

// A button that asks before it posts `field` to /control/authentications/delete. `id` is the page's
// own.
Html deletion(Markup id, Markup label, Markup question, Markup consequence, Markup field,
              std::string_view value);

}  // namespace kestrova::sandbox
