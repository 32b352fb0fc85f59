#pragma once

#include <QDir>

/// Makes the folder for a capture of this moment: named after the time, to the second, below "capture" in the
/// working directory, or below "qvsdk-viewer" in the user's pictures where that can't be made. Where neither
/// can, the answer names the nearest folder there is and the streams report what they can't write.
QDir makeCaptureFolder();
