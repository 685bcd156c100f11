import QtQuick
import Corvane.Controls
import Corvane.Wall

/// Sign in, or go on without.
FocusScope {
    id: page

    required property LoginWallView wall

    focus: true

    Column {
        anchors.centerIn: parent
        width: 380
        spacing: Theme.wide

        Column {
            width: parent.width
            spacing: Theme.small

            Logo {
                anchors.horizontalCenter: parent.horizontalCenter
                size: 56
            }
            Item { width: 1; height: Theme.tight }
            Label {
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                text: page.wall.title
                font.pixelSize: Theme.wall
                font.weight: Theme.strong
                Accessible.role: Accessible.Heading
            }
            Label {
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                text: page.wall.tagline
                color: Theme.soft
            }
        }
        Card {
            width: parent.width
            padding: Theme.wide

            TextField {
                objectName: "wall.email"
                width: parent.width
                focus: true
                label: page.wall.emailLabel
                inputMethodHints: Qt.ImhEmailCharactersOnly
                text: page.wall.email
                onTextEdited: page.wall.email = text
                onAccepted: page.wall.submit()
            }
            TextField {
                objectName: "wall.password"
                width: parent.width
                label: page.wall.passwordLabel
                echoMode: TextInput.Password
                text: page.wall.password
                onTextEdited: page.wall.password = text
                onAccepted: page.wall.submit()
            }
            Label {
                width: parent.width
                visible: text !== ""
                wrapMode: Text.Wrap
                text: page.wall.lastError
                color: Theme.bad
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
            Item { width: 1; height: Theme.tight }
            Button {
                objectName: "wall.submit"
                width: parent.width
                implicitHeight: 36
                kind: "primary"
                text: page.wall.primaryLabel
                enabled: page.wall.canSubmit
                onClicked: page.wall.submit()
            }
            Button {
                objectName: "wall.browser"
                width: parent.width
                implicitHeight: 36
                text: page.wall.browserLabel
                onClicked: page.wall.signInWithBrowser()
            }
        }
        Column {
            width: parent.width
            spacing: Theme.medium

            Button {
                objectName: "wall.continue"
                anchors.horizontalCenter: parent.horizontalCenter
                kind: "quiet"
                text: page.wall.continueLabel
                onClicked: page.wall.continueWithoutSigningIn()
            }
            Label {
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                lineHeight: 1.25
                text: page.wall.footnote
                color: Theme.faint
                font.pixelSize: Theme.meta
            }
        }
    }
}
