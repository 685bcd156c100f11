import QtQuick
import Corvane.Calendar
import Corvane.Controls

/// What agents want to add, and what went wrong.
Column {
    id: notices

    required property CalendarView screen
    property choice noQuestion

    spacing: Theme.small
    bottomPadding: visibleChildren.length > 1 ? Theme.small : 0

    Repeater {
        model: notices.screen.asked.length
        Banner {
            id: question
            required property int index
            readonly property choice event: notices.screen.asked[index] ?? notices.noQuestion
            objectName: "calendar.asked"
            width: notices.width
            text: qsTr("An agent asks to add: %1").arg(event.label)
            action: qsTr("Add")
            otherAction: qsTr("Reject")
            onActed: notices.screen.answer(question.event.id, true)
            onActedOtherwise: notices.screen.answer(question.event.id, false)
        }
    }
    Banner {
        objectName: "calendar.notice"
        width: parent.width
        visible: text !== ""
        text: notices.screen.notice
        dismissable: true
        onDismissed: notices.screen.dismiss()
    }
}
