// Runs the program on a full disk, and while another program holds the database's lock.

#include "Ordeal.h"
#include "Profile.h"

#include "Foundation/Literals.h"
#include "Store/Core/Snapshot.h"

#include <QFile>
#include <sys/mount.h>
#include <utility>

namespace corvane::torture {

namespace {

/// Storing messages resumes, and every acknowledged message is stored exactly once.
void checkAfter(Profile& profile, Tally& tally)
{
    const qint64 wanted = profile.books().acknowledged() + 200;
    if (!waitFor([&] { return profile.books().acknowledged() >= wanted; }))
        tally.faults.append(u"messages are not stored again"_s);
    if (!profile.stop())
        tally.faults.append(u"the program does not end"_s);
    ++tally.runs;
    const qint64 acknowledged = profile.books().acknowledged();
    const auto db = profile.open();
    const Profile::Told told = profile.told(*db, acknowledged);
    tally.acknowledged = acknowledged;
    tally.lost += acknowledged - told.messages;
    tally.twice += told.rows - told.messages;
    if (const QString trouble = integrityTrouble(*db); !trouble.isEmpty())
        tally.faults.append(u"the database is damaged: "_s + trouble);
}

/// Puts the data folder on a separate disk, which a file fills up until it is deleted.
class SmallDisk final : public Ordeal {
public:
    explicit SmallDisk(const QString& program)
        : m_profile(program)
        , m_disk(QFile::encodeName(m_profile.paths().applicationSupport))
    {
        const QString accounts = m_profile.paths().applicationSupport + u"/accounts.json"_s;
        const QString kept = m_profile.file(u"accounts.json"_s);
        QFile::copy(accounts, kept);
        if (::mount("none", m_disk.constData(), "tmpfs", 0, "size=256m,mode=0700") != 0)
            qFatal("No disk can be mounted in this namespace");
        QFile::copy(kept, accounts);
    }

    ~SmallDisk() override
    {
        m_profile.kill();
        ::umount2(m_disk.constData(), MNT_DETACH);
    }

    void round(Tally& tally, Random& random) override
    {
        m_profile.start({ 1'000'000, 1 });
        const qint64 first = m_profile.books().acknowledged() + 1 + upTo(300, random);
        waitFor([&] { return m_profile.books().acknowledged() >= first; });
        takeRoom();
        qint64 before = -1;
        const auto standsStill = [&] {
            const qint64 last = std::exchange(before, m_profile.books().acknowledged());
            pause(2000); // the engine sends a message each millisecond
            return last == m_profile.books().acknowledged();
        };
        if (!waitFor(standsStill))
            tally.faults.append(u"messages are acknowledged on a full disk"_s);
        if (!m_profile.isRunning())
            tally.faults.append(u"the program ended"_s);
        QFile::remove(ballast());
        checkAfter(m_profile, tally);
    }

private:
    QString ballast() const { return m_profile.paths().applicationSupport + u"/ballast"_s; }

    void takeRoom()
    {
        QFile file(ballast());
        const QByteArray piece(4096, 'x');
        if (file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            while (file.write(piece) == piece.size()) { }
    }

    Profile m_profile;
    const QByteArray m_disk;
};

/// Holds the lock for a random time, sometimes longer than every lock timeout.
class HeldDatabase final : public Ordeal {
public:
    explicit HeldDatabase(const QString& program)
        : m_profile(program)
    {
    }

    void round(Tally& tally, Random& random) override
    {
        constexpr int longestHoldMs = 7000;
        const qint64 first = m_profile.books().acknowledged() + 1;
        m_profile.start({ 1'000'000, 1 });
        waitFor([&] { return m_profile.books().acknowledged() >= first; });
        {
            const auto other = m_profile.open();
            if (!waitFor([&] { return other->begin(Patience::Full); }))
                tally.faults.append(u"another program never gets to write"_s);
            pause(upTo(longestHoldMs, random));
            other->exec(u"COMMIT;"_s);
        }
        checkAfter(m_profile, tally);
    }

private:
    Profile m_profile;
};

}

std::unique_ptr<Ordeal> smallDisk(const QString& program)
{
    return std::make_unique<SmallDisk>(program);
}

std::unique_ptr<Ordeal> heldDatabase(const QString& program)
{
    return std::make_unique<HeldDatabase>(program);
}

}
