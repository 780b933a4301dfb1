#pragma once

class QApplication;

namespace kestrova::gallery {

// Gives the application what a careless host might: a style sheet that addresses every widget, dark
// colours, another style and font.
void makeHostile(QApplication& application);

}  // namespace kestrova::gallery
