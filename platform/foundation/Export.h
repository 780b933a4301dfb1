#pragma once

// Marks what a host application may use; everything else stays inside the library.
#define KESTROVA_EXPORT __attribute__((visibility("default")))
