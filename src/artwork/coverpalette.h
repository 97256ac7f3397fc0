#pragma once

// The palette of one cover for a screen: at once when the cover was seen before, else once the cover has been
// read at a small size from the artwork cache or the server. No cover, no palette: colours stay neutral and the
// accent transparent.

#include "albumpalette.h"
#include "common/task.h"

#include <QObject>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

#include <optional>

class LibraryStore;

class CoverPalette : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_MOC_INCLUDE("library/librarystore.h")
    Q_PROPERTY(LibraryStore *library READ library WRITE setLibrary NOTIFY libraryChanged)
    Q_PROPERTY(QString coverArt READ coverArt WRITE setCoverArt NOTIFY coverArtChanged)
    Q_PROPERTY(bool hasPalette READ hasPalette NOTIFY paletteChanged)
    // Transparent without a palette.
    Q_PROPERTY(QColor accent READ accent NOTIFY paletteChanged)
    Q_PROPERTY(QColor tint READ tint NOTIFY paletteChanged)
    Q_PROPERTY(QColor fill READ fill NOTIFY paletteChanged)
    Q_PROPERTY(QColor label READ label NOTIFY paletteChanged)
    // How dark a black scrim over the cover must be for white text at 0.8; a middle value without a palette.
    Q_PROPERTY(double scrimOpacity READ scrimOpacity NOTIFY paletteChanged)

public:
    // Enough pixels for the palette's raster.
    static constexpr int pixelSize = 64;

    using QObject::QObject;
    [[nodiscard]] LibraryStore *library() const;
    void setLibrary(LibraryStore *library);
    [[nodiscard]] const QString &coverArt() const { return m_coverArt; }
    void setCoverArt(const QString &coverArt);
    [[nodiscard]] bool hasPalette() const { return m_palette.has_value(); }
    [[nodiscard]] QColor accent() const { return m_palette ? m_palette->accent : QColor(Qt::transparent); }
    [[nodiscard]] QColor tint() const { return m_palette ? m_palette->tint : QColor(Qt::transparent); }
    [[nodiscard]] QColor fill() const { return m_palette ? m_palette->fill : QColor(Qt::transparent); }
    [[nodiscard]] QColor label() const { return m_palette ? m_palette->label : QColor(Qt::transparent); }
    [[nodiscard]] double scrimOpacity() const { return m_palette ? m_palette->scrimOpacity(0.8) : 0.5; }

Q_SIGNALS:
    void libraryChanged();
    void coverArtChanged();
    void paletteChanged();

private:
    void read();
    void setPalette(std::optional<AlbumPalette> palette);

    QPointer<LibraryStore> m_library;
    QString m_coverArt;
    std::optional<AlbumPalette> m_palette;
    TaskHandle m_reading;
};
