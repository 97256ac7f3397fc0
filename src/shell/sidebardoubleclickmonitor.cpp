#include "sidebardoubleclickmonitor.h"

#include <QMouseEvent>
#include <QQuickWindow>

void SidebarDoubleClickMonitor::setSidebar(QQuickItem *sidebar)
{
    if (m_sidebar == sidebar)
        return;
    if (m_sidebar)
        disconnect(m_sidebar, nullptr, this, nullptr);
    m_sidebar = sidebar;
    watch(sidebar ? sidebar->window() : nullptr);
    if (sidebar)
        connect(sidebar, &QQuickItem::windowChanged, this, &SidebarDoubleClickMonitor::watch);
    Q_EMIT sidebarChanged();
}

void SidebarDoubleClickMonitor::watch(QQuickWindow *window)
{
    if (m_window)
        m_window->removeEventFilter(this);
    m_window = window;
    if (window)
        window->installEventFilter(this);
}

bool SidebarDoubleClickMonitor::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonDblClick && watched == m_window && m_sidebar && m_sidebar->isVisible()) {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        if (mouse->button() == Qt::LeftButton && m_sidebar->contains(m_sidebar->mapFromScene(mouse->scenePosition())))
            Q_EMIT doubleClicked();
    }
    return false;
}
