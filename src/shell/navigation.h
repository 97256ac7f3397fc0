#pragma once

// Where the user is in the main window: the sidebar selection, the stack of screens pushed over its root, and the
// window's accent colour, which pushed screens set and which comes back when the user steps back. Every change
// of place is saved at once, so that the next start opens where this one was.

#include "savedlocation.h"

#include <QAbstractListModel>
#include <QColor>
#include <QHash>
#include <QPointer>
#include <QQmlParserStatus>
#include <QSet>
#include <QtQml/qqmlregistration.h>

class AppState;
class PlayerController;

// The pushed screens, bottom first, as a QML view follows them: rows are only ever appended or taken off the end.
class NavigationStack : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Owned by the navigation")

public:
    enum Role { KindRole = Qt::UserRole, TitleRole, IdRole, RecordRole };

    using QAbstractListModel::QAbstractListModel;
    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] const QList<NavigationEntry> &entries() const { return m_entries; }
    void push(NavigationEntry entry);
    void truncate(qsizetype depth);

private:
    QList<NavigationEntry> m_entries;
};

class Navigation : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    QML_ELEMENT
    Q_INTERFACES(QQmlParserStatus)
    Q_MOC_INCLUDE("server/appstate.h")
    Q_MOC_INCLUDE("playback/playercontroller.h")
    Q_PROPERTY(AppState *appState READ appState WRITE setAppState NOTIFY appStateChanged)
    Q_PROPERTY(PlayerController *player MEMBER m_player NOTIFY playerChanged)
    Q_PROPERTY(LocationFile *locations MEMBER m_locations NOTIFY locationsChanged)
    Q_PROPERTY(NavigationStack *stack READ stack CONSTANT)
    Q_PROPERTY(int depth READ depth NOTIFY depthChanged)
    Q_PROPERTY(QString selectionKey READ selectionKey NOTIFY selectionChanged)
    Q_PROPERTY(QString rootKind READ rootKind NOTIFY selectionChanged)
    Q_PROPERTY(QString rootTitle READ rootTitle NOTIFY rootTitleChanged)
    Q_PROPERTY(QString playlistId READ playlistId NOTIFY selectionChanged)
    // Transparent for views when the window is neutral.
    Q_PROPERTY(QColor windowAccent READ shownAccent NOTIFY windowAccentChanged)
    Q_PROPERTY(QString searchText READ searchText WRITE setSearchText NOTIFY searchTextChanged)
    Q_PROPERTY(bool faultShownFullPage READ faultShownFullPage NOTIFY faultShownFullPageChanged)

public:
    explicit Navigation(QObject *parent = nullptr);

    [[nodiscard]] AppState *appState() const;
    void setAppState(AppState *appState);
    // Starts at this account's saved location, or at Home. Once the properties are set; QML does it itself.
    void restore();
    void classBegin() override { }
    void componentComplete() override { restore(); }
    [[nodiscard]] NavigationStack *stack() { return &m_stack; }
    [[nodiscard]] int depth() const { return int(m_stack.entries().size()); }
    [[nodiscard]] const SidebarSelection &selection() const { return m_selection; }
    // "item:<id>" or "playlist:<id>".
    [[nodiscard]] QString selectionKey() const;
    // The root screen: the sidebar item's id, or "playlist".
    [[nodiscard]] QString rootKind() const;
    [[nodiscard]] QString rootTitle() const;
    [[nodiscard]] QString playlistId() const;
    // Invalid when the window is neutral.
    [[nodiscard]] QColor windowAccent() const { return m_windowAccent; }
    [[nodiscard]] QColor shownAccent() const { return m_windowAccent.isValid() ? m_windowAccent : QColor(Qt::transparent); }
    [[nodiscard]] const QString &searchText() const { return m_searchText; }
    void setSearchText(const QString &text);
    [[nodiscard]] bool faultShownFullPage() const { return !m_fullPages.isEmpty(); }

    // A new selection lands at its root: the stack, the accents and the search text are cleared.
    void select(const SidebarSelection &selection);
    Q_INVOKABLE void selectKey(const QString &key);
    void push(NavigationEntry entry);
    Q_INVOKABLE void pushGrid(const QString &listType, const QString &title);
    // The album's record; one that does not decode pushes nothing.
    Q_INVOKABLE void pushAlbum(const QJsonObject &album);
    Q_INVOKABLE void pushArtist(const QJsonObject &artist);
    // The album list a screen of this kind shows as a grid: a sidebar item's, or a pushed grid's `entryId`;
    // "liked" for the liked albums; empty for screens that are no grid.
    Q_INVOKABLE static QString gridListType(const QString &kind, const QString &entryId);
    Q_INVOKABLE void back();
    // A playlist that is gone takes the window to Home if it was on screen.
    Q_INVOKABLE void playlistDeleted(const QString &id);
    Q_INVOKABLE void popToRoot();
    // A screen's own colour: `depth` 0 is the root, which counts only while nothing is pushed over it.
    // Undefined, or an invalid colour, is neutral.
    Q_INVOKABLE void reportAccent(int depth, const QVariant &accent);
    // A screen that shows the full-page fault says so; while any does, the banner stays silent.
    Q_INVOKABLE void reportFullPage(QObject *screen, bool shown);
    // Space toggles play and pause when a song is current; false means the key is not used and goes on.
    Q_INVOKABLE bool spacePressed();

Q_SIGNALS:
    void appStateChanged();
    void playerChanged();
    void locationsChanged();
    void depthChanged();
    void selectionChanged();
    void rootTitleChanged();
    void windowAccentChanged();
    void searchTextChanged();
    void faultShownFullPageChanged();

private:
    void setPath(qsizetype depth, std::optional<NavigationEntry> pushed);
    void setWindowAccent(QColor accent);
    void save();

    QPointer<AppState> m_appState;
    QPointer<PlayerController> m_player;
    QPointer<LocationFile> m_locations;
    SidebarSelection m_selection;
    NavigationStack m_stack;
    QColor m_windowAccent;
    // What the window looked like when something was pushed over each depth.
    QHash<qsizetype, QColor> m_coveredAccents;
    QString m_searchText;
    QSet<QObject *> m_fullPages;
};
