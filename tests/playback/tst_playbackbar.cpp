// The playback bar's rules over a player on the fake engine: the position strip's times, scrubs and key seeks,
// mute and the volume's nudges and hover grace, the display's links, and the queue popover's rows.

#include "playback/playbackbar.h"
#include "playback/upnextmodel.h"
#include "playertesthelpers.h"
#include "shell/preferences.h"

#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {
QStringList seeks(const FakeAudioEngine &engine)
{
    return engine.calls().filter(u"seek"_s);
}

QStringList titles(const QAbstractItemModel &model)
{
    QStringList result;
    for (int row = 0; row < model.rowCount(); ++row)
        result.append(model.index(row, 0).data(UpNextModel::TitleRole).toString());
    return result;
}
}

class PlaybackBarTest : public QObject
{
    Q_OBJECT

    QTemporaryDir folder;
    std::unique_ptr<QSettings> settings;
    std::unique_ptr<Preferences> preferences;
    std::unique_ptr<Player> player;
    std::unique_ptr<PlaybackBar> bar;

private Q_SLOTS:
    void init()
    {
        settings = std::make_unique<QSettings>(folder.filePath(u"settings.ini"_s), QSettings::IniFormat);
        settings->clear();
        preferences = std::make_unique<Preferences>(settings.get());
        player = std::make_unique<Player>(PlayerStorage{.settings = settings.get(), .sessionFolder = folder.path()});
        bar = std::make_unique<PlaybackBar>();
        bar->setPlayer(&player->controller);
        bar->setPreferences(preferences.get());
    }
    void cleanup()
    {
        bar.reset();
        player.reset();
        preferences.reset();
        settings.reset();
    }

    void anUnknownLengthCannotBeSought()
    {
        QList<Song> songs = makeSongs(u"a"_s);
        songs[0].duration.reset();
        player->controller.play(songs, 0, player->client, std::nullopt);
        QVERIFY(!bar->canSeek());
        QCOMPARE(bar->trailingText(), u"--:--"_s);
        QCOMPARE(bar->progress(), 0.0);
        bar->commit(0.5);
        bar->stepPosition(1);
        QCOMPARE(seeks(player->engine), QStringList());
        QVERIFY(!bar->isProgressActive());
    }

    void aScrubReachesThePlayerOnlyOnRelease()
    {
        player->play(u"a b"_s); // 200 s each
        Q_EMIT player->engine.positionTicked(50);
        QCOMPARE(bar->trailingText(), u"-02:30"_s);
        QCOMPARE(bar->positionValueText(), u"0:50 of 3:20"_s);
        player->engine.clearCalls();

        bar->scrub(0.25);
        bar->scrub(0.9);
        QVERIFY(bar->isProgressActive());
        QCOMPARE(bar->elapsedText(), u"3:00"_s);
        // The player's own ticks go on underneath and are not shown.
        Q_EMIT player->engine.positionTicked(52);
        QCOMPARE(bar->progress(), 0.9);
        QCOMPARE(seeks(player->engine), QStringList());

        // A drag taken away ends without a seek; so does one whose song changes under it.
        bar->cancelScrub();
        QVERIFY(!bar->isProgressActive());
        QCOMPARE(bar->elapsedText(), u"0:52"_s);
        bar->scrub(0.5);
        player->controller.next();
        QVERIFY(!bar->isProgressActive());
        player->controller.previous();
        QCOMPARE(seeks(player->engine), QStringList());

        bar->scrub(0.6);
        bar->commit(1.7); // released past the right end
        QCOMPARE(seeks(player->engine), QStringList{u"seek 200"_s});
        QVERIFY(!bar->isProgressActive());

        // Past the end the time remaining stays at nothing left.
        Q_EMIT player->engine.positionTicked(203);
        QCOMPARE(bar->trailingText(), u"-00:00"_s);
        QCOMPARE(bar->progress(), 1.0);

        bar->toggleTimeDisplay();
        QCOMPARE(bar->trailingText(), u"3:20"_s);
        QCOMPARE(bar->trailingHelp(), u"Show Time Remaining"_s);
        QVERIFY(settings->value(u"showTotalTime"_s).toBool());
    }

    void arrowKeysSeekByAStepAndStayActiveUntilTheFocusLeaves()
    {
        player->play(u"a"_s);
        Q_EMIT player->engine.positionTicked(100);
        player->engine.clearCalls();
        bar->setSeekingByKey(true); // as the strip does for an arrow key
        bar->stepPosition(1);
        QCOMPARE(seeks(player->engine), QStringList{u"seek 110"_s});
        QVERIFY(bar->isProgressActive());
        Q_EMIT player->engine.positionTicked(110);
        bar->stepPosition(-1);
        QCOMPARE(seeks(player->engine).last(), u"seek 100"_s);
        bar->setSeekingByKey(false);
        QVERIFY(!bar->isProgressActive());
    }

