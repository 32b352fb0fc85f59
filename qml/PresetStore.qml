import QtQuick 2.13
import Qt.labs.settings 1.1

// The presets of the control panel in the settings store: the fixed defaults and ten slots, each in a category of its
// own. A slot is dense text: what is off is stored as the empty string, so that it is false again when read back.
QtObject {
    id: store

    /// What a preset holds, in the order in which it is applied, with what a slot without the key counts as.
    readonly property var table: [
        { key: "imuMode", fallback: 1 },
        { key: "stereoUVCmode", fallback: 4 },
        { key: "bSlamPlaneSources", fallback: true },
        { key: "iSlamPlanesSource", fallback: 0 },
        { key: "tofShowdepth", fallback: false },
        { key: "tofAvgPX", fallback: false },
        { key: "tofColorize", fallback: 0 },
        { key: "tofMaximaldistance", fallback: 1.0 },
        { key: "tofMinimumdistance", fallback: 0.1 },
        { key: "tofFramerate", fallback: 15 },
        { key: "tofDistanceMode", fallback: 1 },
        { key: "tofFrequency", fallback: 0 },
        { key: "tofResolution", fallback: 0 },
        { key: "tofFps", fallback: 5 },
        { key: "tofSonyTofMode", fallback: 0 },
        { key: "rgbResolution", fallback: 0 },
        { key: "rgbFramerate", fallback: 30 },
        { key: "sgbmDewarp", fallback: true },
        { key: "sgbmAvgPX", fallback: false },
        { key: "sgbmDepth", fallback: true },
        { key: "sgbmFillholes", fallback: true },
        { key: "sgbmShowdepth", fallback: false },
        { key: "sgbmResolution", fallback: 0 },
        { key: "sgbmZoom", fallback: 100 },
        { key: "sgbmbaseline", fallback: 80 },
        { key: "sgbmFOV", fallback: 96 },
        { key: "sgbmConfidence", fallback: 230 },
        { key: "sgbmMode", fallback: 0 },
        { key: "sgbmMaxDistance", fallback: 8000 },
        { key: "sgbmMinDistance", fallback: 100 },
        { key: "sgbmHolesize", fallback: 0 },
        { key: "sgbmHolemin", fallback: 500 },
        { key: "sgbmHolemax", fallback: 10000 },
        { key: "sgbmAvgPXWidth", fallback: 50 },
        { key: "sgbmAvgPXHeight", fallback: 50 },
        { key: "menuAutoClose", fallback: true },
        { key: "multiSlamShow", fallback: true }
    ]

    /// Fixed values of the preset "Default". Only an edit of the settings store changes them.
    readonly property Settings defaultSettings: Settings {
        category: "defaultSettings"

        property int imuMode: 1
        property int stereoUVCmode: 4
        property bool bSlamPlaneSources: true
        property int iSlamPlanesSource: 0
        property bool tofShowdepth: false
        property bool tofAvgPX: false
        property int tofColorize: 0
        property real tofMaximaldistance: 1.0
        property real tofMinimumdistance: 0.1
        property int tofFramerate: 15
        property int tofDistanceMode: 1
        property int tofFrequency: 0
        property int tofResolution: 0
        property int tofFps: 5
        property int tofSonyTofMode: 0
        property int rgbResolution: 0
        property int rgbFramerate: 30
        property bool sgbmDewarp: true
        property bool sgbmAvgPX: false
        property bool sgbmDepth: true
        property bool sgbmFillholes: true
        property bool sgbmShowdepth: false
        property int sgbmResolution: 0
        property int sgbmZoom: 100
        property int sgbmbaseline: 80
        property int sgbmFOV: 96
        property int sgbmConfidence: 230
        property int sgbmMode: 0
        property int sgbmMaxDistance: 8000
        property int sgbmMinDistance: 100
        property int sgbmHolesize: 0
        property int sgbmHolemin: 500
        property int sgbmHolemax: 10000
        property int sgbmAvgPXWidth: 50
        property int sgbmAvgPXHeight: 50
        property bool menuAutoClose: true
        property bool multiSlamShow: true
    }

    property list<Settings> saveSettings: [
        Settings { category: "preferSettings1" },
        Settings { category: "preferSettings2" },
        Settings { category: "preferSettings3" },
        Settings { category: "preferSettings4" },
        Settings { category: "preferSettings5" },
        Settings { category: "preferSettings6" },
        Settings { category: "preferSettings7" },
        Settings { category: "preferSettings8" },
        Settings { category: "preferSettings9" },
        Settings { category: "preferSettings10" }
    ]

    /// The values of the preset "Default", in the order of the table.
    function defaults() {
        return table.map(function(row) { return defaultSettings[row.key] })
    }

    /// The values of a slot, in the order of the table. `fallbacks` holds what differs from the table's own.
    function values(slot, fallbacks) {
        const settings = saveSettings[slot]
        return table.map(function(row) {
            return settings.value(row.key, row.key in fallbacks ? fallbacks[row.key] : row.fallback)
        })
    }

    function write(slot, name, values) {
        const settings = saveSettings[slot]
        settings.setValue("isAdd", 1)
        settings.setValue("name", name)
        table.forEach(function(row, i) {
            const value = values[i]
            settings.setValue(row.key, typeof value === "boolean" ? (value ? "true" : "") : value)
        })
    }

    function copy(to, from) {
        write(to, saveSettings[from].value("name", "Not Set"), values(from, {}))
        saveSettings[to].setValue("isAdd", saveSettings[from].value("isAdd", 0))
    }

    function release(slot) {
        saveSettings[slot].setValue("isAdd", 0)
    }

    /// The names of the slots in use; slots are kept dense, so the nth name belongs to slot n.
    function names() {
        const result = []
        for (let i = 0; i < saveSettings.length; ++i) {
            const name = saveSettings[i].value("name")
            // Stored numbers come back as texts.
            if (saveSettings[i].value("isAdd", 0) == 1)
                result.push(name === undefined ? "Not Set" : String(name))
        }
        return result
    }
}
