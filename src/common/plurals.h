#pragma once

#include <QString>

// Texts with a count are written "%n song(s)" and go through tr() with the count. English is the source
// language, so a text that no translation replaced gets its English plural here: "1 song", "2 songs".
[[nodiscard]] QString inflected(QString translated, int count);
