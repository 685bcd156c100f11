#pragma once

#include <QObject>

class QSocketNotifier;

namespace corvane {

/// Turns SIGTERM and SIGINT into a Qt signal, so that the program can exit in an orderly way. One object per process.
class TerminationSignals : public QObject {
    Q_OBJECT
public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;

Q_SIGNALS:
    void requested(int signalNumber);

private:
    QSocketNotifier* m_notifier = nullptr;
};

}
