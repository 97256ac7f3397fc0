// The download controls as the screens show them, over a real store and the fake server: the menu entries and
// the badge at the turns where they can go wrong, and the Downloads screen's and the settings' lists.

#include "downloadtesthelpers.h"
#include "offline/downloadmenus.h"
#include "offline/downloadsscreen.h"
#include "offline/downloadstorage.h"

#include <QSignalSpy>

using Kind = DownloadBadge::Kind;

namespace {
QStringList texts(const QList<DownloadMenuEntry> &entries)
{
    QStringList result;
    for (const DownloadMenuEntry &entry : entries)
        result.append(entry.text);
    return result;
}

QStringList labels(const QAbstractItemModel &model)
{
    QStringList result;
    for (int row = 0; row < model.rowCount(); ++row)
        result.append(model.index(row, 0).data(DownloadMenuEntries::TextRole).toString());
    return result;
}

// Each row of the screen as "section: name name …".
QStringList shownRows(const DownloadsGridModel &model)
{
    QStringList result;
    for (const DownloadsGridRow &row : model.rows()) {
        QStringList names;
        for (const DownloadedCollectionRow &cell : row.cells)
            names.append(cell.collection.name);
        result.append(row.section + u": "_s + names.join(u' '));
    }
    return result;
}
}

class DownloadControlsTest : public DownloadTest
{
    Q_OBJECT

private Q_SLOTS:
    void failuresAndEmptyProgressRead()
    {
        const DownloadProgress failedList{.total = 0, .completed = 0, .failed = true};
        QCOMPARE(texts(DownloadControls::albumEntries(failedList, false)),
                 (QStringList{u"Retry Download"_s, u"Cancel Download"_s}));
        QVERIFY(DownloadControls::albumEntries(failedList, false).at(1).isDestructive);
        QCOMPARE(DownloadControls::badge(false, failedList).symbol, u"exclamationmark.circle.fill"_s);
        QCOMPARE(DownloadControls::badge(false, failedList).toolTip,
                 u"Download failed — open the “⋯” menu to retry"_s);

        const DownloadProgress starting{.total = 0, .completed = 0, .failed = false};
        const DownloadBadge ring = DownloadControls::badge(false, starting);
        QCOMPARE(ring.kind, Kind::Progress);
        QCOMPARE(ring.value, 0.0);
        const QList<DownloadMenuEntry> running = DownloadControls::albumEntries(starting, false);
        QCOMPARE(texts(running), (QStringList{u"Downloading… (0/0)"_s, u"Cancel Download"_s}));
        QVERIFY(!running.at(0).isEnabled);
        // A failure of a collection already held offers its removal, not a retry.
        QCOMPARE(texts(DownloadControls::albumEntries(failedList, true)), QStringList{u"Remove Download"_s});
        // A top-up that failed: the menu still offers the missing songs, the badge tells of the failure.
        const DownloadProgress failedTopUp{.total = 5, .completed = 3, .failed = true};
        QCOMPARE(texts(DownloadControls::playlistEntries(failedTopUp, CollectionDownloadState::partial(3, 5), true)),
                 (QStringList{u"Download 2 More Songs"_s, u"Remove Download"_s}));
        QCOMPARE(DownloadControls::badge(true, failedTopUp, CollectionDownloadState::partial(3, 5)).kind, Kind::Failed);
    }

    void aPlaylistGrownOnTheServerOffersTheMissingSongs()
    {
        rig->servePlaylist(u"P"_s, numberedSongs(3));
        PlaylistDownloadEntries entries;
        entries.setStore(store.get());
        entries.setPlaylistId(u"P"_s);
        entries.setProperty("name", u"Road"_s);
        entries.setSongIds(idsOf(numberedSongs(3)));
        DownloadBadgeState badge;
        badge.setStore(store.get());
        badge.setProperty("key", playlistKey);
        QCOMPARE(labels(entries), QStringList{u"Download"_s});
        QCOMPARE(badge.kind(), DownloadBadgeState::Kind::None);

        entries.trigger(0);
        QTRY_COMPARE(badge.kind(), DownloadBadgeState::Kind::Progress);
        QCOMPARE(labels(entries).value(1), u"Cancel Download"_s);
        runToEnd(playlistKey);
        QCOMPARE(labels(entries), QStringList{u"Remove Download"_s});
        QCOMPARE(badge.kind(), DownloadBadgeState::Kind::Downloaded);
        QCOMPARE(badge.toolTip(), u"Available offline"_s);

        rig->servePlaylist(u"P"_s, numberedSongs(5));
        entries.setSongIds(idsOf(numberedSongs(5)));
        badge.setProperty("songIds", idsOf(numberedSongs(5)));
        QCOMPARE(labels(entries), (QStringList{u"Download 2 More Songs"_s, u"Remove Download"_s}));
        QVERIFY(entries.index(1).data(DownloadMenuEntries::DestructiveRole).toBool());
        QCOMPARE(badge.symbol(), u"arrow.down.circle.dotted"_s);
        QCOMPARE(badge.toolTip(), u"3 of 5 songs downloaded — open the “⋯” menu to finish"_s);
        QCOMPARE(texts(DownloadControls::playlistEntries({}, CollectionDownloadState::partial(4, 5), true)).value(0),
                 u"Download 1 More Song"_s);
        QCOMPARE(texts(DownloadControls::playlistEntries({}, CollectionDownloadState::partial(0, 5), true)).value(0),
                 u"Download Playlist"_s);

        entries.trigger(0);
        runToEnd(playlistKey);
        QCOMPARE(rig->requestedSongs(), idsOf(numberedSongs(5)));
        QCOMPARE(labels(entries), QStringList{u"Remove Download"_s});
        entries.trigger(0);
        QCOMPARE(badge.kind(), DownloadBadgeState::Kind::None);
        QVERIFY(!store->isDownloaded(playlistKey));
    }

