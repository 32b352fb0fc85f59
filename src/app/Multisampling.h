#pragma once

#include <string_view>

class QQuickWindow;

/// Whether a renderer of that name (`GL_RENDERER`) draws with the processor.
bool isSoftwareRenderer(std::string_view name);

/// Has 3D scenes drawn with one sample a pixel, once the window has shown that no graphics card draws it:
/// several samples would take most of the processor's time there. Call before the first scene is made.
void spareSoftwareRenderer(QQuickWindow *window);
