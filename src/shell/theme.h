#pragma once

// The colours and metrics of every view, in one place: a dark surface (the one the palette rules assume behind
// text), the window's and sidebar's sizes, and the few radii and heights the screens share. Sizes are logical
// pixels.

#include <QColor>
#include <QObject>
#include <QtQml/qqmlregistration.h>

class Theme : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(QColor surface MEMBER surface CONSTANT)
    Q_PROPERTY(QColor raisedSurface MEMBER raisedSurface CONSTANT)
    Q_PROPERTY(QColor sidebarSurface MEMBER sidebarSurface CONSTANT)
    Q_PROPERTY(QColor text MEMBER text CONSTANT)
    Q_PROPERTY(QColor secondaryText MEMBER secondaryText CONSTANT)
    Q_PROPERTY(QColor tertiaryText MEMBER tertiaryText CONSTANT)
    Q_PROPERTY(QColor separator MEMBER separator CONSTANT)
    Q_PROPERTY(QColor selection MEMBER selection CONSTANT)
    Q_PROPERTY(QColor placeholder MEMBER placeholder CONSTANT)
    Q_PROPERTY(QColor orange MEMBER orange CONSTANT)
    Q_PROPERTY(QColor yellow MEMBER yellow CONSTANT)
    Q_PROPERTY(QColor destructive MEMBER destructive CONSTANT)
    Q_PROPERTY(QColor highlight MEMBER highlight CONSTANT)
    Q_PROPERTY(QString fontFamily MEMBER fontFamily CONSTANT)
    Q_PROPERTY(QColor field MEMBER field CONSTANT)
    Q_PROPERTY(QColor control MEMBER control CONSTANT)
    Q_PROPERTY(int connectMinWidth MEMBER connectMinWidth CONSTANT)
    Q_PROPERTY(int connectMinHeight MEMBER connectMinHeight CONSTANT)
    Q_PROPERTY(int windowMinWidth MEMBER windowMinWidth CONSTANT)
    Q_PROPERTY(int windowMinHeight MEMBER windowMinHeight CONSTANT)
    Q_PROPERTY(int sidebarMinWidth MEMBER sidebarMinWidth CONSTANT)
    Q_PROPERTY(int sidebarIdealWidth MEMBER sidebarIdealWidth CONSTANT)
    Q_PROPERTY(int sidebarMaxWidth MEMBER sidebarMaxWidth CONSTANT)
    Q_PROPERTY(int toolbarHeight MEMBER toolbarHeight CONSTANT)
    Q_PROPERTY(int rowHeight MEMBER rowHeight CONSTANT)
    Q_PROPERTY(int titleSize MEMBER titleSize CONSTANT)
    Q_PROPERTY(int headlineSize MEMBER headlineSize CONSTANT)
    Q_PROPERTY(int captionSize MEMBER captionSize CONSTANT)
    Q_PROPERTY(int gridSpacing MEMBER gridSpacing CONSTANT)
    Q_PROPERTY(int collectionCellWidth MEMBER collectionCellWidth CONSTANT)
    Q_PROPERTY(int coverRadius MEMBER coverRadius CONSTANT)
    Q_PROPERTY(double hoverScale MEMBER hoverScale CONSTANT)
    Q_PROPERTY(int storageListHeight MEMBER storageListHeight CONSTANT)
    Q_PROPERTY(int albumCellMinWidth MEMBER albumCellMinWidth CONSTANT)
    Q_PROPERTY(int albumCellMaxWidth MEMBER albumCellMaxWidth CONSTANT)
    Q_PROPERTY(int albumColumnSpacing MEMBER albumColumnSpacing CONSTANT)
    Q_PROPERTY(int albumArtworkSize MEMBER albumArtworkSize CONSTANT)
    Q_PROPERTY(int albumPageMaxWidth MEMBER albumPageMaxWidth CONSTANT)
    Q_PROPERTY(int albumHeaderArtwork MEMBER albumHeaderArtwork CONSTANT)
    Q_PROPERTY(int playlistHeaderMaxWidth MEMBER playlistHeaderMaxWidth CONSTANT)
    Q_PROPERTY(int dragScrollEdge MEMBER dragScrollEdge CONSTANT)
    Q_PROPERTY(int dragScrollStep MEMBER dragScrollStep CONSTANT)
    Q_PROPERTY(int artistListWidth MEMBER artistListWidth CONSTANT)
    Q_PROPERTY(int artistImageSize MEMBER artistImageSize CONSTANT)
    Q_PROPERTY(int songTimeColumnWidth MEMBER songTimeColumnWidth CONSTANT)
    Q_PROPERTY(int homeCardWidth MEMBER homeCardWidth CONSTANT)
    Q_PROPERTY(int homeCardSpacing MEMBER homeCardSpacing CONSTANT)
    Q_PROPERTY(int featuredArtSize MEMBER featuredArtSize CONSTANT)
    Q_PROPERTY(int barHeight MEMBER barHeight CONSTANT)
    Q_PROPERTY(int barMaxWidth MEMBER barMaxWidth CONSTANT)
    Q_PROPERTY(int barRadius MEMBER barRadius CONSTANT)
    Q_PROPERTY(int barDisplayHeight MEMBER barDisplayHeight CONSTANT)
    Q_PROPERTY(int progressBand MEMBER progressBand CONSTANT)
    Q_PROPERTY(int progressThin MEMBER progressThin CONSTANT)
    Q_PROPERTY(int progressThick MEMBER progressThick CONSTANT)
    Q_PROPERTY(int volumeTrackWidth MEMBER volumeTrackWidth CONSTANT)
    Q_PROPERTY(int volumeTrackHeight MEMBER volumeTrackHeight CONSTANT)
    Q_PROPERTY(int volumeThickness MEMBER volumeThickness CONSTANT)
    Q_PROPERTY(int activeFadeMs MEMBER activeFadeMs CONSTANT)
    Q_PROPERTY(int queueWidth MEMBER queueWidth CONSTANT)
    Q_PROPERTY(int queueMinHeight MEMBER queueMinHeight CONSTANT)
    Q_PROPERTY(int queueMaxHeight MEMBER queueMaxHeight CONSTANT)
    Q_PROPERTY(int queueEmptyHeight MEMBER queueEmptyHeight CONSTANT)
    Q_PROPERTY(int pageMargin MEMBER pageMargin CONSTANT)
    Q_PROPERTY(int playbackBarBand MEMBER playbackBarBand CONSTANT)
    Q_PROPERTY(int bannerMaxWidth MEMBER bannerMaxWidth CONSTANT)
    Q_PROPERTY(int bannerRadius MEMBER bannerRadius CONSTANT)
    Q_PROPERTY(int accentHeight MEMBER accentHeight CONSTANT)
    Q_PROPERTY(int accentFadeMs MEMBER accentFadeMs CONSTANT)
    Q_PROPERTY(double accentOpacity MEMBER accentOpacity CONSTANT)

