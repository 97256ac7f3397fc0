#pragma once

// One start of the real application as main() builds it, without the event loop, and the few ways the window
// tests drive it as a user would.

#include "shell/mainwindow.h"
#include "shell/veltoapp.h"

#include <QAccessible>
#include <QDir>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

// Every item under `root` in the scene, whoever owns it: views' delegates have no QObject parent to find them by.
inline QList<QQuickItem *> itemsUnder(QQuickItem *root)
{
    QList<QQuickItem *> items;
    for (QQuickItem *child : root->childItems())
        items << child << itemsUnder(child);
    return items;
}

// Controls on screen that a screen reader could not name, as Qt hands them to it.
inline QStringList unnamedControls(QAccessibleInterface *node)
{
    static const QSet<QAccessible::Role> controls{
        QAccessible::Button,   QAccessible::CheckBox, QAccessible::RadioButton, QAccessible::EditableText,
        QAccessible::MenuItem, QAccessible::ListItem, QAccessible::Slider,      QAccessible::SpinBox,
        QAccessible::ComboBox, QAccessible::PageTab,  QAccessible::Cell,        QAccessible::ProgressBar,
        QAccessible::Link};
    QStringList found;
    if (!node || node->state().invisible)
        return found;
    if (controls.contains(node->role()) && node->text(QAccessible::Name).isEmpty())
        found << QString::number(node->role());
    for (int i = 0; i < node->childCount(); ++i)
        found << unnamedControls(node->child(i));
    return found;
}

inline QStringList unnamedControls(QQuickWindow *window)
{
    return unnamedControls(QAccessible::queryAccessibleInterface(window));
}

struct RunningApp {
    VeltoApp app{{.updateFeedURL = {}, .version = QVersionNumber(0, 1, 0)}};
    QQmlApplicationEngine engine;
    QQuickWindow *window = nullptr;

    RunningApp() { window = loadMainWindow(engine, app); }

    template<typename T = QQuickItem>
    T *find(const QString &name) const
    {
        return window->findChild<T *>(name);
    }

    // The shown item of that object name, in the main window or in `window`.
    QQuickItem *visibleItem(const QString &name, QQuickWindow *in = nullptr) const
    {
        for (QQuickItem *item : itemsUnder((in ? in : window)->contentItem())) {
            if (item->objectName() == name && item->isVisible())
                return item;
        }
        return nullptr;
    }

    // The texts of the menu items open now, and one of them by its text.
    QStringList visibleMenuItems() const
    {
        QStringList texts;
        for (QQuickItem *item : itemsUnder(window->contentItem())) {
            if (item->inherits("QQuickMenuItem") && item->isVisible())
                texts.append(item->property("text").toString());
        }
        return texts;
    }
    QQuickItem *menuItem(const QString &text) const
    {
        for (QQuickItem *item : itemsUnder(window->contentItem())) {
            if (item->inherits("QQuickMenuItem") && item->isVisible() && item->property("text").toString() == text)
                return item;
        }
        return nullptr;
    }

    void click(QQuickItem *item, Qt::MouseButton button = Qt::LeftButton) const
    {
        const QPoint centre = item->mapToScene(QPointF(item->width() / 2, item->height() / 2)).toPoint();
        QTest::mouseClick(item->window(), button, {}, centre);
    }

    // Types into whatever has the keyboard, as a user who does not click first.
    void type(const QString &text) const
    {
        for (const QChar c : text)
            QTest::sendKeyEvent(QTest::Click, window, Qt::Key_unknown, QString(c), Qt::NoModifier);
    }
};

// Starts anew: the engine and the app of the last start go first, as at a real quit.
inline bool restart(std::unique_ptr<RunningApp> &running)
{
    running.reset();
    running = std::make_unique<RunningApp>();
    if (!running->window)
        return false;
    running->window->requestActivate();
    return QTest::qWaitForWindowActive(running->window);
}

inline bool saveScreenshot(QQuickWindow *window, const QString &name)
{
    const QString folder = QStringLiteral(VELTO_SCREENSHOT_DIR);
    QDir().mkpath(folder);
    QTest::qWait(100);
    return window->grabWindow().save(folder + u'/' + name + QStringLiteral(".png"));
}
