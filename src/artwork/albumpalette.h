#pragma once

// The colours drawn from one cover: the window's wash, text on dark surfaces, and the big buttons.

#include "palettecolor.h"

#include <QColor>
#include <QMetaType>

struct AlbumPalette {
    Q_GADGET
    Q_PROPERTY(QColor accent MEMBER accent CONSTANT)
    Q_PROPERTY(QColor tint MEMBER tint CONSTANT)
    Q_PROPERTY(QColor fill MEMBER fill CONSTANT)
    Q_PROPERTY(QColor label MEMBER label CONSTANT)

public:
    QColor accent; // the cover's chosen colour as it is
    QColor tint; // the same hue made legible on a dark surface
    QColor fill; // a filled button in the cover's colour
    QColor label; // text on `fill`: pure white or pure black
    // The mean of the whole cover, kept in full precision because scrimOpacity computes with it.
    PaletteExtractor::RGB backdropMean;

    // The lightest black scrim, from 0.38 up to 0.62, under which white text of opacity `alpha` reaches a
    // contrast of 4.6 on the cover's mean colour. Screens use 0.8.
    [[nodiscard]] Q_INVOKABLE double scrimOpacity(double alpha) const;

    bool operator==(const AlbumPalette &) const = default;
};

Q_DECLARE_METATYPE(AlbumPalette)
