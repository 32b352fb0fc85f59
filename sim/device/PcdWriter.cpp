#include "device/PcdWriter.h"

#include <algorithm>
#include <fstream>

namespace sim {

namespace {

void writeHeader(std::ostream &out, std::size_t count, bool binary)
{
    out << "# .PCD v0.7 - Point Cloud Data file format\n"
        << "VERSION 0.7\nFIELDS x y z\nSIZE 4 4 4\nTYPE F F F\nCOUNT 1 1 1\n"
        << "WIDTH " << count << "\nHEIGHT 1\nVIEWPOINT 0 0 0 1 0 0 0\n"
        << "POINTS " << count << "\nDATA " << (binary ? "binary" : "ascii") << '\n';
}

} // namespace

bool writePcd(const std::string &path, const qv::PointCloud &cloud, int precision, bool binary)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    writeHeader(out, cloud.points.size(), binary);
    if (binary) {
        static_assert(sizeof cloud.points[0] == 12);
        out.write(reinterpret_cast<const char *>(cloud.points.data()),
            static_cast<std::streamsize>(cloud.points.size() * sizeof cloud.points[0]));
    } else {
        out.precision(std::clamp(precision, 1, 17));
        for (const auto &[x, y, z] : cloud.points)
            out << x << ' ' << y << ' ' << z << '\n';
    }
    out.close();
    return !out.fail();
}

} // namespace sim
