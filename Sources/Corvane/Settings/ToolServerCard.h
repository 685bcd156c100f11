#pragma once

#include "Foundation/Literals.h"

#include <QObject>
#include <QString>

namespace corvane {

class EngineManager;

/// The settings card of the local tool server.
class ToolServerCard : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(bool running READ running NOTIFY changed)
    Q_PROPERTY(QString stateText READ stateText NOTIFY changed)
    Q_PROPERTY(QString url READ url NOTIFY changed)
    Q_PROPERTY(QString actionLabel READ actionLabel NOTIFY changed)
public:
    explicit ToolServerCard(EngineManager& engine, QObject* parent = nullptr);

    QString title() const { return u"Local tool server"_s; }
    bool running() const;
    QString stateText() const;
    QString url() const;
    QString actionLabel() const;

    Q_INVOKABLE void startOrStop(); ///< the action of `actionLabel`

Q_SIGNALS:
    void changed();

private:
    EngineManager& m_engine;
};

}
