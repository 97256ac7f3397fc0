#pragma once

// The dropdown of suggestions under the toolbar's search field: it waits for a pause in the typing, asks the
// server once, shows the answer if it is still wanted, and turns keys from the field and clicks on rows into
// picks. It never takes the keyboard from the field, and a failed search only leaves the old rows up.

#include "common/task.h"
#include "searchsuggestions.h"

#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QRectF>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

class AppState;

// Where the dropdown stands in the window, from the field's rectangle: under it and right-aligned to it, at least
// 380 wide and 10 inside the window's left edge, as high as its content allows above the window's bottom edge.
[[nodiscard]] QRectF searchDropdownGeometry(const QRectF &field, const QSizeF &window, double contentHeight);

class SearchDropdownController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_MOC_INCLUDE("server/appstate.h")
    Q_PROPERTY(AppState *appState MEMBER m_appState NOTIFY appStateChanged)
    Q_PROPERTY(SearchSuggestionsModel *model READ model CONSTANT)
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY isOpenChanged)

public:
    static constexpr int debounceMs = 200;
    static constexpr int minimumQueryLength = 2;

    explicit SearchDropdownController(QObject *parent = nullptr);

    [[nodiscard]] SearchSuggestionsModel *model() { return &m_model; }
    [[nodiscard]] bool isOpen() const { return m_isOpen; }

    // The field's text, each time it changes.
    Q_INVOKABLE void handle(const QString &query);
    Q_INVOKABLE void dismiss();
    // A key pressed in the field; true when the dropdown used it and the field must not see it.
    Q_INVOKABLE bool keyPressed(int key);
    Q_INVOKABLE void activate(int rowId);
    Q_INVOKABLE void highlight(int rowId);
    Q_INVOKABLE QRectF geometry(const QRectF &field, const QSizeF &window) const;

Q_SIGNALS:
    void appStateChanged();
    void isOpenChanged();
    // A pick opens its screen, then the search text is cleared; a song without an album opens nothing.
    void openArtist(const QJsonObject &artist);
    void openAlbum(const QJsonObject &album);
    void picked();

private:
    void search(QString query);
    void pick(const SearchSuggestion &suggestion);
    void setOpen(bool open);

    QPointer<AppState> m_appState;
    SearchSuggestionsModel m_model;
    QTimer m_debounce;
    QString m_pendingQuery;
    bool m_isOpen = false;
    TaskHandle m_fetch;
};
