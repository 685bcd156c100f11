import QtQuick
import QtQuick.Templates as T
import QtQml
import Corvane.Controls
import Corvane.Shell

/// The round button with the person's initial, and the menu behind it.
T.AbstractButton {
    id: control

    required property ProfileMenu profile

    objectName: "topnav.profile"
    implicitWidth: Theme.control
    implicitHeight: Theme.control
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    text: profile.initial
    Accessible.role: Accessible.ButtonMenu
    Accessible.name: qsTr("Profile: %1").arg(profile.displayLine)
    Keys.onReturnPressed: clicked()
    onClicked: {
        profile.refresh();
        menu.popup(control, control.width - menu.width, control.height + Theme.tight);
    }

    contentItem: Item {
        Label {
            anchors.centerIn: parent
            text: control.text
            font.weight: Theme.strong
            color: Theme.accent
        }
        Icon {
            anchors.centerIn: parent
            visible: control.text === ""
            name: "user"
            color: Theme.accent
        }
    }
    background: Rectangle {
        radius: width / 2
        color: control.hovered ? Theme.raised : Theme.tint
        FocusRing { control: control }
    }
    Tooltip { text: control.profile.displayLine; shown: control.hovered && !menu.visible }

    Menu {
        id: menu
        objectName: "profileMenu"

        MenuItem {
            enabled: false
            text: control.profile.displayLine
        }
        MenuSeparator {}
        Instantiator {
            model: control.profile.actions
            delegate: MenuItem {
                required property choice modelData
                text: modelData.label
                key: Commands.keysOf(modelData.id)
                onTriggered: control.profile.perform(modelData.id)
            }
            onObjectAdded: (index, item) => menu.addItem(item)
            onObjectRemoved: (index, item) => menu.removeItem(item)
        }
    }

    // Only a signed-in person has workspaces to choose from.
    property bool offersWorkspaces: profile.signedIn
    onOffersWorkspacesChanged: placeWorkspaces()
    Component.onCompleted: if (offersWorkspaces) placeWorkspaces()

    // If it is created while signed in, it gets two signals.
    function placeWorkspaces() {
        const placed = menu.menuAt(2) === workspaces;
        if (offersWorkspaces && !placed)
            menu.insertMenu(2, workspaces);
        else if (!offersWorkspaces && placed)
            menu.takeMenu(2);
    }

    Menu {
        id: workspaces
        title: control.profile.workspaceLabel

        Instantiator {
            model: control.profile.workspaces
            delegate: MenuItem {
                required property workspaceChoice modelData
                checkable: true
                checked: modelData.selected
                text: modelData.name
                onTriggered: control.profile.selectWorkspace(modelData.id)
            }
            onObjectAdded: (index, item) => workspaces.insertItem(index, item)
            onObjectRemoved: (index, item) => workspaces.removeItem(item)
        }
        MenuSeparator {}
        Instantiator {
            model: control.profile.workspaceActions
            delegate: MenuItem {
                required property choice modelData
                text: modelData.label
                onTriggered: control.profile.perform(modelData.id)
            }
            onObjectAdded: (index, item) => workspaces.addItem(item)
            onObjectRemoved: (index, item) => workspaces.removeItem(item)
        }
    }
}
