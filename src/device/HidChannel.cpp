#include "device/HidChannel.h"

#include "device/qv/Device.h"

#include <QDebug>
#include <optional>

namespace {

using Report = std::vector<unsigned char>;

constexpr int ReportLength = 63;
constexpr int DigitsPerByte = 2;
constexpr int HeaderLength = 4;
const char *const GlassLogCommand = "02fe5504";

std::optional<Report> parse(const QString &digits)
{
    Report report(ReportLength, 0);
    if ((digits.size() + DigitsPerByte - 1) / DigitsPerByte > ReportLength) {
        qDebug() << "This command is too long!";
        return std::nullopt;
    }
    for (int begin = 0; begin < digits.size(); begin += DigitsPerByte) {
        bool ok = false;
        const int value = digits.midRef(begin, DigitsPerByte).toInt(&ok, 16);
        if (!ok) {
            qDebug() << "Parsing failed, Please send command correctly!";
            return std::nullopt;
        }
        report[static_cast<std::size_t>(begin / DigitsPerByte)] = static_cast<unsigned char>(value & 0xFF);
    }
    return report;
}

std::optional<Report> exchange(qv::Device &device, const QString &digits)
{
    const std::optional<Report> command = parse(digits);
    if (!command)
        return std::nullopt;
    Report reply(ReportLength, 0);
    if (!device.hidWriteAndRead(*command, reply)) {
        qDebug() << "hidWriteAndRead fail!";
        return std::nullopt;
    }
    return reply;
}

bool missing(const qv::Device *device)
{
    if (!device)
        qDebug() << "m_device is null!";
    return !device;
}

} // namespace

QString HidChannel::send(qv::Device *device, QString command)
{
    if (missing(device))
        return QString();
    const std::optional<Report> reply = exchange(*device, command.remove(QLatin1Char(' ')));
    if (!reply)
        return QString();
    QString text;
    for (const unsigned char byte : *reply)
        text += QStringLiteral("%1 ").arg(byte, DigitsPerByte, 16, QLatin1Char('0'));
    return text;
}

QString HidChannel::glassLog(qv::Device *device)
{
    if (missing(device))
        return QString();
    const std::optional<Report> reply = exchange(*device, QLatin1String(GlassLogCommand));
    if (!reply || reply->size() < HeaderLength + 2)
        return QString();
    if ((*reply)[HeaderLength] == 0 || (*reply)[HeaderLength + 1] == 0)
        return QString();
    return QString::fromLatin1(reinterpret_cast<const char *>(reply->data()) + HeaderLength,
        static_cast<int>(reply->size()) - HeaderLength);
}
