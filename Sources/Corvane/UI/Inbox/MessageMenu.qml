import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Inbox

/// What can be done with one message.
Menu {
    id: menu

    required property string messageId
    required property OpenPerson person

    readonly property MessageActions actions: person.messageActions
    property list<messageOffer> offers
    property messageOffer none ///< for an action that the message does not have

    function offer(id: string): messageOffer {
        for (let i = 0; i < offers.length; ++i) {
            if (offers[i].id === id)
                return offers[i];
        }
        return none;
    }

    onAboutToShow: {
        offers = actions.actionsFor(messageId);
        forwarding.targets = actions.forwardTargets();
    }

    // Left and Right select, Return sends the reaction.
    T.MenuItem {
        id: moods
        property int chosen: 0
        readonly property list<string> all: ["👍", "❤️", "😂", "😮", "😢", "🙏"]

        objectName: "message.moods"
        Keys.onLeftPressed: chosen = Math.max(0, chosen - 1)
        Keys.onRightPressed: chosen = Math.min(all.length - 1, chosen + 1)
        onTriggered: menu.actions.react(menu.messageId, all[chosen])
        enabled: menu.offer("react").enabled
        opacity: enabled ? 1 : 0.4
        implicitHeight: 40
        implicitWidth: row.implicitWidth + Theme.small * 2
        Accessible.name: qsTr("React")

        contentItem: Row {
            id: row
            leftPadding: Theme.tight
            Repeater {
                model: moods.all
                T.AbstractButton {
                    id: mood
                    required property int index
                    required property string modelData
                    implicitWidth: 34
                    implicitHeight: 34
                    hoverEnabled: true
                    text: modelData
                    Accessible.name: qsTr("React with %1").arg(modelData)
                    contentItem: Label {
                        horizontalAlignment: Text.AlignHCenter
                        verticalAlignment: Text.AlignVCenter
                        text: mood.text
                        font.family: Theme.pictures
                        font.pixelSize: Theme.screen
                    }
                    background: Rectangle {
                        radius: Theme.controlRadius
                        color: mood.hovered || (moods.activeFocus && moods.chosen === mood.index) ? Theme.raised : Theme.none
                    }
                    onClicked: {
                        menu.actions.react(menu.messageId, modelData);
                        menu.close();
                    }
                }
            }
        }
    }
    MenuSeparator {}
    MessageAction {
        icon.name: "media-playback-start"
        key: "Space"
        offer: menu.offer("play")
        onTriggered: menu.person.voicePlayer.toggle(menu.messageId)
    }
    MessageAction {
        icon.name: "edit-copy"
        key: "Ctrl+C"
        offer: menu.offer("copy")
        onTriggered: WindowTools.copy(menu.actions.readableText(menu.messageId))
    }
    ForwardMenu {
        id: forwarding
        title: menu.offer("forward").label
        enabled: menu.offer("forward").enabled
        messageId: menu.messageId
        actions: menu.actions
    }
    MessageAction {
        icon.name: "note"
        offer: menu.offer("transcribe")
        onTriggered: menu.person.transcripts.transcribe(menu.messageId)
    }
    MessageAction {
        icon.name: "audio"
        offer: menu.offer("speak")
        onTriggered: menu.person.transcripts.speak(menu.messageId)
    }
    MessageAction {
        icon.name: "document-open"
        offer: menu.offer("open")
        onTriggered: menu.actions.openMedia(menu.messageId)
    }
    MessageAction {
        icon.name: "download"
        offer: menu.offer("fetch")
        onTriggered: menu.actions.fetchMedia(menu.messageId)
    }
    MessageAction {
        icon.name: "edit-delete"
        key: "Del"
        danger: true
        offer: menu.offer("delete")
        onTriggered: menu.actions.deleteLocal(menu.messageId)
    }
}
