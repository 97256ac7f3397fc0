#pragma once

// The user's small choices kept in the settings: whether plays are reported to the server (the player reads the
// same key each time it reports, so a change takes effect with the next song), and whether the bar shows a
// song's total time or the time remaining; the artist last chosen on the artist screen; and how loudness is
// levelled between songs.

#include "playback/loudnesslevelling.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

class QSettings;

class Preferences : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(bool scrobbleEnabled READ scrobbleEnabled WRITE setScrobbleEnabled NOTIFY scrobbleEnabledChanged)
    Q_PROPERTY(bool showTotalTime READ showTotalTime WRITE setShowTotalTime NOTIFY showTotalTimeChanged)
    Q_PROPERTY(QString artistsSelectedId READ artistsSelectedId WRITE setArtistsSelectedId NOTIFY artistsSelectedIdChanged)
    // 0 off, 1 by track, 2 by album, as LoudnessLevelling counts.
    Q_PROPERTY(int volumeLevellingIndex READ volumeLevellingIndex WRITE setVolumeLevellingIndex NOTIFY volumeLevellingChanged)

public:
    explicit Preferences(QSettings *settings, QObject *parent = nullptr);

    // True for a user who never touched it.
    [[nodiscard]] bool scrobbleEnabled() const;
    void setScrobbleEnabled(bool enabled);
    // False for a user who never touched it: the bar counts down.
    [[nodiscard]] bool showTotalTime() const;
    void setShowTotalTime(bool show);
    // The artist last chosen on the artist screen; empty for none.
    [[nodiscard]] QString artistsSelectedId() const;
    void setArtistsSelectedId(const QString &id);
    // By album for a user who never chose.
    [[nodiscard]] LoudnessLevelling volumeLevelling() const;
    void setVolumeLevelling(LoudnessLevelling levelling);
    [[nodiscard]] int volumeLevellingIndex() const { return int(volumeLevelling()); }
    void setVolumeLevellingIndex(int index);

Q_SIGNALS:
    void scrobbleEnabledChanged();
    void showTotalTimeChanged();
    void artistsSelectedIdChanged();
    void volumeLevellingChanged();

private:
    QSettings *m_settings;
};
