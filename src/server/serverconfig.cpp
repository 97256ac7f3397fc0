#include "serverconfig.h"

QString serverKey(const ServerConfig &config)
{
    return config.username + QLatin1Char('@') + config.baseURL.toString(QUrl::FullyEncoded);
}

std::optional<QUrl> normalizeServerURL(const QString &typed)
{
    QString text = typed.trimmed();
    if (text.isEmpty())
        return std::nullopt;
    // The only place a scheme is chosen: "http" stays only when the user typed it.
    if (!text.contains(QLatin1String("://")))
        text.prepend(QLatin1String("https://"));
    while (text.endsWith(QLatin1Char('/')))
        text.chop(1);
    const QUrl url(text, QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty())
        return std::nullopt;
    return url;
}
