#include "mprisservice.h"

#include "mprisrootadaptor.h"
#include "playercontroller.h"

#include <QDBusMessage>
#include <QMetaProperty>

using namespace Qt::StringLiterals;

MprisService::MprisService(PlayerController *controller, MprisPlayerAdaptor::ArtLocator artLocator,
                           QDBusConnection bus, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(bus))
{
    new MprisRootAdaptor(this);
    m_player = new MprisPlayerAdaptor(this, controller, std::move(artLocator));
    if (!m_bus.isConnected())
        return;
    m_registered = m_bus.registerObject(QString::fromLatin1(objectPath), this, QDBusConnection::ExportAdaptors)
        && m_bus.registerService(QString::fromLatin1(serviceName));

    const QStringList songProperties{u"Metadata"_s, u"PlaybackStatus"_s, u"CanGoNext"_s, u"CanGoPrevious"_s,
                                     u"CanPlay"_s, u"CanPause"_s, u"CanSeek"_s};
    connect(controller, &PlayerController::currentSongChanged, this,
            [this, songProperties] { announce(songProperties); });
    connect(controller, &PlayerController::isPlayingChanged, this, [this] { announce({u"PlaybackStatus"_s}); });
    connect(controller, &PlayerController::volumeChanged, this, [this] { announce({u"Volume"_s}); });
    connect(controller, &PlayerController::repeatModeChanged, this, [this] { announce({u"LoopStatus"_s}); });
    connect(controller, &PlayerController::isShufflingChanged, this, [this] { announce({u"Shuffle"_s}); });
    connect(controller, &PlayerController::durationChanged, this, [this] { announce({u"Metadata"_s}); });
}

MprisService::~MprisService()
{
    if (!m_registered)
        return;
    m_bus.unregisterService(QString::fromLatin1(serviceName));
    m_bus.unregisterObject(QString::fromLatin1(objectPath));
}

void MprisService::refreshMetadata()
{
    announce({u"Metadata"_s});
}

void MprisService::announce(const QStringList &properties)
{
    if (!m_registered)
        return;
    QVariantMap changed;
    const QMetaObject *meta = m_player->metaObject();
    for (const QString &name : properties) {
        const int index = meta->indexOfProperty(name.toLatin1().constData());
        if (index >= 0)
            changed.insert(name, meta->property(index).read(m_player));
    }
    QDBusMessage signal = QDBusMessage::createSignal(QString::fromLatin1(objectPath),
                                                     u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s);
    signal << u"org.mpris.MediaPlayer2.Player"_s << changed << QStringList();
    m_bus.send(signal);
}
