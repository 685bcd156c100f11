import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// The quoted tail of a mail, folded until it is asked for.
Column {
    id: quotation

    required property threadRow message
    required property ThreadView thread
    required property int maximumWidth

    spacing: Theme.tight

    Button {
        objectName: "message.quote"
        x: -leftPadding
        implicitHeight: 24
        leftPadding: Theme.tight
        rightPadding: Theme.tight
        kind: "quiet"
        icon.name: quotation.message.quote === "" ? "go-next" : "go-down"
        text: quotation.message.quoteLabel
        onClicked: quotation.thread.toggleQuote(quotation.message.id)
    }
    Item {
        visible: quotation.message.quote !== ""
        implicitWidth: quoted.x + quoted.width
        implicitHeight: quoted.implicitHeight
        Rectangle {
            width: 2
            height: parent.height
            color: Theme.line
        }
        Label {
            id: quoted
            x: Theme.small
            width: Math.min(Math.ceil(measure.implicitWidth), quotation.maximumWidth - x)
            wrapMode: Text.Wrap
            lineHeight: 1.2
            elide: Text.ElideNone
            text: quotation.message.quote
            color: Theme.soft
            Accessible.ignored: true
        }
        Text {
            id: measure
            visible: false
            textFormat: Text.PlainText
            font: quoted.font
            text: quoted.text
        }
    }
}
