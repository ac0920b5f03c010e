import QtQuick
import QtQuick.Templates as T
import Lumaro.Ui

// A menu that pops up: arrows move, Enter and Return trigger, Escape closes. Make it in a Loader
// when it is first needed; `popup(parent, x, y)` opens it, `visible` tells. As a button's own menu
// it is opened and closed by toggleBelow(button) or toggleAbove(button).
T.Menu {
    id: control

    function fit(): void {
        let widest = 180;
        for (let i = 0; i < count; ++i)
            widest = Math.max(widest, itemAt(i).implicitWidth);
        contentWidth = Math.min(widest, 420);
    }

    function toggleBelow(button: Item): void {
        toggle(button, () => Qt.point(0, button.height + Theme.spacing));
    }

    function toggleAbove(button: Item): void {
        toggle(button, () => Qt.point((button.width - width) / 2, -height - Theme.spacing * 4));
    }

    function toggle(button: Item, place: var): void {
        if (visible) {
            close();
            return;
        }
        // The button's click closes it: a press there must not, as the click would open it again.
        closePolicy = T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent;
        fit();
        const point = place();
        popup(button, point.x, point.y);
    }

    implicitWidth: contentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    padding: 6
    margins: 8
    overlap: 2
    delegate: MenuItem {}
    onAboutToShow: {
        fit();
        before.remember(contentItem);
    }
    onClosed: before.giveBack(contentItem)
    onCountChanged: if (visible) fit()

    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.durationShort }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; to: 0; duration: Theme.durationShort }
    }

    readonly property FocusReturn before: FocusReturn {}

    contentItem: ListView {
        implicitHeight: contentHeight
        model: control.contentModel
        interactive: contentHeight > height
        clip: interactive
        currentIndex: control.currentIndex
        highlightMoveDuration: 0

        T.ScrollBar.vertical: ScrollBar {}
    }
    background: Item {
        Shadow { anchors.fill: parent; radius: Theme.radiusLarge }
        Rectangle {
            anchors.fill: parent
            radius: Theme.radiusLarge
            color: Theme.surfaceRaised
            border { width: 1; color: Theme.stroke }
        }
    }
}
