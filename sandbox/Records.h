#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "sandbox/Sandbox.h"

namespace kestrova::sandbox {

// One line on an authentication, kept up to date with each of its requests.
struct Summary {
  std::int64_t position = 0;  // ascends with the opening; never used twice
  std::string key;
  std::string apiKey;
  std::string opened;  // as Request::received
  std::string lastReceived;
  std::string lastStep;
  // As the latest request of the step gave them, at most the first 400 bytes.
  std::string email;
  std::string country;
  std::string document;
  std::string assessment;
  std::int64_t requests = 0;
  std::int64_t deviations = 0;
  std::int64_t faults = 0;  // requests that a fault met
  bool finished = false;    // its last step was answered with 200
};

// Which authentications: all that fit, the newest first.
struct SummaryQuery {
  std::string email;  // a part of the address, in any case of ASCII letters; empty: any
  std::string step;   // a step that was received; empty: any
  std::int64_t before = std::numeric_limits<std::int64_t>::max();  // positions below this one
  std::size_t most = 50;
};

// A parameter of a request, its value cut.
struct Field {
  std::string name;
  std::string value;
  std::uint64_t size = 0;  // of the whole value
};

// A request as a page shows it: without body and headers, long texts cut.
struct Entry {
  std::int64_t id = 0;
  Request request;  // its parameters are in `fields`
  std::vector<Field> fields;
  std::int64_t furtherFields = 0;  // received, not in `fields`
};

// Which requests of an authentication; those of none where the key is empty.
struct EntryQuery {
  std::string key;
  std::int64_t after = 0;  // from this id on, in order of arrival
  // Where set: below this id, the latest first.
  std::int64_t before = 0;
  std::size_t most = 100;
};

}  // namespace kestrova::sandbox
