#include "sdk/ui/ViewClasses.h"

#include "platform/uikit/UIClassRegistry.h"
#include "sdk/Platform.h"
#include "sdk/ui/ArtworkView.h"
#include "sdk/ui/HeadingLabel.h"
#include "sdk/ui/KestrovaButton.h"
#include "sdk/ui/ProgressStepsView.h"
#include "sdk/ui/SpinnerView.h"

namespace kestrova {

void registerViewClasses() {
  UIClassRegistry::registerClass<ArtworkView>("ArtworkView");
  UIClassRegistry::registerClass<HeadingLabel>("HeadingLabel");
  UIClassRegistry::registerClass<KestrovaButton>("KestrovaButton");
  UIClassRegistry::registerClass<ProgressStepsView>("ProgressStepsView");
  UIClassRegistry::registerClass<SpinnerView>("SpinnerView");
}

}  // namespace kestrova
