#pragma once

// The rules of the bar at the bottom of the main window: what its display, buttons, position strip and volume
// control show and what a press does. It reads the player and the likes and calls their operations; besides
// that it keeps only what the bar itself is doing: a scrub under way, the pointer over the strip or the volume,
// the keyboard adjusting either, and the level to return to on unmute.

#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

class LibraryStore;
class PlayerController;
class Preferences;

class PlaybackBar : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_MOC_INCLUDE("library/librarystore.h")
    Q_MOC_INCLUDE("playback/playercontroller.h")
    Q_MOC_INCLUDE("shell/preferences.h")
    Q_PROPERTY(PlayerController *player READ player WRITE setPlayer NOTIFY playerChanged)
    Q_PROPERTY(LibraryStore *library READ library WRITE setLibrary NOTIFY libraryChanged)
    Q_PROPERTY(Preferences *preferences READ preferences WRITE setPreferences NOTIFY preferencesChanged)

    // The display
    Q_PROPERTY(bool hasSong READ hasSong NOTIFY songChanged)
    Q_PROPERTY(QString title READ title NOTIFY songChanged)
    // "playlist", "album", or empty for plain text.
    Q_PROPERTY(QString titleLink READ titleLink NOTIFY songChanged)
    Q_PROPERTY(QString artist READ artist NOTIFY songChanged)
    Q_PROPERTY(bool artistIsLink READ artistIsLink NOTIFY songChanged)
    Q_PROPERTY(QString album READ album NOTIFY songChanged)
    Q_PROPERTY(bool albumIsLink READ albumIsLink NOTIFY songChanged)
    // The cover leads to the album whenever the song has an album id, named or not.
    Q_PROPERTY(bool artworkIsLink READ artworkIsLink NOTIFY songChanged)
    Q_PROPERTY(QString coverArt READ coverArt NOTIFY songChanged)
    Q_PROPERTY(bool isLiked READ isLiked NOTIFY likedChanged)

    // The transport
    Q_PROPERTY(bool isPlaying READ isPlaying NOTIFY transportChanged)
    Q_PROPERTY(bool isShuffling READ isShuffling NOTIFY transportChanged)
    Q_PROPERTY(bool isRepeating READ isRepeating NOTIFY transportChanged)
    Q_PROPERTY(QString repeatSymbol READ repeatSymbol NOTIFY transportChanged)

    // The position strip
    Q_PROPERTY(double progress READ progress NOTIFY positionChanged)
    Q_PROPERTY(bool canSeek READ canSeek NOTIFY positionChanged)
    Q_PROPERTY(QString elapsedText READ elapsedText NOTIFY positionChanged)
    Q_PROPERTY(QString trailingText READ trailingText NOTIFY positionChanged)
    Q_PROPERTY(QString positionValueText READ positionValueText NOTIFY positionChanged)
    Q_PROPERTY(QString trailingHelp READ trailingHelp NOTIFY trailingHelpChanged)
    Q_PROPERTY(bool isProgressActive READ isProgressActive NOTIFY progressActiveChanged)

    // The volume
    Q_PROPERTY(double volume READ volume NOTIFY volumeChanged)
    Q_PROPERTY(bool isMuted READ isMuted NOTIFY volumeChanged)
    // The speaker crossed out when muted, else with as many waves as the level fills.
    Q_PROPERTY(QString volumeSymbol READ volumeSymbol NOTIFY volumeChanged)
    Q_PROPERTY(QString volumeValueText READ volumeValueText NOTIFY volumeChanged)
    Q_PROPERTY(bool isVolumeRevealed READ isVolumeRevealed NOTIFY volumeRevealedChanged)

    // The audio outputs, each {"name", "description", "current"}; the choice stands only with more than one.
    Q_PROPERTY(QVariantList outputs READ outputs NOTIFY outputsChanged)
    Q_PROPERTY(bool hasOutputChoice READ hasOutputChoice NOTIFY outputsChanged)

