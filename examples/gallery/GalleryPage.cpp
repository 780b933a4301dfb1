#include "examples/gallery/GalleryPage.h"

#include "examples/gallery/Pages.h"

namespace kestrova::gallery {

const std::vector<GalleryPage>& galleryPages() {
  static const std::vector<GalleryPage> pages{
      {"type", "Type", typePage},
      {"text", "Text", textPage},
      {"images", "Images", imagesPage},
      {"animations", "Animations", animationsPage},
      {"buttons", "Buttons", buttonsPage},
      {"start-button", "Start button", startButtonPage},
      {"fields", "Text fields", fieldsPage},
      {"editing", "Editing", editingPage},
      {"scroll", "Scroll view", scrollPage},
      {"table", "Table", tablePage},
      {"table-keyboard", "Table by keyboard", keyboardTablePage},
      {"spinners", "Spinners", spinnersPage, 2.6},
      {"shapes", "Shapes and gradients", shapesPage},
      {"alert", "Alert", alertPage},
      {"clear-bar", "Clear navigation bar", clearBarPage},
      {"sheet", "Sheet", sheetPage},
      {"storyboard", "From a storyboard", storyboardPage},
      {"form", "Form", [] { return formPage({}); }},
  };
  return pages;
}

}  // namespace kestrova::gallery
