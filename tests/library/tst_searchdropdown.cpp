// The search dropdown's model and controller against the fake server: one request per pause in the typing, late
// answers dropped, the sections, heights and row ids of an answer, the marked row, failures that change nothing,
// the picks, and where the dropdown stands in the window.

#include "awaittask.h"
#include "fakesubsonicserver.h"
#include "library/librarystore.h"
#include "library/searchdropdown.h"
#include "server/appstate.h"

#include <QJsonArray>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
QJsonArray records(const QString &prefix, int count, const QString &nameKey)
{
    QJsonArray list;
    for (int i = 0; i < count; ++i)
        list.append(QJsonObject{{u"id"_s, prefix + QString::number(i)}, {nameKey, prefix + u" "_s + QString::number(i)}});
    return list;
}

FakeResponse answer(int artists, int albums, int songs)
{
    QJsonObject result;
    if (artists > 0)
        result.insert(u"artist"_s, records(u"artist"_s, artists, u"name"_s));
    if (albums > 0)
        result.insert(u"album"_s, records(u"album"_s, albums, u"name"_s));
    if (songs > 0)
        result.insert(u"song"_s, records(u"song"_s, songs, u"title"_s));
    return FakeSubsonicServer::json({{u"searchResult3"_s, result}});
}
}

class SearchDropdownTest : public QObject
{
    Q_OBJECT

    FakeSubsonicServer server;
    QSettings settings;
    std::unique_ptr<AppState> appState;
    std::unique_ptr<SearchDropdownController> search;
    FakeResponse nextAnswer = answer(5, 7, 10);

    SearchSuggestionsModel &model() { return *search->model(); }

private Q_SLOTS:
    void initTestCase()
    {
        server.on(u"ping"_s, FakeSubsonicServer::json({}));
        server.on(u"search3"_s, [this](const RecordedRequest &) { return nextAnswer; });
        appState = std::make_unique<AppState>(&settings);
        awaitTask(appState->connect(server.baseURL().toString(), u"alice"_s, u"pw"_s));
    }
    void init()
    {
        search = std::make_unique<SearchDropdownController>();
        search->setProperty("appState", QVariant::fromValue(appState.get()));
        server.clearLog();
        nextAnswer = answer(5, 7, 10);
    }

    void typingSendsOneSearchAfterAPause()
    {
        search->handle(u"b"_s);
        search->handle(u"bl"_s);
        QTest::qWait(SearchDropdownController::debounceMs / 2);
        search->handle(u" blu\t"_s);
        QTest::qWait(SearchDropdownController::debounceMs / 2);
        QCOMPARE(server.count(u"search3"_s), 0); // still typing
        QTRY_VERIFY(search->isOpen());
        QCOMPARE(server.count(u"search3"_s), 1);
        const RecordedRequest request = server.requests(u"search3"_s).first();
        QCOMPARE(request.value(u"query"_s), u"blu"_s);
        QCOMPARE(request.value(u"artistCount"_s), u"5"_s);
        QCOMPARE(request.value(u"albumCount"_s), u"7"_s);
        QCOMPARE(request.value(u"songCount"_s), u"10"_s);
        QCOMPARE(request.value(u"songOffset"_s), u"0"_s);

        // A full answer: sections in order, one running id, the height capped.
        QCOMPARE(model().sections(), (QStringList{u"Artists"_s, u"Albums"_s, u"Songs"_s}));
        QCOMPARE(model().count(), 22);
        QCOMPARE(model().contentHeight(), 620.0);
        QCOMPARE(model().row(12)->title, u"song 0"_s);
        QVERIFY(model().row(0)->isRound);
        QCOMPARE(model().highlighted(), 0);

        // A new answer marks its first row again; two sections of one row each.
        model().moveHighlight(3);
        nextAnswer = answer(1, 1, 0);
        search->handle(u"blue"_s);
        QTRY_COMPARE(model().query(), u"blue"_s);
        QCOMPARE(model().highlighted(), 0);
        QCOMPARE(model().contentHeight(), 188.0);

        // One letter closes it at once and cancels what was pending; so does one accented letter.
        search->handle(u"e\u0301"_s);
        QVERIFY(!search->isOpen());
        search->handle(u"blue"_s);
        search->handle(u" b "_s);
        QVERIFY(!search->isOpen());
        QTest::qWait(SearchDropdownController::debounceMs * 2);
        QCOMPARE(server.count(u"search3"_s), 2);
    }

