#include "app/FramePacer.h"

#include "imaging/Relaxed.h"

#include <QCoreApplication>
#include <QEvent>
#include <QQuickWindow>
#include <utility>

namespace {

// A picture in which nothing has changed isn't drawn, and one that is only grabbed isn't swapped.
constexpr int mostWaitForStepMs = 30;

} // namespace

FramePacer::FramePacer(QQuickWindow *window)
    : QObject(window)
    , m_window(window)
{
    const auto on = [this](void (QQuickWindow::*signal)(), Picture picture) {
        connect(
            m_window, signal, this, [this, picture] { enter(picture); }, Qt::DirectConnection);
    };
    on(&QQuickWindow::afterSynchronizing, Picture::Synchronized);
    on(&QQuickWindow::beforeRendering, Picture::Drawing);
    on(&QQuickWindow::afterRendering, Picture::Drawn);
    on(&QQuickWindow::frameSwapped, Picture::None);
    m_limit.setSingleShot(true);
    m_limit.setInterval(mostWaitForStepMs);
    connect(&m_limit, &QTimer::timeout, this, [this] {
        if (m_picture.load(relaxed) != Picture::Drawing)
            deliver();
    });
    window->installEventFilter(this);
}

bool FramePacer::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::UpdateRequest)
        return QObject::eventFilter(watched, event);
    const Picture picture = m_picture.load(relaxed);
    if (picture == Picture::None) {
        // The next picture has what any before it asked for.
        forgetHeldBack();
        return false;
    }
    if (!m_heldBack)
        m_heldDuring = m_number.load(relaxed);
    m_heldBack = true;
    if (picture != Picture::Drawing && !m_limit.isActive())
        m_limit.start();
    return true;
}

void FramePacer::enter(Picture picture)
{
    // An animation of the drawing thread's own is drawn without synchronizing.
    const Picture before = m_picture.exchange(picture, relaxed);
    const bool begins =
        picture == Picture::Synchronized || (picture == Picture::Drawing && before != Picture::Synchronized);
    const unsigned number = begins ? ++m_number : m_number.load(relaxed);
    if (picture == Picture::Drawn || picture == Picture::None)
        QMetaObject::invokeMethod(
            this, [this, number, picture] { finish(number, picture); }, Qt::QueuedConnection);
}

void FramePacer::finish(unsigned number, Picture picture)
{
    if (!m_heldBack || number < m_heldDuring)
        return;
    // Also where the next one has begun already: one after another, they would never let the request in.
    if (picture == Picture::None)
        deliver();
    else if (!m_limit.isActive())
        m_limit.start();
}

bool FramePacer::forgetHeldBack()
{
    m_limit.stop();
    return std::exchange(m_heldBack, false);
}

void FramePacer::deliver()
{
    if (!forgetHeldBack())
        return;
    m_picture.store(Picture::None, relaxed);
    QEvent request(QEvent::UpdateRequest);
    QCoreApplication::sendEvent(m_window, &request);
}
