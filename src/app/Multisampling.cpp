#include "app/Multisampling.h"

#include "app/FramePacer.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QQuickWindow>
#include <QSurfaceFormat>
#include <algorithm>
#include <array>

namespace {

/// Of the context that is current on this thread; empty without one.
QByteArray rendererName()
{
    QOpenGLContext *const context = QOpenGLContext::currentContext();
    return context ? reinterpret_cast<const char *>(context->functions()->glGetString(GL_RENDERER)) : "";
}

void drawWithOneSample()
{
    // Scenes ask the default format how many samples they shall take.
    QSurfaceFormat format = QSurfaceFormat::defaultFormat();
    format.setSamples(0);
    QSurfaceFormat::setDefaultFormat(format);
}

void spare(QQuickWindow *window)
{
    drawWithOneSample();
    // The scene graph may be initialized anew.
    if (!window->findChild<FramePacer *>(QString(), Qt::FindDirectChildrenOnly))
        new FramePacer(window);
}

} // namespace

bool isSoftwareRenderer(std::string_view name)
{
    constexpr std::array<std::string_view, 5> known{
        "llvmpipe", "softpipe", "Software Rasterizer", "SwiftShader", "GDI Generic"};
    return std::any_of(
        known.begin(), known.end(), [name](auto part) { return name.find(part) != std::string_view::npos; });
}

void spareSoftwareRenderer(QQuickWindow *window)
{
    QObject::connect(
        window, &QQuickWindow::sceneGraphInitialized, window,
        [window] {
            // On the thread that draws.
            const QByteArray name = rendererName();
            if (isSoftwareRenderer({name.constData(), std::size_t(name.size())}))
                QMetaObject::invokeMethod(
                    window, [window] { spare(window); }, Qt::QueuedConnection);
        },
        Qt::DirectConnection);
}
