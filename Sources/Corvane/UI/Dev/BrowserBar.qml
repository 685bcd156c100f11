import QtQuick
import QtQml
import QtQuick.Layouts
import Corvane.Controls
import Corvane.Dev

/// One row of controls, with the progress of loading below.
FocusScope {
    id: bar

    required property BrowserView screen
    property bool listed

    signal listToggled
    signal findRequested
    signal opened

    function takeFocus() {
        field.forceActiveFocus(Qt.TabFocusReason);
        field.selectAll();
    }

    implicitHeight: 44
    Accessible.role: Accessible.ToolBar
    Accessible.name: qsTr("Browser")

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.small
        anchors.rightMargin: Theme.small
        spacing: Theme.tight

        IconButton {
            objectName: "browser.back"
            icon.name: "go-previous"
            text: qsTr("Back")
            key: Commands.keysOf("browserBack")
            enabled: bar.screen.browser.canGoBack
            onClicked: bar.screen.browser.back()
        }
        IconButton {
            objectName: "browser.forward"
            icon.name: "go-next"
            text: qsTr("Forward")
            key: Commands.keysOf("browserForward")
            enabled: bar.screen.browser.canGoForward
            onClicked: bar.screen.browser.forward()
        }
        IconButton {
            readonly property bool stops: bar.screen.browser.isLoading
            objectName: "browser.reload"
            icon.name: stops ? "window-close" : "view-refresh"
            text: stops ? qsTr("Stop") : qsTr("Reload")
            key: stops ? "" : Commands.keysOf("browserReload")
            enabled: bar.screen.browser.isRunning
            onClicked: stops ? bar.screen.browser.stop() : bar.screen.browser.reload()
        }
        TextField {
            id: field
            objectName: "browser.address"
            Layout.fillWidth: true
            Layout.minimumWidth: 140
            focus: true
            placeholderText: bar.screen.addressHint
            Accessible.name: qsTr("Address")
            onTextEdited: bar.screen.address = text
            onAccepted: {
                bar.screen.open();
                bar.opened();
            }
            Keys.onEscapePressed: event => {
                event.accepted = text !== bar.screen.address;
                text = bar.screen.address;
            }

            Binding { target: field; property: "text"; value: bar.screen.address }
        }
        Button {
            objectName: "browser.issues"
            kind: bar.listed ? "plain" : "quiet"
            icon.name: bar.screen.issues.count > 0 ? "dialog-warning" : ""
            text: bar.screen.issues.text
            hint: qsTr("Console problems, failed requests and earlier checks")
            onClicked: bar.listToggled()
        }
        IconButton {
            objectName: "browser.menu"
            icon.name: "overflow-menu"
            text: qsTr("More")
            onClicked: menu.popup(this, 0, height + Theme.tight)

            Menu {
                id: menu
                Instantiator {
                    model: bar.screen.display.devices
                    delegate: MenuItem {
                        required property choice modelData
                        objectName: "browser.device:" + modelData.id
                        checkable: true
                        checked: bar.screen.display.device === modelData.id
                        text: modelData.label
                        onTriggered: {
                            checked = Qt.binding(() => bar.screen.display.device === modelData.id);
                            bar.screen.display.device = modelData.id;
                        }
                    }
                    onObjectAdded: (index, object) => menu.insertItem(index, object)
                    onObjectRemoved: (index, object) => menu.removeItem(object)
                }
                MenuSeparator {}
                MenuItem {
                    text: qsTr("Larger (%1)").arg(bar.screen.display.zoomText)
                    onTriggered: bar.screen.display.zoom(1)
                }
                MenuItem {
                    text: qsTr("Smaller")
                    onTriggered: bar.screen.display.zoom(-1)
                }
                MenuItem {
                    text: qsTr("Default size")
                    onTriggered: bar.screen.display.zoom(0)
                }
                MenuItem {
                    text: qsTr("Find on the page…")
                    key: Commands.keysOf("browserFind")
                    onTriggered: bar.findRequested()
                }
                MenuSeparator {}
                MenuItem {
                    objectName: "browser.capture"
                    enabled: bar.screen.evidenceReady
                    text: qsTr("Save evidence…")
                    onTriggered: bar.screen.capture()
                }
                MenuItem {
                    text: qsTr("Open the evidence folder")
                    onTriggered: bar.screen.history.openFolder()
                }
                MenuItem {
                    text: qsTr("Scan in a terminal")
                    onTriggered: bar.screen.scan()
                }
                MenuSeparator {}
                MenuItem {
                    objectName: "browser.window"
                    checkable: true
                    checked: bar.screen.display.windowShown
                    text: qsTr("Show the browser's own window")
                    onTriggered: {
                        bar.screen.display.windowShown = !bar.screen.display.windowShown;
                        checked = Qt.binding(() => bar.screen.display.windowShown);
                    }
                }
            }
        }
        Button {
            objectName: "browser.report"
            kind: "primary"
            enabled: bar.screen.evidenceReady
            text: qsTr("Report a bug")
            hint: Commands.keysOf("browserReport")
            onClicked: bar.screen.reportBug()
        }
    }
    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: 1
        color: Theme.line
    }
    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width * bar.screen.browser.progress
        height: 2
        visible: bar.screen.browser.isLoading || bar.screen.browser.isConnecting
        color: Theme.accent
        Accessible.role: Accessible.ProgressBar
        Accessible.name: bar.screen.statusText
        Behavior on width { NumberAnimation { duration: Theme.quick } }
    }
}
