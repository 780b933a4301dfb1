#pragma once

#include <string_view>

namespace kestrova {

// The ways from screen to screen, as the storyboard names them.
struct Segues {
  static constexpr std::string_view showVerifyEmail = "showVerifyEmail";
  static constexpr std::string_view showErrorScreenfromNationality =
      "showErrorScreenfromNationality";
  static constexpr std::string_view showTakeSelfieVideo = "showTakeSelfieVideo";
  static constexpr std::string_view showErrorScreenfromEmail = "showErrorScreenfromEmail";
  static constexpr std::string_view scanDocumentSegue = "scanDocumentSegue";
  // Of the selfie screen and of the document type screen.
  static constexpr std::string_view showErrorScreenfromHeadMovement =
      "showErrorScreenfromHeadMovement";
  static constexpr std::string_view prepareDocumentSegue = "prepareDocumentSegue";
  static constexpr std::string_view documentSelectionEmbedded = "documentSelectionEmbedded";
  static constexpr std::string_view showCongratsScreen = "showCongratsScreen";
  static constexpr std::string_view scanBackSideOfDocument = "scanBackSideOfDocument";
  static constexpr std::string_view showErrorScreenfromScanID = "showErrorScreenfromScanID";
  static constexpr std::string_view showFinalCongratsAfterBackSide =
      "showFinalCongratsAfterBackSide";
  static constexpr std::string_view showErrorScreenfromScanIDBackside =
      "showErrorScreenfromScanIDBackside";
};

}  // namespace kestrova
