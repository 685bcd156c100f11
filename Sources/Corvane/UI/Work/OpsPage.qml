import QtQuick
import Corvane.Controls
import Corvane.Work

/// The operations hub.
WorkPage {
    id: page

    required property OpsHub screen

    shell: screen.shell
    placeView: Component {
        FocusScope {
            Loader {
                anchors.fill: parent
                focus: true
                sourceComponent: page.shell.rail.place === "projects" ? projects : page.shell.rail.place === "asks" ? asks
                    : page.shell.rail.place === "finance" ? finance : home
            }
        }
    }

    Component { id: home; OpsHome { hub: page.screen } }
    Component { id: projects; ProjectsView { projects: page.screen.projects } }
    Component { id: finance; FinanceView { finance: page.screen.finance; onOpened: id => page.shell.item.open(id) } }
    Component {
        id: asks
        AsksView {
            asks: page.screen.asks
            onNewAsked: page.shell.create.begin("ask")
        }
    }
    AnswerSheet { asks: page.screen.asks }
    AnswerSheet { asks: page.screen.projects.asks }
}
