#include "sdk/ui/KestrovaButtonPlaceholder.h"

#include "sdk/Platform.h"
#include "sdk/ui/KestrovaButton.h"
#include "sdk/ui/KestrovaButtonHelper.h"

namespace kestrova {

KestrovaButtonPlaceholder::KestrovaButtonPlaceholder(QWidget* parent)
    : ViewPlaceholder([] { return UIViewExtensions::viewFromNib<KestrovaButton>(); }, parent) {}

KestrovaButtonPlaceholder::~KestrovaButtonPlaceholder() = default;

}  // namespace kestrova
