import QtQuick
import QtQuick.Templates as T
import Lumaro.Ui

// The line between two groups of a Menu.
T.MenuSeparator {
    implicitWidth: 64
    implicitHeight: 9
    padding: 4
    leftPadding: 10
    rightPadding: 10

    contentItem: Rectangle {
        implicitHeight: 1
        color: Theme.stroke
    }
}