public:
    // The pointer may leave the volume control for this long, to cross from the button to the slider.
    static constexpr int volumeHoverGraceMs = 150;
    // One arrow key moves the position by this much of the song, or the volume by this much.
    static constexpr double keyStep = 0.05;

    explicit PlaybackBar(QObject *parent = nullptr);

    [[nodiscard]] PlayerController *player() const;
    void setPlayer(PlayerController *player);
    [[nodiscard]] LibraryStore *library() const;
    void setLibrary(LibraryStore *library);
    [[nodiscard]] Preferences *preferences() const;
    void setPreferences(Preferences *preferences);

    [[nodiscard]] bool hasSong() const;
    [[nodiscard]] QString title() const;
    [[nodiscard]] QString titleLink() const;
    [[nodiscard]] QString artist() const;
    [[nodiscard]] bool artistIsLink() const;
    [[nodiscard]] QString album() const;
    [[nodiscard]] bool albumIsLink() const;
    [[nodiscard]] bool artworkIsLink() const;
    [[nodiscard]] QString coverArt() const;
    [[nodiscard]] bool isLiked() const;

    [[nodiscard]] bool isPlaying() const;
    [[nodiscard]] bool isShuffling() const;
    [[nodiscard]] bool isRepeating() const;
    [[nodiscard]] QString repeatSymbol() const;

    [[nodiscard]] double duration() const;
    // The scrub's time while one is under way, else the player's.
    [[nodiscard]] double shownTime() const;
    [[nodiscard]] double progress() const;
    [[nodiscard]] bool canSeek() const { return duration() > 0; }
    [[nodiscard]] QString elapsedText() const;
    [[nodiscard]] QString trailingText() const;
    [[nodiscard]] QString positionValueText() const;
    [[nodiscard]] QString trailingHelp() const;
    [[nodiscard]] bool isScrubbing() const { return m_isScrubbing; }
    [[nodiscard]] bool isProgressActive() const { return m_isScrubbing || m_isHoveringProgress || m_isSeekingByKey; }

    [[nodiscard]] double volume() const;
    [[nodiscard]] bool isMuted() const { return volume() < 0.001; }
    [[nodiscard]] QString volumeSymbol() const;
    [[nodiscard]] QString volumeValueText() const;
    [[nodiscard]] bool isVolumeRevealed() const { return m_isHoveringVolume || m_isAdjustingVolumeByKey; }

    [[nodiscard]] QVariantList outputs() const;
    [[nodiscard]] bool hasOutputChoice() const;

    Q_INVOKABLE void togglePlayPause();
    Q_INVOKABLE void next();
    Q_INVOKABLE void previous();
    Q_INVOKABLE void toggleShuffle();
    // Off, all, one, and back to off.
    Q_INVOKABLE void cycleRepeat();
    Q_INVOKABLE void toggleLike();

    // A drag along the strip shows where it would go; only its release reaches the player.
    Q_INVOKABLE void scrub(double fraction);
    Q_INVOKABLE void commit(double fraction);
    // A drag that ended without a release on the strip: the pointer was taken away, or the strip went.
    Q_INVOKABLE void cancelScrub();
    // A seek of keyStep of the song, forwards for a positive direction: an arrow key, or assistive technology.
    Q_INVOKABLE void stepPosition(int direction);
    Q_INVOKABLE void setHoveringProgress(bool hovering);
    // The keyboard's adjusting ends when the focus leaves the strip.
    Q_INVOKABLE void setSeekingByKey(bool seeking);
    Q_INVOKABLE void toggleTimeDisplay();

    Q_INVOKABLE void toggleMute();
    Q_INVOKABLE void setVolumeFraction(double fraction);
    // keyStep up or down; the keys that do it also reveal the slider through setAdjustingVolumeByKey.
    Q_INVOKABLE void nudgeVolume(int direction);
    Q_INVOKABLE void setVolumeHovered(bool hovering);
    Q_INVOKABLE void setAdjustingVolumeByKey(bool adjusting);
    [[nodiscard]] float volumeBeforeMute() const { return m_volumeBeforeMute; }

    Q_INVOKABLE void chooseOutput(const QString &name);

    // The links of the display: the song's playlist or album, its artist, its album.
    Q_INVOKABLE void openTitle();
    Q_INVOKABLE void openArtist();
    Q_INVOKABLE void openAlbum();

Q_SIGNALS:
    void playerChanged();
    void libraryChanged();
    void preferencesChanged();
    void songChanged();
    void likedChanged();
    void transportChanged();
    void positionChanged();
    void trailingHelpChanged();
    void progressActiveChanged();
    void volumeChanged();
    void volumeRevealedChanged();
    void outputsChanged();
    // A minimal record of the destination: the screens load the rest.
    void openAlbumRequested(const QJsonObject &album);
    void openArtistRequested(const QJsonObject &artist);
    void openPlaylistRequested(const QString &playlistId);

private:
    // Runs `change` and tells of the active state only if it moved.
    template<typename Change>
    void changeActivity(Change &&change);
    [[nodiscard]] bool showsTotalTime() const;

    QPointer<PlayerController> m_player;
    QPointer<LibraryStore> m_library;
    QPointer<Preferences> m_preferences;
    bool m_isScrubbing = false;
    double m_scrubTime = 0;
    bool m_isHoveringProgress = false;
    bool m_isSeekingByKey = false;
    bool m_isHoveringVolume = false;
    bool m_isAdjustingVolumeByKey = false;
    float m_volumeBeforeMute = 0;
    QTimer m_volumeHide;
};
