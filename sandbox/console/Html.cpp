#include "sandbox/console/Html.h"

#include <array>
#include <cstdio>

#include "sandbox/Text.h"

namespace kestrova::sandbox {

namespace {

// The entity of a character that means something in markup; empty for others.
std::string_view entity(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    default:
      return {};
  }
}

}  // namespace

Html& Html::operator<<(Markup markup) {
  out_ += markup.text();
  return *this;
}

Html& Html::operator<<(const Html& piece) {
  out_ += piece.out_;
  return *this;
}

Html& Html::operator<<(std::int64_t number) {
  out_ += std::to_string(number);
  return *this;
}

Html& Html::text(std::string_view bytes, std::size_t limit) {
  return write(bytes, limit, "", "");
}

Html& Html::value(std::string_view bytes, std::size_t limit) {
  return write(bytes, limit, "<span class=\"raw\">", "</span>");
}

Html& Html::write(std::string_view bytes, std::size_t limit, Markup before, Markup after) {
  const auto shown = bytes.substr(0, limit);
  bool hiding = false;
  const auto setHiding = [&](bool wanted) {
    if (wanted != hiding) out_ += wanted ? before.text() : after.text();
    hiding = wanted;
  };
  for (std::size_t at = 0; at < shown.size();) {
    const auto length = visibleLength(shown.substr(at));
    setHiding(length == 0);
    if (length == 0) {
      out_ += "\\x";
      out_ += lowerHex(shown.substr(at, 1));
    } else if (const auto escaped = entity(shown[at]); !escaped.empty()) {
      out_ += escaped;
    } else {
      out_ += shown.substr(at, length);
    }
    at += length == 0 ? 1 : length;
  }
  setHiding(false);
  if (shown.size() < bytes.size()) out_ += "\xe2\x80\xa6";
  return *this;
}

std::string grouped(std::uint64_t number) {
  auto digits = std::to_string(number);
  for (auto at = digits.size(); at > 3;) {
    at -= 3;
    digits.insert(at, 1, ',');
  }
  return digits;
}

std::string inUnits(std::uint64_t bytes) {
  if (bytes < 1000) return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
  constexpr std::array<const char*, 3> units{"kB", "MB", "GB"};
  double amount = static_cast<double>(bytes) / 1000;
  std::size_t unit = 0;
  while (amount >= 999.5 && unit + 1 < units.size()) {
    amount /= 1000;
    ++unit;
  }
  std::array<char, 32> out{};
  std::snprintf(out.data(), out.size(), amount < 9.95 ? "%.1f %s" : "%.0f %s", amount,
                units.at(unit));
  return out.data();
}

std::string percentEncoded(std::string_view bytes) {
  constexpr std::string_view kept =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
  std::string out;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (kept.find(bytes[i]) != kept.npos) {
      out += bytes[i];
    } else {
      out += '%' + lowerHex(bytes.substr(i, 1));
    }
  }
  return out;
}

}  // namespace kestrova::sandbox
