#include "sdk/flow/DocumentPicture.h"

#include "platform/foundation/FileManager.h"
#include "platform/foundation/Print.h"
#include "platform/network/FormEncoding.h"
#include "sdk/media/PictureResizing.h"

namespace kestrova {

std::optional<std::filesystem::path> storeDocumentPicture(const UIImage& photograph,
                                                          std::string_view fileName) {
  constexpr double kFactor = 0.33;
  const auto directory = FileManager::documentDirectory();
  if (!directory) {
    print("Kestrova: the picture is not kept: " + directory.error().localizedDescription);
    return std::nullopt;
  }
  auto file = directory.value() / fileName;
  const auto scaled = resizedWithPercentage(photograph, kFactor);
  if (!scaled) {
    print("Kestrova: the picture is not kept: it cannot be scaled");
    return std::nullopt;
  }
  if (const auto png = UIImagePNGRepresentation(*scaled)) {
    const auto written = FileManager::write(png.value().view(), file);
    if (!written) {
      print("Kestrova: the picture is not kept: " + written.error().localizedDescription);
      return std::nullopt;
    }
  }
  print("Picture is here: Optional(file://" + percentEscaped(file.string()) + ")");
  return file;
}

}  // namespace kestrova
