#include "app/QmlTypes.h"

#include <QQmlComponent>
#include <QQmlEngine>

class CreatableType : public testing::TestWithParam<const char *> { };

TEST_P(CreatableType, canBeMadeByADocument)
{
    registerQmlTypes();
    QQmlEngine engine;
    QQmlComponent component(&engine);
    const QByteArray name = GetParam();
    component.setData("import " + name + " 1.0\n" + name + " { }", QUrl());
    const std::unique_ptr<QObject> object(component.create());
    ASSERT_TRUE(object) << component.errorString().toStdString();
    EXPECT_EQ(QByteArray(object->metaObject()->className()), name);
}

INSTANTIATE_TEST_SUITE_P(QmlTypes, CreatableType,
    testing::Values("ImagePainter", "ObjectsData", "Tof3dData", "StereoData", "PointCloud",
        "PointCloudGeometry", "PointCloudColor", "PointCloudColorGeometry"));

TEST(QmlTypes, deviceIsNoType)
{
    registerQmlTypes();
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData("import CameraDevice 1.0\nCameraDevice { }", QUrl());
    EXPECT_TRUE(component.isError());
}
