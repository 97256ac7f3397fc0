#include "mainwindow.h"

#include "veltoapp.h"
#include "windowsizekeeper.h"

#include <QQmlApplicationEngine>
#include <QQuickWindow>

using namespace Qt::StringLiterals;

QQuickWindow *loadMainWindow(QQmlApplicationEngine &engine, VeltoApp &app)
{
    engine.setInitialProperties({{u"app"_s, QVariant::fromValue(&app)}});
    engine.load(QUrl(u"qrc:/Velto/Main.qml"_s));
    if (engine.rootObjects().isEmpty())
        return nullptr;
    auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().constFirst());
    if (!window)
        return nullptr;
    new WindowSizeKeeper(window, app.settings(), u"mainWindowSize"_s, window);
    QObject::connect(window, &QQuickWindow::frameSwapped, &app, [&app] {
        QMetaObject::invokeMethod(&app, &VeltoApp::windowShown, Qt::QueuedConnection);
    }, Qt::SingleShotConnection);
    return window;
}
