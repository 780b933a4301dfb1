#include "doctor/CommandLine.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "doctor/Checks.h"

namespace kestrova::doctor {

namespace {

std::string help() {
  std::string text =
      "kestrova-doctor: will a verification work on this machine?\n\n"
      "usage: kestrova-doctor [OPTION...]\n"
      "  --program NAME        the host application's program name, for its documents folder\n"
      "  --backend HOST[:PORT] another backend than the SDK was built for\n"
      "  --authorities FILE    PEM file of trusted authorities; empty: the system's\n"
      "  --bundle FOLDER       Kestrova.bundle elsewhere than the SDK finds it\n"
      "  --check NAME          this check alone; repeatable:";
  for (const auto& check : checks()) text.append(" ").append(check.name);
  text +=
      "\n"
      "  --json                one JSON document instead of lines\n"
      "  --help, --version\n\n"
      "exit status: 0 all is well, 1 warnings, 2 failures, 64 a wrong call\n";
  return text;
}

bool isCheck(std::string_view name) {
  const auto all = checks();
  return std::any_of(all.begin(), all.end(), [&](const auto& check) { return check.name == name; });
}

}  // namespace

std::variant<Command, Message> readCommandLine(const std::vector<std::string>& arguments) {
  Command command;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    // --name value or --name=value
    const auto& argument = arguments[i];
    const auto equals = argument.find('=');
    const auto name = argument.substr(0, equals);
    if (argument == "--help") return Message{help()};
    if (argument == "--version") return Message{"kestrova-doctor " KESTROVA_VERSION "\n"};
    if (argument == "--json") {
      command.isJSON = true;
      continue;
    }
    constexpr std::array kWithValue{"--program", "--backend", "--authorities", "--bundle",
                                    "--check"};
    if (std::find(kWithValue.begin(), kWithValue.end(), name) == kWithValue.end()) {
      return Message{"unknown option " + argument + ", see --help\n", true};
    }
    if (equals == argument.npos && i + 1 == arguments.size()) {
      return Message{name + " needs a value\n", true};
    }
    const auto value = equals == argument.npos ? arguments[++i] : argument.substr(equals + 1);
    if (name == "--check") {
      if (!isCheck(value)) return Message{"no check is called " + value + ", see --help\n", true};
      command.only.push_back(value);
    } else if (name == "--authorities") {
      command.machine.authorities = value;
    } else if (value.empty() || (name == "--program" && value.find('/') != value.npos) ||
               (name == "--backend" && value.find_first_of("/@?#") != value.npos)) {
      return Message{name + " needs another value\n", true};
    } else if (name == "--program") {
      command.machine.application = value;
    } else if (name == "--backend") {
      command.machine.backend = value;
    } else {
      command.machine.bundle = value;
    }
  }
  return command;
}

}  // namespace kestrova::doctor
