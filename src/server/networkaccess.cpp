#include "networkaccess.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>

QNetworkAccessManager *sharedNetworkAccess()
{
    static QNetworkAccessManager *manager = [] {
        auto *created = new QNetworkAccessManager(QCoreApplication::instance());
        created->setTransferTimeout(apiTransferTimeoutMs);
        return created;
    }();
    return manager;
}
