#pragma once

// A download store over a fake server and a folder of its own; every song's file is served as bytes made from
// its id unless a test scripts another answer.

#include "fakesubsonicserver.h"
#include "offline/downloadstore.h"
#include "offline/filetransfer.h"
#include "offline/manifestfile.h"
#include "offline/offlinefilename.h"

#include <QBuffer>
#include <QColor>
#include <QDir>
#include <QImage>
#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

inline const QString albumKey = QStringLiteral("album:A");
inline const QString playlistKey = QStringLiteral("playlist:P");

inline Song testSong(const QString &id, qint64 track, std::optional<QString> suffix = QStringLiteral("mp3"),
                     std::optional<QString> coverArt = std::nullopt)
{
    Song song;
    song.id = id;
    song.title = QStringLiteral("Title ") + id;
    song.album = QStringLiteral("Album");
    song.artist = QStringLiteral("Artist");
    song.track = track;
    song.discNumber = 1;
    song.duration = 100 + track;
    song.suffix = std::move(suffix);
    song.coverArt = std::move(coverArt);
    return song;
}

// s1 … sN, tracks in order.
inline QList<Song> numberedSongs(int count, int first = 1)
{
    QList<Song> songs;
    for (int i = first; i < first + count; ++i)
        songs.append(testSong(QStringLiteral("s%1").arg(i), i));
    return songs;
}

inline QStringList idsOf(const QList<Song> &songs)
{
    QStringList ids;
    for (const Song &song : songs)
        ids.append(song.id);
    return ids;
}

inline QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

