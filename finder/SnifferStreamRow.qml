import QtQuick
import Lumaro.Ui

// One detected stream and what can be done with it.
Item {
    id: root

    required property int index
    required property string name
    required property string address
    required property string typeText
    required property string time
    required property bool isSaved
    required property string saveHelp
    required property string jobText
    required property real jobProgress
    required property bool jobIsActive
    required property bool jobHasFailed
    required property bool canReveal
    property bool isCurrent: false
    signal played()
    signal downloaded()
    signal stopped()
    signal revealed()
    signal saved()
    signal copied()

    implicitHeight: Theme.roomFor(60, 2)

    Accessible.role: Accessible.ListItem
    Accessible.name: name
    Accessible.description: [typeText, address, jobText].filter(t => t !== "").join(", ")

    HoverHandler { id: hover }
    TapHandler { onDoubleTapped: root.played() }

    Rectangle {
        anchors { fill: parent; leftMargin: Theme.spacing * 2; rightMargin: Theme.spacing * 2 }
        radius: Theme.radius
        color: root.isCurrent ? Theme.accentSoft : hover.hovered ? Theme.fillHover : "transparent"
    }
    Rectangle {
        id: badge

        anchors { left: parent.left; leftMargin: Theme.spacing * 4; verticalCenter: parent.verticalCenter }
        width: 60
        height: Theme.roomFor(22, 1)
        radius: Theme.radiusSmall
        color: Theme.accentSoft

        Text {
            anchors.centerIn: parent
            text: root.typeText
            textFormat: Text.PlainText
            color: Theme.accentText
            font { pixelSize: Theme.fontSmall; weight: Font.DemiBold }
        }
    }
    Column {
        anchors {
            left: badge.right; right: actions.left; verticalCenter: parent.verticalCenter
            leftMargin: Theme.spacing * 3; rightMargin: Theme.spacing * 3
        }
        spacing: 2

        Item {
            width: parent.width
            height: nameText.implicitHeight

            Text {
                id: nameText

                width: Math.min(implicitWidth, parent.width - timeText.width - 8)
                text: root.name
                textFormat: Text.PlainText
                elide: Text.ElideMiddle
                maximumLineCount: 1
                color: Theme.text
                font { pixelSize: Theme.fontBody; weight: Font.Medium }
            }
            Text {
                id: timeText

                anchors { left: nameText.right; leftMargin: 8; baseline: nameText.baseline }
                text: root.time
                textFormat: Text.PlainText
                color: Theme.textSecondary
                font.pixelSize: Theme.fontSmall
            }
        }
        Text {
            width: parent.width
            text: root.jobText === "" ? root.address : root.jobText
            textFormat: Text.PlainText
            elide: Text.ElideMiddle
            maximumLineCount: 1
            color: root.jobHasFailed ? Theme.danger : Theme.textSecondary
            font.pixelSize: Theme.fontSmall
        }
        Rectangle {
            width: parent.width
            height: 3
            radius: 1.5
            visible: root.jobIsActive && root.jobProgress >= 0
            color: Theme.fillPressed
            Accessible.role: Accessible.ProgressBar
            Accessible.name: root.jobText

            Rectangle {
                width: parent.width * Math.max(0, root.jobProgress)
                height: parent.height
                radius: parent.radius
                color: Theme.accent
            }
        }
    }
    Row {
        id: actions

        anchors { right: parent.right; rightMargin: Theme.spacing * 4; verticalCenter: parent.verticalCenter }

        IconButton { iconName: "play"; text: qsTr("Play in Player"); onClicked: root.played() }
        IconButton {
            iconName: root.jobIsActive ? "stop" : "download"
            text: root.jobIsActive ? qsTr("Stop and Keep the File") : qsTr("Download")
            onClicked: root.jobIsActive ? root.stopped() : root.downloaded()
        }
        IconButton {
            visible: root.canReveal
            iconName: "open"
            text: qsTr("Show in Folder")
            onClicked: root.revealed()
        }
        IconButton {
            iconName: root.isSaved ? "check" : "library"
            checked: root.isSaved
            text: root.saveHelp
            onClicked: root.saved()
        }
        IconButton { iconName: "copy"; text: qsTr("Copy Address"); onClicked: root.copied() }
    }
}
