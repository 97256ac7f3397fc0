#include "windowsizekeeper.h"

#include <QSettings>
#include <QWindow>

WindowSizeKeeper::WindowSizeKeeper(QWindow *window, QSettings *settings, QString key, QObject *parent)
    : QObject(parent)
    , m_window(window)
    , m_settings(settings)
    , m_key(std::move(key))
{
    const QSize saved = m_settings->value(m_key).toSize();
    if (saved.isValid() && !saved.isEmpty())
        window->resize(saved);
    connect(window, &QWindow::visibleChanged, this, [this](bool visible) {
        if (!visible)
            save();
    });
}

WindowSizeKeeper::~WindowSizeKeeper()
{
    save();
}

void WindowSizeKeeper::save()
{
    if (!m_window || m_window->size().isEmpty())
        return;
    m_settings->setValue(m_key, m_window->size());
}
