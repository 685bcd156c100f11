import QtQuick
import Corvane.Controls
import Corvane.Work

/// Going to market: the pipeline, and the campaigns.
WorkPage {
    id: page

    required property GTMHub screen

    function undo() {
        if (inContext)
            shell.board.undo();
        else
            screen.undo();
    }

    shell: screen.shell
    placeView: Component {
        PipelineView {
            hub: page.screen
            onItemOpened: id => page.shell.item.open(id)
        }
    }

    Toast {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.wide
        undoName: "deals.undo"
        text: page.screen.undoText
        onUndone: page.screen.undo()
        onDismissed: page.screen.dismissUndo()
    }
}
