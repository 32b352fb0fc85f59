#pragma once

#include <string_view>

class QQuickWindow;

/// Whether a renderer of that name (`GL_RENDERER`) draws with the processor.
bool isSoftwareRenderer(std::string_view name);

/// Once the window has shown that no graphics card draws it, has 3D scenes drawn with one sample a pixel,
/// since several would take most of the processor's time there, and has a FramePacer keep the interface free.
/// Call before the first scene is made.
void spareSoftwareRenderer(QQuickWindow *window);
