#pragma once

class QWidget;

namespace kestrova::platform {

class UIColor;
class UIFont;

// Makes the toolkit's own widgets look as ours, whatever style sheet, palette and style the host's
// application has.
struct TextFieldLook {
  // A line edit without a frame or ground of its own.
  static void applyToEditor(QWidget& editor, const UIFont& font, const UIColor& color);
  // How much further in than its rectangle the line edit begins its text, points.
  static constexpr int kMargin = 2;
  // A context menu.
  static void applyToMenu(QWidget& menu);
};

}  // namespace kestrova::platform
