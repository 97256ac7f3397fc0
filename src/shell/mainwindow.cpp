#include "mainwindow.h"

#include "artwork/artworkfetcher.h"
#include "artwork/artworkimageprovider.h"
#include "artwork/artworkstore.h"
#include "server/appstate.h"
#include "veltoapp.h"
#include "windowsizekeeper.h"

#include <QLoggingCategory>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>

using namespace Qt::StringLiterals;

// For measuring start-up from outside: QT_LOGGING_RULES="velto.startup.info=true" logs the window's first frame,
// the first frame that shows the main view, and the first that shows Home filled: the featured album and every
// row's cards, with all their covers drawn.
Q_LOGGING_CATEGORY(lcStartup, "velto.startup", QtWarningMsg)

namespace {
void collectItems(QQuickItem *item, QList<QQuickItem *> &into)
{
    into.append(item);
    for (QQuickItem *child : item->childItems())
        collectItems(child, into);
}

bool homeIsFilled(QQuickWindow *window)
{
    auto *home = window->findChild<QQuickItem *>(u"homeView"_s);
    if (!home || !home->isVisible())
        return false;
    QList<QQuickItem *> items;
    collectItems(home, items);
    bool featured = false;
    bool strip = false;
    for (QQuickItem *item : items) {
        if (!item->isVisible())
            continue;
        if (item->objectName() == "featuredCard"_L1)
            featured = true;
        if (item->objectName() == "homeStrip"_L1)
            strip = strip || item->property("count").toInt() > 0;
        if (item->inherits("QQuickImage") && !item->property("source").toUrl().isEmpty()
            && item->property("status").toInt() == 2 /* still loading */)
            return false;
    }
    return featured && strip;
}
}

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
        if (!lcStartup().isInfoEnabled())
            return;
        auto *watch = new QMetaObject::Connection;
        *watch = QObject::connect(window, &QQuickWindow::frameSwapped, window, [window, watch] {
            if (!homeIsFilled(window))
                return;
            qCInfo(lcStartup, "home frame");
            QObject::disconnect(*watch);
            delete watch;
        });
    });
    return window;
}
