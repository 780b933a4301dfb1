#pragma once

#include <array>
#include <string_view>

// SQLite's; never seen outside .cpp files.
struct sqlite3;

namespace kestrova::sandbox {

// Where a column of an authentication's summary comes from.
struct SummaryField {
  std::string_view step;
  std::string_view field;
  std::string_view column;
};
inline constexpr std::array<SummaryField, 4> summaryFields{
    {{"set_nationality", "country_code", "country"},
     {"signup", "identifier", "email"},
     {"choose_authentication_document", "authentication_method", "document"},
     {"authentication_assessments", "authentication_assessments[][value]", "assessment"}}};

// Makes the tables, or brings those of an earlier version up to date. Throws SqlError where the
// database is no record of a sandbox, or of a later version.
void prepareSchema(sqlite3* database);

}  // namespace kestrova::sandbox
