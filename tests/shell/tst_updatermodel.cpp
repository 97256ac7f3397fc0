#include "fakesubsonicserver.h"
#include "shell/updatermodel.h"

#include <QNetworkAccessManager>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class UpdaterModelTest : public QObject
{
    Q_OBJECT

    QTemporaryDir dir;
    FakeSubsonicServer server;
    QNetworkAccessManager network;
    std::unique_ptr<QSettings> settings;

    std::unique_ptr<UpdaterModel> makeUpdater(const QString &version = u"0.1.0"_s)
    {
        return std::make_unique<UpdaterModel>(UpdaterModel::Setup{
            .network = &network,
            .settings = settings.get(),
            .feedURL = server.baseURL().resolved(QUrl(u"/feed.json"_s)),
            .currentVersion = QVersionNumber::fromString(version),
        });
    }

    void serveFeed(const QByteArray &body, int delayMs = 0)
    {
        server.on(u"feed.json"_s, FakeResponse{.body = body, .delayMs = delayMs});
    }

    static void waitForCheck(UpdaterModel &updater)
    {
        QVERIFY(!updater.canCheckForUpdates());
        QTRY_VERIFY(updater.canCheckForUpdates());
    }

private Q_SLOTS:
    void init()
    {
        settings = std::make_unique<QSettings>(dir.filePath(u"settings.ini"_s), QSettings::IniFormat);
        settings->clear();
        server.clearLog();
        serveFeed("{\"version\": \"0.2.0\", \"notes\": \"Faster start.\", \"url\": \"https://example.org/velto\"}");
    }

    void withoutAFeedNothingIsChecked()
    {
        UpdaterModel updater({.network = &network, .settings = settings.get(), .feedURL = {},
                              .currentVersion = QVersionNumber(0, 1, 0)});
        QVERIFY(!updater.canCheckForUpdates());
        updater.checkForUpdates();
        updater.checkOnLaunch();
        QTest::qWait(50);
        QVERIFY(!updater.hasReport());
        QCOMPARE(server.count(u"feed.json"_s), 0);
    }

    void aNewerReleaseIsOfferedWithItsNotesAndPage_data()
    {
        QTest::addColumn<QString>("offered");
        QTest::addColumn<QString>("current");
        QTest::addColumn<bool>("inBackground");
        QTest::newRow("asked") << u"0.2.0"_s << u"0.1.0"_s << false;
        QTest::newRow("versions compare as numbers, in background") << u"0.10.0"_s << u"0.9.3"_s << true;
    }

    void aNewerReleaseIsOfferedWithItsNotesAndPage()
    {
        QFETCH(QString, offered);
        QFETCH(QString, current);
        QFETCH(bool, inBackground);
        serveFeed(u"{\"version\": \"%1\", \"notes\": \"Faster start.\", \"url\": \"https://example.org/velto\"}"_s
                      .arg(offered).toUtf8());
        auto updater = makeUpdater(current);
        inBackground ? updater->checkForUpdatesInBackground() : updater->checkForUpdates();
        waitForCheck(*updater);
        QVERIFY(updater->hasReport());
        QVERIFY(updater->reportText().contains(offered));
        QVERIFY(updater->reportText().contains(u"Faster start."_s));
        QCOMPARE(updater->reportLink(), QUrl(u"https://example.org/velto"_s));
        updater->dismissReport();
        QVERIFY(!updater->hasReport());
    }

    void theSameReleaseIsSilentInTheBackgroundAndReportedWhenAsked()
    {
        auto updater = makeUpdater(u"0.2.0"_s);
        updater->checkForUpdatesInBackground();
        waitForCheck(*updater);
        QVERIFY(!updater->hasReport());

        updater->checkForUpdates();
        waitForCheck(*updater);
        QCOMPARE(updater->reportTitle(), u"You're up to date"_s);
        QVERIFY(updater->reportLink().isEmpty());
    }

    void badFeedsAreFailuresNeverOffers_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        const QByteArray offer = "{\"version\": \"9.0\", \"url\": \"https://example.org\"}";
        QTest::newRow("html page") << 200 << QByteArray("<html><body>Not here</body></html>");
        QTest::newRow("number as version") << 200 << QByteArray("{\"version\": 2, \"url\": \"https://example.org\"}");
        QTest::newRow("version with words") << 200 << QByteArray("{\"version\": \"2.0-beta\", \"url\": \"https://example.org\"}");
        QTest::newRow("file link") << 200 << QByteArray("{\"version\": \"9.0\", \"url\": \"file:///etc/passwd\"}");
        QTest::newRow("no link") << 200 << QByteArray("{\"version\": \"9.0\"}");
        QTest::newRow("oversized") << 200 << QByteArray(200 * 1024, ' ') + offer;
        QTest::newRow("not found") << 404 << offer;
    }

    void badFeedsAreFailuresNeverOffers()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        server.on(u"feed.json"_s, FakeResponse{.status = status, .body = body});
        auto updater = makeUpdater();
        updater->checkForUpdatesInBackground();
        waitForCheck(*updater);
        QVERIFY(!updater->hasReport()); // the background check keeps failures to itself

        updater->checkForUpdates();
        waitForCheck(*updater);
        QCOMPARE(updater->reportTitle(), u"Update Error"_s);
        QVERIFY(updater->reportLink().isEmpty());
    }

    void theLaunchCheckRunsOnceAndOnlyWhenAutomatic()
    {
        auto updater = makeUpdater();
        QVERIFY(updater->automaticallyChecksForUpdates());
        updater->checkOnLaunch();
        waitForCheck(*updater);
        updater->checkOnLaunch();
        QTest::qWait(50);
        QCOMPARE(server.count(u"feed.json"_s), 1);
        QVERIFY(updater->hasCheckedOnLaunch());

        updater->setAutomaticallyChecksForUpdates(false);
        auto later = makeUpdater();
        QVERIFY(!later->automaticallyChecksForUpdates());
        later->checkOnLaunch();
        QTest::qWait(50);
        QCOMPARE(server.count(u"feed.json"_s), 1);
    }

    void aSecondCheckWaitsForTheFirst()
    {
        serveFeed("{\"version\": \"0.2.0\", \"url\": \"https://example.org/velto\"}", 200);
        auto updater = makeUpdater();
        updater->checkForUpdates();
        updater->checkForUpdates();
        waitForCheck(*updater);
        QCOMPARE(server.count(u"feed.json"_s), 1);
    }
};

QTEST_GUILESS_MAIN(UpdaterModelTest)
#include "tst_updatermodel.moc"
