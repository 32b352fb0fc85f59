import QtQuick 2.13

Item {
    objectName: "emptyPage"
}