    void theScreenAndTheSettingsListWhatIsOnDisk()
    {
        rig->serveAlbum(u"10"_s, numberedSongs(3));
        rig->serveAlbum(u"2"_s, numberedSongs(2, 10));
        rig->servePlaylist(u"P"_s, numberedSongs(2));
        DownloadsScreen screen;
        screen.setStore(store.get());
        screen.setColumns(1);
        DownloadStorage storage;
        storage.setStore(store.get());
        QVERIFY(screen.isEmpty());
        QCOMPARE(storage.usedText(), u"None"_s);

        for (const QString &id : {u"10"_s, u"2"_s}) {
            store->downloadAlbum(testAlbum(id));
            runToEnd(albumCollectionKey(id));
        }
        store->downloadPlaylist(u"P"_s, u"Road"_s);
        runToEnd(playlistKey);

        // Natural order, sections in their fixed order, one walk's sizes.
        QCOMPARE(shownRows(*screen.rows()),
                 (QStringList{u"Albums: Album 2"_s, u"Albums: Album 10"_s, u"Playlists: Road"_s}));
        const qint64 total = store->totalBytes();
        QCOMPARE(screen.caption(), u"3 collections · "_s + fileSizeText(total));
        QCOMPARE(cellData(screen.rows()->rows().at(1).cells.at(0)).value(u"caption"_s).toString(),
                 u"3 songs · "_s + fileSizeText(store->bytesOwnedBy(u"album:10"_s)));
        QCOMPARE(storage.collections()->rows().at(0).collection.name, u"Album 10"_s);
        QCOMPARE(storage.usedText(), fileSizeText(total));
        QCOMPARE(storage.removeAllMessage(), u"Frees "_s + fileSizeText(total) + u". Your music stays on the server."_s);

        screen.setColumns(4);
        QCOMPARE(shownRows(*screen.rows()), (QStringList{u"Albums: Album 2 Album 10"_s, u"Playlists: Road"_s}));

        QSignalSpy albums(&screen, &DownloadsScreen::openAlbum);
        QSignalSpy playlists(&screen, &DownloadsScreen::openPlaylist);
        screen.open(u"album:2"_s);
        screen.open(playlistKey);
        QCOMPARE(Album::fromJson(albums.value(0).value(0).toJsonObject()).song.value_or(QList<Song>()).size(), 2);
        QCOMPARE(playlists.value(0).value(0).toString(), u"P"_s);

        // Removing drops rows in place, and the last one turns both to their empty states.
        QSignalSpy removed(screen.rows(), &QAbstractItemModel::rowsRemoved);
        QSignalSpy reset(screen.rows(), &QAbstractItemModel::modelReset);
        screen.remove(u"album:2"_s);
        QCOMPARE(shownRows(*screen.rows()), (QStringList{u"Albums: Album 10"_s, u"Playlists: Road"_s}));
        storage.remove(playlistKey);
        storage.removeAll();
        QTRY_VERIFY(screen.isEmpty());
        QCOMPARE(screen.rows()->rowCount(), 0);
        QVERIFY(storage.isEmpty());
        QCOMPARE(storage.usedText(), u"None"_s);
        QVERIFY(removed.count() >= 2);
        QCOMPARE(reset.count(), 0);
    }

    void anAlbumWhoseSongsAreGoneCannotBeOpened()
    {
        DownloadManifest manifest;
        manifest.collections.insert(albumKey, DownloadCollection{.key = albumKey, .name = u"Gone"_s});
        store.reset();
        QVERIFY(saveManifest(manifest, rig->directory()));
        store = rig->makeStore();
        DownloadsScreen screen;
        screen.setStore(store.get());
        QCOMPARE(screen.rows()->rows().value(0).cells.value(0).canOpen, false);
        QSignalSpy albums(&screen, &DownloadsScreen::openAlbum);
        screen.open(albumKey);
        QCOMPARE(albums.count(), 0);
        QCOMPARE(screen.caption(), u"1 collection · "_s + fileSizeText(0));
    }
};

QTEST_GUILESS_MAIN(DownloadControlsTest)
#include "tst_downloadcontrols.moc"