    void aLateAnswerAfterTheFieldWasClearedShowsNothing()
    {
        nextAnswer = FakeSubsonicServer::delayed(answer(0, 0, 2), 400);
        search->handle(u"von"_s);
        QTRY_COMPARE(server.count(u"search3"_s), 1);
        search->handle(QString());
        QTest::qWait(600);
        QVERIFY(!search->isOpen());
        QCOMPARE(model().count(), 0);

        // A slow answer overtaken by a later query's is dropped.
        search->handle(u"von"_s);
        QTRY_COMPARE(server.count(u"search3"_s), 2);
        nextAnswer = answer(0, 0, 1);
        search->handle(u"vonx"_s);
        QTRY_COMPARE(model().query(), u"vonx"_s);
        QTest::qWait(500);
        QCOMPARE(model().query(), u"vonx"_s);
    }

    void heightsMarksAndFailures()
    {
        nextAnswer = answer(0, 0, 2);
        search->handle(u"von"_s);
        QTRY_VERIFY(search->isOpen());
        QCOMPARE(model().sections(), QStringList{u"Songs"_s});
        QCOMPARE(model().contentHeight(), 146.0);

        QSignalSpy ticks(&model(), &SearchSuggestionsModel::scrollTickChanged);
        model().moveHighlight(-1);
        QCOMPARE(model().highlighted(), 0);
        QCOMPARE(ticks.count(), 1);
        QVERIFY(search->keyPressed(Qt::Key_Down));
        QVERIFY(search->keyPressed(Qt::Key_Down));
        QCOMPARE(model().highlighted(), 1);
        QVERIFY(!search->keyPressed(Qt::Key_Left));

        // A failing search leaves the rows up and says nothing.
        nextAnswer = FakeSubsonicServer::error(0, u"Boom"_s);
        search->handle(u"vonx"_s);
        QTRY_COMPARE(server.count(u"search3"_s), 2);
        QTest::qWait(100);
        QVERIFY(search->isOpen());
        QCOMPARE(model().query(), u"von"_s);
        QVERIFY(appState->library()->reachability().isOk());

        nextAnswer = answer(0, 0, 0);
        search->handle(u"zzz"_s);
        QTRY_COMPARE(model().query(), u"zzz"_s);
        QCOMPARE(model().count(), 0);
        QCOMPARE(model().contentHeight(), 76.0);

        // Escape closes and still reaches the field; with the dropdown closed every key goes on.
        QVERIFY(!search->keyPressed(Qt::Key_Escape));
        QVERIFY(!search->isOpen());
        QVERIFY(!search->keyPressed(Qt::Key_Return));
    }

    void picksOpenTheirScreens()
    {
        SearchResult result;
        result.song = QList<Song>{Song{.id = u"s1"_s, .title = u"Loose"_s, .artist = u"Ada"_s},
                                  Song{.id = u"s2"_s, .title = u"Kept"_s, .albumId = u"al2"_s, .coverArt = u"c2"_s}};
        model().update(result, u"xx"_s);
        QSignalSpy albums(search.get(), &SearchDropdownController::openAlbum);
        QSignalSpy picked(search.get(), &SearchDropdownController::picked);
        search->activate(0);
        QCOMPARE(albums.count(), 0);
        QCOMPARE(picked.count(), 1);
        search->activate(1);
        const Album album = Album::fromJson(albums.value(0).value(0).toJsonObject());
        QCOMPARE(album.id, u"al2"_s);
        QCOMPARE(album.name, u"Kept"_s); // no album name: the song's title stands in
        QCOMPARE(album.coverArt, u"c2"_s);
        QCOMPARE(picked.count(), 2);
    }

    void theDropdownStandsUnderTheFieldWithinTheWindow()
    {
        // A narrow field still gets 380, right-aligned, but never less than 10 inside the left edge.
        QCOMPARE(searchDropdownGeometry(QRectF(600, 10, 240, 28), QSizeF(900, 700), 620), QRectF(460, 44, 380, 620));
        QCOMPARE(searchDropdownGeometry(QRectF(20, 10, 240, 28), QSizeF(900, 700), 146), QRectF(10, 44, 380, 146));
        // A short window limits the height, to no less than 40.
        QCOMPARE(searchDropdownGeometry(QRectF(600, 10, 240, 28), QSizeF(900, 300), 620).height(), 244.0);
        QCOMPARE(searchDropdownGeometry(QRectF(600, 10, 240, 28), QSizeF(900, 60), 620).height(), 40.0);
    }
};

QTEST_GUILESS_MAIN(SearchDropdownTest)
#include "tst_searchdropdown.moc"
