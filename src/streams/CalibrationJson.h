#pragma once

#include "device/qv/Camera.h"

#include <QJsonValue>

/// A camera's calibration records as the dialogs read them: an array with one object a record, of
/// "translation" (3 numbers), "rotation" (9 numbers, row-major), "ucms" and "pdcms". Empty for a null camera.
QJsonValue calibrationJsonOf(qv::Camera *camera);
