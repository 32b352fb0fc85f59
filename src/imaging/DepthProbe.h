#pragma once

#include <QObject>

/// A depth stream that reads one pixel of every frame on request. The painter asks the streams that it is
/// given for it, so that it can write the depth of a detected object beside its box.
/// Called on the painter's thread while frames arrive on another.
class DepthProbe {
public:
    virtual ~DepthProbe() = default;

    /// The stream is delivering frames.
    virtual bool isRunning() const = 0;
    /// Column and row of the pixel to read, in frame pixels.
    virtual void setObjectX(int x) = 0;
    virtual void setObjectY(int y) = 0;
    /// Depth at that pixel as of the last frame, in millimetres.
    virtual int objectDepth() const = 0;
};

Q_DECLARE_INTERFACE(DepthProbe, "com.quivra.viewer.DepthProbe/1.0")
