import QtQuick
import Corvane.Controls
import Corvane.Work

/// Figures in one line, each with its label.
Row {
    id: line

    required property list<workMetric> metrics

    spacing: Theme.wide

    Repeater {
        model: line.metrics.length // the figures stay while their values change
        Row {
            id: figure
            required property int index
            readonly property workMetric metric: line.metrics[index]
            spacing: 6
            Label {
                id: value
                text: figure.metric.value
                font.weight: Theme.strong
            }
            Label {
                anchors.baseline: value.baseline
                text: figure.metric.sub ? figure.metric.label + " · " + figure.metric.sub : figure.metric.label
                font.pixelSize: Theme.meta
                color: Theme.soft
            }
        }
    }
}
