import QtQuick
import Lumaro.Ui

// The heading of a group of rows in a list.
Text {
    required property string section

    leftPadding: Theme.spacing * 3
    topPadding: Theme.spacing * 3
    bottomPadding: Theme.spacing
    text: section
    textFormat: Text.PlainText
    color: Theme.textSecondary
    font { pixelSize: Theme.fontSmall; weight: Font.DemiBold }
    Accessible.role: Accessible.Heading
    Accessible.name: text
}
