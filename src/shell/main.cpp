#include "shell/symbolicons.h"
#include "shell/veltoapp.h"
#include "shell/mainwindow.h"
#include "shell/quitsignals.h"

#include <QFontDatabase>
#include <clocale>
#include <QGuiApplication>
#include <QIcon>
#include <QQmlApplicationEngine>
#include <QQmlExtensionPlugin>
#include <QQuickStyle>
#include <QQuickWindow>

Q_IMPORT_QML_PLUGIN(VeltoPlugin)

using namespace Qt::StringLiterals;

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    // mpv needs the "C" numeric locale and starts on a worker later; set it now, while this is the only thread.
    std::setlocale(LC_NUMERIC, "C");
    QCoreApplication::setOrganizationName(u"Velto"_s);
    QCoreApplication::setApplicationName(u"Velto"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(VELTO_VERSION));
    QGuiApplication::setDesktopFileName(u"co.marrowlight.velto"_s);
    QGuiApplication::setWindowIcon(QIcon(u":/icons/co.marrowlight.velto.svg"_s));
    QuitSignals quitSignals;
    QQuickStyle::setStyle(u"Fusion"_s);
    QFontDatabase::addApplicationFont(SymbolIcons::fontPath());

    VeltoApp velto({
        .updateFeedURL = QUrl(QStringLiteral(VELTO_UPDATE_FEED_URL)),
        .version = QVersionNumber::fromString(QStringLiteral(VELTO_VERSION)),
    });

    QQmlApplicationEngine engine;
    QQuickWindow *window = loadMainWindow(engine, velto);
    if (!window)
        return 1;
    return app.exec();
}
