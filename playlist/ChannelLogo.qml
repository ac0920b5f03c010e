import QtQuick
import Lumaro.Ui

// A channel's logo on a tile of one size; its initial stands in until there is one.
//   address  of the logo; empty for none
//   initial  the letter that stands in
Rectangle {
    id: root

    property string address
    property string initial

    implicitWidth: 40
    implicitHeight: 40
    radius: Theme.radiusSmall
    // Logos are drawn for light and for dark grounds alike; a middle grey carries both.
    color: logo.status === Image.Ready ? "#3a3d46" : Theme.fillHover

    Text {
        anchors.centerIn: parent
        visible: logo.status !== Image.Ready
        text: root.initial
        textFormat: Text.PlainText
        color: Theme.textSecondary
        font { pixelSize: Theme.fontTitle; weight: Font.DemiBold }
    }
    Icon {
        anchors.centerIn: parent
        visible: logo.status !== Image.Ready && root.initial === ""
        name: "tv"
        size: 20
        color: Theme.textSecondary
    }
    Image {
        id: logo

        anchors { fill: parent; margins: 4 }
        source: root.address
        asynchronous: true
        // Decoded no larger than it is shown on a screen of twice the density.
        sourceSize { width: 64; height: 64 }
        fillMode: Image.PreserveAspectFit
        mipmap: true
    }
}
