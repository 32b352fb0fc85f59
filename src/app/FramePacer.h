#pragma once

#include <QObject>
#include <QTimer>
#include <atomic>

class QQuickWindow;

/// Keeps the interface free while a picture of its window is drawn.
///
/// With a thread of its own for drawing, the scene graph has the interface wait at each new picture until the
/// one before is done. Where drawing takes long, as that of a 3D scene without a graphics card, this would be
/// nearly all the time, and clicks would wait too. So the request for a picture is held back until then.
class FramePacer : public QObject {
    Q_OBJECT
public:
    /// Belongs to the window.
    explicit FramePacer(QQuickWindow *window);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    enum class Picture { None, Synchronized, Drawing, Drawn };

    /// On the thread that draws.
    void enter(Picture picture);

    /// At an end of picture `number`.
    void finish(unsigned number, Picture picture);
    void deliver();

    /// Whether a request was held back.
    bool forgetHeldBack();

    QQuickWindow *const m_window;
    std::atomic<Picture> m_picture{Picture::None};
    std::atomic<unsigned> m_number{0}; ///< of the last picture that began
    bool m_heldBack = false;
    unsigned m_heldDuring = 0;
    QTimer m_limit;
};
