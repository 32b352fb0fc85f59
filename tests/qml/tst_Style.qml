import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Controls.Material 2.13
import QtTest 1.13

// The look that the resources choose, and that it is the one in which the controls appear.
Item {
    width: 100
    height: 100

    StrictCase {
        name: "Style"

        function test_theResourcesChooseTheLook() {
            compare(stored.entries(":/qtquickcontrols2.conf"), {
                "Controls/Style": "Material",
                "Material/Theme": "Dark",
                "Material/Accent": "#02cece",
                "Material/Primary": "#2e4463"
            })
        }

        function test_theWindowHasTheLook() {
            documents.replace("qrc:/main.qml", Qt.resolvedUrl("stubs/EmptyPage.qml"))
            var component = Qt.createComponent("qrc:/start.qml")
            compare(component.errorString(), "")
            var start = createTemporaryObject(component, null)
            verify(start)
            compare(start.Material.theme, Material.Dark)
            compare(start.Material.accent, "#02cece")
            compare(start.Material.primary, "#2e4463")
            // Only the controls of that style take its ground.
            compare(start.color, start.Material.background)
            documents.restore("qrc:/main.qml")
        }
    }
}
