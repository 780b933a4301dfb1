#include <iostream>

#include "sdk/core/Kestrova.h"

int main() {
  try {
    kestrova::Kestrova::startVerification(nullptr);
  } catch (const kestrova::KestrovaError& error) {
    std::cout << error.what() << '\n';
  }
  const auto bundle = kestrova::Kestrova::bundle();
  std::cout << (bundle && bundle->path("countries", "json") ? "bundle found" : "no bundle") << '\n';
}
