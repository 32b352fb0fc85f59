#pragma once

#include <QJsonObject>
#include <map>
#include <string>

/// What a device tells of itself, sorted for the interface.
class InformationMap {
public:
    explicit InformationMap(const std::map<std::string, std::string> &entries);

    /// Entries that are text, by label; "version" under "Firmware Version".
    const QJsonObject &texts() const;
    /// Entries that are exactly "true" or "false", as bools, by label.
    const QJsonObject &features() const;

    /// The key with a blank before every capital letter.
    static QString label(const std::string &key);

private:
    QJsonObject m_texts;
    QJsonObject m_features;
};
