#include "updatefeed.h"

#include "server/json.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

UpdateOffer UpdateOffer::fromJson(const QByteArray &document)
{
    const QJsonDocument parsed = QJsonDocument::fromJson(document);
    if (!parsed.isObject())
        throw Json::DecodeError{};
    const QJsonObject object = parsed.object();
    qsizetype suffixIndex = 0;
    const QString versionText = Json::requiredString(object, "version"_L1);
    const QVersionNumber version = QVersionNumber::fromString(versionText, &suffixIndex);
    if (version.isNull() || suffixIndex != versionText.size())
        throw Json::DecodeError{};
    // The page opens in the user's browser, so only web addresses are taken from the feed.
    const QUrl page(Json::requiredString(object, "url"_L1), QUrl::StrictMode);
    if (!page.isValid() || (page.scheme() != u"https"_s && page.scheme() != u"http"_s) || page.host().isEmpty())
        throw Json::DecodeError{};
    return UpdateOffer{version, Json::optionalString(object, "notes"_L1).value_or(QString()), page};
}
