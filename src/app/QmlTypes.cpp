#include "app/QmlTypes.h"

#include "app/TranslateController.h"
#if __has_include("imaging/ImagePainter.h")
#include "imaging/ImagePainter.h"
#define LANDED_ImagePainter
#endif
#if __has_include("spatial/ObjectsData.h")
#include "spatial/ObjectsData.h"
#define LANDED_ObjectsData
#endif
#if __has_include("spatial/PointCloud.h")
#include "spatial/PointCloud.h"
#define LANDED_PointCloud
#endif
#if __has_include("spatial/PointCloudColor.h")
#include "spatial/PointCloudColor.h"
#define LANDED_PointCloudColor
#endif
#if __has_include("spatial/PointCloudColorGeometry.h")
#include "spatial/PointCloudColorGeometry.h"
#define LANDED_PointCloudColorGeometry
#endif
#if __has_include("spatial/PointCloudGeometry.h")
#include "spatial/PointCloudGeometry.h"
#define LANDED_PointCloudGeometry
#endif
#if __has_include("spatial/Tof3dData.h")
#include "spatial/Tof3dData.h"
#define LANDED_Tof3dData
#endif
#if __has_include("streams/StereoData.h")
#include "streams/StereoData.h"
#define LANDED_StereoData
#endif

#include <QtQml>

namespace {

template <class Type>
void registerType(const char *name)
{
    qmlRegisterType<Type>(name, 1, 0, name);
}

} // namespace

void registerQmlTypes()
{
#ifdef LANDED_ImagePainter
    registerType<ImagePainter>("ImagePainter");
#endif
#ifdef LANDED_ObjectsData
    registerType<ObjectsData>("ObjectsData");
#endif
#ifdef LANDED_Tof3dData
    registerType<Tof3dData>("Tof3dData");
#endif
#ifdef LANDED_StereoData
    registerType<StereoData>("StereoData");
#endif
#ifdef LANDED_PointCloud
    registerType<PointCloud>("PointCloud");
#endif
#ifdef LANDED_PointCloudGeometry
    registerType<PointCloudGeometry>("PointCloudGeometry");
#endif
#ifdef LANDED_PointCloudColor
    registerType<PointCloudColor>("PointCloudColor");
#endif
#ifdef LANDED_PointCloudColorGeometry
    registerType<PointCloudColorGeometry>("PointCloudColorGeometry");
#endif
}

void registerLanguageType()
{
    qmlRegisterUncreatableType<TranslateController>(
        "Quivra.Translate", 1, 0, "Language", QStringLiteral("can not create TranslateController"));
}
