import QtQuick
import QtQuick.Templates as T
import Lumaro.Ui

// A list to be read, which the keys scroll: arrows, Page Up and Down, Home and End. It is wider than
// its parent by `inset` on either side, so that the focus has room around the rows.
//   accepted()  Enter or Return
ListView {
    id: list

    signal accepted()
    readonly property int inset: 12

    function scroll(distance: real): void {
        contentY = Math.max(originY, Math.min(contentY + distance, originY + contentHeight - height));
    }
    // Where it begins and ends is an estimate until the rows there have been laid out.
    function scrollToEdge(direction: int): void {
        scroll(direction * contentHeight);
        forceLayout();
        scroll(direction * contentHeight);
    }

    x: -inset
    width: parent ? parent.width + 2 * inset : 0
    clip: true
    activeFocusOnTab: true
    currentIndex: -1
    keyNavigationEnabled: false
    boundsBehavior: Flickable.StopAtBounds

    T.ScrollBar.vertical: ScrollBar {}

    Accessible.role: Accessible.List

    Keys.onUpPressed: scroll(-40)
    Keys.onDownPressed: scroll(40)
    Keys.onReturnPressed: accepted()
    Keys.onEnterPressed: accepted()
    Keys.onPressed: event => {
        event.accepted = true;
        switch (event.key) {
        case Qt.Key_PageUp: scroll(-height * 0.9); break;
        case Qt.Key_PageDown: scroll(height * 0.9); break;
        case Qt.Key_Home: scrollToEdge(-1); break;
        case Qt.Key_End: scrollToEdge(1); break;
        default: event.accepted = false;
        }
    }

    FocusRing {
        parent: list
        anchors.margins: 0
        visible: list.activeFocus
    }
}
