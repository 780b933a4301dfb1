#pragma once

namespace kestrova {

// Makes the SDK's views known to storyboards and nibs. Main thread, as often as one likes.
void registerViewClasses();

}  // namespace kestrova