inline QByteArray fileContent(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline Album testAlbum(const QString &id)
{
    return Album{.id = id, .name = QStringLiteral("Album ") + id, .artist = QStringLiteral("Artist")};
}

// Different for every id, a few chunks long.
inline QByteArray audioOf(const QString &id, qsizetype size = 48 * 1024)
{
    QByteArray bytes = id.toUtf8() + ':';
    return bytes.repeated(size / bytes.size() + 1).left(size);
}

inline FakeResponse audioAnswer(const QByteArray &bytes)
{
    return FakeResponse{.contentType = "audio/mpeg", .body = bytes};
}

// Stops sending after 20'000 bytes and holds the connection open.
inline FakeResponse stalledAudio(const QString &id)
{
    return FakeResponse{.contentType = "audio/mpeg", .body = audioOf(id), .stallAfterBytes = 20'000};
}

struct DownloadRig {
    QTemporaryDir root;
    FakeSubsonicServer server;
    SubsonicClient client{ServerConfig{server.baseURL(), QStringLiteral("alice"), QStringLiteral("pw")}};
    // Answers of "download" by song id that replace the song's bytes.
    QHash<QString, FakeResponse> scripted;
    // Answers of "getAlbum" and "getPlaylist", keyed "getAlbum:<id>".
    QHash<QString, FakeResponse> answers;

    DownloadRig()
    {
        server.on(QStringLiteral("download"), [this](const RecordedRequest &request) {
            const QString id = request.value(QStringLiteral("id"));
            return scripted.value(id, audioAnswer(audioOf(id)));
        });
        server.on(QStringLiteral("getCoverArt"), [](const RecordedRequest &request) {
            return FakeResponse{.contentType = "image/png", .body = coverOf(request.value(QStringLiteral("id")))};
        });
    }

    [[nodiscard]] std::shared_ptr<DownloadStore> makeStore() const
    {
        return DownloadStore::create(client, DownloadLayout(root.path()));
    }
    [[nodiscard]] QString directory() const { return DownloadLayout(root.path()).directory(client.config()); }

    // A small PNG of a colour of its own for each id.
    static QByteArray coverOf(const QString &id)
    {
        QImage image(2, 2, QImage::Format_RGB32);
        image.fill(QColor::fromRgb(QRgb(qHash(id)) | 0xFF000000));
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        return bytes;
    }

    void serveAlbum(const QString &id, const QList<Song> &songs)
    {
        QJsonObject album{{QStringLiteral("id"), id}, {QStringLiteral("name"), QStringLiteral("Album ") + id}};
        if (!songs.isEmpty())
            album.insert(QStringLiteral("song"), songArray(songs));
        answers.insert(QStringLiteral("getAlbum:") + id, FakeSubsonicServer::json({{QStringLiteral("album"), album}}));
        routeById(QStringLiteral("getAlbum"));
    }

    void servePlaylist(const QString &id, const QList<Song> &songs)
    {
        QJsonObject playlist{{QStringLiteral("id"), id}, {QStringLiteral("name"), QStringLiteral("On server")}};
        if (!songs.isEmpty())
            playlist.insert(QStringLiteral("entry"), songArray(songs));
        answers.insert(QStringLiteral("getPlaylist:") + id,
                       FakeSubsonicServer::json({{QStringLiteral("playlist"), playlist}}));
        routeById(QStringLiteral("getPlaylist"));
    }

    // Ids of the songs whose files were asked for, in order.
    [[nodiscard]] QStringList requestedSongs() const
    {
        QStringList ids;
        for (const RecordedRequest &request : server.requests(QStringLiteral("download")))
            ids.append(request.value(QStringLiteral("id")));
        return ids;
    }

    [[nodiscard]] QString songFile(const QString &id, const QString &suffix = QStringLiteral("mp3")) const
    {
        return directory() + u'/' + DownloadLayout::songFileName(id, suffix);
    }

    [[nodiscard]] QByteArray contentOf(const QString &id, const QString &suffix = QStringLiteral("mp3")) const
    {
        return fileContent(songFile(id, suffix));
    }

    [[nodiscard]] QList<qint64> partialFileSizes() const
    {
        QList<qint64> sizes;
        const QStringList pattern{partialFilePrefix + u'*'};
        for (const QFileInfo &file : QDir(directory()).entryInfoList(pattern, QDir::Files | QDir::Hidden))
            sizes.append(file.size());
        return sizes;
    }

    // The ids whose files lie in the folder; any other name but the manifest and the cover folder is reported
    // as it stands, so that a stray partial file shows up in a comparison.
    [[nodiscard]] QStringList songsOnDisk(const QStringList &candidates) const
    {
        QStringList names = QDir(directory()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
        names.removeAll(QStringLiteral("manifest.json"));
        names.removeAll(QStringLiteral("artwork"));
        QStringList found;
        for (const QString &name : std::as_const(names)) {
            QString shown = name;
            for (const QString &id : candidates) {
                if (name.startsWith(offlineFileName(id) + u'.'))
                    shown = id;
            }
            found.append(shown);
        }
        found.sort();
        return found;
    }

private:
    static QJsonArray songArray(const QList<Song> &songs)
    {
        QJsonArray array;
        for (const Song &song : songs)
            array.append(song.toJson());
        return array;
    }

    // The fake server keys answers by endpoint; this lets each id of a list endpoint have its own.
    void routeById(const QString &endpoint)
    {
        server.on(endpoint, [this, endpoint](const RecordedRequest &request) {
            const QString key = endpoint + u':' + request.value(QStringLiteral("id"));
            if (!answers.contains(key))
                return FakeResponse{.body = FakeSubsonicServer::failed(70, QStringLiteral("Not found"))};
            return answers.value(key);
        });
    }
};

// A fresh rig and store for every test function.
class DownloadTest : public QObject
{
    Q_OBJECT

protected:
    std::unique_ptr<DownloadRig> rig;
    std::shared_ptr<DownloadStore> store;

    void runToEnd(const QString &key) { QTRY_VERIFY(!store->isRunning(key)); }

protected Q_SLOTS:
    void init()
    {
        rig = std::make_unique<DownloadRig>();
        store = rig->makeStore();
    }
    void cleanup()
    {
        store.reset();
        rig.reset();
    }
};
