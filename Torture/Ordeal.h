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

/// What the rounds of an ordeal found.
struct Tally {
    int runs = 0; ///< kills, cuts and so on
    qint64 acknowledged = 0; ///< what had to be there afterwards
    qint64 lost = 0;
    qint64 twice = 0;
    QStringList faults; ///< anything else, in words

    bool isClean() const { return lost == 0 && twice == 0 && faults.isEmpty(); }
};

using Random = std::mt19937;

/// A number from 0 to `most`.
inline int upTo(int most, Random& random)
{
    return int(random() % (unsigned(most) + 1));
}

/// Something that happens to the program again and again, and what must hold each time.
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
    int every; ///< takes part in one round of so many, since it takes long
    std::unique_ptr<Ordeal> (*make)(const QString& program);
};

constexpr int longestDelayMs = 20; ///< from what is waited for to the kill

/// That the database is whole, and so is its record of decisions.
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

/// The program with a history that fills its caches and then ten messages a second, with memory and descriptors at each
/// minute. False if it ends, or grows by more than a megabyte an hour in the second half.
bool soak(const QString& program, int minutes);

}
