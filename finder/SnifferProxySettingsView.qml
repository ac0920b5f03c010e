pragma ComponentBehavior: Bound

import QtQuick
import Lumaro.Finder
import Lumaro.Ui

// The proxy's settings.
Item {
    id: root

    required property SnifferProxySettingsModel settings
    readonly property SnifferProxyManager manager: settings.manager

    implicitHeight: column.implicitHeight

    component Label: Text {
        textFormat: Text.PlainText
        elide: Text.ElideRight
        color: Theme.textSecondary
        font { pixelSize: Theme.fontSmall; weight: Font.Medium }
    }

    Column {
        id: column

        width: parent.width
        spacing: Theme.spacing * 2

        Text {
            width: parent.width
            bottomPadding: Theme.spacing * 2
            text: root.settings.title
            textFormat: Text.PlainText
            elide: Text.ElideRight
            color: Theme.text
            font { pixelSize: Theme.fontTitle; weight: Font.DemiBold }
        }
        Switch {
            width: parent.width
            text: root.settings.switchText
            isOn: root.manager.isEnabled
            onSwitched: root.settings.setEnabled(!isOn)
        }
        Text {
            width: parent.width
            bottomPadding: Theme.spacing * 2
            text: root.settings.explanation
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            lineHeight: 1.3
            color: Theme.textSecondary
            font.pixelSize: Theme.fontSmall
        }
        SegmentedControl {
            width: parent.width
            model: root.settings.proxyTypes.map(label => ({ "text": label }))
            currentIndex: root.manager.proxyType
            name: qsTr("Proxy Type")
            onActivated: index => root.settings.chooseType(index)
        }

        Label { width: parent.width; topPadding: Theme.spacing * 2; text: root.settings.hostLabel }
        Row {
            width: parent.width
            spacing: Theme.spacing * 2

            TextField {
                width: parent.width - port.width - parent.spacing
                placeholderText: root.settings.hostPlaceholder
                text: root.manager.host
                onTextEdited: root.manager.host = text
                onCleared: root.manager.host = ""
                onEditingFinished: root.settings.confirm()
                Accessible.name: root.settings.hostLabel
            }
            TextField {
                id: port

                width: 96
                clearable: false
                placeholderText: qsTr("Port")
                text: root.manager.portString
                onTextEdited: root.manager.portString = text
                onEditingFinished: root.settings.confirm()
                Accessible.name: qsTr("Port")
            }
        }
        Flow {
            width: parent.width
            spacing: Theme.spacing

            Repeater {
                model: root.settings.presets

                Button {
                    required property int index
                    required property string modelData

                    text: modelData
                    onClicked: root.settings.applyPreset(index)
                }
            }
        }

        Label { width: parent.width; topPadding: Theme.spacing * 2; text: root.settings.authenticationLabel }
        Row {
            width: parent.width
            spacing: Theme.spacing * 2

            TextField {
                width: (parent.width - parent.spacing) / 2
                placeholderText: root.settings.usernamePlaceholder
                text: root.manager.username
                onTextEdited: root.manager.username = text
                onCleared: root.manager.username = ""
                onEditingFinished: root.settings.confirm()
                Accessible.name: root.settings.usernamePlaceholder
            }
            TextField {
                width: (parent.width - parent.spacing) / 2
                echoMode: TextInput.Password
                placeholderText: root.settings.passwordPlaceholder
                text: root.manager.password
                onTextEdited: root.manager.password = text
                onCleared: root.manager.password = ""
                onEditingFinished: root.settings.confirm()
                Accessible.name: root.settings.passwordPlaceholder
            }
        }
    }
}
