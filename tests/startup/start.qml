import QtQml 2.13
import Quivra.Translate 1.0

// Stands in for the program's first document: says what it sees of its context, and when it goes.
QtObject {
    property string versions: version + " " + qv_sdk_version
    property bool isAdvanced: advanced
    property int cameraCount: listener.cameras.length
    property string fileName: tools.filename("file:///a/b")
    property int french: Language.French

    Component.onCompleted: console.debug("document made")
    Component.onDestruction: console.debug("document gone")
}
