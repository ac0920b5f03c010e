pragma Singleton

import QtQuick
import QtQuick.Templates as T
import Lumaro.Ui

// The one tool tip that all controls share: made when it is first needed, shown after the pointer
// or the keyboard's focus rested on a control for Theme.toolTipDelay.
QtObject {
    id: root

    property Item target: null
    property string text
    property string shortcutText
    property T.ToolTip tip: null
    property Component tipComponent: null

    property Timer delay: Timer {
        interval: Theme.toolTipDelay
        onTriggered: root.open()
    }

    function show(control: Item, name: string, keys: string): void {
        if (name === "")
            return;
        target = control;
        text = name;
        shortcutText = keys;
        delay.restart();
    }

    function hide(control: Item): void {
        if (target !== control)
            return;
        delay.stop();
        target = null;
        if (tip)
            tip.close();
    }

    // The control's text changed, maybe while its tip is open.
    function update(control: Item, name: string, keys: string): void {
        if (target !== control)
            return;
        text = name;
        shortcutText = keys;
    }

    function open(): void {
        if (!target || !target.visible)
            return;
        if (tip)
            tip.destroy();
        if (!tipComponent)
            tipComponent = Qt.createComponent("ToolTip.qml");
        tip = tipComponent.createObject(target, {
            "text": Qt.binding(() => root.text),
            "shortcutText": Qt.binding(() => root.shortcutText)
        }) as T.ToolTip;
        const above = target.mapToItem(null, 0, 0).y > tip.implicitHeight + 16;
        tip.x = Qt.binding(() => Math.round(((tip.parent ? tip.parent.width : 0) - tip.implicitWidth) / 2));
        tip.y = above ? -tip.implicitHeight - 8 : target.height + 8;
        tip.open();
    }
}
