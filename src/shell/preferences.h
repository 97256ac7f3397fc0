#pragma once

// The settings window's own setting: whether plays are reported to the server. The player reads the same key
// each time it reports, so a change here takes effect with the next song.

#include <QObject>
#include <QtQml/qqmlregistration.h>

class QSettings;

class Preferences : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(bool scrobbleEnabled READ scrobbleEnabled WRITE setScrobbleEnabled NOTIFY scrobbleEnabledChanged)

public:
    explicit Preferences(QSettings *settings, QObject *parent = nullptr);

    // True for a user who never touched it.
    [[nodiscard]] bool scrobbleEnabled() const;
    void setScrobbleEnabled(bool enabled);

Q_SIGNALS:
    void scrobbleEnabledChanged();

private:
    QSettings *m_settings;
};