    void muteRemembersTheLevelAndTheKeysNudgeWithinBounds()
    {
        player->controller.setVolume(0.4F);
        bar->toggleMute();
        QCOMPARE(bar->volume(), 0.0);
        QVERIFY(bar->isMuted());
        QCOMPARE(bar->volumeSymbol(), u"speaker.slash.fill"_s);
        bar->setVolumeFraction(0.7);
        bar->toggleMute();
        QCOMPARE(bar->volume(), 0.0);
        QCOMPARE(bar->volumeBeforeMute(), 0.7F);
        bar->toggleMute();
        QCOMPARE(bar->volume(), 0.7F);
        QCOMPARE(bar->volumeValueText(), u"70 percent"_s);

        // Unmuting what was never muted by the button finds a level of its own.
        PlaybackBar fresh;
        fresh.setPlayer(&player->controller);
        player->controller.setVolume(0);
        fresh.toggleMute();
        QCOMPARE(fresh.volume(), 0.5);

        player->controller.setVolume(0.98F);
        bar->setAdjustingVolumeByKey(true); // as the speaker does for an arrow key
        bar->nudgeVolume(1);
        QCOMPARE(bar->volume(), 1.0);
        QVERIFY(bar->isVolumeRevealed());
        player->controller.setVolume(0.02F);
        bar->nudgeVolume(-1);
        QCOMPARE(bar->volume(), 0.0);
        bar->setAdjustingVolumeByKey(false);
        QVERIFY(!bar->isVolumeRevealed());
    }

    void theVolumeSliderWaitsBeforeHiding()
    {
        bar->setVolumeHovered(true);
        bar->setVolumeHovered(false);
        QVERIFY(bar->isVolumeRevealed());
        QTRY_VERIFY(!bar->isVolumeRevealed());
        // Crossing from the button to the slider within the grace keeps it.
        bar->setVolumeHovered(true);
        bar->setVolumeHovered(false);
        bar->setVolumeHovered(true);
        QTest::qWait(PlaybackBar::volumeHoverGraceMs * 2);
        QVERIFY(bar->isVolumeRevealed());
    }

    void theTitleLeadsToThePlaylistBeforeTheAlbum()
    {
        QCOMPARE(bar->title(), u"Not Playing"_s);
        QCOMPARE(bar->titleLink(), QString());
        QList<Song> songs = makeSongs(u"a b"_s);
        songs[0].album = u"Blue"_s;
        songs[0].albumId = u"al1"_s;
        songs[0].artist = u"Ada"_s; // no artist id: plain text
        player->controller.play(songs, 0, player->client, PlaybackSource::playlist(u"p1"_s, u"Mix"_s));
        QSignalSpy playlists(bar.get(), &PlaybackBar::openPlaylistRequested);
        QSignalSpy albums(bar.get(), &PlaybackBar::openAlbumRequested);
        QCOMPARE(bar->titleLink(), u"playlist"_s);
        bar->openTitle();
        QCOMPARE(playlists.value(0).value(0).toString(), u"p1"_s);
        QVERIFY(bar->albumIsLink());
        QVERIFY(!bar->artistIsLink());
        bar->openAlbum();
        QCOMPARE(albums.value(0).value(0).toJsonObject().value(u"id"_s).toString(), u"al1"_s);

        player->controller.play(songs, 0, player->client, std::nullopt);
        QCOMPARE(bar->titleLink(), u"album"_s);
        player->controller.play(songs, 1, player->client, std::nullopt);
        QCOMPARE(bar->titleLink(), QString());
        bar->openTitle();
        bar->openArtist();
        QCOMPARE(albums.count(), 1);
        QCOMPARE(playlists.count(), 1);
    }

    void theQueueRowsFollowTheirEdits()
    {
        player->play(u"a b c d e"_s);
        UpNextModel upNext;
        upNext.setPlayer(&player->controller);
        QCOMPARE(titles(upNext), (QStringList{u"Song b"_s, u"Song c"_s, u"Song d"_s, u"Song e"_s}));
        // Songs put next while the list is open come in as new rows.
        QSignalSpy inserted(&upNext, &QAbstractItemModel::rowsInserted);
        player->controller.playNext(makeSongs(u"x c"_s), player->client);
        QCOMPARE(titles(upNext),
                 (QStringList{u"Song x"_s, u"Song c"_s, u"Song b"_s, u"Song c"_s, u"Song d"_s, u"Song e"_s}));
        QCOMPARE(inserted.count(), 1);
        // A song that stands twice is two rows: removing one leaves the other.
        upNext.remove(1);
        upNext.remove(0);
        QCOMPARE(titles(upNext), (QStringList{u"Song b"_s, u"Song c"_s, u"Song d"_s, u"Song e"_s}));
        QCOMPARE(upNext.index(0).data(UpNextModel::DurationRole).toString(), u"03:20"_s);

        upNext.move(0, 2); // b below d
        QCOMPARE(titles(upNext), (QStringList{u"Song c"_s, u"Song d"_s, u"Song b"_s, u"Song e"_s}));
        upNext.move(3, 0); // e to the top
        QCOMPARE(titles(upNext), (QStringList{u"Song e"_s, u"Song c"_s, u"Song d"_s, u"Song b"_s}));
        upNext.remove(1);
        QCOMPARE(titles(upNext), (QStringList{u"Song e"_s, u"Song d"_s, u"Song b"_s}));
        upNext.playNow(1);
        QCOMPARE(player->current(), u"d"_s);
        QCOMPARE(titles(upNext), QStringList{u"Song b"_s});
        upNext.remove(0);
        QCOMPARE(upNext.count(), 0);
        VERIFY_ENGINE(*player);
    }
};

QTEST_GUILESS_MAIN(PlaybackBarTest)
#include "tst_playbackbar.moc"
