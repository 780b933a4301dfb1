#pragma once

#include <string>

namespace kestrova {

class DocumentSelectionDelegate {
 public:
  virtual ~DocumentSelectionDelegate() = default;
  // `selectedDocument`: "PASSPORT", "DRIVERS_LICENSE" or "NATIONAL_ID_CARD".
  virtual void didClickOnCell(const std::string& selectedDocument) = 0;
};

}  // namespace kestrova
