// Signs Velto in to an account the way the connect screen does (a ping, then the saved address and the keychain
// item), so that the next start of Velto opens signed in. Used by scripts/run.sh for its demo server.
//   velto-demo-signin URL USER PASSWORD

#include "server/appstate.h"
#include "server/keychain.h"

#include <QCoreApplication>
#include <QCoroTask>
#include <QSettings>
#include <QTextStream>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {
QCoro::Task<int> signIn(AppState &appState, QString url, QString user, QString password)
{
    // Each task is named before it is awaited: GCC 12 destroys temporaries of a co_await expression twice.
    try {
        QCoro::Task<> connecting = appState.connect(url, user, password);
        co_await connecting;
    } catch (...) {
        std::fprintf(stderr, "velto-demo-signin: the server refused the demo account\n");
        co_return 1;
    }
    QCoro::Task<std::optional<QString>> reading = Keychain::password(serverKey(appState.client()->config()));
    if (co_await reading != password) {
        std::fprintf(stderr, "velto-demo-signin: no Secret Service took the password\n");
        co_return 2;
    }
    co_return 0;
}
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(u"Velto"_s);
    QCoreApplication::setApplicationName(u"Velto"_s);
    const QStringList args = app.arguments();
    if (args.size() != 4) {
        std::fprintf(stderr, "usage: velto-demo-signin URL USER PASSWORD\n");
        return 64;
    }
    QSettings settings;
    AppState appState(&settings);
    int result = 1;
    auto task = [&]() -> QCoro::Task<> {
        QCoro::Task<int> signingIn = signIn(appState, args[1], args[2], args[3]);
        result = co_await signingIn;
        app.quit();
    };
    QMetaObject::invokeMethod(&app, [&] { task(); }, Qt::QueuedConnection);
    app.exec();
    return result;
}
