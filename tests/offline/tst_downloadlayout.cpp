#include "offline/downloadlayout.h"
#include "offline/offlinefilename.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
ServerConfig account(const QString &user, const QString &url, const QString &password = u"pw"_s)
{
    return ServerConfig{QUrl(url), user, password};
}

const ServerConfig alice = account(u"alice"_s, u"https://music.example.org"_s);

Song songWithSuffix(const QString &id, std::optional<QString> suffix)
{
    Song song;
    song.id = id;
    song.title = id;
    song.suffix = std::move(suffix);
    return song;
}

void touch(const QString &path)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
}
}

class DownloadLayoutTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> root;

    [[nodiscard]] DownloadLayout layout() const { return DownloadLayout(root->path()); }
    [[nodiscard]] QString serverDir() const { return layout().directory(alice); }

    std::optional<QString> found(const Song &song) const
    {
        const std::optional<QUrl> url = layout().localFileURL(song, alice);
        if (!url)
            return std::nullopt;
        return QFileInfo(url->toLocalFile()).fileName();
    }

private Q_SLOTS:
    void init()
    {
        root = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir().mkpath(serverDir()));
    }

    void namesAreSha256InLowerHex()
    {
        QCOMPARE(offlineFileName(u"abc"), u"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"_s);
        QCOMPARE(offlineFileName(u"é"), u"4a99557e4033c3539de2eb65472017cad5f9557f7a0625a09f1c3f6e2ba69c4c"_s);
        QCOMPARE(DownloadLayout::coverFileName(u"abc"_s), offlineFileName(u"abc"));
    }

    void oneFolderPerAccount()
    {
        QCOMPARE(QFileInfo(serverDir()).fileName(),
                 u"77d1b71e736426c9e71952d9e083067edafb44e7c6b5cf7eafd2232adf85dd06"_s);
        QCOMPARE(QFileInfo(serverDir()).path(), root->path());
        // The password does not enter, so signing in again finds the same downloads.
        QCOMPARE(layout().directory(account(u"alice"_s, u"https://music.example.org"_s, u"new"_s)), serverDir());
        QVERIFY(layout().directory(account(u"alice"_s, u"https://other.example.org"_s)) != serverDir());
        QVERIFY(layout().directory(account(u"bob"_s, u"https://music.example.org"_s)) != serverDir());

        const QString root = DownloadLayout::standard().root();
        QCOMPARE(root, QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Velto/Downloads"_s);
        QVERIFY(QFileInfo(root).isDir());
        QCOMPARE(DownloadLayout::manifestPath(serverDir()), serverDir() + u"/manifest.json"_s);
        QCOMPARE(DownloadLayout::artworkDirectory(serverDir()), serverDir() + u"/artwork"_s);
    }

    void onlyShortAsciiSuffixesAreKept()
    {
        QCOMPARE(DownloadLayout::storedSuffix(u"mp3"_s), u"mp3"_s);
        QCOMPARE(DownloadLayout::storedSuffix(u"FLAC"_s), u"FLAC"_s);
        QCOMPARE(DownloadLayout::storedSuffix(u"abcdefghij"_s), u"abcdefghij"_s);
        const QList<std::optional<QString>> refused{std::nullopt, u""_s, u"abcdefghijk"_s, u"../x"_s, u"m/p3"_s,
                                                    u".mp3"_s, u"mp3 "_s, u"mp\u00b3"_s, u"\u0663"_s, u"a\0b"_s};
        for (const std::optional<QString> &suffix : refused)
            QCOMPARE(DownloadLayout::storedSuffix(suffix), u"audio"_s);
        QCOMPARE(DownloadLayout::songFileName(u"abc"_s, u"ogg"_s), offlineFileName(u"abc") + u".ogg"_s);
    }

    void songFilesAreFoundFromTheDiskAlone()
    {
        const QString hash = offlineFileName(u"s1");
        QCOMPARE(found(songWithSuffix(u"s1"_s, u"flac"_s)), std::nullopt);

        touch(serverDir() + u'/' + hash + u".flac"_s);
        QCOMPARE(found(songWithSuffix(u"s1"_s, u"flac"_s)), hash + u".flac"_s);
        // The server changed the suffix since, or sends none: the file is still found by its hash.
        QCOMPARE(found(songWithSuffix(u"s1"_s, u"mp3"_s)), hash + u".flac"_s);
        QCOMPARE(found(songWithSuffix(u"s1"_s, std::nullopt)), hash + u".flac"_s);

        const QString bare = offlineFileName(u"s2");
        touch(serverDir() + u'/' + bare);
        QCOMPARE(found(songWithSuffix(u"s2"_s, u""_s)), bare);

        // A name that merely starts with the hash, or a folder of that name, is not the song's file.
        const QString other = offlineFileName(u"s3");
        touch(serverDir() + u'/' + other + u"x.mp3"_s);
        QVERIFY(QDir(serverDir()).mkdir(other + u".mp3"_s));
        QCOMPARE(found(songWithSuffix(u"s3"_s, u"mp3"_s)), std::nullopt);

        const DownloadLayout missing(root->path() + u"/nowhere"_s);
        QCOMPARE(missing.localFileURL(songWithSuffix(u"s1"_s, u"flac"_s), alice), std::nullopt);
    }

    void hostileSuffixStaysInsideTheServerFolder()
    {
        const QString hash = offlineFileName(u"evil");
        // Used as it came, this suffix would name "<root>/escaped.mp3", outside the account's folder.
        const QString hostile = u"/../../escaped.mp3"_s;
        QVERIFY(QDir(serverDir()).mkdir(hash + u"."_s));
        touch(root->path() + u"/escaped.mp3"_s);
        QVERIFY(QFileInfo(serverDir() + u'/' + hash + u'.' + hostile).isFile());

        QCOMPARE(DownloadLayout::songFileName(u"evil"_s, hostile), hash + u".audio"_s);
        QCOMPARE(found(songWithSuffix(u"evil"_s, hostile)), std::nullopt);

        touch(serverDir() + u'/' + hash + u".audio"_s);
        const std::optional<QUrl> url = layout().localFileURL(songWithSuffix(u"evil"_s, hostile), alice);
        QVERIFY(url);
        QCOMPARE(url->toLocalFile(), serverDir() + u'/' + hash + u".audio"_s);
    }
};

QTEST_GUILESS_MAIN(DownloadLayoutTest)
#include "tst_downloadlayout.moc"
