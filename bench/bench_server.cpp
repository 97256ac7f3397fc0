// Figures for the request path: decoding answers and signing URLs.

#include "benchmark.h"
#include "benchsongs.h"
#include "server/payloads.h"
#include "server/subsonicclient.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>

namespace {
QJsonObject album(int i)
{
    return QJsonObject{
        {QStringLiteral("id"), QStringLiteral("album-%1").arg(i)},
        {QStringLiteral("name"), QStringLiteral("Some Album %1").arg(i)},
        {QStringLiteral("artist"), QStringLiteral("Some Artist %1").arg(i / 3)},
        {QStringLiteral("artistId"), QStringLiteral("artist-%1").arg(i / 3)},
        {QStringLiteral("coverArt"), QStringLiteral("al-%1").arg(i)},
        {QStringLiteral("songCount"), 12},
        {QStringLiteral("duration"), 2400},
        {QStringLiteral("year"), 2001},
        {QStringLiteral("genre"), QStringLiteral("Rock")},
    };
}

QByteArray envelope(const QString &key, const QString &listKey, const QJsonArray &items)
{
    const QJsonObject body{{QStringLiteral("status"), QStringLiteral("ok")},
                           {QStringLiteral("version"), QStringLiteral("1.16.1")},
                           {key, QJsonObject{{listKey, items}}}};
    return QJsonDocument(QJsonObject{{QStringLiteral("subsonic-response"), body}}).toJson(QJsonDocument::Compact);
}
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);

    QJsonArray songs;
    for (int i = 0; i < 500; ++i)
        songs.append(benchSongJson(i));
    const QByteArray searchPage = envelope(QStringLiteral("searchResult3"), QStringLiteral("song"), songs);
    report("decode_search3_page_500_ms", medianMs(30, [&] {
               const auto result = SubsonicClient::decodePayload<Payloads::SearchPayload>(searchPage);
               Q_ASSERT(result.result.song->size() == 500);
           }),
           "ms");

    QJsonArray albums;
    for (int i = 0; i < 60; ++i)
        albums.append(album(i));
    const QByteArray albumPage = envelope(QStringLiteral("albumList2"), QStringLiteral("album"), albums);
    report("decode_album_list_60_ms",
           medianMs(100, [&] { SubsonicClient::decodePayload<Payloads::AlbumListPayload>(albumPage); }), "ms");

    const SubsonicClient client(ServerConfig{QUrl(QStringLiteral("https://music.example.org")),
                                             QStringLiteral("alice"), QStringLiteral("secret")});
    constexpr int urls = 2000;
    const double batchMs = medianMs(9, [&] {
        for (int i = 0; i < urls; ++i)
            client.url(QStringLiteral("stream"), {{QStringLiteral("id"), QStringLiteral("song-1")}});
    });
    report("sign_url_us", batchMs * 1000.0 / urls, "us");
    return 0;
}
