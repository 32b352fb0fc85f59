#pragma once

#include <QByteArray>
#include <QString>
#include <sys/mount.h>

/// A file system with room for less than one picture, where the machine lets us mount one.
class SmallDisk {
public:
    explicit SmallDisk(const QString &path)
        : m_path(path.toLocal8Bit())
        , m_isMounted(mount("tmpfs", m_path.constData(), "tmpfs", 0, "size=64k") == 0)
    {
    }
    SmallDisk(const SmallDisk &) = delete;
    SmallDisk &operator=(const SmallDisk &) = delete;
    ~SmallDisk()
    {
        if (m_isMounted)
            umount2(m_path.constData(), MNT_DETACH);
    }
    bool isMounted() const { return m_isMounted; }

private:
    const QByteArray m_path;
    const bool m_isMounted;
};
