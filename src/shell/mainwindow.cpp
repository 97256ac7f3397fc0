#include "mainwindow.h"

#include "artwork/artworkfetcher.h"
#include "artwork/artworkimageprovider.h"
#include "artwork/artworkstore.h"
#include "server/appstate.h"
#include "veltoapp.h"
#include "windowsizekeeper.h"

#include <QLoggingCategory>
#include <QQmlApplicationEngine>
#include <QQuickWindow>

using namespace Qt::StringLiterals;

// For measuring start-up from outside: QT_LOGGING_RULES="velto.startup.info=true" logs the window's first frame
// and the first frame that shows the main view.
Q_LOGGING_CATEGORY(lcStartup, "velto.startup", QtWarningMsg)

QQuickWindow *loadMainWindow(QQmlApplicationEngine &engine, VeltoApp &app)
{
    // The engine owns the provider; the client it asks follows the account.
    auto *covers = new ArtworkImageProvider(&ArtworkFetcher::shared(), &ArtworkStore::memory());
    covers->setClient(app.appState()->client());
    QObject::connect(app.appState(), &AppState::clientChanged, &engine,
                     [covers, &app] { covers->setClient(app.appState()->client()); });
    engine.addImageProvider(ArtworkImageProvider::providerId, covers);
    engine.setInitialProperties({{u"app"_s, QVariant::fromValue(&app)}});
    engine.load(QUrl(u"qrc:/Velto/Main.qml"_s));
    if (engine.rootObjects().isEmpty())
        return nullptr;
    auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().constFirst());
    if (!window)
        return nullptr;
    new WindowSizeKeeper(window, app.settings(), u"mainWindowSize"_s, window);
    QObject::connect(window, &QQuickWindow::frameSwapped, &app, [&app] {
        qCInfo(lcStartup, "first frame");
        QMetaObject::invokeMethod(&app, &VeltoApp::windowShown, Qt::QueuedConnection);
    }, Qt::SingleShotConnection);
    QObject::connect(&app, &VeltoApp::mainViewStarted, window, [window] {
        QObject::connect(window, &QQuickWindow::frameSwapped, window, [] { qCInfo(lcStartup, "main view frame"); },
                         Qt::SingleShotConnection);
    });
    return window;
}
