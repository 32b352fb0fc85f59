#include "device/InformationMap.h"

#include <QRegularExpression>

InformationMap::InformationMap(const std::map<std::string, std::string> &entries)
{
    for (const auto &[key, value] : entries) {
        const QString name = label(key);
        if (value == "true" || value == "false")
            m_features[name] = value == "true";
        else if (name == QLatin1String("version"))
            m_texts[QStringLiteral("Firmware Version")] = QString::fromStdString(value);
        else
            m_texts[name] = QString::fromStdString(value);
    }
}

const QJsonObject &InformationMap::texts() const
{
    return m_texts;
}

const QJsonObject &InformationMap::features() const
{
    return m_features;
}

QString InformationMap::label(const std::string &key)
{
    static const QRegularExpression capital(QStringLiteral("([A-Z])"));
    return QString::fromStdString(key).replace(capital, QStringLiteral(" \\1"));
}
