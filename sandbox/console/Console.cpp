#include "sandbox/console/Console.h"

#include <charconv>
#include <limits>
#include <string>

#include "sandbox/FormContract.h"
#include "sandbox/console/Assets.h"
#include "sandbox/console/ListPage.h"
#include "sandbox/console/TimelinePage.h"
#include "sandbox/console/Upload.h"

namespace kestrova::sandbox {

namespace {

constexpr std::size_t longestSearch = 200;

std::int64_t numberIn(std::string_view text, std::int64_t otherwise) {
  std::int64_t number = 0;
  const auto* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc{} && stop == end && number > 0 ? number : otherwise;
}

HttpAnswer assetAnswer(std::string_view name) {
  const auto bytes = asset(name);
  std::string type;
  if (name.ends_with(".css")) type = "text/css; charset=utf-8";
  if (name.ends_with(".js")) type = "text/javascript; charset=utf-8";
  if (name.ends_with(".svg")) type = "image/svg+xml";
  if (bytes.empty() || type.empty()) return errorAnswer(404, "no such resource");
  return {200, type, std::string(bytes), Delivery::whole};
}

// What follows the folder in the path; nothing where the path is elsewhere.
std::optional<std::string_view> below(std::string_view path, std::string_view folder) {
  if (!path.starts_with(folder)) return std::nullopt;
  return path.substr(folder.size());
}

}  // namespace

Console::Console(const Store& store, const ScenarioSet& scenarios)
    : store_(store), scenarios_(scenarios) {}

std::string Console::revision() const {
  return store_.revision() + '-' + std::to_string(scenarios_.changes());
}

Frame Console::frame() const {
  // Before what is read for the page, so that nothing newer goes unnoticed.
  return {revision(), scenarios_.all().size()};
}

HttpAnswer Console::get(const HttpRequest& request) const {
  const auto path = request.path();
  const auto query = std::string_view(request.target).substr(path.size());
  const auto form = readLooseForm(query.empty() ? query : query.substr(1));
  const auto valueOf = [&](std::string_view name) {
    const auto* const value = form.find(name);
    return value != nullptr ? value->substr(0, longestSearch) : std::string();
  };
  if (path == "/console/revision") {
    return {200, "text/plain; charset=utf-8", revision(), Delivery::whole};
  }
  if (const auto name = below(path, "/console/")) return assetAnswer(*name);

  const auto last = std::numeric_limits<std::int64_t>::max();
  const auto surroundings = frame();
  if (path == "/") {
    SummaryQuery wanted;
    wanted.email = valueOf("email");
    wanted.step = valueOf("step");
    wanted.before = numberIn(valueOf("before"), wanted.before);
    return listPage(surroundings, store_, wanted);
  }
  if (path == "/scenarios") return scenarioPage(surroundings, scenarios_.all(), {});
  if (path == "/strays") {
    return straysPage(surroundings, store_, numberIn(valueOf("before"), last));
  }
  if (const auto key = below(path, "/authentications/")) {
    return timelinePage(surroundings, store_, *key, numberIn(valueOf("after"), 0));
  }
  const auto pageOf = below(path, "/uploads/");
  const auto bytesOf = below(path, "/files/");
  if (pageOf || bytesOf) {
    const auto entry = store_.entry(numberIn(pageOf ? *pageOf : *bytesOf, 0));
    if (entry && entry->request.upload) {
      return pageOf ? uploadPage(surroundings, store_, *entry)
                    : uploadAnswer(request, *entry->request.upload);
    }
  }
  return notice(surroundings, "Nothing is here", "Perhaps it was deleted.", 404);
}

HttpAnswer Console::refused(const ScenarioForm& form) const {
  auto surroundings = frame();
  surroundings.revision.clear();
  auto answer = scenarioPage(surroundings, scenarios_.all(), form);
  answer.status = 400;
  return answer;
}

}  // namespace kestrova::sandbox
