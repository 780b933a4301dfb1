#include "sandbox/CommandLine.h"

#include <charconv>

#include "sandbox/Text.h"

namespace kestrova::sandbox {

namespace {

std::string help() {
  std::string text =
      "kestrova-sandbox, the verification backend for your own machine\n\n"
      "usage: kestrova-sandbox [OPTION...]\n"
      "  --port N                       HTTPS port on 127.0.0.1 (8443; 0: a free one)\n"
      "  --listing-port N               HTTP port of listing and control (8480; 0: a free one)\n"
      "  --store DIR                    certificates and record\n"
      "                                 (~/.local/share/kestrova-sandbox)\n"
      "  --scenario FAULT[@STEP][:once] plays a fault, for all steps or one; repeatable\n"
      "  --help, --version\n\n"
      "faults:";
  for (const auto& name : faultNames()) text += "\n  " + name;
  return text += '\n';
}

bool readPort(std::string_view text, std::uint16_t& port) {
  const auto* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, port);
  return error == std::errc{} && stop == end;
}

}  // namespace

Outcome<Command> readCommandLine(const std::vector<std::string>& arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    // --name value or --name=value
    const auto equals = arguments[i].find('=');
    const auto name = arguments[i].substr(0, equals);
    if (arguments[i] == "--help") return Command(help());
    if (arguments[i] == "--version") return Command("kestrova-sandbox " KESTROVA_VERSION "\n");
    if (name != "--port" && name != "--listing-port" && name != "--store" && name != "--scenario") {
      return Failure{"unknown option " + printable(arguments[i]) + ", see --help"};
    }
    if (equals == std::string::npos && i + 1 == arguments.size()) {
      return Failure{name + " needs a value"};
    }
    const auto value =
        equals == std::string::npos ? arguments[++i] : arguments[i].substr(equals + 1);
    if (name == "--store") {
      if (value.empty()) return Failure{"--store needs a directory"};
      options.store = value;
    } else if (name == "--scenario") {
      auto scenario = parseScenario(value);
      if (!scenario) return Failure{"--scenario " + printable(value) + ": " + scenario.error()};
      options.scenarios.push_back(std::move(scenario).value());
    } else if (!readPort(value, name == "--port" ? options.port : options.listingPort)) {
      return Failure{name + ": expected a number from 0 to 65535, came " + printable(value)};
    }
  }
  return Command(std::move(options));
}

}  // namespace kestrova::sandbox
