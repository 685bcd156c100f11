#pragma once

#include "Presentation/Choice.h"

#include <QList>
#include <QObject>
#include <QUrl>

namespace corvane {

class UserDefaults;
struct VoiceServices;

/// A speech recogniser that can be chosen.
class SpeechModelLine {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(QString checksum MEMBER checksum)
    Q_PROPERTY(bool preferred MEMBER preferred)
    Q_PROPERTY(bool removable MEMBER removable)
public:
    QString id;
    QString name;
    QString detail; ///< such as "142 MB · 99 languages · added 22 November"
    QString checksum; ///< such as "SHA-256 60ed5bc3…"; empty for the basic recogniser
    bool preferred = false;
    bool removable = false;

    bool operator==(const SpeechModelLine&) const = default;
};

/// A published model that can be downloaded.
class PublishedModelLine {
    Q_GADGET
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString address MEMBER address)
public:
    QString label; ///< such as "Base · 142 MB · 99 languages · A good start"
    QString address;

    bool operator==(const PublishedModelLine&) const = default;
};

/// The speech settings: the recogniser, adding models, and the language.
class VoiceSettings : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString stateText READ stateText NOTIFY modelsChanged) ///< which languages can be transcribed now
    Q_PROPERTY(bool ready READ ready NOTIFY modelsChanged)
    Q_PROPERTY(QList<corvane::SpeechModelLine> models READ models NOTIFY modelsChanged)
    Q_PROPERTY(QList<corvane::PublishedModelLine> published READ published CONSTANT)
    Q_PROPERTY(QString address READ address WRITE setAddress NOTIFY addressChanged)
    Q_PROPERTY(bool busy READ busy NOTIFY installChanged)
    Q_PROPERTY(double progress READ progress NOTIFY installChanged) ///< from 0 to 1; -1: unknown
    Q_PROPERTY(QString installText READ installText NOTIFY installChanged) ///< the progress, or the error
    Q_PROPERTY(bool installFailed READ installFailed NOTIFY installChanged)
    Q_PROPERTY(QList<corvane::Choice> locales READ locales NOTIFY modelsChanged)
    Q_PROPERTY(QString locale READ locale WRITE setLocale NOTIFY localeChanged) ///< "system", or a locale
    Q_PROPERTY(QString localeText READ localeText NOTIFY localeChanged)
    Q_PROPERTY(QString localeHint READ localeHint NOTIFY localeChanged) ///< empty if the language can be detected
public:
    /// Both outlive the view model.
    VoiceSettings(VoiceServices& voice, UserDefaults& defaults, QObject* parent = nullptr);

    QString stateText() const;
    bool ready() const;
    QList<SpeechModelLine> models() const;
    QList<PublishedModelLine> published() const;
    const QString& address() const { return m_address; }
    void setAddress(const QString& address);
    bool busy() const;
    double progress() const;
    QString installText() const;
    bool installFailed() const;
    QList<Choice> locales() const;
    QString locale() const;
    void setLocale(const QString& id);
    QString localeText() const;
    QString localeHint() const;

    Q_INVOKABLE void download(); ///< from the address
    Q_INVOKABLE void addFiles(const QList<QUrl>& files); ///< the first of them; it is copied
    Q_INVOKABLE void cancel();
    Q_INVOKABLE void dismissError();
    Q_INVOKABLE void prefer(const QString& modelId);
    Q_INVOKABLE void remove(const QString& modelId);

Q_SIGNALS:
    void modelsChanged();
    void addressChanged();
    void installChanged();
    void localeChanged();

private:
    bool hears(const QString& localeId) const;

    VoiceServices& m_voice;
    UserDefaults& m_defaults;
    QString m_address;
};

}
