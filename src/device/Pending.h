#pragma once

// Stands in for the headers of models that have not landed yet. Goes away with the last of them.

#include <QJsonValue>
#include <QObject>
#include <type_traits>
#include <utility>

struct PendingModel : QObject {
    void setRecordPath(const QString &) { }
    void setRecording(bool) { }
    bool save(const QString &) { return false; }
    QJsonValue calibrationJson() const { return QJsonValue(); }
};
template <class Model>
constexpr bool Landed = !std::is_base_of_v<PendingModel, Model>;

#if __has_include("spatial/MapData.h")
#include "spatial/MapData.h"
#else
class MapData : public PendingModel { };
#endif
#if __has_include("spatial/ObjectsData.h")
#include "spatial/ObjectsData.h"
#else
class ObjectsData : public PendingModel { };
#endif
#if __has_include("spatial/PlanesData.h")
#include "spatial/PlanesData.h"
#else
class PlanesData : public PendingModel { };
#endif
#if __has_include("spatial/SlamData.h")
#include "spatial/SlamData.h"
#else
class SlamData : public PendingModel { };
#endif
#if __has_include("spatial/Tof3dData.h")
#include "spatial/Tof3dData.h"
#else
class Tof3dData : public PendingModel { };
#endif
#if __has_include("streams/ImuData.h")
#include "streams/ImuData.h"
#else
class ImuData : public PendingModel { };
#endif
#if __has_include("streams/RgbData.h")
#include "streams/RgbData.h"
#else
class RgbData : public PendingModel { };
#endif
#if __has_include("streams/RgbdData.h")
#include "streams/RgbdData.h"
#else
class RgbdData : public PendingModel { };
#endif
#if __has_include("streams/SgbmData.h")
#include "streams/SgbmData.h"
#else
class SgbmData : public PendingModel { };
#endif
#if __has_include("streams/StereoData.h")
#include "streams/StereoData.h"
#else
class StereoData : public PendingModel { };
#endif
#if __has_include("streams/TofData.h")
#include "streams/TofData.h"
#else
class TofData : public PendingModel { };
#endif
#if __has_include("streams/TofIrData.h")
#include "streams/TofIrData.h"
#else
class TofIrData : public PendingModel { };
#endif

template <class Model, class... Arguments>
Model *make(Arguments &&...arguments)
{
    if constexpr (Landed<Model>)
        return new Model(std::forward<Arguments>(arguments)...);
    else
        return nullptr;
}
