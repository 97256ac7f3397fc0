#pragma once

// The real window signed in to a real Supysonic server on its generated library, for the window tests of the
// screens: the server, the saved account (Supysonic needs the password itself), and a start of the application.

#include "../shell/runningapp.h"
#include "awaittask.h"
#include "server/keychain.h"
#include "server/subsonicclient.h"
#include "supysonicfixture.h"

#include <QSettings>

struct SupysonicWindow {
    std::unique_ptr<SupysonicFixture> fixture = std::make_unique<SupysonicFixture>(QStringLiteral(VELTO_FIXTURE_WORKDIR));
    std::unique_ptr<RunningApp> running;

    [[nodiscard]] SubsonicClient client() const
    {
        return SubsonicClient(
            ServerConfig{fixture->baseURL(), fixture->username(), fixture->password(), AuthMethod::LegacyPassword});
    }

    // Starts the server, saves the account for it and starts the application on it; false with the reason
    // printed when the server could not start.
    bool start()
    {
        if (!fixture->start()) {
            qWarning("%s", qPrintable(fixture->errorText()));
            return false;
        }
        return signIn();
    }

    // The account of the server as it runs now, and a fresh start of the application on it.
    bool signIn()
    {
        QSettings settings;
        settings.setValue(QStringLiteral("serverURL"), fixture->baseURL().toString());
        settings.setValue(QStringLiteral("username"), fixture->username());
        settings.setValue(QStringLiteral("authMethod"), QStringLiteral("legacyPassword"));
        settings.sync();
        awaitTask(Keychain::save(fixture->password(), fixture->username() + u'@' + fixture->baseURL().toString()));
        return restart(running);
    }
};
