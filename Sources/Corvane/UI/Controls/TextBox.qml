import Corvane.Controls
import QtQuick
import QtQuick.Templates as T

/// Several lines of input: as high as its text up to `maximumLines`, then it scrolls. `label` stands above it and
/// names it aloud; without one the placeholder does.
FocusScope {
    id: box

    property alias text: area.text
    property alias placeholderText: area.placeholderText
    property alias readOnly: area.readOnly
    property alias cursorPosition: area.cursorPosition
    property string label
    property int minimumLines: 1
    property int maximumLines: 8
    readonly property bool editing: area.activeFocus
    readonly property int captionHeight: label ? caption.height + Theme.tight : 0

    property bool returnSubmits: false ///< not only Ctrl+Return; Shift+Return inserts a line break then

    property bool pasteFiles: false ///< pasting files and pictures emits `filesPasted` and inserts no text

    signal submitted
    signal filesPasted

    function moveToEnd() {
        area.cursorPosition = area.length;
    }

    function copyAll() {
        area.selectAll();
        area.copy();
    }

    implicitWidth: 240
    implicitHeight: captionHeight + Math.max(Theme.control, area.topPadding + area.bottomPadding + Math.ceil(
        Math.min(Math.max(area.contentHeight, metrics.lineSpacing * minimumLines), metrics.lineSpacing * maximumLines)))

    FontMetrics {
        id: metrics
        font: area.font
    }
    Label {
        id: caption
        visible: box.label !== ""
        text: box.label
        font.pixelSize: Theme.meta
        color: Theme.soft
        Accessible.ignored: true
    }
    Rectangle {
        anchors.fill: parent
        anchors.topMargin: box.captionHeight
        radius: Theme.controlRadius
        color: Theme.raised
        border.width: 1
        border.color: area.hovered ? Theme.faint : Theme.line
        FocusRing { control: area; anchors.margins: -1; radius: Theme.controlRadius + 1; shown: area.activeFocus }
    }
    Flickable {
        id: view
        anchors.fill: parent
        anchors.topMargin: box.captionHeight
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        contentWidth: width
        contentHeight: area.height
        T.ScrollBar.vertical: ScrollBar {}

        function show(place: rect) {
            if (place.y < contentY + area.topPadding)
                contentY = Math.max(0, place.y - area.topPadding);
            else if (place.y + place.height > contentY + height - area.bottomPadding)
                contentY = place.y + place.height - height + area.bottomPadding;
        }

        T.TextArea {
            id: area
            objectName: box.objectName ? box.objectName + ".text" : ""
            width: view.width
            height: Math.max(view.height, contentHeight + topPadding + bottomPadding)
            focus: true
            leftPadding: Theme.medium
            rightPadding: Theme.medium
            topPadding: Theme.small
            bottomPadding: Theme.small
            color: Theme.text
            font.pixelSize: Theme.body
            selectionColor: Theme.accent
            selectedTextColor: Theme.accentInk
            selectByMouse: true
            textFormat: TextEdit.PlainText
            wrapMode: TextEdit.Wrap
            Accessible.name: box.label || placeholderText
            onCursorRectangleChanged: view.show(cursorRectangle)
            Keys.onPressed: event => {
                const enter = event.key === Qt.Key_Return || event.key === Qt.Key_Enter;
                const plain = (event.modifiers & ~Qt.KeypadModifier) === Qt.NoModifier;
                if (enter && (event.modifiers & Qt.ControlModifier || plain && box.returnSubmits)) {
                    event.accepted = true;
                    box.submitted();
                } else if (box.pasteFiles && event.matches(StandardKey.Paste) && WindowTools.clipboardHoldsFiles()) {
                    event.accepted = true;
                    box.filesPasted();
                } else if (event.key === Qt.Key_Tab || event.key === Qt.Key_Backtab) {
                    event.accepted = true;
                    nextItemInFocusChain(event.key === Qt.Key_Tab).forceActiveFocus(Qt.TabFocusReason);
                }
            }
            PlaceholderLabel {
                leftPadding: area.leftPadding
                rightPadding: area.rightPadding
                topPadding: area.topPadding
                bottomPadding: area.bottomPadding
                text: area.placeholderText
                shown: !area.length && !area.preeditText
            }
        }
    }
}
