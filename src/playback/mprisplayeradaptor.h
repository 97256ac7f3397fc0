#pragma once

// The org.mpris.MediaPlayer2.Player interface: what the desktop's media controls read and press. It knows
// nothing of the queue; every button is an operation of the controller.

#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>
#include <QUrl>
#include <QVariantMap>

#include <functional>
#include <optional>

class PlayerController;
struct Song;

class MprisPlayerAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2.Player")
    Q_PROPERTY(QString PlaybackStatus READ playbackStatus)
    Q_PROPERTY(double Rate READ rate WRITE setRate)
    Q_PROPERTY(double MinimumRate READ rate)
    Q_PROPERTY(double MaximumRate READ rate)
    Q_PROPERTY(QVariantMap Metadata READ metadata)
    Q_PROPERTY(double Volume READ volume WRITE setVolume)
    Q_PROPERTY(QString LoopStatus READ loopStatus WRITE setLoopStatus)
    Q_PROPERTY(bool Shuffle READ shuffle WRITE setShuffle)
    Q_PROPERTY(qlonglong Position READ position)
    Q_PROPERTY(bool CanGoNext READ hasSong)
    Q_PROPERTY(bool CanGoPrevious READ hasSong)
    Q_PROPERTY(bool CanPlay READ hasSong)
    Q_PROPERTY(bool CanPause READ hasSong)
    Q_PROPERTY(bool CanSeek READ hasSong)
    Q_PROPERTY(bool CanControl READ canControl)

public:
    // A cover file on disk for a song, when one is cached.
    using ArtLocator = std::function<std::optional<QUrl>(const Song &)>;

    MprisPlayerAdaptor(QObject *object, PlayerController *controller, ArtLocator artLocator);

    [[nodiscard]] QString playbackStatus() const;
    [[nodiscard]] double rate() const { return 1.0; }
    void setRate(double rate) { Q_UNUSED(rate); }
    [[nodiscard]] QVariantMap metadata() const;
    [[nodiscard]] double volume() const;
    void setVolume(double volume);
    // "None", "Playlist" (the queue repeats) or "Track", as the repeat button's off, all and one.
    [[nodiscard]] QString loopStatus() const;
    void setLoopStatus(const QString &status);
    [[nodiscard]] bool shuffle() const;
    void setShuffle(bool shuffle);
    [[nodiscard]] qlonglong position() const;
    [[nodiscard]] bool hasSong() const;
    [[nodiscard]] bool canControl() const { return true; }

    // The D-Bus object path naming the current song, as Metadata and SetPosition carry it.
    [[nodiscard]] QDBusObjectPath trackId() const;

public Q_SLOTS:
    void Next();
    void Previous();
    void Pause();
    void PlayPause();
    // No remote command empties the queue: a stop from the desktop pauses.
    void Stop();
    void Play();
    void Seek(qlonglong offset);
    void SetPosition(const QDBusObjectPath &track, qlonglong position);
    void OpenUri(const QString &uri);

Q_SIGNALS:
    void Seeked(qlonglong position);

private:
    PlayerController *m_controller;
    ArtLocator m_artLocator;
};
