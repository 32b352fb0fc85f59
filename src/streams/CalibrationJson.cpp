#include "streams/CalibrationJson.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

template <class Numbers>
QJsonArray numbers(const Numbers &values)
{
    QJsonArray array;
    for (const double value : values)
        array.append(value);
    return array;
}

/// What both camera models begin with.
template <class Model>
QJsonObject pinhole(const Model &model)
{
    return {{"w", model.w}, {"h", model.h}, {"fx", model.fx}, {"fy", model.fy}, {"u0", model.u0},
        {"v0", model.v0}};
}

QJsonObject toJson(const qv::UnifiedCameraModel &model)
{
    QJsonObject object = pinhole(model);
    object.insert("xi", model.xi);
    return object;
}

QJsonObject toJson(const qv::PolynomialDistortionCameraModel &model)
{
    QJsonObject object = pinhole(model);
    object.insert("distor", numbers(model.distor));
    return object;
}

template <class Model>
QJsonArray models(const std::vector<Model> &list)
{
    QJsonArray array;
    for (const Model &model : list)
        array.append(toJson(model));
    return array;
}

QJsonObject toJson(const qv::Calibration &calibration)
{
    return {{"translation", numbers(calibration.translation)}, {"rotation", numbers(calibration.rotation)},
        {"ucms", models(calibration.ucm)}, {"pdcms", models(calibration.pdcm)}};
}

} // namespace

QJsonValue calibrationJsonOf(qv::Camera *camera)
{
    QJsonArray array;
    if (!camera)
        return array;
    // By value: the library may replace its list while we read.
    const std::vector<qv::Calibration> list = camera->calibration();
    for (const qv::Calibration &calibration : list)
        array.append(toJson(calibration));
    return array;
}
