#include "server/appstate.h"

#include <QGuiApplication>
#include <QSettings>

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Velto"));
    QCoreApplication::setApplicationName(QStringLiteral("Velto"));
    QSettings settings;
    AppState appState(&settings);
    return 0;
}
