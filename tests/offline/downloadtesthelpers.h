#pragma once

// A download store over a fake server and a folder of its own; every song's file is served as bytes made from
// its id, and every cover as a small PNG of its own, unless a test scripts another answer.

#include "fakesubsonicserver.h"
#include "offline/downloadstore.h"
#include "offline/filetransfer.h"
#include "offline/manifestfile.h"
#include "offline/offlinefilename.h"
#include "testdata.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

inline const QString albumKey = u"album:A"_s;
inline const QString playlistKey = u"playlist:P"_s;

inline Song testSong(const QString &id, qint64 track, std::optional<QString> suffix = u"mp3"_s)
{
    return Song{.id = id, .title = u"Title "_s + id, .album = u"Album"_s, .artist = u"Artist"_s, .track = track,
                .discNumber = 1, .duration = 100 + track, .suffix = std::move(suffix)};
}

// s1 … sN, tracks in order.
inline QList<Song> numberedSongs(int count, int first = 1)
{
    QList<Song> songs;
    for (int i = first; i < first + count; ++i)
        songs.append(testSong(u"s%1"_s.arg(i), i));
    return songs;
}

inline Album testAlbum(const QString &id)
{
    return Album{.id = id, .name = u"Album "_s + id, .artist = u"Artist"_s};
}

// Different for every id, a few chunks long.
inline QByteArray audioOf(const QString &id, qsizetype size = 48 * 1024)
{
    const QByteArray bytes = id.toUtf8() + ':';
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
    SubsonicClient client{ServerConfig{server.baseURL(), u"alice"_s, u"pw"_s}};
    // Answers of "download" by song id that replace the song's bytes.
    QHash<QString, FakeResponse> scripted;
    // Answers of "getAlbum" and "getPlaylist" by id.
    QHash<QString, FakeResponse> answers;

    DownloadRig()
    {
        server.on(u"download"_s, [this](const RecordedRequest &request) {
            const QString id = request.value(u"id"_s);
            return scripted.value(id, audioAnswer(audioOf(id)));
        });
        server.on(u"getCoverArt"_s, [](const RecordedRequest &request) {
            return FakeResponse{.contentType = "image/png", .body = coverOf(request.value(u"id"_s))};
        });
        for (const QString &endpoint : {u"getAlbum"_s, u"getPlaylist"_s}) {
            server.on(endpoint, [this](const RecordedRequest &request) {
                return answers.value(request.endpoint + request.value(u"id"_s),
                                     FakeResponse{.body = FakeSubsonicServer::failed(70, u"Not found"_s)});
            });
        }
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

    void serveAlbum(const QString &id, const QList<Song> &songs) { serve(u"getAlbum"_s, u"album"_s, u"song"_s, id, songs); }
    void servePlaylist(const QString &id, const QList<Song> &songs)
    {
        serve(u"getPlaylist"_s, u"playlist"_s, u"entry"_s, id, songs);
    }

    // Ids of the songs whose files were asked for, in order.
    [[nodiscard]] QStringList requestedSongs() const
    {
        QStringList ids;
        for (const RecordedRequest &request : server.requests(u"download"_s))
            ids.append(request.value(u"id"_s));
        return ids;
    }

    [[nodiscard]] QString songFile(const QString &id, const QString &suffix = u"mp3"_s) const
    {
        return directory() + u'/' + DownloadLayout::songFileName(id, suffix);
    }
    [[nodiscard]] QByteArray contentOf(const QString &id, const QString &suffix = u"mp3"_s) const
    {
        return readFile(songFile(id, suffix));
    }

    [[nodiscard]] QList<qint64> partialFileSizes() const
    {
        QList<qint64> sizes;
        for (const QFileInfo &file : QDir(directory()).entryInfoList({partialFilePrefix + u'*'}, QDir::Files | QDir::Hidden))
            sizes.append(file.size());
        return sizes;
    }

    // The ids whose files lie in the folder; any other name but the manifest and the cover folder is reported
    // as it stands, so that a stray partial file shows up in a comparison.
    [[nodiscard]] QStringList songsOnDisk(const QStringList &candidates) const
    {
        QStringList found;
        for (const QString &name : QDir(directory()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)) {
            if (name == u"manifest.json"_s || name == u"artwork"_s)
                continue;
            const auto id = std::find_if(candidates.cbegin(), candidates.cend(), [&name](const QString &candidate) {
                return name.startsWith(offlineFileName(candidate) + u'.');
            });
            found.append(id == candidates.cend() ? name : *id);
        }
        found.sort();
        return found;
    }

private:
    void serve(const QString &endpoint, const QString &key, const QString &listKey, const QString &id,
               const QList<Song> &songs)
    {
        QJsonObject record{{u"id"_s, id}, {u"name"_s, key == u"album"_s ? u"Album "_s + id : u"On server"_s}};
        QJsonArray array;
        for (const Song &song : songs)
            array.append(song.toJson());
        if (!songs.isEmpty())
            record.insert(listKey, array);
        answers.insert(endpoint + id, FakeSubsonicServer::json({{key, record}}));
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
