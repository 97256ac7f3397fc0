#pragma once

// The org.mpris.MediaPlayer2 interface: who the player is. Velto can neither be raised nor quit from outside.

#include <QDBusAbstractAdaptor>
#include <QStringList>

class MprisRootAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2")
    Q_PROPERTY(bool CanQuit READ no)
    Q_PROPERTY(bool CanRaise READ no)
    Q_PROPERTY(bool HasTrackList READ no)
    Q_PROPERTY(QString Identity READ identity)
    Q_PROPERTY(QString DesktopEntry READ desktopEntry)
    Q_PROPERTY(QStringList SupportedUriSchemes READ none)
    Q_PROPERTY(QStringList SupportedMimeTypes READ none)

public:
    explicit MprisRootAdaptor(QObject *object)
        : QDBusAbstractAdaptor(object)
    {
    }

    [[nodiscard]] bool no() const { return false; }
    [[nodiscard]] QString identity() const { return QStringLiteral("Velto"); }
    // The launcher's id, by which desktops find the name and icon.
    [[nodiscard]] QString desktopEntry() const { return QStringLiteral("co.marrowlight.velto"); }
    [[nodiscard]] QStringList none() const { return {}; }

public Q_SLOTS:
    void Raise() { }
    void Quit() { }
};
