#include "app/QmlTypes.h"

#include "app/TranslateController.h"
#include "imaging/ImagePainter.h"
#include "spatial/ObjectsData.h"
#include "spatial/PointCloud.h"
#include "spatial/PointCloudColor.h"
#include "spatial/PointCloudColorGeometry.h"
#include "spatial/PointCloudGeometry.h"
#include "spatial/Tof3dData.h"
#include "streams/StereoData.h"

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
    registerType<ImagePainter>("ImagePainter");
    registerType<ObjectsData>("ObjectsData");
    registerType<Tof3dData>("Tof3dData");
    registerType<StereoData>("StereoData");
    registerType<PointCloud>("PointCloud");
    registerType<PointCloudGeometry>("PointCloudGeometry");
    registerType<PointCloudColor>("PointCloudColor");
    registerType<PointCloudColorGeometry>("PointCloudColorGeometry");
}

void registerLanguageType()
{
    qmlRegisterUncreatableType<TranslateController>(
        "Quivra.Translate", 1, 0, "Language", QStringLiteral("can not create TranslateController"));
}
