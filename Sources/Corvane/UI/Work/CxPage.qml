import QtQuick
import Corvane.Controls
import Corvane.Work

/// Customers: who waits for an answer, and the work of each client.
WorkPage {
    id: page

    required property CXHub screen

    shell: screen.shell
    placeView: Component {
        QueueView {
            hub: page.screen
            onItemOpened: id => page.shell.item.open(id)
        }
    }
}
