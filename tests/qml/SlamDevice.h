#pragma once

#include "spatial/MapData.h"
#include "spatial/PlanesData.h"
#include "spatial/SlamData.h"
#include "spatial/Tof3dData.h"
#include "support/FakeSlam.h"

#include <QObject>
#include <QStringList>
#include <QVariant>
#include <memory>

/// A device with the real spatial models on fakes of their components, which the documents' tests drive.
class SlamDevice : public QObject {
    Q_OBJECT
    Q_PROPERTY(SlamData *slam READ slam NOTIFY modelsChanged)
    Q_PROPERTY(SlamData *edge READ edge NOTIFY modelsChanged)
    Q_PROPERTY(MapData *map READ map NOTIFY modelsChanged)
    Q_PROPERTY(PlanesData *planes READ planes NOTIFY modelsChanged)
    Q_PROPERTY(PlanesData *edgePlanes READ edgePlanes NOTIFY modelsChanged)
    Q_PROPERTY(Tof3dData *tof3d READ tof3d NOTIFY modelsChanged)
    Q_PROPERTY(bool loadResult READ loadResult WRITE setLoadResult)
    Q_PROPERTY(QString mapPath READ mapPath CONSTANT)

public:
    explicit SlamDevice(QObject *parent = nullptr);
    ~SlamDevice() override;

    SlamData *slam() const { return m_slam; }
    SlamData *edge() const { return m_edge; }
    MapData *map() const { return m_map; }
    PlanesData *planes() const { return m_planes; }
    PlanesData *edgePlanes() const { return nullptr; }
    Tof3dData *tof3d() const { return m_tof3d; }
    bool loadResult() const { return m_slamFake->loadResult; }
    void setLoadResult(bool result) { m_slamFake->loadResult = result; }
    QString mapPath() const;

    /// Makes `edge` null, as on a device that computes no pose itself.
    Q_INVOKABLE void dropEdge();
    /// Makes `slam` null, as when the device is pulled out.
    Q_INVOKABLE void dropSlam();
    /// A pose without rotation, on the calling thread. `source` is "slam" or "edge".
    Q_INVOKABLE void deliver(const QString &source, double x, double y, double z, double confidence = 0);
    /// A pose with a rotation, its nine numbers row by row.
    Q_INVOKABLE void deliverTurned(
        const QString &source, double x, double y, double z, const QVariantList &rotation);
    /// `count` poses along x, a centimetre apart, from `first` centimetres on.
    Q_INVOKABLE void deliverLine(const QString &source, int first, int count);
    /// Has `slam` count its poses now, as at the end of a second.
    Q_INVOKABLE void measureRate();
    Q_INVOKABLE void deliverMap(int points);
    /// A map of points as [[x, y, z], ...].
    Q_INVOKABLE void deliverPoints(const QVariantList &points);
    /// Planes as [{id, points: [[x, y, z], ...]}, ...]. `side` is "tof" or "stereo".
    Q_INVOKABLE void deliverPlanes(const QString &side, const QVariantList &planes);
    /// What the library says at the end of a save, and while it localises.
    Q_INVOKABLE void finishSave(int status, int quality);
    Q_INVOKABLE void progress(double localized);
    Q_INVOKABLE void finishLoad();
    /// The calls of the components so far, each as "slam.start"; they are then forgotten.
    Q_INVOKABLE QStringList takeCalls();
    Q_INVOKABLE void putMapFile();
    Q_INVOKABLE void removeMapFile();
    /// The bytes of a `Qt3DRender::QBuffer` as floats or as unsigned numbers.
    Q_INVOKABLE QVariantList floatsOf(QObject *buffer) const;
    Q_INVOKABLE QVariantList numbersOf(QObject *buffer) const;
    /// The text of a file, such as one of the program's own resources.
    Q_INVOKABLE QString textOf(const QString &path) const;
    /// The first descendant node of that name; a scene's nodes are no items.
    Q_INVOKABLE QObject *node(QObject *root, const QString &name) const;
    /// All descendant nodes of that class, or of that document.
    Q_INVOKABLE QVariantList nodesOf(QObject *root, const QString &type) const;

signals:
    void modelsChanged();

private:
    FakeSlam &fake(const QString &source) const;

    std::shared_ptr<CallLog> m_log = std::make_shared<CallLog>();
    std::shared_ptr<FakeSlam> m_slamFake = std::make_shared<FakeSlam>();
    std::shared_ptr<FakeSlam> m_edgeFake = std::make_shared<FakeSlam>();
    SlamData *m_slam;
    QString m_mapPath;
    SlamData *m_edge;
    MapData *m_map;
    PlanesData *m_planes;
    Tof3dData *m_tof3d;
};