public:
    using QObject::QObject;

    const QColor surface = QColor::fromRgbF(0.11f, 0.11f, 0.12f);
    const QColor raisedSurface = QColor::fromRgbF(0.16f, 0.16f, 0.17f);
    const QColor sidebarSurface = QColor::fromRgbF(0.09f, 0.09f, 0.10f);
    const QColor text = QColor::fromRgbF(1, 1, 1, 0.92f);
    const QColor secondaryText = QColor::fromRgbF(1, 1, 1, 0.6f);
    const QColor tertiaryText = QColor::fromRgbF(1, 1, 1, 0.35f);
    const QColor separator = QColor::fromRgbF(1, 1, 1, 0.12f);
    const QColor selection = QColor::fromRgbF(1, 1, 1, 0.1f);
    const QColor placeholder = QColor::fromRgbF(1, 1, 1, 0.06f);
    const QColor orange = QColor(0xff, 0x9f, 0x0a);
    const QColor yellow = QColor(0xff, 0xd6, 0x0a);
    const QColor destructive = QColor(0xff, 0x45, 0x3a);
    const QColor highlight = QColor(0x0a, 0x84, 0xff);
    // Text fields and list backgrounds; buttons.
    const QColor field = QColor::fromRgbF(0.07f, 0.07f, 0.08f);
    const QColor control = QColor::fromRgbF(0.22f, 0.22f, 0.24f);
    const QString fontFamily = QStringLiteral("Inter");
    const int connectMinWidth = 520;
    const int connectMinHeight = 480;
    const int windowMinWidth = 900;
    const int windowMinHeight = 560;
    const int sidebarMinWidth = 180;
    const int sidebarIdealWidth = 210;
    const int sidebarMaxWidth = 280;
    const int toolbarHeight = 44;
    const int rowHeight = 28;
    const int titleSize = 26;
    const int headlineSize = 17;
    const int captionSize = 12;
    // Grids of covers: the spacing between cells, the narrowest a cell gets, the rounding of its cover, and how
    // much a cover grows under the pointer.
    const int gridSpacing = 28;
    const int collectionCellWidth = 160;
    const int coverRadius = 6;
    const double hoverScale = 1.02;
    // The settings' list of downloads scrolls past this height.
    const int storageListHeight = 180;
    // Album grids: cells between these widths with this much between columns (rows use gridSpacing), covers
    // asked for at this size; an album page no wider than this, with its cover this big.
    const int albumCellMinWidth = 170;
    const int albumCellMaxWidth = 230;
    const int albumColumnSpacing = 24;
    const int albumArtworkSize = 220;
    const int albumPageMaxWidth = 900;
    const int albumHeaderArtwork = 230;
    // A playlist page's header is no wider than this. A row dragged this close to a list's edge scrolls the list
    // by this much a frame.
    const int playlistHeaderMaxWidth = 800;
    const int dragScrollEdge = 40;
    const int dragScrollStep = 8;
    // The artist screen's list and its round images; the song tables' column of lengths.
    const int artistListWidth = 260;
    const int artistImageSize = 44;
    const int songTimeColumnWidth = 60;
    // Home: the cards of its rows and the space between them; the featured album's cover.
    const int homeCardWidth = 170;
    const int homeCardSpacing = 20;
    const int featuredArtSize = 148;
    // The playback bar: its height and widest, the band of cover and text, and the position strip's hit band
    // around a thin line that thickens while in use; the volume track; the fade of the strip's times.
    const int barHeight = 56;
    const int barMaxWidth = 860;
    const int barRadius = 12;
    const int barDisplayHeight = 34;
    const int progressBand = 11;
    const int progressThin = 2;
    const int progressThick = 7;
    const int volumeTrackWidth = 84;
    const int volumeTrackHeight = 16;
    const int volumeThickness = 4;
    const int activeFadeMs = 180;
    // The queue popover.
    const int queueWidth = 320;
    const int queueMinHeight = 240;
    const int queueMaxHeight = 320;
    const int queueEmptyHeight = 80;
    const int pageMargin = 24;
    // Under the content, where the playback bar floats.
    const int playbackBarBand = 78;
    const int bannerMaxWidth = 520;
    const int bannerRadius = 12;
    // The wash at the top of the window: a gradient this high from the accent at this opacity to nothing.
    const int accentHeight = 340;
    const int accentFadeMs = 400;
    const double accentOpacity = 0.15;
};
