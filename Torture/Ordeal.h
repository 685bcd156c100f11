#pragma once

#include <QStringList>
#include <functional>
#include <memory>
#include <random>
#include <vector>

namespace corvane {
class LocalDB;
}

namespace corvane::torture {

/// The results of one test.
struct Tally {
    int runs = 0; ///< kills, cuts and so on
    qint64 acknowledged = 0; ///< how many items had to be stored
    qint64 lost = 0;
    qint64 twice = 0;
    QStringList faults; ///< any other failures

    bool isClean() const { return lost == 0 && twice == 0 && faults.isEmpty(); }
};

using Random = std::mt19937;

/// A number from 0 to `most`.
inline int upTo(int most, Random& random)
{
    return int(random() % (unsigned(most) + 1));
}

/// A fault that is injected repeatedly, and the checks after each time.
class Ordeal {
public:
    Ordeal() = default;
    virtual ~Ordeal() = default;
    Ordeal(const Ordeal&) = delete;
    Ordeal& operator=(const Ordeal&) = delete;

    virtual void round(Tally& tally, Random& random) = 0;
    virtual void finish(Tally& /*tally*/) { } ///< after the last round
};

struct OrdealKind {
    const char* id;
    const char* title;
    int every; ///< runs in one of this many rounds, since it is slow
    std::unique_ptr<Ordeal> (*make)(const QString& program);
};

constexpr int longestDelayMs = 20; ///< maximum delay between the awaited event and the kill

/// Checks the integrity of the database and of its decision log.
void checkFile(LocalDB& db, Tally& tally);

std::unique_ptr<Ordeal> ingestKills(const QString& program);
std::unique_ptr<Ordeal> deliveryKills(const QString& program);
std::unique_ptr<Ordeal> undoKills(const QString& program);
std::unique_ptr<Ordeal> searchKills(const QString& program);
std::unique_ptr<Ordeal> backupKills(const QString& program);
std::unique_ptr<Ordeal> smallDisk(const QString& program);
std::unique_ptr<Ordeal> heldDatabase(const QString& program);
std::unique_ptr<Ordeal> fullDiskAtEachWrite(const QString& program);
std::unique_ptr<Ordeal> powerCuts(const QString& program);
std::unique_ptr<Ordeal> powerCutsAtFirstStart(const QString& program);

/// Runs the program with enough history to fill its caches, then with ten messages a second, and prints memory use and
/// open file descriptors every minute. Returns false if it exits, or grows by more than a megabyte an hour in the
/// second half.
bool soak(const QString& program, int minutes);

}
