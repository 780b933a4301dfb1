#include <map>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "platform/uikit/UIStoryboard.h"
#include "platform/uikit/UIStoryboardScene.h"
#include "platform/uikit/UIViewController.h"
#include "sdk/core/Kestrova.h"
#include "sdk/flow/Flow.h"
#include "tests/platform/uikit/Interface.h"

namespace kestrova {
namespace {

using StoryboardOfTheFlow = test::Interface;

TEST_F(StoryboardOfTheFlow, FitsItsClassesAndHasEverySegue) {
  registerFlowClasses();
  const auto storyboard = UIStoryboard::make("FrameworkStoryboard", *Kestrova::bundle());
  ASSERT_TRUE(storyboard) << storyboard.error().localizedDescription;
  const auto verified = storyboard.value()->verify();
  EXPECT_TRUE(verified) << verified.error().localizedDescription;

  const std::map<std::string, std::map<std::string, std::string>> routes{
      {"ChooseCitizen",
       {{"showVerifyEmail", "CheckEmail"}, {"showErrorScreenfromNationality", "Warning"}}},
      {"CheckEmail",
       {{"showTakeSelfieVideo", "MoveHead"}, {"showErrorScreenfromEmail", "Warning"}}},
      {"MoveHead",
       {{"scanDocumentSegue", "ChooseDocumentType"},
        {"showErrorScreenfromHeadMovement", "Warning"}}},
      {"ChooseDocumentType",
       {{"prepareDocumentSegue", "ScanIDInstructions"},
        {"documentSelectionEmbedded", "DocumentTable"},
        {"showErrorScreenfromHeadMovement", "Warning"}}},
      {"ScanIDInstructions",
       {{"showCongratsScreen", "Congrats"},
        {"scanBackSideOfDocument", "ScanBackside"},
        {"showErrorScreenfromScanID", "Warning"}}},
      {"ScanBackside",
       {{"showFinalCongratsAfterBackSide", "Congrats"},
        {"showErrorScreenfromScanIDBackside", "Warning"}}}};
  for (const auto& [screen, ways] : routes) {
    const auto made = storyboard.value()->instantiateViewController(screen);
    ASSERT_TRUE(made) << screen;
    std::map<std::string, std::string> found;
    for (const auto& segue : made.value()->scene()->segues) {
      found[segue.identifier] = segue.destination;
    }
    EXPECT_EQ(found, ways) << screen;
  }
}

}  // namespace
}  // namespace kestrova
