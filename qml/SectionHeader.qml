import QtQuick 2.13

// Head of a section: a CustomLabel that takes the width left by what stands at its right.
Item {
    id: header

    default property alias items: grid.data
    readonly property Item label: grid.children.length > 0 ? grid.children[0] : null
    readonly property Item extra: grid.children.length > 1 ? grid.children[1] : null

    width: parent ? parent.width : 0
    height: 36

    Rectangle {
        width: parent.width
        height: 1
        color: "#3E4D59"
    }

    Grid {
        id: grid

        anchors.verticalCenter: parent.verticalCenter
        width: parent.width
        columns: 2
        leftPadding: 5
        rightPadding: 10
        verticalItemAlignment: Grid.AlignVCenter
    }

    Binding {
        target: header.label
        property: "width"
        value: header.width - grid.leftPadding - grid.rightPadding - (header.extra ? header.extra.width : 0)
    }
}
