import QtQuick
import Corvane.Controls
import Corvane.Dev
import Corvane.Work

/// The Lumo hub, with its console as one of its places.
LumoPage {
    id: page

    required property LumoScreen screen
    property Workspace workspace

    hub: screen.hub
    placeActs: shell.rail.place === "console"
    onPlaceActed: command => workspace.act(command)
    consoleView: Component {
        Workspace {
            workspace: page.screen.console
            Component.onCompleted: page.workspace = this
        }
    }
}
