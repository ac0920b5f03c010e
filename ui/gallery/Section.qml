import QtQuick
import Lumaro.Ui

// A titled group of the gallery.
Column {
    property alias title: label.text

    spacing: 12

    Text {
        id: label

        color: Theme.textSecondary
        font { pixelSize: Theme.fontSmall; weight: Font.DemiBold }
    }
}
