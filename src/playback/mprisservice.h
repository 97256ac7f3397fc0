#pragma once

// Puts the player on the session bus as org.mpris.MediaPlayer2.velto, and tells the bus of every change of
// what the media controls show (Qt does not send PropertiesChanged for adaptors by itself). Without a session
// bus it does nothing: the player works the same.

#include "mprisplayeradaptor.h"

#include <QDBusConnection>
#include <QObject>

class MprisService : public QObject
{
    Q_OBJECT

public:
    static constexpr auto serviceName = "org.mpris.MediaPlayer2.velto";
    static constexpr auto objectPath = "/org/mpris/MediaPlayer2";

    MprisService(PlayerController *controller, MprisPlayerAdaptor::ArtLocator artLocator,
                 QDBusConnection bus = QDBusConnection::sessionBus(), QObject *parent = nullptr);
    ~MprisService() override;

    [[nodiscard]] bool isRegistered() const { return m_registered; }

    // Sends Metadata again, for a cover that has just reached the disk.
    void refreshMetadata();

private:
    void announce(const QStringList &properties);

    QDBusConnection m_bus;
    MprisPlayerAdaptor *m_player;
    bool m_registered = false;
};
