import QtQuick
import Lumaro.Ui

// A time in words that runs: its figures have one width, so that it does not tremble. Where there
// is too little room it becomes smaller.
Item {
    id: root

    required property string text

    implicitWidth: row.implicitWidth
    implicitHeight: row.implicitHeight
    Accessible.role: Accessible.StaticText
    Accessible.name: text

    Text {
        id: figure

        visible: false
        text: "0"
        font { pixelSize: Theme.fontSmall; weight: Font.DemiBold }
    }
    Row {
        id: row

        scale: Math.max(0, Math.min(1, root.width / implicitWidth))
        transformOrigin: Item.Left

        Repeater {
            model: root.text.split("")

            Text {
                required property string modelData

                width: /[0-9]/.test(modelData) ? Math.ceil(figure.implicitWidth) : implicitWidth
                horizontalAlignment: Text.AlignHCenter
                text: modelData
                textFormat: Text.PlainText
                color: "white"
                font: figure.font
                Accessible.ignored: true
            }
        }
    }
}
