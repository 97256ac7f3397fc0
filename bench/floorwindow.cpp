// The floor under start-up figures: a bare Qt Quick window, one Window with one Rectangle, logging its first
// frame as velto does, so that what the machine and Qt cost anyway can be taken off velto's time.

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>

#include <cstdio>

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    QQmlApplicationEngine engine;
    engine.loadData("import QtQuick\nWindow { visible: true; width: 1100; height: 720\n"
                    "  Rectangle { anchors.fill: parent; color: \"#1c1c1f\" } }");
    if (engine.rootObjects().isEmpty())
        return 1;
    auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().constFirst());
    QObject::connect(window, &QQuickWindow::frameSwapped, window, [] {
        std::fprintf(stderr, "velto.startup: main view frame\n");
        std::fflush(stderr);
    }, Qt::SingleShotConnection);
    return app.exec();
}
