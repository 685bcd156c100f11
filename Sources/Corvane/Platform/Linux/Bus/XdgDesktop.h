#pragma once

#include "Platform/Desktop.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <sys/types.h>

namespace corvane {

/// The desktop through xdg-open, the settings and file chooser portals, and the launcher signal of docks. The portal's
/// settings arrive shortly after the start and are announced as a change of appearance.
class XdgDesktop final : public Desktop {
    Q_OBJECT
public:
    XdgDesktop(const QDBusConnection& bus, mode_t umaskOfOpened);

    void openInBrowser(const QUrl& url) override;
    bool openFile(const QString& path) override;
    bool openLink(const QUrl& link) override;
    void chooseFiles(
        const QString& title, QObject* context, std::function<void(const Result<QList<QUrl>>& files)> done) override;
    void chooseFolder(
        const QString& title, QObject* context, std::function<void(const Result<QList<QUrl>>& folder)> done) override;
    QString hostName() const override;
    void setBadge(int count) override;
    ColourScheme colourScheme() const override { return m_scheme; }
    bool prefersReducedMotion() const override { return !m_animations; }

    bool eventFilter(QObject* watched, QEvent* event) override;

private Q_SLOTS:
    void onSettingChanged(const QDBusMessage& signal);

private:
    void choose(const QVariantMap& options, const QString& title, QObject* context, const QString& missing,
        std::function<void(const Result<QList<QUrl>>& chosen)> done);
    void readSettings();
    void read(const QString& group, const QString& key);
    void apply(const QString& key, const QVariant& value);
    void updateScheme();
    void sendBadge();

    QDBusConnection m_bus;
    const mode_t m_umaskOfOpened;
    int m_badge = 0;
    uint m_preferredScheme = 0; ///< as the portal reports it
    bool m_animations = true;
    ColourScheme m_scheme = ColourScheme::Light;
};

}
