#pragma once

// A double click anywhere in the sidebar's region, whatever row or button takes the clicks themselves. It watches
// the window's events without consuming any.

#include <QObject>
#include <QPointer>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

class SidebarDoubleClickMonitor : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickItem *sidebar READ sidebar WRITE setSidebar NOTIFY sidebarChanged)

public:
    using QObject::QObject;

    [[nodiscard]] QQuickItem *sidebar() const { return m_sidebar; }
    void setSidebar(QQuickItem *sidebar);
    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void sidebarChanged();
    void doubleClicked();

private:
    void watch(QQuickWindow *window);

    QPointer<QQuickItem> m_sidebar;
    QPointer<QQuickWindow> m_window;
};
